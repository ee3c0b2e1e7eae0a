#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "base/name_index.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "program/waveform_manager.h"
#include "quillpg/app_server.h"

#include <cstddef>
#include <unordered_set>
#include <utility>

// What follows from the program for its displays: listing states, inhibit controls, free names.

namespace quillpg {

namespace {

// Calls `visit(object)` for every object of a manager's list, empty slots left out.
template <typename Manager, typename Object, typename Visit>
void ForEachIn(const Manager& manager, Status (Manager::*count)(int&) const,
               Status (Manager::*get)(int, Object**) const, Visit visit) {
  int objects = 0;
  (void)(manager.*count)(objects);
  for (int i = 0; i < objects; ++i) {
    Object* object = nullptr;
    (void)(manager.*get)(i, &object);  // null for an empty slot
    if (object) visit(*object);
  }
}

template <typename Visit>
void ForEachGroup(const CGroupManager& groups, Visit visit) {
  ForEachIn(groups, &CGroupManager::GetNoOfGroups, &CGroupManager::GetGroup, visit);
}

template <typename Visit>
void ForEachBlock(const CBlockManager& blocks, Visit visit) {
  ForEachIn(blocks, &CBlockManager::GetNoOfBlocks, &CBlockManager::GetBlock, visit);
}

std::vector<std::string_view> NamesOf(const CGroupManager& groups) {
  std::vector<std::string_view> names;
  ForEachGroup(groups, [&](const GROUP& group) { names.push_back(groups.StateName(group)); });
  return names;
}

// True when the states are the groups one by one, the usual case: nothing is to be done.
bool IsInStep(const COrderedList<GROUP_STATE>& states, const std::vector<std::string_view>& names) {
  if (states.Count() != static_cast<int>(names.size())) return false;
  for (int i = 0; i < states.Count(); ++i) {
    const GROUP_STATE* state = states.At(i);
    if (!state || !EqualNoCase(state->GetGroupName(), names[static_cast<std::size_t>(i)])) {
      return false;
    }
  }
  return true;
}

void BringInStep(BLOCK& block, const std::vector<std::string_view>& names, Radix radix) {
  auto& states = block.GetListingState().groupStates;
  if (IsInStep(states, names)) return;
  std::unordered_set<std::string> stated;  // folded names; a group may have an empty one
  states.ForEach([&](const GROUP_STATE& state) { stated.insert(FoldCase(state.GetGroupName())); });
  std::unordered_set<std::string> grouped;
  for (const std::string_view name : names) {
    const auto& folded = *grouped.insert(FoldCase(name)).first;
    if (!stated.insert(folded).second) continue;
    auto state = std::make_unique<GROUP_STATE>();
    (void)state->Initialize(radix, 0, std::string(name));
    (void)states.Append(std::move(state));
  }
  for (int i = states.Count(); i-- > 0;) {
    const GROUP_STATE* state = states.At(i);
    if (state && !grouped.contains(FoldCase(std::string_view(state->GetGroupName()))))
      (void)states.Remove(i);
  }
}

Radix DefaultRadix() {
  Radix radix = Radix::Hex;
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);
  if (server) (void)server->GetDefaultRadix(radix);
  return radix;
}

}  // namespace

Status CInstrument::UpdateListingState() {
  int blocks = 0;
  (void)m_blockManager->GetNoOfBlocks(blocks);
  if (blocks == 0) return S_OK;  // groups may come by the thousand before the first block
  return GuardAllocation([&] {
    const auto names = NamesOf(*m_groupManager);
    const Radix radix = DefaultRadix();
    ForEachBlock(*m_blockManager, [&](BLOCK& block) { BringInStep(block, names, radix); });
    return S_OK;
  });
}

Status CInstrument::UpdateListingState(BLOCK& block) {
  return GuardAllocation([&] {
    BringInStep(block, NamesOf(*m_groupManager), DefaultRadix());
    return S_OK;
  });
}

