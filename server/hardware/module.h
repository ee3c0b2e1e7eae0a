#pragma once

#include "hardware/probe_setup.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/limits.h"
#include "quillpg/result_codes.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

class CSorrelModule;
enum class SettingRule;

/// One pattern generator module: its four pods with their probes, their settings, and the clock
/// deskew. The only place where module settings are held.
///
/// A setter sends its value to the hardware module, reads it back and only then stores it (see
/// SettingRule); without a hardware module it fails, while getters give what is stored. Pods are 0
/// to 3 (A to D); a pod, channel or index outside its range gives E_FAIL and leaves the output
/// untouched, unless an operation says otherwise. A module needs a probe in the pod for a pod's
/// settings, a variable probe for those of a variable pod.
class QUILLPG_API CModule {
 public:
  CModule() = default;
  virtual ~CModule() = default;

  /// Copies take the hardware module reference and nothing else: meant so, the settings of the
  /// target stay.
  CModule(const CModule& other);
  CModule& operator=(const CModule& other);

  /// S_OK with real hardware, PG_E_NO_HARDWARE without, E_FAIL without a hardware library. Compare
  /// with S_OK only.
  static Status HardwarePresent();

  // --- the module ---

  /// Resets the hardware module and reads every setting from it; without one the defaults remain.
  /// Channel names and deskew are lost. S_OK always.
  Status Initialize();
  /// Resets the hardware module; E_FAIL without one.
  Status ResetModule();
  /// The hardware module stays the library's; null for none.
  Status SetSorrelModule(CSorrelModule* module);
  Status GetSorrelModule(CSorrelModule** module) const;
  Status SetMaxChannels(std::int32_t channels);
  Status GetMaxChannels(std::int32_t& channels) const;
  /// Vectors in FULL mode.
  Status GetMemoryDepth(long& vectors) const;
  /// Nanoseconds, sent in whole steps of 25 ps (cut, not rounded) and stored as given.
  Status SetClockDeskew(float nanoseconds);
  Status GetClockDeskew(float& nanoseconds) const;
  /// Sends the deskew and the settings of all pods again. S_OK whatever was refused.
  Status UpdateModuleParams();

  // --- probes ---

  /// Reads the pod types, and only them, from the hardware; E_FAIL without a hardware module.
  Status UpdateProbes();
  /// The stored pod type; None and E_FAIL for a bad pod. Both names are in use.
  Status GetPodType(int pod, PodType& type) const;
  Status ProbeType(int pod, PodType& type) const;
  Status ValidProbe(int pod) const;
  /// S_OK only for a valid pod with a variable probe.
  Status VariableProbe(int pod) const;
  Status GetVariableProbeCount(int& count) const;
  /// Sends the pod's stored settings again, those that a probe of `type` has. S_OK whatever was
  /// refused.
  Status UpdateProbeValues(int pod, PodType type);

  // --- channel names: no hardware and no probe needed ---

  /// `index` 0 to 15.
  Status SetChannelName(int pod, int index, const std::string& name);
  Status GetChannelName(int pod, int index, std::string& name) const;
  /// Empties all 64 names.
  Status InitializeChannelNames();

  // --- settings of a pod ---

  /// Volts.
  Status SetOutputLevel(int pod, double volts);
  Status GetOutputLevel(int pod, double& volts) const;
  /// Limits by pod type (TTL/CMOS and LVCMOS; E_FAIL for others), no hardware needed.
  Status GetMinOutputLevel(int pod, double& volts) const;
  Status GetMaxOutputLevel(int pod, double& volts) const;
  Status GetOutputLevelResolution(int pod, double& volts) const;
  Status SetStrobeInhibit(int pod, int inhibit);
  Status GetStrobeInhibit(int pod, int& inhibit) const;
  Status SetInhibitByPodD(int pod, int inhibit);
  Status GetInhibitByPodD(int pod, int& inhibit) const;
  Status SetInhibitByEvent(int pod, int inhibit);
  Status GetInhibitByEvent(int pod, int& inhibit) const;
  Status SetStrobeTiming(int pod, StrobeDelay timing);
  Status GetStrobeTiming(int pod, StrobeDelay& timing) const;
  Status SetStrobeEnable(int pod, int enable);
  Status GetStrobeEnable(int pod, int& enable) const;

  // --- settings of a variable pod ---

