#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "base/text.h"
#include "hardware/hardware_library.h"
#include "hardware/setting_rule.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "quillpg/app_server.h"

#include <optional>

namespace quillpg {

namespace {

// Signals 1 and 2 are active high, 3 and 4 active low; the others have no polarity.
std::optional<Polarity> PolarityOf(SignalType type) {
  switch (type) {
    case SignalType::Signal1:
    case SignalType::Signal2:
      return Polarity::Positive;
    case SignalType::Signal3:
    case SignalType::Signal4:
      return Polarity::Negative;
    default:
      return std::nullopt;
  }
}

// Signals that several instruments may drive at a time.
bool IsShareable(SignalType type) {
  return type == SignalType::None || type == SignalType::Signal3 || type == SignalType::Signal4;
}

// Empty for the 10 MHz clock: the message then names no signal, which is meant.
std::string SignalName(SignalType type) {
  switch (type) {
    case SignalType::Signal1:
      return CMessageService::Text(MSG_SIGNAL1);
    case SignalType::Signal2:
      return CMessageService::Text(MSG_SIGNAL2);
    default:
      return {};
  }
}

template <typename Send, typename Receive, typename SendPolarity>
Status SendSignal(CSorrelModule& module, SignalType type, Send send, Receive receive,
                  SendPolarity sendPolarity) {
  SignalType taken = type;
  const auto outcome = ApplySetting(module, SettingRule::Exact, type, type, taken, send, receive);
  const auto polarity = PolarityOf(type);
  if (outcome != SettingOutcome::Accepted || !polarity) return ToStatus(outcome);
  (void)(module.*sendPolarity)(*polarity);
  return ReportsError(module) ? E_FAIL : S_OK;
}

}  // namespace

void CInstrument::ApplySettings(const SETTINGS& settings) {
  // What the hardware refuses stays as it was; the next setting is sent all the same.
  (void)SetChannelMode(settings.channelMode);
  (void)SetHiZOnStop(settings.hiZOnStop);
  (void)SetClockSource(settings.clockSource);
  (void)SetClockPeriod(settings.clockPeriod);
  (void)SetClockThreshold(settings.clockThreshold);
  (void)SetClockPolarity(settings.clockPolarity);
  (void)SetEventFilter(settings.eventFilter);
  (void)SetInhibitEvent(settings.inhibitEvent);
  (void)SetJumpEventMode(settings.jumpEventMode);
  (void)SetAdvEventMode(settings.advEventMode);
  (void)SetRunMode(settings.runMode);
  (void)SetInputSignalSource(settings.inputSignalSource);
  (void)SetOutputSignalDest(settings.outputSignalDest);
}

// --- outputs ---

void CInstrument::EnableOutputs(bool enable) const {
  for (CSorrelModule* module : Hardware()) {
    if (module) (void)module->EnableOutput(enable ? 1 : 0);
  }
}

Status CInstrument::SetHiZOnStop(int flag) {
  if (m_state == ModuleState::Idle) EnableOutputs(flag == 0);
  m_settings.hiZOnStop = flag;
  return S_OK;
}

Status CInstrument::GetHiZOnStop(int& flag) const {
  flag = m_settings.hiZOnStop;
  return S_OK;
}

// --- clock ---

Status CInstrument::SetClockSource(ClockSource source) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, source, m_settings.clockSource,
                                    &CSorrelModule::SetClockSource,
                                    &CSorrelModule::GetClockSource));
}

Status CInstrument::GetClockSource(ClockSource& source) const {
  source = m_settings.clockSource;
  return S_OK;
}

Status CInstrument::SetClockPeriod(double seconds) {
  if (!IsSendable(seconds)) return E_FAIL;
  CSorrelModule* master = HardwareAt(0);
  if (master) (void)master->SetClockState(0);
  const auto outcome =
      ApplySettingToAll(Hardware(), SettingRule::KeepReadBack, seconds, m_settings.clockPeriod,
                        &CSorrelModule::SetClockPeriod, &CSorrelModule::GetClockPeriod);
  // After an error the clock stays off: deliberate.
  if (master && outcome != SettingOutcome::Refused) (void)master->SetClockState(1);
  return ToStatus(outcome);
}

Status CInstrument::GetClockPeriod(double& seconds) const {
  seconds = m_settings.clockPeriod;
  return S_OK;
}

Status CInstrument::SetClockThreshold(float volts) {
  return ToStatus(ApplySettingToAll(
      Hardware(), SettingRule::KeepReadBack, volts, m_settings.clockThreshold,
      &CSorrelModule::SetClockInputThreshold, &CSorrelModule::GetClockInputThreshold));
}

