#include "base/guard.h"
#include "base/text.h"
#include "hardware/module.h"
#include "instrument/instrument.h"
#include "program/group_manager.h"
#include "quillpg/event_handler.h"

#include <cstddef>
#include <stdexcept>

// Names of channels, and channels of groups.

namespace quillpg {

namespace {

constexpr int kSectionChannels = 8;

// A place in the list inserts there, anything else appends.
int InsertPosition(const GROUP& group, int position) {
  return position >= 0 && position <= group.GetNoOfChannels() ? position : -1;
}

bool HoldsChannelAlready(const GROUP& group, int channel) {
  int index = -1;
  return group.FindChannel(channel, index) == S_OK;
}

}  // namespace

Status CInstrument::GetChannelName(int channel, std::string& name) const {
  if (!HoldsChannel(channel)) return E_FAIL;
  const int inModule = channel % ChannelsPerModule();
  return GuardAllocation([&] {
    return ModuleAt(channel / ChannelsPerModule())
        ->GetChannelName(inModule / ChannelsPerPod(), inModule % ChannelsPerPod(), name);
  });
}

Status CInstrument::SetChannelName(int channel, const std::string& name) {
  int holder = -1;
  if (!name.empty() && GetChannelId(name, holder) == S_OK) {
    return holder == channel ? S_OK : E_FAIL;
  }
  if (!HoldsChannel(channel)) return E_FAIL;
  const int inModule = channel % ChannelsPerModule();
  const Status status = GuardAllocation([&] {
    return ModuleAt(channel / ChannelsPerModule())
        ->SetChannelName(inModule / ChannelsPerPod(), inModule % ChannelsPerPod(), name);
  });
  if (Failed(status)) return status;
  return Tell([&](CEventHandler& handler) { handler.OnChannelRenamed(name, channel); });
}

Status CInstrument::GetChannelDefaultName(int channel, std::string& name) const {
  if (!HoldsChannel(channel)) return E_FAIL;
  const int module = channel / ChannelsPerModule();
  const int inModule = channel % ChannelsPerModule();
  const int bit = inModule % ChannelsPerPod();
  return GuardAllocation([&] {
    name.clear();
    if (m_modules.size() > 1) AppendNumber(name, module + 1);
    name += "ABCD"[inModule / ChannelsPerPod()];
    AppendNumber(name, bit / 8);
    name += '(';
    AppendNumber(name, bit % 8);
    name += ')';
    return S_OK;
  });
}

Status CInstrument::GetChannelId(const std::string& name, int& channel) const {
  channel = -1;
  if (name.empty()) return E_FAIL;
  return GuardAllocation([&] {
    std::string candidate;
    const auto find = [&](auto nameOf) {
      for (int i = 0; i < MaxChannels(); ++i) {
        candidate.clear();
        if ((this->*nameOf)(i, candidate) == S_OK && EqualNoCase(candidate, name)) {
          channel = i;
          return true;
        }
      }
      return false;
    };
    // Every user name goes before any default name.
    return find(&CInstrument::GetChannelName) || find(&CInstrument::GetChannelDefaultName) ? S_OK
                                                                                           : E_FAIL;
  });
}

// --- channels of groups ---

GROUP* CInstrument::FindGroup(const std::string& name) const {
  GROUP* group = nullptr;
  (void)m_groupManager->GetGroup(name, &group);  // null for an unknown one
  return group;
}

void CInstrument::RebuildChannelNames(GROUP& group, std::size_t mostBytes) const {
  std::string text;
  std::string name;
  for (const int channel : group.Channels()) {
    name.clear();
    (void)GetChannelName(channel, name);
    if (name.empty()) (void)GetChannelDefaultName(channel, name);
    if (!text.empty()) text += ',';
    text += name;
    if (text.size() > mostBytes) throw std::length_error("channel names");
  }
  (void)group.SetChannelNames(text);
}

Status CInstrument::AddChannelToGroup(const std::string& group, int channel, int position) {
  GROUP* target = FindGroup(group);
  if (!target || !HoldsChannel(channel) || HoldsChannelAlready(*target, channel)) return E_FAIL;
  return GuardAllocation([&] {
    const Status status = target->AddChannel(channel, InsertPosition(*target, position));
    if (!Failed(status)) RebuildChannelNames(*target);
    return status;
  });
}

Status CInstrument::DeleteChannelFromGroup(const std::string& group, int channel) {
  GROUP* target = FindGroup(group);
  if (!target || !HoldsChannel(channel) || Failed(target->DeleteChannel(channel))) return E_FAIL;
  return GuardAllocation([&] {
    RebuildChannelNames(*target);
    return S_OK;
  });
}

Status CInstrument::AddSectionToGroup(const std::string& group, int section, int position) {
  GROUP* target = FindGroup(group);
  if (!target || section < 0 || section >= MaxChannels() / kSectionChannels) return E_FAIL;
  return GuardAllocation([&] {
    int place = InsertPosition(*target, position);
    for (int i = kSectionChannels; i-- > 0;) {
      const int channel = section * kSectionChannels + i;
      if (HoldsChannelAlready(*target, channel)) continue;
      const Status status = target->AddChannel(channel, place);
      if (Failed(status)) return status;
      if (place >= 0) ++place;
    }
    RebuildChannelNames(*target);
    return S_OK;
  });
}

Status CInstrument::DeleteSectionFromGroup(const std::string& group, int section) {
  GROUP* target = FindGroup(group);
  if (!target || section < 0 || section >= MaxChannels() / kSectionChannels) return E_FAIL;
  bool deleted = false;
  for (int i = 0; i < kSectionChannels; ++i) {
    deleted |= target->DeleteChannel(section * kSectionChannels + i) == S_OK;
  }
  if (!deleted) return E_FAIL;
  return GuardAllocation([&] {
    RebuildChannelNames(*target);
    return S_OK;
  });
}

}  // namespace quillpg