  /// Volts; index 0 or 1. Reading another index is S_OK and leaves `volts` untouched.
  Status SetInputThreshold(int pod, int index, float volts);
  Status GetInputThreshold(int pod, int index, float& volts) const;
  Status SetOutputPolarity(int pod, Polarity polarity);
  Status GetOutputPolarity(int pod, Polarity& polarity) const;
  Status SetCH6OutputMode(int pod, CH6OutputMode mode);
  Status GetCH6OutputMode(int pod, CH6OutputMode& mode) const;

  // --- settings of a variable channel ---

  /// Volts. The hardware may move the other level of the channel, which is read back as well.
  Status SetHighLevel(int pod, VariableChannel channel, float volts);
  Status GetHighLevel(int pod, VariableChannel channel, float& volts) const;
  Status SetLowLevel(int pod, VariableChannel channel, float volts);
  Status GetLowLevel(int pod, VariableChannel channel, float& volts) const;
  /// Stores what the hardware made of it.
  Status SetSlewRate(int pod, VariableChannel channel, float rate);
  Status GetSlewRate(int pod, VariableChannel channel, float& rate) const;

  // Channels 1 and 2 alone can be set; reading 0 and 3 gives -1.
  Status SetInhibitMask(int pod, VariableChannel channel, InhibitMask mask);
  Status GetInhibitMask(int pod, VariableChannel channel, InhibitMask& mask) const;
  Status SetDataFormat(int pod, VariableChannel channel, DataFormat format);
  Status GetDataFormat(int pod, VariableChannel channel, DataFormat& format) const;
  Status SetDelayRange(int pod, VariableChannel channel, DelayRange range);
  Status GetDelayRange(int pod, VariableChannel channel, DelayRange& range) const;
  /// Nanoseconds; with real hardware stored as read back, to three decimals.
  Status SetDelay(int pod, VariableChannel channel, double nanoseconds);
  Status GetDelay(int pod, VariableChannel channel, double& nanoseconds) const;

  // --- setup file ---

  std::uint64_t GetSize() const;  ///< bytes that Write produces
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);

 private:
  // Null unless the pod (and channel) exists and, for the variable ones, the probe is variable.
  const PROBE_SETUP* ProbeAt(int pod) const;
  const VARIABLE_PROBE_SETUP* VariableAt(int pod) const;
  const VARIABLE_CHANNELS* ChannelAt(int pod, VariableChannel channel) const;
  PROBE_SETUP* ProbeAt(int pod);
  VARIABLE_PROBE_SETUP* VariableAt(int pod);
  VARIABLE_CHANNELS* ChannelAt(int pod, VariableChannel channel);

  // The setting that a member pointer names, sent as a `Wire` and stored as it is declared.
  template <typename Wire, typename Stored, typename Send, typename Receive>
  Status SetOfPod(int pod, SettingRule rule, Stored PROBE_SETUP::*field, Stored value, Send send,
                  Receive receive);
  template <typename Wire, typename Stored, typename Send, typename Receive>
  Status SetOfVariablePod(int pod, Stored VARIABLE_PROBE_SETUP::*field, Stored value, Send send,
                          Receive receive);
  template <typename Wire, typename Stored, typename Send, typename Receive>
  Status SetOfChannel(int pod, VariableChannel channel, SettingRule rule,
                      Stored VARIABLE_CHANNELS::*field, Stored value, Send send, Receive receive);
  template <typename Stored>
  Status GetOfPod(int pod, Stored PROBE_SETUP::*field, Stored& value) const;
  template <typename Stored>
  Status GetOfVariablePod(int pod, Stored VARIABLE_PROBE_SETUP::*field, Stored& value) const;
  template <typename Stored>
  Status GetOfChannel(int pod, VariableChannel channel, Stored VARIABLE_CHANNELS::*field,
                      Stored& value) const;
  struct LEVEL;
  Status SetLevel(int pod, VariableChannel channel, float volts, const LEVEL& level,
                  const LEVEL& other);

  Status ReadPodTypes(int& podCount);
  void ReadPod(int pod);
  void ReadVariablePod(int pod);
  void SendVariablePod(int pod);

  std::int32_t m_maxChannels = 64;
  float m_clockDeskew = 0.0F;  // nanoseconds
  std::array<PROBE_SETUP, NUM_PODS> m_probes;
  CSorrelModule* m_sorrelModule = nullptr;
};

}  // namespace quillpg
