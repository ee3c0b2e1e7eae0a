#include "base/text.h"
#include "hardware/hardware_library.h"
#include "instrument/instrument.h"
#include "quillpg/event_handler.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Run control. What the hardware answers to it is not looked at: the sequencer's own status tells
// what came of it.

namespace quillpg {

namespace {

ModuleState ParseSequencerStatus(std::string_view text) {
  if (EqualNoCase(text, "INIT")) return ModuleState::Initialising;
  if (EqualNoCase(text, "WAIT")) return ModuleState::Waiting;
  if (EqualNoCase(text, "RUNN")) return ModuleState::Running;
  return ModuleState::Idle;  // "IDL" and anything unknown
}

}  // namespace

Status CInstrument::Run() {
  if (m_enabled == 0) return S_OK;
  if (m_modules.empty()) return E_FAIL;
  if (!RefreshState() || m_state != ModuleState::Idle) return S_OK;
  const auto hardware = Hardware();
  if (!hardware[0]) return E_FAIL;
  for (CSorrelModule* module : hardware) {
    if (!module) continue;
    (void)module->SetWeldMode(0);
    (void)module->EnableOutput(1);
    (void)module->Initiate();
  }
  for (std::size_t i = 1; i < hardware.size(); ++i) {
    if (hardware[i]) (void)hardware[i]->SetWeldMode(static_cast<int>(i));
  }
  (void)hardware[0]->Start();
  StoreState(ModuleState::Running);
  return S_OK;
}

Status CInstrument::Stop() {
  for (CSorrelModule* module : Hardware()) {
    if (module) (void)module->Abort();
  }
  StoreState(ModuleState::Idle);
  if (m_settings.hiZOnStop != 0) EnableOutputs(false);
  return S_OK;
}

Status CInstrument::Advance() {
  CSorrelModule* master = HardwareAt(0);
  return master ? master->Advance() : E_FAIL;
}

Status CInstrument::Jump() {
  CSorrelModule* master = HardwareAt(0);
  return master ? master->Jump() : E_FAIL;
}

Status CInstrument::Step(int steps) {
  CSorrelModule* master = HardwareAt(0);
  return master ? master->Step(steps) : E_FAIL;
}

void CInstrument::TakeInIdle() const {
  for (CSorrelModule* module : Hardware()) {
    if (!module) continue;
    (void)module->SetWeldMode(0);
    (void)module->Abort();
  }
  if (m_settings.hiZOnStop != 0) EnableOutputs(false);
}

Status CInstrument::UpdateInstrumentState() {
  if (m_modules.empty()) return E_FAIL;
  (void)RefreshState();  // nothing of the instrument is touched after it
  return S_OK;
}

bool CInstrument::RefreshState() {
  ModuleState state = ModuleState::Idle;
  if (m_state != ModuleState::Idle) {
    std::string text;
    if (CSorrelModule* master = HardwareAt(0)) (void)master->GetSequencerStatus(text);
    state = ParseSequencerStatus(text);
  }
  const std::uint64_t changes = m_stateChanges;
  const int idle = state == ModuleState::Idle ? 1 : 0;
  if (Failed(Tell([idle](CEventHandler& handler) { handler.OnInstrumentIdle(idle); })))
    return false;
  // What the handler did meanwhile stands: it may have run or stopped the instrument.
  if (m_stateChanges != changes || m_state == ModuleState::Idle) return true;
  if (state == ModuleState::Idle) TakeInIdle();
  StoreState(state);
  return true;
}

void CInstrument::StoreState(ModuleState state) {
  m_state = state;
  ++m_stateChanges;
}

Status CInstrument::GetInstrumentState(ModuleState& state) const {
  state = m_state;
  return S_OK;
}

}  // namespace quillpg
