#pragma once

#include "hardware/module.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/program_view.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "program/waveform_manager.h"

#include <nlohmann/json.hpp>

#include <string>
#include <type_traits>

// The model in the words of the JSON files that lie beside the reference setup files, taken through
// the operations that a front end calls.

namespace quillpg {

using Json = nlohmann::json;

template <typename T>
Json ToJson(const T& value) {
  if constexpr (std::is_enum_v<T>) {
    return static_cast<int>(value);
  } else {
    return value;
  }
}

/// What a getter that stores its result answers.
template <typename C, typename T>
Json Get(const C& object, Status (C::*get)(T&) const) {
  T value{};
  (void)(object.*get)(value);
  return ToJson(value);
}
template <typename C, typename T>
Json Get(const C& object, Status (C::*get)(int, T&) const, int place) {
  T value{};
  (void)(object.*get)(place, value);
  return ToJson(value);
}
template <typename C, typename M>
M& Manager(const C& object, Status (C::*get)(M**) const) {
  M* manager = nullptr;
  (void)(object.*get)(&manager);
  return *manager;
}

/// An array of what `describe(i)` gives for each of `count`.
template <typename Describe>
Json ToArray(int count, Describe&& describe) {
  Json array = Json::array();
  for (int i = 0; i < count; ++i) array.push_back(describe(i));
  return array;
}
/// An array of what `describe(object)` gives for each object that `at(i)` finds.
template <typename At, typename Describe>
Json ToArray(At&& at, Describe&& describe) {
  Json array = Json::array();
  for (int i = 0; const auto* object = at(i); ++i) array.push_back(describe(*object));
  return array;
}
/// Finds the object at a position, or null.
template <typename C, typename T>
auto At(const C& object, Status (C::*get)(int, T**) const) {
  return [&object, get](int i) {
    T* found = nullptr;
    (void)(object.*get)(i, &found);
    return found;
  };
}

inline std::string Hex(const std::uint8_t* bytes, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < 2 * count; ++i) {
    text += "0123456789abcdef"[i % 2 == 0 ? bytes[i / 2] >> 4 : bytes[i / 2] & 15];
  }
  return text;
}

inline Json VariableJson(const CModule& module, int pod) {
  const auto channel = [&](int number) {
    const auto of = [&]<typename T>(Status (CModule::*get)(int, VariableChannel, T&) const) {
      T value{};
      (void)(module.*get)(pod, static_cast<VariableChannel>(number), value);
      return ToJson(value);
    };
    return Json{{"high_level", of(&CModule::GetHighLevel)},
                {"low_level", of(&CModule::GetLowLevel)},
                {"slew_rate", of(&CModule::GetSlewRate)},
                {"inhibit_mask", of(&CModule::GetInhibitMask)},
                {"data_format", of(&CModule::GetDataFormat)},
                {"delay_range", of(&CModule::GetDelayRange)},
                {"delay", of(&CModule::GetDelay)}};
  };
  float thresholds[2] = {};
  for (int i = 0; i < 2; ++i) (void)module.GetInputThreshold(pod, i, thresholds[i]);
  return {{"threshold0", thresholds[0]},
          {"threshold1", thresholds[1]},
          {"polarity", Get(module, &CModule::GetOutputPolarity, pod)},
          {"ch6_mode", Get(module, &CModule::GetCH6OutputMode, pod)},
          {"channels", ToArray(NUM_VARIABLE_CHANNELS, channel)}};
}

/// The settings of a variable probe are there for a pod that has one.
inline Json ProbeJson(const CModule& module, int pod) {
  Json probe = {{"pod_type", Get(module, &CModule::GetPodType, pod)},
                {"output_level", Get(module, &CModule::GetOutputLevel, pod)},
                {"strobe_inhibit", Get(module, &CModule::GetStrobeInhibit, pod)},
                {"inhibit_by_pod_d", Get(module, &CModule::GetInhibitByPodD, pod)},
                {"inhibit_by_event", Get(module, &CModule::GetInhibitByEvent, pod)},
                {"strobe_timing", Get(module, &CModule::GetStrobeTiming, pod)},
                {"strobe_enable", Get(module, &CModule::GetStrobeEnable, pod)}};
  probe["names"] = ToArray(POD_NAMES, [&](int index) {
    std::string name;
    (void)module.GetChannelName(pod, index, name);
    return name;
  });
  if (module.VariableProbe(pod) == S_OK) probe["variable"] = VariableJson(module, pod);
  return probe;
}

