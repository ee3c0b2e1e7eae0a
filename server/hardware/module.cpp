#include "hardware/module.h"

#include "app/setup_stream.h"
#include "base/guard.h"
#include "base/setup_file_format.h"
#include "hardware/hardware_library.h"
#include "hardware/module_wire.h"
#include "hardware/setting_rule.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace quillpg {

namespace {

// Single precision on purpose: the hardware counts its steps so (0.325 ns gives 12, not 13).
constexpr float kDeskewStep = 0.025F;             // nanoseconds
constexpr float kMaxDeskewSteps = 2147483520.0F;  // largest float within 32 bits

constexpr double kOutputLevelResolution = 0.1;  // volts

}  // namespace

CModule::CModule(const CModule& other) : m_sorrelModule(other.m_sorrelModule) {}

CModule& CModule::operator=(const CModule& other) {
  if (this != &other) m_sorrelModule = other.m_sorrelModule;  // and nothing else: meant so
  return *this;
}

Status CModule::HardwarePresent() { return AskHardwarePresent(); }

// --- the module ---

Status CModule::ResetModule() { return m_sorrelModule ? m_sorrelModule->ResetModule() : E_FAIL; }

Status CModule::SetSorrelModule(CSorrelModule* module) {
  m_sorrelModule = module;
  return S_OK;
}

Status CModule::GetSorrelModule(CSorrelModule** module) const {
  if (!module) return E_FAIL;
  *module = m_sorrelModule;
  return S_OK;
}

Status CModule::SetMaxChannels(std::int32_t channels) {
  m_maxChannels = channels;
  return S_OK;
}

Status CModule::GetMaxChannels(std::int32_t& channels) const {
  channels = m_maxChannels;
  return S_OK;
}

Status CModule::GetMemoryDepth(long& vectors) const {
  if (m_sorrelModule) return m_sorrelModule->GetMemoryDepth(vectors);
  vectors = DEFAULT_MEMORY_DEPTH;
  return S_OK;
}

Status CModule::SetClockDeskew(float nanoseconds) {
  const float steps = nanoseconds / kDeskewStep;
  // The comparison fails for a value that is no number, too.
  if (!m_sorrelModule || !(std::abs(steps) <= kMaxDeskewSteps)) return E_FAIL;
  return ToStatus(ApplySetting(*m_sorrelModule, SettingRule::Exact, static_cast<int>(steps),
                               nanoseconds, m_clockDeskew, &CSorrelModule::SetClockDeskew,
                               &CSorrelModule::GetClockDeskew));
}

Status CModule::GetClockDeskew(float& nanoseconds) const {
  nanoseconds = m_clockDeskew;
  return S_OK;
}

// --- probes ---

const PROBE_SETUP* CModule::ProbeAt(int pod) const {
  return pod >= 0 && pod < NUM_PODS ? &m_probes[static_cast<std::size_t>(pod)] : nullptr;
}

PROBE_SETUP* CModule::ProbeAt(int pod) {
  return const_cast<PROBE_SETUP*>(std::as_const(*this).ProbeAt(pod));
}

Status CModule::GetPodType(int pod, PodType& type) const {
  const PROBE_SETUP* probe = ProbeAt(pod);
  type = probe ? probe->podType : PodType::None;
  return probe ? S_OK : E_FAIL;
}

Status CModule::ProbeType(int pod, PodType& type) const { return GetPodType(pod, type); }

Status CModule::ValidProbe(int pod) const { return ProbeAt(pod) ? S_OK : E_FAIL; }

Status CModule::GetVariableProbeCount(int& count) const {
  count = 0;
  for (const PROBE_SETUP& probe : m_probes) count += probe.podType == PodType::Variable ? 1 : 0;
  return S_OK;
}

// --- channel names ---

Status CModule::SetChannelName(int pod, int index, const std::string& name) {
  PROBE_SETUP* probe = ProbeAt(pod);
  if (!probe || index < 0 || index >= POD_NAMES) return E_FAIL;
  return GuardAllocation([&] {
    probe->channelNames[static_cast<std::size_t>(index)] = name;
    return S_OK;
  });
}

Status CModule::GetChannelName(int pod, int index, std::string& name) const {
  const PROBE_SETUP* probe = ProbeAt(pod);
  if (!probe || index < 0 || index >= POD_NAMES) return E_FAIL;
  return GuardAllocation([&] {
    name = probe->channelNames[static_cast<std::size_t>(index)];
    return S_OK;
  });
}

Status CModule::InitializeChannelNames() {
  for (PROBE_SETUP& probe : m_probes) probe.channelNames.fill({});
  return S_OK;
}

// --- settings of a pod ---

template <typename Wire, typename Stored, typename Send, typename Receive>
Status CModule::SetOfPod(int pod, SettingRule rule, Stored PROBE_SETUP::*field, Stored value,
                         Send send, Receive receive) {
  PROBE_SETUP* probe = ProbeAt(pod);
  if (!m_sorrelModule || !probe || probe->podType == PodType::None) return E_FAIL;
  return ToStatus(ApplySetting(*m_sorrelModule, rule, static_cast<Wire>(value), value,
                               probe->*field, send, receive, PodLetter(pod)));
}

