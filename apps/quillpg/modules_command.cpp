#include "commands.h"
#include "exit_status.h"
#include "hardware/hardware_library.h"
#include "hardware/module_manager.h"
#include "quillpg/app_server.h"
#include "report.h"
#include "server_session.h"
#include "terminal_router.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace quillpg::tool {
namespace {

constexpr std::size_t kColumns = 7;
using ROW = std::array<std::string, kColumns>;

const ROW kHeading = {"Slot", "Frame", "Model", "Serial", "Firmware", "Depth", "Pods A to D"};

ROW Describe(CSorrelModule& module) {
  int slot = 0;
  int frame = 0;
  long depth = 0;
  ROW row;
  if (module.GetSlotNo(slot) == S_OK) row[0] = std::to_string(slot);
  if (module.GetFrameNo(frame) == S_OK) row[1] = std::to_string(frame);
  (void)module.GetModelName(row[2]);  // what a module does not tell stays empty
  (void)module.GetSerialNo(row[3]);
  (void)module.GetFirmwareVersion(row[4]);
  if (module.GetMemoryDepth(depth) == S_OK) row[5] = std::to_string(depth);
  (void)module.GetPodTypes(row[6]);
  return row;
}

void Print(const std::vector<ROW>& rows) {
  std::array<std::size_t, kColumns> widths{};
  for (const ROW& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const ROW& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < kColumns; ++i) {
      if (i > 0) line += "  ";
      line += row[i];
      if (i + 1 < kColumns) line.append(widths[i] - row[i].size(), ' ');
    }
    PrintLine(line);
  }
}

}  // namespace

int RunCommand(const MODULES_OPTIONS& /*options*/) {
  CTerminalRouter router(false);
  CServerSession session(router);
  CAppServer* server = session.Server();
  CModuleManager* modules = nullptr;
  if (!server || server->GetModuleManager(&modules) != S_OK) return STATUS_UNUSABLE;

  int count = 0;
  (void)modules->GetNoOfModules(count);
  std::vector<ROW> rows = {kHeading};
  for (int i = 0; i < count; ++i) {
    CSorrelModule* module = nullptr;
    if (modules->GetSorrelModuleAt(i, &module) == S_OK && module) {
      rows.push_back(Describe(*module));
    }
  }
  Print(rows);
  return FlushOutput() ? STATUS_GOOD : STATUS_UNUSABLE;
}

}  // namespace quillpg::tool
