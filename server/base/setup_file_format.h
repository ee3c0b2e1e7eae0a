#pragma once

#include "base/byte_stream.h"
#include "quillpg/engine_types.h"
#include "quillpg/limits.h"

#include <cstdint>

// The layout of every record of a setup file, once: docs/setup_file_format.md says the same in
// prose, a change touches both. `file` is whatever walks the fields: CByteReader, CByteWriter or a
// CFieldTracer. Values are named in file order; parts that have a layout of their own are passed as
// functions.

namespace quillpg {

// Bytes of the shortest record of each list, where a string may have the length 0.
inline constexpr int LEAST_GROUP_BYTES = 8;
inline constexpr int LEAST_CHANNEL_BYTES = 4;
inline constexpr int LEAST_BLOCK_BYTES = 24;
inline constexpr int LEAST_GROUP_STATE_BYTES = 16;
inline constexpr int LEAST_ROW_BYTES = 28;
inline constexpr int LEAST_SEQUENCE_LINE_BYTES = 28;
inline constexpr int LEAST_SUBSEQUENCE_BYTES = 8;
inline constexpr int LEAST_SUBSEQUENCE_LINE_BYTES = 8;
inline constexpr int LEAST_EVENT_BYTES = 8;
inline constexpr int LEAST_EVENT_DEFINITION_BYTES = 4;
inline constexpr int LEAST_ENTRY_BYTES = 8;
inline constexpr int LEAST_DEPTH_BYTES = 4;

// Limits of the format. They hold in every channel mode; an instrument's own limits do not.
inline constexpr int MIN_FILE_BLOCK_SIZE = 40;         ///< vectors
inline constexpr int MAX_FILE_BLOCK_SIZE = 2'097'144;  ///< vectors
inline constexpr int MAX_FILE_BLOCK_WIDTH = 320;       ///< channels of five modules
inline constexpr int MAX_FILE_ENTRIES = 4096;          ///< instruments
inline constexpr int MAX_FILE_DEPTHS = 256;            ///< modules

/// A count and that many records; `each(index)` describes one.
template <typename File, typename Counter, typename Each>
void LayOutList(File& file, const char* countName, const char* recordName, int leastBytes,
                Counter&& count, Each&& each) {
  file.Count(countName, leastBytes, count);
  for (int i = 0; i < count && file.Good(); ++i) file.Record(recordName, i, [&] { each(i); });
}

// --- fixed section ---

template <typename File, typename Section>
void LayOutFixedSection(File& file, Section& section, auto&& instruments, auto&& depths) {
  file.Field("software version", section.softwareVersion);
  file.Field("comment", section.comment);
  file.Field("date saved", section.dateSaved);
  file.Truth("program data saved", section.programDataSaved);
  file.Field("file type", section.fileType);
  instruments();
  depths();
}

void LayOutInstrumentEntry(auto& file, auto& entry) {
  file.Field("module count", entry.modules);
  file.Field("instrument name", entry.name);
}

// --- instrument, modules, probes ---

void LayOutSettings(auto& file, auto&& name, auto&& enabled, auto&& channelMode, auto&& clockSource,
                    auto&& clockPeriod, auto&& clockThreshold, auto&& clockPolarity, auto&& runMode,
                    auto&& hiZOnStop, auto&& eventFilter, auto&& inhibitEvent, auto&& advanceMode,
                    auto&& jumpMode, auto&& inputSource, auto&& outputDestination) {
  file.Field("instrument name", name);
  file.Truth("instrument enabled", enabled);
  file.Field("channel mode", channelMode);
  file.Field("clock source", clockSource);
  file.Field("clock period", clockPeriod);
  file.Field("clock threshold", clockThreshold);
  file.Field("clock polarity", clockPolarity);
  file.Field("run mode", runMode);
  file.Truth("high impedance on stop", hiZOnStop);
  file.Field("event filter", eventFilter);
  file.Field("inhibit event", inhibitEvent);
  file.Field("advance event mode", advanceMode);
  file.Field("jump event mode", jumpMode);
  file.Field("input signal source", inputSource);
  file.Field("output signal destination", outputDestination);
}

/// Not a list: the count is the file's, the modules are the instrument's. `field` is what the count
/// is written from or read into.
void LayOutModules(auto& file, auto&& field, const int& count, auto&& module) {
  file.Field("module count", field);
  for (int i = 0; i < count && file.Good(); ++i) file.Record("module", i, [&] { module(i); });
}

/// `probe(pod)` describes the probe of a pod, A to D.
void LayOutModule(auto& file, auto&& clockDeskew, auto&& probe) {
  file.Field("clock deskew", clockDeskew);
  for (int pod = 0; pod < NUM_PODS; ++pod) file.Record("probe", pod, [&] { probe(pod); });
}

void LayOutVariableChannel(auto& file, auto& channel) {
  file.Field("high level", channel.highLevel);
  file.Field("low level", channel.lowLevel);
  file.Field("slew rate", channel.slewRate);
  file.Field("inhibit mask", channel.inhibitMask);
  file.Field("data format", channel.dataFormat);
  file.Field("delay range", channel.delayRange);
  file.Field("delay", channel.delay);
}

void LayOutVariableProbe(auto& file, auto& variable) {
  file.Field("input threshold 0", variable.inputThreshold[0]);
  file.Field("input threshold 1", variable.inputThreshold[1]);
  file.Field("output polarity", variable.outputPolarity);
  file.Field("CH6 output mode", variable.ch6OutputMode);
  int number = 0;
  for (auto& channel : variable.channels) {
    file.Record("variable channel", number++, [&] { LayOutVariableChannel(file, channel); });
  }
}

/// `podType` is the type in the file, which says whether a variable probe's settings follow those
/// that every probe has; `between()` comes before them.
void LayOutProbe(auto& file, auto& podType, auto& probe, auto&& between) {
  file.Field("pod type", podType);
  file.Field("output level", probe.outputLevel);
  file.Truth("strobe inhibit", probe.strobeInhibit);
  file.Truth("inhibit by pod D", probe.inhibitByPodD);
  file.Truth("inhibit by event", probe.inhibitByEvent);
  file.Field("strobe timing", probe.strobeTiming);
  file.Truth("strobe enable", probe.strobeEnable);
  for (auto& name : probe.channelNames) file.Field("channel name", name);
  if (file.Good()) between();
  if (podType == PodType::Variable && file.Good()) LayOutVariableProbe(file, probe.variable);
}

// --- groups ---

/// `channel(index)` describes one channel number.
void LayOutGroup(auto& file, bool withNames, auto& name, auto& channels, auto& channelNames,
                 auto&& channel) {
  file.Field("group name", name);
  file.Count("channel count", LEAST_CHANNEL_BYTES, channels);
  if (withNames) file.Field("channel names", channelNames);
  for (int i = 0; i < channels && file.Good(); ++i) channel(i);
}

// --- blocks ---

/// Reads a number into `target`; refused out of its bounds.
inline auto ReadBetween(int& target, int least, int most) {
  return ReadInto<int>([&target, least, most](int value) {
    target = value;
    return value >= least && value <= most;
  });
}
inline auto ReadBlockSize(int& size) {
  return ReadBetween(size, MIN_FILE_BLOCK_SIZE, MAX_FILE_BLOCK_SIZE);
}
inline auto ReadBlockWidth(int& width) { return ReadBetween(width, 0, MAX_FILE_BLOCK_WIDTH); }

/// Rounded down, deliberately: a partial last byte is lost.
inline std::uint64_t PatternDataBytes(int size, int width) {
  return size > 0 && width > 0
             ? static_cast<std::uint64_t>(size) * static_cast<std::uint64_t>(width) / 8
             : 0;
}

/// The pattern data, PatternDataBytes of them, in the middle.
void LayOutBlock(auto& file, bool withRows, auto&& size, auto&& width, auto& name, auto&& data,
                 auto&& listingState, auto&& rows) {
  file.Field("block size", size);
  file.Field("block width", width);
  file.Field("block name", name);
  if (file.Good()) data();
  if (file.Good()) listingState();
  if (file.Good() && withRows) rows();
}

void LayOutListingState(auto& file, auto& state, auto&& groupStates) {
  file.Field("first reference", state.firstReference);
  file.Field("second reference", state.secondReference);
  groupStates();
}

/// The second display value is not stored.
void LayOutGroupState(auto& file, auto& groupName, auto& radix, auto& displayValue1,
                      auto& displayValue3) {
  file.Field("group name", groupName);
  file.Field("radix", radix);
  file.Field("display value 1", displayValue1);
  file.Field("display value 3", displayValue3);
}

void LayOutWaveformRow(auto& file, auto& row) {
  file.Field("reserved", row.reserved);
  file.Field("channel", row.channel);
  file.Field("group index", row.groupIndex);
  file.Field("wave type", row.waveType);
  file.Field("group name", row.groupName);
  file.Field("channel name", row.channelName);
  file.Field("flag", row.flag);
}

// --- sequence, subsequences, events ---

/// Repeat count and signal stand between and after the texts: deliberate.
void LayOutSequenceLine(auto& file, auto& label, auto& waitFor, auto& output, auto& repeatCount,
                        auto& jumpIf, auto& jumpTo, auto& signalValue) {
  file.Field("label", label);
  file.Field("wait for", waitFor);
  file.Field("output", output);
  file.Field("repeat count", repeatCount);
  file.Field("jump if", jumpIf);
  file.Field("jump to", jumpTo);
  file.Field("signal value", signalValue);
}

void LayOutSubSequence(auto& file, auto& name, auto&& lines) {
  file.Field("subsequence name", name);
  lines();
}

void LayOutSubSequenceLine(auto& file, auto& output, auto& repeatCount) {
  file.Field("output", output);
  file.Field("repeat count", repeatCount);
}

void LayOutEvent(auto& file, auto& name, auto&& definitions) {
  file.Field("event name", name);
  definitions();
}

/// Nine characters as one string.
void LayOutEventDefinition(auto& file, auto&& pattern) { file.Field("pattern", pattern); }

}  // namespace quillpg
