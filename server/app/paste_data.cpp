// The root's paste of pattern data: vectors of all groups, of some groups, of some channels.

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "app/paste_support.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "program/group_plan.h"
#include "program/program_view.h"
#include "quillpg/app_server.h"
#include "quillpg/event_handler.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <span>

namespace quillpg {

namespace {

// Places from `first` on of `count`; 0 for a place that is none of them.
int RoomFrom(int first, int count) { return first >= 0 && first < count ? count - first : 0; }

// Vectors that move between two blocks.
class CVectorPaste {
 public:
  // Looks instruments, blocks and the range of vectors up: anew after every box, since the front
  // end may change the system while the box stands.
  Status Prepare(const CClipboardInfo& info, const CInstrumentManager* instruments);

  CInstrument& Source() const { return *m_sides.source; }
  CInstrument& Target() const { return *m_sides.target; }
  const std::string& SourceBlock() const { return m_from->GetBlockName(); }
  const std::string& TargetBlock() const { return m_to->GetBlockName(); }

  // Has the values of `source` written to `target`, last channel to last channel; the target's
  // surplus channels are cleared. Both must stay until Write.
  void Add(const CGroupPlan& source, const CGroupPlan& target) {
    m_pairs.push_back({&source, &target});
  }
  // Writes, marks the block as changed and tells the front end.
  Status Write();

 private:
  struct PAIR {
    const CGroupPlan* source;
    const CGroupPlan* target;
  };

  void WriteVectors(const std::uint8_t* from);

  PASTE_SIDES m_sides;
  BLOCK* m_from = nullptr;
  BLOCK* m_to = nullptr;
  int m_toBlock = -1;
  int m_firstTarget = 0;
  PASTE_RANGE m_vectors;  // of the source, as far as the target reaches
  std::vector<PAIR> m_pairs;
};

Status CVectorPaste::Prepare(const CClipboardInfo& info, const CInstrumentManager* instruments) {
  const Status status = m_sides.Find(info, instruments);
  if (Failed(status)) return status;
  m_from = CProgramView(Source()).BlockAt(info.sourceItem);
  m_to = CProgramView(Target()).BlockAt(info.targetItem);
  if (!m_from || !m_to || !m_from->Data() || !m_to->Data()) return PasteObjectMissing();
  m_toBlock = info.targetItem;
  m_firstTarget = info.targetFirst;
  const int room = RoomFrom(m_firstTarget, m_to->GetBlockSize());
  if (room == 0) return E_FAIL;
  const Status ranged = m_vectors.Set(info.sourceFirst, info.sourceLast, m_from->GetBlockSize());
  m_vectors.count = std::min(m_vectors.count, room);
  return ranged;
}

Status CVectorPaste::Write() {
  const std::uint8_t* from =
      m_from->Data() + static_cast<std::size_t>(m_vectors.first) * m_from->RowBytes();
  std::vector<std::uint8_t> copy;  // the source is read as a whole before the first write
  if (m_from == m_to) {
    copy.assign(from, from + static_cast<std::size_t>(m_vectors.count) * m_from->RowBytes());
    from = copy.data();
  }
  WriteVectors(from);
  (void)m_to->SetChanged(1);
  (void)CProgramView(Target()).Blocks()->SetModified(1);
  return Target().Tell([this](CEventHandler& handler) { handler.OnPatternDataChanged(m_toBlock); });
}

void CVectorPaste::WriteVectors(const std::uint8_t* from) {
  std::size_t words = 0;
  for (const PAIR& pair : m_pairs) {
    words = std::max({words, pair.source->Words(), pair.target->Words()});
  }
  std::vector<std::uint64_t> value(words);
  std::uint8_t* to = m_to->Data() + static_cast<std::size_t>(m_firstTarget) * m_to->RowBytes();
  for (int i = 0; i < m_vectors.count; ++i) {
    for (const PAIR& pair : m_pairs) {
      std::ranges::fill(value, 0);  // Load sets the words of its own plan alone
      pair.source->Load(from, m_from->RowBytes(), value);
      pair.target->Store(to, m_to->RowBytes(), value);
    }
    from += m_from->RowBytes();
    to += m_to->RowBytes();
  }
}

struct GROUP_PAIR {
  GROUP* source = nullptr;
  GROUP* target = nullptr;