Status CInstrument::MakeAllGroupsVisible() {
  ForEachBlock(*m_blockManager, [](BLOCK& block) {
    block.GetListingState().groupStates.ForEach(
        [](GROUP_STATE& state) { (void)state.SetDisplayValue2(1); });
  });
  return S_OK;
}

// --- inhibit controls ---

void CInstrument::RebuildInhibitControls() {
  m_inhibitControls.clear();
  m_inhibitControlNames.clear();
  const std::string word = CMessageService::Text(MSG_INHIBIT_NAME);
  const int modules = static_cast<int>(m_modules.size());
  for (int module = 0; module < modules; ++module) {
    for (int pod = 0; pod < NUM_PODS; ++pod) {
      int control = -1;
      (void)FindInhibitControl(module * ChannelsPerModule() + pod * ChannelsPerPod(), control);
      if (control < 0) continue;
      std::string name;
      if (modules > 1) AppendNumber(name, module + 1);
      m_inhibitControlNames.push_back(name + word + "ABCD"[pod]);
      m_inhibitControls.push_back(control);
    }
  }
}

Status CInstrument::UpdateInhibitControlList() {
  return GuardAllocation([&] {
    RebuildInhibitControls();
    ForEachBlock(*m_blockManager, [](BLOCK& block) {
      (void)block.GetWaveformManager()->UpdateInhibitControlList();
    });
    return S_OK;
  });
}

Status CInstrument::GetNoOfInhibitControls(int& count) const {
  count = static_cast<int>(m_inhibitControls.size());
  return S_OK;
}

Status CInstrument::GetInhibitControlAt(int position, int& channel) const {
  channel = -1;
  if (position < 0 || position >= static_cast<int>(m_inhibitControls.size())) return E_FAIL;
  channel = m_inhibitControls[static_cast<std::size_t>(position)];
  return S_OK;
}

Status CInstrument::GetInhibitControlName(int position, std::string& name) const {
  name.clear();
  if (position < 0 || position >= static_cast<int>(m_inhibitControlNames.size())) return E_FAIL;
  return GuardAllocation([&] {
    name = m_inhibitControlNames[static_cast<std::size_t>(position)];
    return S_OK;
  });
}

// --- free names ---

Status CInstrument::GetUniqueName(ContentType type, std::string& name) const {
  CNameIndex used;
  int position = 0;
  int word = 0;
  const auto use = [&](const auto& object) { used.Add(NameOf(object), position++); };
  return GuardAllocation([&] {
    switch (type) {
      case ContentType::Group:
        word = MSG_UNIQUE_GROUP;
        ForEachGroup(*m_groupManager, use);
        break;
      case ContentType::Block:
      case ContentType::SubSequence:  // blocks and subsequences share one name space
        word = type == ContentType::Block ? MSG_UNIQUE_BLOCK : MSG_UNIQUE_SUBSEQUENCE;
        ForEachBlock(*m_blockManager, use);
        ForEachIn(*m_subSequenceManager, &CSubSequenceManager::GetNoOfSubSequences,
                  &CSubSequenceManager::GetSubSequence, use);
        break;
      case ContentType::Event:
        word = MSG_UNIQUE_EVENT;
        ForEachIn(*m_eventManager, &CEventManager::GetNoOfEvents, &CEventManager::GetEvent, use);
        break;
      case ContentType::SequenceLine:
        word = MSG_UNIQUE_LINE;
        ForEachIn(*m_sequenceManager, &CSequenceManager::GetNoOfSequenceLines,
                  &CSequenceManager::GetSequenceLine, use);
        break;
      default:
        return E_FAIL;
    }
    const std::string text = CMessageService::Text(word);
    std::string candidate;
    int number = 0;
    do {
      candidate = text;
      AppendNumber(candidate, ++number);
    } while (used.Find(candidate));
    name = candidate;
    return S_OK;
  });
}

}  // namespace quillpg
