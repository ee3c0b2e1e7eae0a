#include "hardware/server2hal.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "base/text.h"
#include "hardware/bit_arrange.h"
#include "hardware/hardware_library.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"

#include <array>

namespace quillpg {

namespace {

// The server, which a download bridge must not ask for before one of its operations runs: it is
// made by the server's constructor.
CAppServer* Server() {
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);  // the pointer tells
  return server;
}

CInstrumentManager* Instruments() {
  CInstrumentManager* instruments = nullptr;
  if (CAppServer* server = Server()) (void)server->GetInstrumentManager(&instruments);
  return instruments;
}

// Records hold positions of blocks and subsequences and lengths of lists: whoever refers to what
// changed must be sent again.
void PassModifiedOn(const CProgramView& program) {
  if (program.Blocks()->IsModified()) (void)program.SubSequences()->SetModified(1);
  if (program.Blocks()->IsModified() || program.SubSequences()->IsModified() ||
      program.Events()->IsModified())
    (void)program.Sequence()->SetModified(1);
}

}  // namespace

CServer2HAL::CServer2HAL() : m_words(std::size_t{MAX_TRANSFER_UNITS} * WORDS_PER_UNIT) {}

Status CServer2HAL::SendAll() {
  CInstrumentManager* instruments = Instruments();
  if (!instruments) return E_FAIL;
  const CBusyMark busy(*instruments);
  if (!busy.Taken()) return E_FAIL;
  const CWaitCursor cursor;
  (void)ResetAbort();
  const Status status = GuardAllocation([&] { return SendAllInstruments(*instruments); });
  m_work.Close();
  return status;
}

Status CServer2HAL::SendAllInstruments(const CInstrumentManager& instruments) {
  int count = 0;
  for (int i = 0; instruments.GetNoOfInstruments(count) == S_OK && i < count; ++i) {
    CInstrument* instrument = nullptr;
    (void)instruments.GetInstrumentAt(i, &instrument);  // the pointer tells
    if (!instrument) continue;
    PassModifiedOn(CProgramView(*instrument));
    if (!IsEnabled(*instrument)) continue;
    m_work.Open(instruments, *instrument, i);
    if (SendInstrument() == PG_E_ABORTED) return PG_E_ABORTED;
    i = m_work.Position();
  }
  return S_OK;
}

Status CServer2HAL::SendInstrument() {
  struct STEP {
    int message;
    Step send;
  };
  constexpr std::array<STEP, 4> kSteps = {
      {{MSG_LOADING_EVENTS, &CServer2HAL::SendEvents},
       {MSG_LOADING_SUBSEQUENCES, &CServer2HAL::SendSubSequences},
       {MSG_LOADING_SEQUENCE, &CServer2HAL::SendSequence},
       {MSG_LOADING_PATTERN_DATA, &CServer2HAL::SendBlocks}}};
  const std::string name = InstrumentName(*m_work.Instrument());
  const auto tell = [&name](int message) {
    if (CAppServer* server = Server())
      server->SetStatusMessage(name + ":" + CMessageService::Text(message));
  };
  SetProgressTitle(FormatText("Sending %s.", {name}));
  for (const STEP& step : kSteps) {
    tell(step.message);
    if (!m_work.StillThere()) return ReportMissing(E_FAIL);
    const Status status = (this->*step.send)();
    if (status == PG_E_ABORTED) return status;
    if (!m_work.Instrument()) return E_FAIL;  // deleted meanwhile
  }
  tell(MSG_LOADING_COMPLETE);
  return m_work.StillThere() ? S_OK : E_FAIL;
}

// --- single steps --------------------------------------------------------------------------------

Status CServer2HAL::RunStep(CInstrument* instrument, Step step) {
  CInstrumentManager* instruments = Instruments();
  int position = -1;
  if (!instruments || instruments->GetInstrumentPos(instrument, position) != S_OK) return E_FAIL;
  const CBusyMark busy(*instruments);
  if (!busy.Taken()) return E_FAIL;
  m_work.Open(*instruments, *instrument, position);
  const Status status = GuardAllocation([&] { return (this->*step)(); });
  m_work.Close();
  return status;
}

Status CServer2HAL::SendEventData(CInstrument* instrument) {
  return RunStep(instrument, &CServer2HAL::SendEvents);
}

Status CServer2HAL::SendSubSequenceData(CInstrument* instrument) {
  return RunStep(instrument, &CServer2HAL::SendSubSequences);
}

Status CServer2HAL::SendSequenceData(CInstrument* instrument) {
  return RunStep(instrument, &CServer2HAL::SendSequence);
}

Status CServer2HAL::SendBlockData(CInstrument* instrument) {
  return RunStep(instrument, &CServer2HAL::SendBlocks);
}

// --- what all steps use --------------------------------------------------------------------------

int CServer2HAL::ModuleCount() const {
  int count = 0;
  if (m_work.Instrument()) (void)m_work.Instrument()->GetNoOfModules(count);
  return count;
}

// Null without hardware: the module takes part in the walk but nothing is sent to it.
CSorrelModule* CServer2HAL::HardwareAt(int module) const {
  CSorrelModule* hardware = nullptr;
  if (m_work.Instrument()) (void)m_work.Instrument()->GetSorrelModuleAt(module, &hardware);
  return hardware;
}

Status CServer2HAL::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

}  // namespace quillpg
