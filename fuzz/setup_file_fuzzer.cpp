// Reads any bytes as a setup file, by the walker and into the model. What the model took is
// written, read again and written again: both writings must agree.

#include "app/setup_stream.h"
#include "app/version_info.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "persistence/setup_file_walker.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/app_server.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace {

using namespace quillpg;

void Check(bool holds) {
  if (!holds) std::abort();
}

// One instrument over two of the simulated modules.
class CTarget {
 public:
  CTarget() {
    CAppServer* server = nullptr;
    (void)CAppServer::GetServer(&server);
    CModuleManager* modules = nullptr;
    (void)server->GetModuleManager(&modules);
    (void)m_instrument.Initialize();
    for (int i = 0; i < 2; ++i) {
      CModule* module = nullptr;
      (void)modules->GetModuleAt(i, &module);
      (void)m_instrument.AddModule(module);
    }
  }

  Status Read(CSetupFileReader& reader, bool program) {
    (void)m_instrument.Read(reader, program ? 1 : 0);
    ForEach(program, [&reader](auto& manager) { (void)manager.Read(reader); });
    return reader.GetStatus();
  }
  void Write(CByteWriter& writer, bool program) {
    Check(m_instrument.Write(writer) == S_OK);
    ForEach(program, [&writer](auto& manager) { Check(manager.Write(writer) == S_OK); });
  }
  void Empty() {
    ForEach(true, [](auto& manager) { (void)manager.DeleteAll(); });
  }

 private:
  template <typename Visit>
  void ForEach(bool program, Visit&& visit) {
    With(&CInstrument::GetGroupManager, visit);
    if (!program) return;
    With(&CInstrument::GetBlockManager, visit);
    With(&CInstrument::GetSequenceManager, visit);
    With(&CInstrument::GetSubSequenceManager, visit);
    With(&CInstrument::GetEventManager, visit);
  }
  template <typename Manager, typename Visit>
  void With(Status (CInstrument::*get)(Manager**) const, Visit&& visit) {
    Manager* manager = nullptr;
    (void)(m_instrument.*get)(&manager);
    visit(*manager);
  }

  CInstrument m_instrument;
};

void ReadIntoModel(std::span<const std::uint8_t> bytes) {
  static CTarget target;
  FIXED_SECTION section;
  CSetupFileReader reader(bytes);
  if (Failed(section.Read(reader, PRODUCT_NAME))) return;
  SETUP_FILE_FORM form = FormOfVersion(section.softwareVersion, PRODUCT_VERSION);
  form.stepsOver = section.fileType != FileType::System && section.fileType != FileType::Module;
  reader.SetForm(form);
  const bool program = section.programDataSaved != 0;
  target.Empty();
  if (Failed(target.Read(reader, program)) || form.stepsOver) return;
  CByteWriter first;
  target.Write(first, program);
  target.Empty();
  CSetupFileReader again(first.Written());
  Check(target.Read(again, program) == S_OK);
  CByteWriter second;
  target.Write(second, program);
  Check(std::ranges::equal(first.Written(), second.Written()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span bytes(data, size);
  SETUP_FILE_CONTENTS contents;
  (void)WalkSetupFile(
      bytes, [&](const SETUP_FIELD& field) { Check(field.offset + field.size <= size); }, contents);
  ReadIntoModel(bytes);
  return 0;
}