inline Json BlockJson(const BLOCK& block) {
  const LISTING_STATE& listing = block.GetListingState();
  return {{"name", block.GetBlockName()},
          {"size", block.GetBlockSize()},
          {"width", block.GetBlockWidth()},
          {"data",
           Hex(block.Data(), block.RowBytes() * static_cast<std::size_t>(block.GetBlockSize()))},
          {"ref1", listing.firstReference},
          {"ref2", listing.secondReference},
          {"states", ToArray([&](int i) { return listing.groupStates.At(i); },
                             [](const GROUP_STATE& state) -> Json {
                               return {{"group", state.GetGroupName()},
                                       {"radix", ToJson(state.GetRadix())},
                                       {"value1", state.GetDisplayValue1()},
                                       {"value3", state.GetDisplayValue3()}};
                             })},
          {"rows", ToArray([&](int i) { return block.GetWaveformManager()->Row(i); },
                           [](const CWaveformData& row) -> Json {
                             return {{"flag", row.flag},
                                     {"channel", row.channel},
                                     {"channel_name", row.channelName},
                                     {"group_index", row.groupIndex},
                                     {"group_name", row.groupName},
                                     {"reserved", row.reserved},
                                     {"wave_type", ToJson(row.waveType)}};
                           })}};
}

inline Json GroupJson(const GROUP& group) {
  return {{"name", group.GetGroupName()},
          {"text", group.GetChannelNames()},
          {"channels", group.Channels()}};
}

inline Json LineJson(const SEQUENCE_LINE& line) {
  return {{"label", line.GetLabel()},
          {"wait_for", line.GetWaitFor()},
          {"output", line.GetOutput()},
          {"repeat", line.GetRepeatCount()},
          {"jump_if", line.GetJumpIf()},
          {"jump_to", line.GetJumpTo()},
          {"signal", ToJson(line.GetSignalValue())}};
}

inline Json SubSequenceJson(const SUBSEQUENCE& subsequence) {
  return {
      {"name", subsequence.GetSubSequenceName()},
      {"lines", ToArray(At(subsequence, &SUBSEQUENCE::GetSubSequenceLine),
                        [](const SUBSEQUENCE_LINE& line) -> Json {
                          return {{"output", line.GetOutput()}, {"repeat", line.GetRepeatCount()}};
                        })}};
}

inline Json EventJson(const EVENT& event) {
  return {{"name", event.GetEventName()},
          {"rows", ToArray(At(event, &EVENT::GetEventDefinition), [](const EVENT_DEFINITION& row) {
             return std::string(row.Pattern());
           })}};
}

inline Json InstrumentJson(const CInstrument& instrument) {
  using I = CInstrument;
  const CProgramView program(instrument);
  const CGroupManager& groups = Manager(instrument, &I::GetGroupManager);
  Json json = {{"name", Get(instrument, &I::GetInstrumentName)},
               {"enabled", Get(instrument, &I::IsInstrumentEnabled)},
               {"channel_mode", Get(instrument, &I::GetChannelMode)},
               {"clock_source", Get(instrument, &I::GetClockSource)},
               {"clock_period", Get(instrument, &I::GetClockPeriod)},
               {"clock_threshold", Get(instrument, &I::GetClockThreshold)},
               {"clock_polarity", Get(instrument, &I::GetClockPolarity)},
               {"run_mode", Get(instrument, &I::GetRunMode)},
               {"hiz_on_stop", Get(instrument, &I::GetHiZOnStop)},
               {"event_filter", Get(instrument, &I::GetEventFilter)},
               {"inhibit_event", Get(instrument, &I::GetInhibitEvent)},
               {"adv_event_mode", Get(instrument, &I::GetAdvEventMode)},
               {"jump_event_mode", Get(instrument, &I::GetJumpEventMode)},
               {"input_source", Get(instrument, &I::GetInputSignalSource)},
               {"output_dest", Get(instrument, &I::GetOutputSignalDest)}};
  json["groups"] = ToArray(At(groups, &CGroupManager::GetGroup), GroupJson);
  json["blocks"] = ToArray([&](int i) { return program.BlockAt(i); }, BlockJson);
  json["sequence"] = ToArray([&](int i) { return program.LineAt(i); }, LineJson);
  json["subsequences"] = ToArray([&](int i) { return program.SubSequenceAt(i); }, SubSequenceJson);
  json["events"] = ToArray([&](int i) { return program.EventAt(i); }, EventJson);
  json["modules"] = ToArray(At(instrument, &I::GetModuleAt), [](const CModule& module) -> Json {
    return {{"deskew", Get(module, &CModule::GetClockDeskew)},
            {"probes", ToArray(NUM_PODS, [&](int pod) { return ProbeJson(module, pod); })}};
  });
  return json;
}

}  // namespace quillpg