template <typename Stored>
Status CModule::GetOfPod(int pod, Stored PROBE_SETUP::*field, Stored& value) const {
  const PROBE_SETUP* probe = ProbeAt(pod);
  if (!probe) return E_FAIL;
  value = probe->*field;
  return S_OK;
}

Status CModule::SetOutputLevel(int pod, double volts) {
  if (!(std::abs(volts) <= std::numeric_limits<float>::max())) return E_FAIL;  // travels as float
  return SetOfPod<float>(pod, SettingRule::KeepReadBack, &PROBE_SETUP::outputLevel, volts,
                         &CSorrelModule::SetOutputLevel, &CSorrelModule::GetOutputLevel);
}

Status CModule::GetOutputLevel(int pod, double& volts) const {
  return GetOfPod(pod, &PROBE_SETUP::outputLevel, volts);
}

Status CModule::GetMinOutputLevel(int pod, double& volts) const {
  const PROBE_SETUP* probe = ProbeAt(pod);
  double highest = 0.0;
  return probe && GetOutputLevelRange(probe->podType, volts, highest) ? S_OK : E_FAIL;
}

Status CModule::GetMaxOutputLevel(int pod, double& volts) const {
  const PROBE_SETUP* probe = ProbeAt(pod);
  double lowest = 0.0;
  return probe && GetOutputLevelRange(probe->podType, lowest, volts) ? S_OK : E_FAIL;
}

Status CModule::GetOutputLevelResolution(int pod, double& volts) const {
  double unused = 0.0;
  if (GetMinOutputLevel(pod, unused) != S_OK) return E_FAIL;
  volts = kOutputLevelResolution;
  return S_OK;
}

Status CModule::SetStrobeInhibit(int pod, int inhibit) {
  return SetOfPod<int>(pod, SettingRule::Exact, &PROBE_SETUP::strobeInhibit, inhibit,
                       &CSorrelModule::SetStrobeInhibit, &CSorrelModule::GetStrobeInhibit);
}

Status CModule::GetStrobeInhibit(int pod, int& inhibit) const {
  return GetOfPod(pod, &PROBE_SETUP::strobeInhibit, inhibit);
}

Status CModule::SetInhibitByPodD(int pod, int inhibit) {
  return SetOfPod<int>(pod, SettingRule::Exact, &PROBE_SETUP::inhibitByPodD, inhibit,
                       &CSorrelModule::SetInhibitByData, &CSorrelModule::GetInhibitByData);
}

Status CModule::GetInhibitByPodD(int pod, int& inhibit) const {
  return GetOfPod(pod, &PROBE_SETUP::inhibitByPodD, inhibit);
}

Status CModule::SetInhibitByEvent(int pod, int inhibit) {
  return SetOfPod<int>(pod, SettingRule::Exact, &PROBE_SETUP::inhibitByEvent, inhibit,
                       &CSorrelModule::SetInhibitByEvent, &CSorrelModule::GetInhibitByEvent);
}

Status CModule::GetInhibitByEvent(int pod, int& inhibit) const {
  return GetOfPod(pod, &PROBE_SETUP::inhibitByEvent, inhibit);
}

Status CModule::SetStrobeTiming(int pod, StrobeDelay timing) {
  return SetOfPod<int>(pod, SettingRule::Exact, &PROBE_SETUP::strobeTiming, timing,
                       &CSorrelModule::SetStrobeFormat, &CSorrelModule::GetStrobeFormat);
}

Status CModule::GetStrobeTiming(int pod, StrobeDelay& timing) const {
  return GetOfPod(pod, &PROBE_SETUP::strobeTiming, timing);
}

Status CModule::SetStrobeEnable(int pod, int enable) {
  return SetOfPod<int>(pod, SettingRule::Exact, &PROBE_SETUP::strobeEnable, enable,
                       &CSorrelModule::SetStrobeEnable, &CSorrelModule::GetStrobeEnable);
}

Status CModule::GetStrobeEnable(int pod, int& enable) const {
  return GetOfPod(pod, &PROBE_SETUP::strobeEnable, enable);
}

// --- setup file ---

std::uint64_t CModule::GetSize() const {
  std::uint64_t size = sizeof m_clockDeskew;
  for (const PROBE_SETUP& probe : m_probes) size += probe.GetSize();
  return size;
}

Status CModule::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CModule::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CModule::Read(CSetupFileReader& reader) {
  // What the hardware refuses is not taken; only the file can make the read fail.
  const auto setDeskew = ReadInto<float>([this](float nanoseconds) {
    (void)SetClockDeskew(nanoseconds);
    return true;
  });
  LayOutModule(reader, setDeskew, [&](int pod) {
    PROBE_SETUP& probe = m_probes[static_cast<std::size_t>(pod)];
    (void)probe.Read(reader);
    if (reader.Good() && m_sorrelModule) (void)UpdateProbeValues(pod, probe.podType);
  });
  return reader.GetStatus();
}

Status CModule::Write(CByteWriter& writer) const {
  LayOutModule(writer, m_clockDeskew,
               [&](int pod) { (void)m_probes[static_cast<std::size_t>(pod)].Write(writer); });
  return writer.GetStatus();
}

}  // namespace quillpg
