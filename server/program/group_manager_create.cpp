#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "program/group_manager.h"
#include "quillpg/event_handler.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <charconv>
#include <limits>

// Groups made wholesale: the defaults and those of an import.

namespace quillpg {

namespace {

constexpr std::string_view kPodLetters = "ABCD";
constexpr int kSectionsPerPod = 2;  // FULL mode

// Number of channels as an import gives it: what is no number, or negative, is 0.
int ParseSize(std::string_view text) {
  text = Trim(text);
  int size = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), size);
  if (end != text.data() + text.size() || text.starts_with('-')) return 0;
  return error == std::errc::result_out_of_range ? std::numeric_limits<int>::max() : size;
}

struct SHAPE {
  bool full = true;
  bool merged = false;  // two or more modules: names bear the module's number
};

SHAPE ShapeOf(const CInstrument* instrument) {
  ChannelMode mode = ChannelMode::Full;
  int modules = 0;
  if (instrument) {
    (void)instrument->GetChannelMode(mode);
    (void)instrument->GetNoOfModules(modules);
  }
  return {.full = mode == ChannelMode::Full, .merged = modules > 1};
}

std::string DefaultChannelNames(const SHAPE& shape, char pod) {
  const std::string_view module = shape.merged ? "1" : "";
  if (!shape.full) return FormatText("%s%c0(7-0)", {module, pod});
  return FormatText("%s%c1(7-0),%s%c0(7-0)", {module, pod, module, pod});
}

}  // namespace

Status CGroupManager::Default() {
  if (!Instrument()) return E_FAIL;
  return GuardAllocation([&] {
    (void)DeleteAll();
    const SHAPE shape = ShapeOf(Instrument());
    int channelsPerPod = 0;
    (void)Instrument()->GetMaxChannelsPerPod(channelsPerPod);
    for (int pod = 0; pod < NUM_PODS; ++pod) {
      const std::string name =
          FormatText("%s%d", {CMessageService::Text(MSG_UNIQUE_GROUP), pod + 1});
      const Status status = AddGroup(name);
      if (Failed(status)) return status;
      for (int channel = channelsPerPod - 1; channel >= 0; --channel) {
        (void)Instrument()->AddChannelToGroup(name, channelsPerPod * pod + channel, -1);
      }
      const char letter = kPodLetters[static_cast<std::size_t>(pod)];
      (void)m_groups.At(pod)->SetChannelNames(DefaultChannelNames(shape, letter));
    }
    return S_OK;
  });
}

Status CGroupManager::GetSectionName(int section, std::string& name) const {
  name.clear();
  if (section < 0) return S_OK;
  const SHAPE shape = ShapeOf(Instrument());
  const int sectionsPerPod = shape.full ? kSectionsPerPod : 1;
  if (shape.merged) AppendNumber(name, section / (NUM_PODS * sectionsPerPod) + 1);
  name += kPodLetters[static_cast<std::size_t>(section / sectionsPerPod % NUM_PODS)];
  AppendNumber(name, section % sectionsPerPod);
  return S_OK;
}

Status CGroupManager::CheckGrouping(const std::vector<std::string>& names,
                                    const std::vector<std::string>& sizes) const {
  for (std::size_t i = 0; i < names.size(); ++i) {
    const GROUP* group = m_groups.At(Find(names[i]));
    if (!group || i >= sizes.size() || group->GetNoOfChannels() != ParseSize(sizes[i])) {
      return PG_E_GROUPING;
    }
  }
  return S_OK;
}

Status CGroupManager::CreateGroups(const std::vector<std::string>& names,
                                   const std::vector<std::string>& sizes) {
  if (!Failed(CheckGrouping(names, sizes))) return S_OK;
  if (!Instrument()) return E_FAIL;
  const auto lifetime = Instrument()->Lifetime();
  if (!CMessageService::Ask(MSG_IMPORT_REPLACE_GROUPS)) return PG_E_ABORTED;
  if (lifetime.expired()) return E_FAIL;  // deleted while the box stood
  return GuardAllocation([&] {
    const Status announced = AnnounceAllDeleted();
    if (Failed(announced)) return announced;
    (void)DeleteAll();
    int maxChannels = 0;
    (void)Instrument()->GetMaxChannels(maxChannels);
    int start = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (Failed(AddGroup(names[i]))) continue;
      GROUP* group = m_groups.At(static_cast<int>(i));  // by position, not by name: deliberate
      if (!group) continue;
      const int size = i < sizes.size() ? ParseSize(sizes[i]) : 0;
      const int taken = std::min(size, std::max(maxChannels - start, 0));
      FillGroup(*group, start, taken);
      if (taken < size) break;  // the channels have run out: deliberate, later names stay away
      start += taken;
    }
    return S_OK;
  });
}

Status CGroupManager::AnnounceAllDeleted() const {
  for (int i = 0; i < m_groups.Count(); ++i) {
    if (!m_groups.At(i)) continue;
    const Status told = AnnounceDeleted(i);
    if (Failed(told)) return told;
    UpdateListingState();
  }
  return S_OK;
}

void CGroupManager::FillGroup(GROUP& group, int first, int count) const {
  for (int channel = first + count - 1; channel >= first; --channel) {
    (void)group.AddChannel(channel, -1);
  }
  Instrument()->RebuildChannelNames(group);
}

}  // namespace quillpg
