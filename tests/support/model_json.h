#pragma once

#include "hardware/module.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
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

inline std::string Hex(const std::uint8_t* bytes, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += "0123456789abcdef"[bytes[i] >> 4];
    text += "0123456789abcdef"[bytes[i] & 15];
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
  CWaveformManager& rows = *block.GetWaveformManager();
  int rowCount = 0;
  (void)rows.GetNoOfRows(rowCount);
  return {{"name", block.GetBlockName()},
          {"size", block.GetBlockSize()},
          {"width", block.GetBlockWidth()},
          {"data",
           Hex(block.Data(), block.RowBytes() * static_cast<std::size_t>(block.GetBlockSize()))},
          {"ref1", listing.firstReference},
          {"ref2", listing.secondReference},
          {"states", ToArray(listing.groupStates.Count(),
                             [&](int i) {
                               const GROUP_STATE& state = *listing.groupStates.At(i);
                               return Json{{"group", state.GetGroupName()},
                                           {"radix", ToJson(state.GetRadix())},
                                           {"value1", state.GetDisplayValue1()},
                                           {"value3", state.GetDisplayValue3()}};
                             })},
          {"rows", ToArray(rowCount, [&](int i) {
             CWaveformData* row = nullptr;
             (void)rows.GetWaveformData(i, &row);
             return Json{{"flag", row->flag},
                         {"channel", row->channel},
                         {"channel_name", row->channelName},
                         {"group_index", row->groupIndex},
                         {"group_name", row->groupName},
                         {"reserved", row->reserved},
                         {"wave_type", ToJson(row->waveType)}};
           })}};
}

inline Json GroupsJson(const CInstrument& instrument) {
  CGroupManager& groups = Manager(instrument, &CInstrument::GetGroupManager);
  return ToArray(Get(groups, &CGroupManager::GetNoOfGroups), [&](int i) {
    GROUP* group = nullptr;
    (void)groups.GetGroup(i, &group);
    return Json{{"name", group->GetGroupName()},
                {"text", group->GetChannelNames()},
                {"channels", group->Channels()}};
  });
}

inline Json SequenceJson(const CInstrument& instrument) {
  CSequenceManager& sequence = Manager(instrument, &CInstrument::GetSequenceManager);
  return ToArray(Get(sequence, &CSequenceManager::GetNoOfSequenceLines), [&](int i) {
    SEQUENCE_LINE* line = nullptr;
    (void)sequence.GetSequenceLine(i, &line);
    return Json{{"label", line->GetLabel()},
                {"wait_for", line->GetWaitFor()},
                {"output", line->GetOutput()},
                {"repeat", line->GetRepeatCount()},
                {"jump_if", line->GetJumpIf()},
                {"jump_to", line->GetJumpTo()},
                {"signal", ToJson(line->GetSignalValue())}};
  });
}

inline Json SubSequencesJson(const CInstrument& instrument) {
  CSubSequenceManager& manager = Manager(instrument, &CInstrument::GetSubSequenceManager);
  return ToArray(Get(manager, &CSubSequenceManager::GetNoOfSubSequences), [&](int i) {
    SUBSEQUENCE* subsequence = nullptr;
    (void)manager.GetSubSequence(i, &subsequence);
    return Json{{"name", subsequence->GetSubSequenceName()},
                {"lines", ToArray(subsequence->GetNoOfSubSequenceLines(), [&](int k) {
                   SUBSEQUENCE_LINE* line = nullptr;
                   (void)subsequence->GetSubSequenceLine(k, &line);
                   return Json{{"output", line->GetOutput()}, {"repeat", line->GetRepeatCount()}};
                 })}};
  });
}

inline Json EventsJson(const CInstrument& instrument) {
  CEventManager& manager = Manager(instrument, &CInstrument::GetEventManager);
  return ToArray(Get(manager, &CEventManager::GetNoOfEvents), [&](int i) {
    EVENT* event = nullptr;
    (void)manager.GetEvent(i, &event);
    return Json{{"name", event->GetEventName()},
                {"rows", ToArray(event->GetNoOfEventDefinitions(), [&](int k) {
                   EVENT_DEFINITION* definition = nullptr;
                   (void)event->GetEventDefinition(k, &definition);
                   return std::string(definition->Pattern());
                 })}};
  });
}

inline Json InstrumentJson(const CInstrument& instrument) {
  using I = CInstrument;
  CBlockManager& blocks = Manager(instrument, &I::GetBlockManager);
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
               {"output_dest", Get(instrument, &I::GetOutputSignalDest)},
               {"groups", GroupsJson(instrument)},
               {"sequence", SequenceJson(instrument)},
               {"subsequences", SubSequencesJson(instrument)},
               {"events", EventsJson(instrument)}};
  json["modules"] = ToArray(Get(instrument, &I::GetNoOfModules), [&](int i) {
    CModule* module = nullptr;
    (void)instrument.GetModuleAt(i, &module);
    return Json{{"deskew", Get(*module, &CModule::GetClockDeskew)},
                {"probes", ToArray(NUM_PODS, [&](int pod) { return ProbeJson(*module, pod); })}};
  });
  json["blocks"] = ToArray(Get(blocks, &CBlockManager::GetNoOfBlocks), [&](int i) {
    BLOCK* block = nullptr;
    (void)blocks.GetBlock(i, &block);
    return BlockJson(*block);
  });
  return json;
}

}  // namespace quillpg
