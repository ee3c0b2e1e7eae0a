// Settings that only a variable probe has.

#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "hardware/module_wire.h"
#include "hardware/setting_rule.h"

#include <cstddef>
#include <utility>

namespace quillpg {

// One of the two levels of a variable channel.
struct CModule::LEVEL {
  float VARIABLE_CHANNELS::*field;
  Status (CSorrelModule::*send)(char, int, float);
  Status (CSorrelModule::*receive)(char, int, float&);

  static const LEVEL kHigh;
  static const LEVEL kLow;
};

const CModule::LEVEL CModule::LEVEL::kHigh = {
    &VARIABLE_CHANNELS::highLevel, &CSorrelModule::SetHighLevel, &CSorrelModule::GetHighLevel};
const CModule::LEVEL CModule::LEVEL::kLow = {
    &VARIABLE_CHANNELS::lowLevel, &CSorrelModule::SetLowLevel, &CSorrelModule::GetLowLevel};

namespace {

constexpr int kThresholds = 2;

// Channels 0 and 3 have no inhibit mask, data format, delay range and delay.
bool HasFormat(VariableChannel channel) {
  return channel == VariableChannel::Channel1 || channel == VariableChannel::Channel2;
}

}  // namespace

const VARIABLE_PROBE_SETUP* CModule::VariableAt(int pod) const {
  const PROBE_SETUP* probe = ProbeAt(pod);
  return probe && probe->podType == PodType::Variable ? &probe->variable : nullptr;
}

VARIABLE_PROBE_SETUP* CModule::VariableAt(int pod) {
  return const_cast<VARIABLE_PROBE_SETUP*>(std::as_const(*this).VariableAt(pod));
}

const VARIABLE_CHANNELS* CModule::ChannelAt(int pod, VariableChannel channel) const {
  const VARIABLE_PROBE_SETUP* variable = VariableAt(pod);
  const int number = static_cast<int>(channel);
  if (!variable || number < 0 || number >= NUM_VARIABLE_CHANNELS) return nullptr;
  return &variable->channels[static_cast<std::size_t>(number)];
}

VARIABLE_CHANNELS* CModule::ChannelAt(int pod, VariableChannel channel) {
  return const_cast<VARIABLE_CHANNELS*>(std::as_const(*this).ChannelAt(pod, channel));
}

Status CModule::VariableProbe(int pod) const { return VariableAt(pod) ? S_OK : E_FAIL; }

// --- the pod ---

template <typename Wire, typename Stored, typename Send, typename Receive>
Status CModule::SetOfVariablePod(int pod, Stored VARIABLE_PROBE_SETUP::*field, Stored value,
                                 Send send, Receive receive) {
  VARIABLE_PROBE_SETUP* variable = VariableAt(pod);
  if (!m_sorrelModule || !variable) return E_FAIL;
  return ToStatus(ApplySetting(*m_sorrelModule, SettingRule::Exact, static_cast<Wire>(value), value,
                               variable->*field, send, receive, PodLetter(pod)));
}

template <typename Stored>
Status CModule::GetOfVariablePod(int pod, Stored VARIABLE_PROBE_SETUP::*field,
                                 Stored& value) const {
  const VARIABLE_PROBE_SETUP* variable = VariableAt(pod);
  if (!variable) return E_FAIL;
  value = variable->*field;
  return S_OK;
}

Status CModule::SetInputThreshold(int pod, int index, float volts) {
  VARIABLE_PROBE_SETUP* variable = VariableAt(pod);
  if (!m_sorrelModule || !variable || index < 0 || index >= kThresholds) return E_FAIL;
  return ToStatus(ApplySetting(*m_sorrelModule, SettingRule::KeepReadBack, volts, volts,
                               variable->inputThreshold[static_cast<std::size_t>(index)],
                               &CSorrelModule::SetInputThreshold, &CSorrelModule::GetInputThreshold,
                               PodLetter(pod), index));
}

Status CModule::GetInputThreshold(int pod, int index, float& volts) const {
  const VARIABLE_PROBE_SETUP* variable = VariableAt(pod);
  if (!variable) return E_FAIL;
  if (index < 0 || index >= kThresholds) return S_OK;  // meant so: untouched, yet no failure
  volts = variable->inputThreshold[static_cast<std::size_t>(index)];
  return S_OK;
}

Status CModule::SetOutputPolarity(int pod, Polarity polarity) {
  return SetOfVariablePod<Polarity>(pod, &VARIABLE_PROBE_SETUP::outputPolarity, polarity,
                                    &CSorrelModule::SetOutputPolarity,
                                    &CSorrelModule::GetOutputPolarity);
}

Status CModule::GetOutputPolarity(int pod, Polarity& polarity) const {
  return GetOfVariablePod(pod, &VARIABLE_PROBE_SETUP::outputPolarity, polarity);
}

Status CModule::SetCH6OutputMode(int pod, CH6OutputMode mode) {
  return SetOfVariablePod<int>(pod, &VARIABLE_PROBE_SETUP::ch6OutputMode, mode,
                               &CSorrelModule::SetCH6OutputMode, &CSorrelModule::GetCH6OutputMode);
}

Status CModule::GetCH6OutputMode(int pod, CH6OutputMode& mode) const {
  return GetOfVariablePod(pod, &VARIABLE_PROBE_SETUP::ch6OutputMode, mode);
}

// --- the channel ---

template <typename Wire, typename Stored, typename Send, typename Receive>
Status CModule::SetOfChannel(int pod, VariableChannel channel, SettingRule rule,
                             Stored VARIABLE_CHANNELS::*field, Stored value, Send send,
                             Receive receive) {
  VARIABLE_CHANNELS* held = ChannelAt(pod, channel);
  if (!m_sorrelModule || !held) return E_FAIL;
  return ToStatus(ApplySetting(*m_sorrelModule, rule, static_cast<Wire>(value), value, held->*field,
                               send, receive, PodLetter(pod), static_cast<int>(channel)));
}

template <typename Stored>
Status CModule::GetOfChannel(int pod, VariableChannel channel, Stored VARIABLE_CHANNELS::*field,
                             Stored& value) const {
  const VARIABLE_CHANNELS* held = ChannelAt(pod, channel);
  if (!held) return E_FAIL;
  value = held->*field;
  return S_OK;
}

Status CModule::SetLevel(int pod, VariableChannel channel, float volts, const LEVEL& level,
                         const LEVEL& other) {
  VARIABLE_CHANNELS* held = ChannelAt(pod, channel);
  if (!m_sorrelModule || !held) return E_FAIL;
  const char letter = PodLetter(pod);
  const int number = static_cast<int>(channel);
  const SettingOutcome outcome =
      ApplySetting(*m_sorrelModule, SettingRule::KeepReadBack, volts, volts, held->*level.field,
                   level.send, level.receive, letter, number);
  if (outcome == SettingOutcome::Refused || HardwarePresent() != S_OK) return ToStatus(outcome);
  // The hardware may have moved the other level. A read error fails with the first one stored.
  if (!ReadSetting<float>(*m_sorrelModule, held->*other.field, other.receive, letter, number)) {
    return E_FAIL;
  }
  return ToStatus(outcome);
}

Status CModule::SetHighLevel(int pod, VariableChannel channel, float volts) {
  return SetLevel(pod, channel, volts, LEVEL::kHigh, LEVEL::kLow);
}

Status CModule::GetHighLevel(int pod, VariableChannel channel, float& volts) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::highLevel, volts);
}

