#include "hardware/probe_setup.h"

#include "app/setup_stream.h"
#include "base/setup_file_format.h"

namespace quillpg {

namespace {

// Single precision on purpose: see GetOutputLevelRange.
constexpr float kLvCmosLowest = 1.2F;
constexpr float kLvCmosHighest = 3.3F;
constexpr float kTtlCmosLowest = 2.0F;
constexpr float kTtlCmosHighest = 5.5F;

// Bytes in a setup file.
constexpr std::uint64_t kVariableChannelSize = 32;
constexpr std::uint64_t kVariableProbeSize = 16 + NUM_VARIABLE_CHANNELS * kVariableChannelSize;
constexpr std::uint64_t kProbeSize = 32;
constexpr std::uint64_t kEmptyNameSize = 5;  // count and closing zero

}  // namespace

bool GetOutputLevelRange(PodType type, double& lowest, double& highest) {
  if (type == PodType::LvCmos) {
    lowest = kLvCmosLowest;
    highest = kLvCmosHighest;
    return true;
  }
  if (type == PodType::TtlCmos) {
    lowest = kTtlCmosLowest;
    highest = kTtlCmosHighest;
    return true;
  }
  return false;
}

Status VARIABLE_CHANNELS::Initialize() {
  *this = {};
  return S_OK;
}

std::uint64_t VARIABLE_CHANNELS::GetSize() const { return kVariableChannelSize; }

Status VARIABLE_CHANNELS::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status VARIABLE_CHANNELS::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status VARIABLE_CHANNELS::Read(CSetupFileReader& reader) {
  LayOutVariableChannel(reader, *this);
  return reader.GetStatus();
}

Status VARIABLE_CHANNELS::Write(CByteWriter& writer) const {
  LayOutVariableChannel(writer, *this);
  return writer.GetStatus();
}

VARIABLE_PROBE_SETUP::VARIABLE_PROBE_SETUP() { InitializeDefaults(); }

Status VARIABLE_PROBE_SETUP::Initialize() {
  *this = {};
  return S_OK;
}

Status VARIABLE_PROBE_SETUP::InitializeDefaults() {
  for (VARIABLE_CHANNELS* channel : {&channels.front(), &channels.back()}) {
    channel->inhibitMask = InhibitMask::None;
    channel->dataFormat = DataFormat::None;
    channel->delayRange = DelayRange::None;
    channel->delay = -1.0;
  }
  return S_OK;
}

std::uint64_t VARIABLE_PROBE_SETUP::GetSize() const { return kVariableProbeSize; }

Status VARIABLE_PROBE_SETUP::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status VARIABLE_PROBE_SETUP::Write(std::ostream& stream) const {
  return WriteToStream(stream, *this);
}

Status VARIABLE_PROBE_SETUP::Read(CSetupFileReader& reader) {
  LayOutVariableProbe(reader, *this);
  return reader.GetStatus();
}

Status VARIABLE_PROBE_SETUP::Write(CByteWriter& writer) const {
  LayOutVariableProbe(writer, *this);
  return writer.GetStatus();
}

Status PROBE_SETUP::Initialize() {
  const PodType held = podType;
  *this = {};
  podType = held;
  return S_OK;
}

Status PROBE_SETUP::CompareAndUpdateOutputLevel(PodType typeInFile) {
  double lowest = 0.0;
  double highest = 0.0;
  if (!GetOutputLevelRange(podType, lowest, highest) &&
      !GetOutputLevelRange(typeInFile, lowest, highest)) {
    return S_OK;
  }
  if (outputLevel < lowest) outputLevel = lowest;  // a value that is no number stays
  if (outputLevel > highest) outputLevel = highest;
  return S_OK;
}

std::uint64_t PROBE_SETUP::GetSize() const {
  std::uint64_t size = kProbeSize;
  for (const std::string& name : channelNames) size += kEmptyNameSize + name.size();
  return podType == PodType::Variable ? size + variable.GetSize() : size;
}

Status PROBE_SETUP::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status PROBE_SETUP::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status PROBE_SETUP::Read(CSetupFileReader& reader) {
  PodType typeInFile = PodType::None;  // never stored: the hardware alone tells the type
  LayOutProbe(reader, typeInFile, *this, [&] { (void)CompareAndUpdateOutputLevel(typeInFile); });
  return reader.GetStatus();
}

Status PROBE_SETUP::Write(CByteWriter& writer) const {
  LayOutProbe(writer, podType, *this, [] {});
  return writer.GetStatus();
}

}  // namespace quillpg
