// Whole modules and pods: reading all settings from the hardware, sending all settings to it.

#include "base/guard.h"
#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "hardware/module_wire.h"
#include "hardware/setting_rule.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace quillpg {

namespace {

constexpr double kSimulatedLvCmosLevel = 3.3;  // volts

PodType ParseToken(std::string_view token) {
  std::string keyword(token);
  std::erase(keyword, '"');  // nothing else: blanks count
  return ParsePodType(keyword);
}

}  // namespace

// --- from the hardware ---

Status CModule::Initialize() {
  (void)ResetModule();  // a module without hardware gets its defaults all the same
  for (PROBE_SETUP& probe : m_probes) probe.Initialize();
  if (!m_sorrelModule) return S_OK;
  int podCount = 0;
  (void)ReadPodTypes(podCount);
  for (int pod = 0; pod < podCount; ++pod) ReadPod(pod);
  (void)SetClockDeskew(0.0F);
  return S_OK;
}

Status CModule::UpdateProbes() {
  int podCount = 0;
  return ReadPodTypes(podCount);
}

// Stores the pod types that the hardware names, one a pod; pods that it does not name keep theirs.
Status CModule::ReadPodTypes(int& podCount) {
  podCount = 0;
  if (!m_sorrelModule) return E_FAIL;
  return GuardAllocation([&] {
    std::string keywords;
    (void)m_sorrelModule->GetPodTypes(keywords);
    if (ReportsError(*m_sorrelModule)) return E_FAIL;
    std::string_view rest = keywords;
    while (!rest.empty() && podCount < NUM_PODS) {
      const std::size_t comma = rest.find(',');
      m_probes[static_cast<std::size_t>(podCount++)].podType = ParseToken(rest.substr(0, comma));
      rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return S_OK;
  });
}

// The strobe enable is not read: meant so.
void CModule::ReadPod(int pod) {
  CSorrelModule& module = *m_sorrelModule;
  PROBE_SETUP& probe = m_probes[static_cast<std::size_t>(pod)];
  const char letter = PodLetter(pod);
  ReadSetting<float>(module, probe.outputLevel, &CSorrelModule::GetOutputLevel, letter);
  ReadSetting<int>(module, probe.strobeInhibit, &CSorrelModule::GetStrobeInhibit, letter);
  ReadSetting<int>(module, probe.inhibitByPodD, &CSorrelModule::GetInhibitByData, letter);
  ReadSetting<int>(module, probe.inhibitByEvent, &CSorrelModule::GetInhibitByEvent, letter);
  ReadSetting<int>(module, probe.strobeTiming, &CSorrelModule::GetStrobeFormat, letter);
  if (probe.podType == PodType::Variable) ReadVariablePod(pod);
  if (probe.podType == PodType::LvCmos && module.VisaStub() == 1) {
    probe.outputLevel = kSimulatedLvCmosLevel;
  }
}

// The hardware reports an error for what channels 0 and 3 do not have: their marks survive.
void CModule::ReadVariablePod(int pod) {
  CSorrelModule& module = *m_sorrelModule;
  VARIABLE_PROBE_SETUP& variable = m_probes[static_cast<std::size_t>(pod)].variable;
  const char letter = PodLetter(pod);
  int index = 0;
  for (float& threshold : variable.inputThreshold) {
    ReadSetting<float>(module, threshold, &CSorrelModule::GetInputThreshold, letter, index++);
  }
  ReadSetting<Polarity>(module, variable.outputPolarity, &CSorrelModule::GetOutputPolarity, letter);
  ReadSetting<int>(module, variable.ch6OutputMode, &CSorrelModule::GetCH6OutputMode, letter);
  int number = 0;
  for (VARIABLE_CHANNELS& channel : variable.channels) {
    ReadSetting<float>(module, channel.highLevel, &CSorrelModule::GetHighLevel, letter, number);
    ReadSetting<float>(module, channel.lowLevel, &CSorrelModule::GetLowLevel, letter, number);
    ReadSetting<float>(module, channel.slewRate, &CSorrelModule::GetSlewRate, letter, number);
    ReadSetting<int>(module, channel.inhibitMask, &CSorrelModule::GetInhibitMask, letter, number);
    ReadSetting<int>(module, channel.dataFormat, &CSorrelModule::GetDataFormat, letter, number);
    ReadSetting<int>(module, channel.delayRange, &CSorrelModule::GetDelayRange, letter, number);
    ReadSetting<double, AsNanoseconds>(module, channel.delay, &CSorrelModule::GetDelay, letter,
                                       number);
    ++number;
  }
}

// --- to the hardware ---

Status CModule::UpdateModuleParams() {
  (void)SetClockDeskew(m_clockDeskew);
  for (int pod = 0; pod < NUM_PODS; ++pod) {
    (void)UpdateProbeValues(pod, m_probes[static_cast<std::size_t>(pod)].podType);
  }
  return S_OK;
}

// `type` alone decides what is sent; the setters inside look at the stored type. Deliberately
// uneven: LVDS has inhibits but no level, the other fixed types strobe timing and enable only.
Status CModule::UpdateProbeValues(int pod, PodType type) {
  if (!ProbeAt(pod)) return E_FAIL;
  const PROBE_SETUP& held = m_probes[static_cast<std::size_t>(pod)];
  if (type == PodType::None) return S_OK;
  if (type == PodType::Variable) {
    SendVariablePod(pod);
    return S_OK;
  }
  const bool hasLevel = type == PodType::TtlCmos || type == PodType::LvCmos;
  if (hasLevel) (void)SetOutputLevel(pod, held.outputLevel);
  if (hasLevel || type == PodType::Lvds) {
    (void)SetStrobeInhibit(pod, held.strobeInhibit);
    (void)SetInhibitByPodD(pod, held.inhibitByPodD);
    (void)SetInhibitByEvent(pod, held.inhibitByEvent);
  }
  (void)SetStrobeTiming(pod, held.strobeTiming);
  (void)SetStrobeEnable(pod, held.strobeEnable);
  return S_OK;
}

// The strobe inhibit and the CH6 output mode are not sent again: meant so.
void CModule::SendVariablePod(int pod) {
  const PROBE_SETUP& probe = m_probes[static_cast<std::size_t>(pod)];
  const VARIABLE_PROBE_SETUP& variable = probe.variable;
  (void)SetInhibitByPodD(pod, probe.inhibitByPodD);
  (void)SetInhibitByEvent(pod, probe.inhibitByEvent);
  (void)SetInputThreshold(pod, 0, variable.inputThreshold[0]);
  (void)SetInputThreshold(pod, 1, variable.inputThreshold[1]);
  (void)SetOutputPolarity(pod, variable.outputPolarity);
  for (int number = 0; number < NUM_VARIABLE_CHANNELS; ++number) {
    const auto channel = static_cast<VariableChannel>(number);
    // A copy: setting the high level stores the low level that the hardware still has.
    const VARIABLE_CHANNELS held = variable.channels[static_cast<std::size_t>(number)];
    (void)SetHighLevel(pod, channel, held.highLevel);
    (void)SetLowLevel(pod, channel, held.lowLevel);
    (void)SetSlewRate(pod, channel, held.slewRate);
    (void)SetInhibitMask(pod, channel, held.inhibitMask);
    (void)SetDataFormat(pod, channel, held.dataFormat);
    (void)SetDelayRange(pod, channel, held.delayRange);
    (void)SetDelay(pod, channel, held.delay);
  }
}

}  // namespace quillpg