Status CModule::SetLowLevel(int pod, VariableChannel channel, float volts) {
  return SetLevel(pod, channel, volts, LEVEL::kLow, LEVEL::kHigh);
}

Status CModule::GetLowLevel(int pod, VariableChannel channel, float& volts) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::lowLevel, volts);
}

Status CModule::SetSlewRate(int pod, VariableChannel channel, float rate) {
  return SetOfChannel<float>(pod, channel, SettingRule::TakeReadBack, &VARIABLE_CHANNELS::slewRate,
                             rate, &CSorrelModule::SetSlewRate, &CSorrelModule::GetSlewRate);
}

Status CModule::GetSlewRate(int pod, VariableChannel channel, float& rate) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::slewRate, rate);
}

Status CModule::SetInhibitMask(int pod, VariableChannel channel, InhibitMask mask) {
  if (!HasFormat(channel)) return E_FAIL;
  return SetOfChannel<int>(pod, channel, SettingRule::Exact, &VARIABLE_CHANNELS::inhibitMask, mask,
                           &CSorrelModule::SetInhibitMask, &CSorrelModule::GetInhibitMask);
}

Status CModule::GetInhibitMask(int pod, VariableChannel channel, InhibitMask& mask) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::inhibitMask, mask);
}

Status CModule::SetDataFormat(int pod, VariableChannel channel, DataFormat format) {
  if (!HasFormat(channel)) return E_FAIL;
  return SetOfChannel<int>(pod, channel, SettingRule::Exact, &VARIABLE_CHANNELS::dataFormat, format,
                           &CSorrelModule::SetDataFormat, &CSorrelModule::GetDataFormat);
}

Status CModule::GetDataFormat(int pod, VariableChannel channel, DataFormat& format) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::dataFormat, format);
}

Status CModule::SetDelayRange(int pod, VariableChannel channel, DelayRange range) {
  if (!HasFormat(channel)) return E_FAIL;
  return SetOfChannel<int>(pod, channel, SettingRule::Exact, &VARIABLE_CHANNELS::delayRange, range,
                           &CSorrelModule::SetDelayRange, &CSorrelModule::GetDelayRange);
}

Status CModule::GetDelayRange(int pod, VariableChannel channel, DelayRange& range) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::delayRange, range);
}

Status CModule::SetDelay(int pod, VariableChannel channel, double nanoseconds) {
  VARIABLE_CHANNELS* held = HasFormat(channel) ? ChannelAt(pod, channel) : nullptr;
  if (!m_sorrelModule || !held) return E_FAIL;
  return ToStatus(ApplySetting<AsNanoseconds>(
      *m_sorrelModule, SettingRule::TakeReadBack, AsNanoseconds::ToWire<double>(nanoseconds),
      nanoseconds, held->delay, &CSorrelModule::SetDelay, &CSorrelModule::GetDelay, PodLetter(pod),
      static_cast<int>(channel)));
}

Status CModule::GetDelay(int pod, VariableChannel channel, double& nanoseconds) const {
  return GetOfChannel(pod, channel, &VARIABLE_CHANNELS::delay, nanoseconds);
}

}  // namespace quillpg