  bool Differs() const { return source->GetNoOfChannels() != target->GetNoOfChannels(); }
};

using GROUP_PAIRS = std::vector<GROUP_PAIR>;

// The groups from `sourceFirst` and `targetFirst` on, position by position.
Status PairGroups(const CVectorPaste& paste, int sourceFirst, int targetFirst, int count,
                  GROUP_PAIRS& pairs) {
  pairs.clear();
  for (int i = 0; i < count; ++i) {
    GROUP_PAIR pair;
    pair.source = CProgramView(paste.Source()).GroupAt(sourceFirst + i);
    pair.target = CProgramView(paste.Target()).GroupAt(targetFirst + i);
    if (!pair.source || !pair.target) return PasteObjectMissing();
    pairs.push_back(pair);
  }
  return S_OK;
}

// What tells the blocks and groups of a paste from others: their names, the groups' sizes.
std::vector<std::string> TraitsOf(const CVectorPaste& paste, const GROUP_PAIRS& pairs) {
  std::vector<std::string> traits = {paste.SourceBlock(), paste.TargetBlock()};
  for (const GROUP_PAIR& pair : pairs) {
    for (const GROUP* group : {pair.source, pair.target}) {
      traits.push_back(group->GetGroupName());
      traits.push_back(std::to_string(group->GetNoOfChannels()));
    }
  }
  return traits;
}

// Asks the user, then has `find()` look all up anew. What the user agreed to holds for the blocks
// and groups that were there: refuses when they are others now.
template <typename Question, typename Find>
Status Confirm(const Question& question, const CVectorPaste& paste, const GROUP_PAIRS& pairs,
               Find&& find) {
  const std::vector<std::string> traits = TraitsOf(paste, pairs);
  if (!CMessageService::Ask(question)) return PG_E_ABORTED;
  const Status status = find();
  if (Failed(status)) return status;
  return TraitsOf(paste, pairs) == traits ? S_OK : PasteObjectMissing();
}

Status WritePairs(CVectorPaste& paste, const GROUP_PAIRS& pairs) {
  for (const GROUP_PAIR& pair : pairs) paste.Add(pair.source->Plan(), pair.target->Plan());
  return paste.Write();
}

// `count` neighbouring channels.
CGroupPlan PlanOf(int first, int count) {
  std::vector<int> channels(static_cast<std::size_t>(count));
  std::iota(channels.rbegin(), channels.rend(), first);  // one stretch in a plan
  return CGroupPlan(channels);
}

}  // namespace

Status CAppServer::PasteRows(CClipboardInfo* info) {
  CVectorPaste paste;
  GROUP_PAIRS pairs;
  const auto find = [&] {
    const Status status = paste.Prepare(*info, m_instrumentManager.get());
    if (Failed(status)) return status;
    const int groups = CProgramView(paste.Source()).GroupCount();
    if (groups != CProgramView(paste.Target()).GroupCount())
      return RefusePaste(MSG_COLUMN_COUNT_MISMATCH);
    return PairGroups(paste, 0, 0, groups, pairs);
  };
  Status status = find();
  if (!Failed(status) && std::ranges::any_of(pairs, &GROUP_PAIR::Differs))
    status = Confirm(MSG_ROW_SIZE_MISMATCH, paste, pairs, find);
  return Failed(status) ? status : WritePairs(paste, pairs);
}

Status CAppServer::PasteColumn(CClipboardInfo* info) {
  CVectorPaste paste;
  GROUP_PAIRS pairs;
  const auto find = [&] {
    const Status status = paste.Prepare(*info, m_instrumentManager.get());
    if (Failed(status)) return status;
    PASTE_RANGE columns;
    const Status ranged = columns.Set(info->sourceFirstColumn, info->sourceLastColumn,
                                      CProgramView(paste.Source()).GroupCount());
    const int room = RoomFrom(info->targetFirstColumn, CProgramView(paste.Target()).GroupCount());
    if (Failed(ranged) || room == 0) return E_FAIL;
    return PairGroups(paste, columns.first, info->targetFirstColumn, std::min(columns.count, room),
                      pairs);
  };
  Status status = find();
  if (Failed(status)) return status;
  const std::string question = CMessageService::Text(MSG_COLUMN_SIZE_MISMATCH);
  for (std::size_t i = 0; !Failed(status) && i < pairs.size(); ++i) {
    const GROUP_PAIR& pair = pairs[i];
    if (!pair.Differs()) continue;
    status =
        Confirm(FormatText(question, {pair.source->GetGroupName(), pair.target->GetGroupName()}),
                paste, pairs, find);
  }
  return Failed(status) ? status : WritePairs(paste, pairs);
}

Status CAppServer::PasteChannelCol(CClipboardInfo* info) {
  CVectorPaste paste;
  Status status = paste.Prepare(*info, m_instrumentManager.get());
  if (Failed(status)) return status;
  int sourceChannels = 0;
  int targetChannels = 0;
  (void)paste.Source().GetMaxChannels(sourceChannels);
  (void)paste.Target().GetMaxChannels(targetChannels);
  PASTE_RANGE channels;
  status = channels.Set(info->sourceFirstColumn, info->sourceLastColumn, sourceChannels);
  const int room = RoomFrom(info->targetFirstColumn, targetChannels);
  if (Failed(status) || room == 0) return E_FAIL;
  const int count = std::min(channels.count, room);
  const CGroupPlan source = PlanOf(channels.first, count);
  const CGroupPlan target = PlanOf(info->targetFirstColumn, count);
  paste.Add(source, target);
  return paste.Write();
}

}  // namespace quillpg
