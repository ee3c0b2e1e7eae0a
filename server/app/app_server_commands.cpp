// The root's commands: run control, compile, download and abort.

#include "app/instrument_walk.h"
#include "compiler/compiler.h"
#include "exchange/export_manager.h"
#include "exchange/import_manager.h"
#include "hardware/hardware_library.h"
#include "hardware/server2hal.h"
#include "instrument/instrument.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"

namespace quillpg {

namespace {

// Null for a bad position.
CInstrument* InstrumentAt(const CInstrumentManager* instruments, int position) {
  CInstrument* instrument = nullptr;
  if (instruments) (void)instruments->GetInstrumentAt(position, &instrument);
  return instrument;
}

}  // namespace

// Run control answers S_OK whatever the instruments report: each one's state tells what became of
// it.

Status CAppServer::Run() {
  const CWaitCursor cursor;
  ForEachInstrument(m_instrumentManager.get(),
                    [](CInstrument& instrument) { (void)instrument.Run(); });
  return S_OK;
}

Status CAppServer::Stop() {
  const CWaitCursor cursor;
  ForEachInstrument(m_instrumentManager.get(),
                    [](CInstrument& instrument) { (void)instrument.Stop(); });
  return S_OK;
}

Status CAppServer::Advance(int position) {
  CInstrument* instrument = InstrumentAt(m_instrumentManager.get(), position);
  if (instrument) (void)instrument->Advance();
  return S_OK;
}

Status CAppServer::Jump(int position) {
  CInstrument* instrument = InstrumentAt(m_instrumentManager.get(), position);
  if (instrument) (void)instrument->Jump();
  return S_OK;
}

Status CAppServer::Step(int position, int steps) {
  CInstrument* instrument = InstrumentAt(m_instrumentManager.get(), position);
  if (instrument) (void)instrument->Step(steps);
  return S_OK;
}

Status CAppServer::GetSystemState(SystemState& state) {
  bool active = false;
  const CInstrumentManager* instruments = m_instrumentManager.get();
  ForEachInstrument(instruments, [&](CInstrument& instrument) {
    (void)instrument.UpdateInstrumentState();
    if (!instruments->Holds(&instrument)) return;  // deleted by the handler it notified
    ModuleState own = ModuleState::Idle;
    (void)instrument.GetInstrumentState(own);
    active = active || own != ModuleState::Idle;
  });
  state = active ? SystemState::Active : SystemState::Idle;
  return S_OK;
}

Status CAppServer::RunPowerOnDiagnostics(TestResult& result) {
  return m_hardwareManager ? m_hardwareManager->RunPowerOnDiagnostics(result) : E_FAIL;
}

Status CAppServer::WaitForEventTimeOut(void* module) {
  if (module) (void)static_cast<CSorrelModule*>(module)->WaitForEventTimeOut();
  return S_OK;
}

Status CAppServer::Compile() { return m_compiler ? m_compiler->Compile() : E_FAIL; }
Status CAppServer::Download() { return m_server2Hal ? m_server2Hal->SendAll() : E_FAIL; }

Status CAppServer::AbortCompilation() { return m_compiler ? m_compiler->AbortOperation() : E_FAIL; }

Status CAppServer::AbortDownload() {
  return m_server2Hal ? m_server2Hal->AbortOperation() : E_FAIL;
}

Status CAppServer::AbortExport() {
  return m_exportManager ? m_exportManager->AbortOperation() : E_FAIL;
}

Status CAppServer::AbortImport() {
  return m_importManager ? m_importManager->AbortOperation() : E_FAIL;
}

Status CAppServer::ResetAbort() {
  if (m_compiler) (void)m_compiler->ResetAbort();  // none of the four can fail
  if (m_server2Hal) (void)m_server2Hal->ResetAbort();
  if (m_exportManager) (void)m_exportManager->ResetAbort();
  if (m_importManager) (void)m_importManager->ResetAbort();
  return S_OK;
}

}  // namespace quillpg
