#include "commands.h"
#include "exit_status.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "instrument/merge_manager.h"
#include "interrupt.h"
#include "pending_file.h"
#include "persistence/file_manager.h"
#include "persistence/visa_stub_gen.h"
#include "program_file.h"
#include "quillpg/app_server.h"
#include "report.h"
#include "server_session.h"
#include "setup_file.h"
#include "terminal_router.h"

#include <memory>

namespace quillpg::tool {
namespace {

CInstrumentManager& Instruments(CServerSession& session) {
  CInstrumentManager* instruments = nullptr;
  (void)session.Server()->GetInstrumentManager(&instruments);
  return *instruments;
}

CFileManager& Files(CServerSession& session) {
  CFileManager* files = nullptr;
  (void)session.Server()->GetFileManager(&files);
  return *files;
}

int SavedStatus(Status status, const std::string& path, bool quiet = false) {
  if (Failed(status)) return Refuse(path + ": " + StatusText(status));
  if (!quiet) PrintLine("saved to " + path);
  return FlushOutput() ? STATUS_GOOD : STATUS_UNUSABLE;
}

int SaveSystem(CServerSession& session, const std::string& path, int program = 1,
               bool quiet = false) {
  std::string comment;
  (void)Instruments(session).GetComment(comment);
  return SavedStatus(Files(session).SaveSystem(path, comment, program), path, quiet);
}

int SaveInstrument(CServerSession& session, const CONVERT_OPTIONS& options, int program) {
  CInstrumentManager& instruments = Instruments(session);
  int position = -1;
  CInstrument* instrument = nullptr;
  if (Failed(instruments.GetInstrumentPos(options.instrument, position)) ||
      Failed(instruments.GetInstrumentAt(position, &instrument)) || !instrument) {
    return Refuse("there is no instrument '" + options.instrument + "'");
  }
  std::string comment;
  (void)instruments.GetComment(comment);
  const Status status =
      Files(session).SaveModule(options.out, comment, position, instrument, program);
  return SavedStatus(status, options.out, options.input.quiet);
}

// Merges the modules first to last; false when the merge manager refuses.
bool MergeModules(CServerSession& session, int first, int last) {
  CMergeManager* merge = nullptr;
  if (Failed(session.Server()->GetMergeManager(&merge)) || !merge) return false;
  for (int module = first + 1; module <= last; ++module) {
    int left = -1;
    int right = -1;
    (void)merge->GetInstrumentId(module - 1, left);
    (void)merge->GetInstrumentId(module, right);
    // Modules that stand in one instrument already need no merging.
    if (left == right && left >= 0) continue;
    if (Failed(merge->Merge(module))) return false;
  }
  return !Failed(merge->Update());
}

}  // namespace

int RunCommand(const CONVERT_OPTIONS& options) {
  CTerminalRouter router(!options.input.quiet && CTerminalRouter::OnTerminal());
  CServerSession session(router);
  int loaded = STATUS_GOOD;
  int program = options.noProgram ? 0 : 1;
  CProgramFile capture;
  if (CSetupFile::IsSetupFile(options.input.file)) {
    CSetupFile file;
    loaded = file.Read(options.input);
    if (loaded == STATUS_GOOD) loaded = file.LoadForEditing(session);
    if (file.Contents().fixedSection.programDataSaved == 0) program = 0;
  } else {
    loaded = capture.Load(options.input, session, router);
  }
  router.EraseBar();
  if (loaded != STATUS_GOOD) return loaded;
  const int status = options.instrument.empty()
                         ? SaveSystem(session, options.out, program, options.input.quiet)
                         : SaveInstrument(session, options, program);
  router.EraseBar();
  return Interrupted() ? InterruptStatus() : status;
}

int RunCommand(const MERGE_OPTIONS& options) {
  CTerminalRouter router(false);
  CServerSession session(router);
  CSetupFile file;
  int status = file.Read(options.file);
  if (status == STATUS_GOOD) status = file.LoadForEditing(session);
  if (status != STATUS_GOOD) return status;
  if (!MergeModules(session, options.first, options.last)) {
    return Refuse("modules " + std::to_string(options.first) + "-" + std::to_string(options.last) +
                  " cannot be merged: at most 5 modules that stand side by side");
  }
  ReportNotice("a merged instrument starts afresh: its modules' programs are not carried over");
  return SaveSystem(session, options.out);
}

int RunCommand(const TEST_DATA_OPTIONS& options) {
  CTerminalRouter router(false);
  CServerSession session(router);
  if (Failed(session.Simulation().SetModules(options.modules)) || !session.Server() ||
      Failed(session.Server()->DefaultSystem()) || !MergeModules(session, 0, options.modules - 1)) {
    return Refuse("the instrument cannot be made");
  }
  CInstrument* instrument = nullptr;
  (void)Instruments(session).GetInstrumentAt(0, &instrument);
  if (!instrument) return STATUS_UNUSABLE;
  if (options.half) (void)instrument->SetChannelMode(ChannelMode::Half);
  if (Failed(instrument->CreateTestData(options.kind))) {
    return Refuse("the test program cannot be made on this instrument");
  }
  return SaveSystem(session, options.out);
}

int RunCommand(const SIM_CONFIG_OPTIONS& options) {
  if (IsSameFile(options.out, options.file)) {
    return Refuse(options.out + ": cannot be output and input at once");
  }
  CTerminalRouter router(false);
  CServerSession session(router);
  CSetupFile file;
  const int status = file.Read(options.file);
  if (status != STATUS_GOOD) return status;
  if (Failed(session.Simulation().SetModules(0)) || !session.Server()) {
    return STATUS_UNUSABLE;
  }
  (void)session.Server()->InitializeVisaStubFile(options.out);
  const Status opened = Files(session).IsPGFile(options.file);
  if (Failed(opened)) return Refuse(options.file + ": " + StatusText(opened));
  (void)Files(session).GenerateVisaStub();
  // It drops the status of the write; writing the same once more tells it.
  CVisaStubGen* generator = nullptr;
  (void)session.Server()->GetVisaStubGenerator(&generator);
  if (!generator || Failed(generator->WriteFile())) {
    return Refuse(options.out + ": cannot be written");
  }
  return SavedStatus(S_OK, options.out);
}

}  // namespace quillpg::tool