Status CInstrument::GetClockThreshold(float& volts) const {
  volts = m_settings.clockThreshold;
  return S_OK;
}

Status CInstrument::SetClockPolarity(Polarity polarity) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, polarity,
                                    m_settings.clockPolarity, &CSorrelModule::SetClockPolarity,
                                    &CSorrelModule::GetClockPolarity));
}

Status CInstrument::GetClockPolarity(Polarity& polarity) const {
  polarity = m_settings.clockPolarity;
  return S_OK;
}

// --- events and run mode ---

Status CInstrument::SetEventFilter(int filter) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, filter, m_settings.eventFilter,
                                    &CSorrelModule::SetEventFilter,
                                    &CSorrelModule::GetEventFilter));
}

Status CInstrument::GetEventFilter(int& filter) const {
  filter = m_settings.eventFilter;
  return S_OK;
}

Status CInstrument::SetInhibitEvent(int event) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, event, m_settings.inhibitEvent,
                                    &CSorrelModule::SetEventForInhibit,
                                    &CSorrelModule::GetEventForInhibit));
}

Status CInstrument::GetInhibitEvent(int& event) const {
  event = m_settings.inhibitEvent;
  return S_OK;
}

Status CInstrument::SetJumpEventMode(EventMode mode) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, mode, m_settings.jumpEventMode,
                                    &CSorrelModule::SetEventModeForJump,
                                    &CSorrelModule::GetEventModeForJump));
}

Status CInstrument::GetJumpEventMode(EventMode& mode) const {
  mode = m_settings.jumpEventMode;
  return S_OK;
}

Status CInstrument::SetAdvEventMode(EventMode mode) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, mode, m_settings.advEventMode,
                                    &CSorrelModule::SetEventModeForAdvance,
                                    &CSorrelModule::GetEventModeForAdvance));
}

Status CInstrument::GetAdvEventMode(EventMode& mode) const {
  mode = m_settings.advEventMode;
  return S_OK;
}

Status CInstrument::SetRunMode(RunMode mode) {
  return ToStatus(ApplySettingToAll(Hardware(), SettingRule::Exact, mode, m_settings.runMode,
                                    &CSorrelModule::SetRunMode, &CSorrelModule::GetRunMode));
}

Status CInstrument::GetRunMode(RunMode& mode) const {
  mode = m_settings.runMode;
  return S_OK;
}

// --- signals ---

Status CInstrument::SetInputSignalSource(SignalType type) {
  for (CSorrelModule* module : Hardware()) {
    if (!module) continue;
    const Status status =
        SendSignal(*module, type, &CSorrelModule::SetSignalInputSource,
                   &CSorrelModule::GetSignalInputSource, &CSorrelModule::SetSignalInputPolarity);
    if (Failed(status)) return status;
  }
  m_settings.inputSignalSource = type;
  return S_OK;
}

Status CInstrument::GetInputSignalSource(SignalType& type) const {
  type = m_settings.inputSignalSource;
  return S_OK;
}

Status CInstrument::SetOutputSignalDest(SignalType type) {
  const auto hardware = Hardware();
  if (hardware[0]) {
    const Status status = CanSetSignalOut(type);
    if (status != S_OK) return status;
  }
  SignalType driven = type;  // by the master alone
  for (CSorrelModule* module : hardware) {
    const Status status =
        module ? SendSignal(*module, driven, &CSorrelModule::SetSignalOutDest,
                            &CSorrelModule::GetSignalOutDest, &CSorrelModule::SetSignalOutPolarity)
               : S_OK;
    if (Failed(status)) return status;
    driven = SignalType::None;
  }
  m_settings.outputSignalDest = type;
  return S_OK;
}

Status CInstrument::GetOutputSignalDest(SignalType& type) const {
  type = m_settings.outputSignalDest;
  return S_OK;
}

Status CInstrument::CanSetSignalOut(SignalType type) const {
  if (IsShareable(type)) return S_OK;
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);
  CInstrumentManager* instruments = nullptr;
  if (!server || Failed(server->GetInstrumentManager(&instruments)) || !instruments) return S_OK;
  int count = 0;
  (void)instruments->GetNoOfInstruments(count);
  for (int i = 0; i < count; ++i) {
    CInstrument* other = nullptr;
    (void)instruments->GetInstrumentAt(i, &other);
    if (!other || other == this || other->m_settings.outputSignalDest != type) continue;
    return GuardAllocation([&] {
      const std::string text =
          FormatText(CMessageService::Text(MSG_SIGNAL_DRIVEN), {SignalName(type), other->m_name});
      CMessageService::Notice(text);
      return PG_E_SIGNAL_DRIVEN;
    });
  }
  return S_OK;
}

}  // namespace quillpg
