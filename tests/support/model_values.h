#pragma once

#include "hardware/module.h"
#include "instrument/instrument.h"
#include "persistence/fixed_section.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/program_view.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "program/waveform_manager.h"
#include "support/ask.h"

#include <nlohmann/json.hpp>

#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace quillpg {

using Json = nlohmann::ordered_json;

/// What the model holds, taken through the operations that a front end calls: value after value in
/// the order of a setup file and of the JSON files that lie beside the reference ones.
class CModelValues {
 public:
  /// Files of the first release hold neither the groups' texts nor the waveform rows.
  explicit CModelValues(bool firstRelease) : m_hasTextsAndRows(!firstRelease) {}

  void Add(const FIXED_SECTION& section) {
    Put(section.productName, section.softwareVersion, section.comment, section.dateSaved,
        section.programDataSaved, section.fileType);
    for (const INSTRUMENT_ENTRY& entry : section.instruments) Put(entry.modules, entry.name);
    for (const std::int32_t depth : section.memoryDepths) Put(depth);
  }

  void Add(const CInstrument& instrument) {
    using I = CInstrument;
    const auto put = [&](auto... get) { (PutAnswer(instrument, get), ...); };
    put(&I::GetInstrumentName, &I::IsInstrumentEnabled, &I::GetChannelMode, &I::GetClockSource,
        &I::GetClockPeriod, &I::GetClockThreshold, &I::GetClockPolarity, &I::GetRunMode,
        &I::GetHiZOnStop, &I::GetEventFilter, &I::GetInhibitEvent, &I::GetAdvEventMode,
        &I::GetJumpEventMode, &I::GetInputSignalSource, &I::GetOutputSignalDest);
    for (int i = 0; const CModule* module = Find(instrument, &I::GetModuleAt, i); ++i) {
      PutAnswer(*module, &CModule::GetClockDeskew);
      for (int pod = 0; pod < NUM_PODS; ++pod) AddProbe(*module, pod);
    }
    const CGroupManager& groups = *Find(instrument, &I::GetGroupManager);
    for (int i = 0; const GROUP* group = Find(groups, &CGroupManager::GetGroup, i); ++i) {
      Put(group->GetGroupName());
      if (m_hasTextsAndRows) Put(group->GetChannelNames());
      for (const int channel : group->Channels()) Put(channel);
    }
    AddProgram(CProgramView(instrument));
  }

  std::vector<Json> values;

 private:
  template <typename... T>
  void Put(const T&... value) {
    (values.emplace_back(value), ...);
  }
  template <typename C, typename... P>
  void PutAnswer(const C& object, Status (C::*get)(P...) const, auto... place) {
    std::remove_reference_t<std::tuple_element_t<sizeof...(P) - 1, std::tuple<P...>>> value{};
    (void)(object.*get)(place..., value);
    Put(value);
  }

  /// The settings of a variable probe are there for a pod that has one.
  void AddProbe(const CModule& module, int pod) {
    using M = CModule;
    const auto put = [&](auto... get) { (PutAnswer(module, get, pod), ...); };
    put(&M::GetPodType, &M::GetOutputLevel, &M::GetStrobeInhibit, &M::GetInhibitByPodD,
        &M::GetInhibitByEvent, &M::GetStrobeTiming, &M::GetStrobeEnable);
    for (int i = 0; i < POD_NAMES; ++i) PutAnswer(module, &M::GetChannelName, pod, i);
    if (module.VariableProbe(pod) != S_OK) return;
    for (const int i : {0, 1}) PutAnswer(module, &M::GetInputThreshold, pod, i);
    put(&M::GetOutputPolarity, &M::GetCH6OutputMode);
    for (int i = 0; i < NUM_VARIABLE_CHANNELS; ++i) {
      const auto of = [&](auto... get) { (PutAnswer(module, get, pod, VariableChannel{i}), ...); };
      of(&M::GetHighLevel, &M::GetLowLevel, &M::GetSlewRate, &M::GetInhibitMask, &M::GetDataFormat,
         &M::GetDelayRange, &M::GetDelay);
    }
  }

  void AddProgram(const CProgramView& program) {
    for (int i = 0; const BLOCK* block = program.BlockAt(i); ++i) AddBlock(*block);
    for (int i = 0; const SEQUENCE_LINE* line = program.LineAt(i); ++i) {
      Put(line->GetLabel(), line->GetWaitFor(), line->GetOutput(), line->GetRepeatCount(),
          line->GetJumpIf(), line->GetJumpTo(), line->GetSignalValue());
    }
    for (int i = 0; const SUBSEQUENCE* sub = program.SubSequenceAt(i); ++i) {
      Put(sub->GetSubSequenceName());
      for (int j = 0; const auto* line = Find(*sub, &SUBSEQUENCE::GetSubSequenceLine, j); ++j) {
        Put(line->GetOutput(), line->GetRepeatCount());
      }
    }
    for (int i = 0; const EVENT* event = program.EventAt(i); ++i) {
      Put(event->GetEventName());
      for (int j = 0; const auto* row = Find(*event, &EVENT::GetEventDefinition, j); ++j) {
        Put(row->Pattern());
      }
    }
  }

  void AddBlock(const BLOCK& block) {
    std::string data;
    const std::size_t size = block.RowBytes() * static_cast<std::size_t>(block.GetBlockSize());
    for (std::size_t i = 0; i < 2 * size; ++i) {
      data += "0123456789abcdef"[i % 2 == 0 ? block.Data()[i / 2] >> 4 : block.Data()[i / 2] & 15];
    }
    const LISTING_STATE& listing = block.GetListingState();
    Put(block.GetBlockName(), block.GetBlockSize(), block.GetBlockWidth(), data,
        listing.firstReference, listing.secondReference);
    listing.groupStates.ForEach([this](const GROUP_STATE& state) {
      Put(state.GetGroupName(), state.GetRadix(), state.GetDisplayValue1(),
          state.GetDisplayValue3());
    });
    for (int i = 0; const auto* row = block.GetWaveformManager()->Row(i); ++i) {
      if (m_hasTextsAndRows) {
        Put(row->flag, row->channel, row->channelName, row->groupIndex, row->groupName,
            row->reserved, row->waveType);
      }
    }
  }

  bool m_hasTextsAndRows;
};

}  // namespace quillpg
