#include "bench_instrument.h"

#include "hardware/module_manager.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "quillpg/app_server.h"

#include <cstddef>
#include <cstdint>
#include <random>

namespace quillpg::bench {

CBenchInstrument::CBenchInstrument() {
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);
  CModuleManager* modules = nullptr;
  (void)server->GetModuleManager(&modules);
  CModule* module = nullptr;
  (void)modules->GetModuleAt(0, &module);
  (void)Initialize();
  (void)AddModule(module);
  (void)Default();
}

void CBenchInstrument::UseCaptureGroups() {
  (void)Program().Groups()->DeleteAllGroups();
  for (int line = 0; line < 48; ++line) AddGroup("D" + std::to_string(line), line, 1);
  AddGroup("Bus", 48, 16);
}

void CBenchInstrument::AddGroup(const std::string& name, int lowest, int channels) {
  (void)Program().Groups()->AddGroup(name);
  for (int i = channels; i-- > 0;) (void)AddChannelToGroup(name, lowest + i, -1);
}

BLOCK& CBenchInstrument::AddRandomBlock(int vectors) {
  (void)Program().Blocks()->AddBlock("Data", vectors);
  BLOCK& block = *Program().BlockAt(Program().BlockCount() - 1);
  std::mt19937 random(4711);
  for (std::size_t i = 0; i < static_cast<std::size_t>(vectors) * block.RowBytes(); ++i) {
    block.Data()[i] = static_cast<std::uint8_t>(random());
  }
  return block;
}

}  // namespace quillpg::bench
