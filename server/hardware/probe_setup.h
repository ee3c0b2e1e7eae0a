#pragma once

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

/// Settings of one variable channel. Only channels 1 and 2 carry the inhibit mask, data format,
/// delay range and delay; on channels 0 and 3 they are marked -1.
struct QUILLPG_API VARIABLE_CHANNELS {
  float highLevel = 2.0F;  ///< volts
  float lowLevel = 0.0F;   ///< volts
  float slewRate = 2.5F;   ///< unit of the hardware
  InhibitMask inhibitMask = InhibitMask::On;
  DataFormat dataFormat = DataFormat::Nrz;
  DelayRange delayRange = DelayRange::Range0;
  double delay = 0.0;  ///< nanoseconds

  /// Back to the values above.
  Status Initialize();

  std::uint64_t GetSize() const;  ///< bytes that Write produces
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
};

/// Settings that only a variable probe has.
struct QUILLPG_API VARIABLE_PROBE_SETUP {
  std::array<float, 2> inputThreshold = {2.5F, 2.5F};  ///< volts
  Polarity outputPolarity = Polarity::Positive;
  CH6OutputMode ch6OutputMode = CH6OutputMode::Normal;
  std::array<VARIABLE_CHANNELS, NUM_VARIABLE_CHANNELS> channels;

  /// The marks of channels 0 and 3 included.
  VARIABLE_PROBE_SETUP();

  /// Back to the values of a new record.
  Status Initialize();
  /// Marks what channels 0 and 3 do not have.
  Status InitializeDefaults();

  std::uint64_t GetSize() const;  ///< bytes that Write produces
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
};

/// One pod: the probe that is plugged in and its settings.
struct QUILLPG_API PROBE_SETUP {
  PodType podType = PodType::None;
  double outputLevel = 5.5;  ///< volts
  std::int32_t strobeInhibit = 0;
  std::int32_t inhibitByPodD = 0;
  std::int32_t inhibitByEvent = 0;
  StrobeDelay strobeTiming = StrobeDelay::Delay0to20;
  std::int32_t strobeEnable = 0;
  std::array<std::string, POD_NAMES> channelNames;
  VARIABLE_PROBE_SETUP variable;

  /// Back to the values above, names included. The pod type stays: the hardware alone tells it.
  Status Initialize();

  /// Brings the output level into the range of the pod type or, where that has none, of
  /// `typeInFile`: LVCMOS 1.2 to 3.3 V, TTL/CMOS 2.0 to 5.5 V; other types change nothing.
  Status CompareAndUpdateOutputLevel(PodType typeInFile);

  std::uint64_t GetSize() const;  ///< bytes that Write produces
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
};

/// Range of the output level of a pod type, volts; false, with nothing changed, for a type whose
/// level cannot be set. The bounds are single-precision constants widened (1.2 V of LVCMOS is
/// 1.2000000476837158): what the hardware stores, do not make them exact.
bool GetOutputLevelRange(PodType type, double& lowest, double& highest);

}  // namespace quillpg
