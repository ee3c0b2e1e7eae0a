// The root's paste of program objects: blocks, events, sequence lines, subsequences, and the rows
// of one event or subsequence.

#include "app/message_catalogue.h"
#include "app/paste_support.h"
#include "instrument/instrument.h"
#include "program/event_manager.h"
#include "program/program_view.h"
#include "program/sequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/event_handler.h"

#include <cstddef>

namespace quillpg {

namespace {

PASTE_LIST<EVENT> EventsOf(const CInstrument& instrument) {
  const CProgramView program(instrument);
  return {MAX_EVENTS, [program] { return program.EventCount(); },
          [program](int i) { return program.EventAt(i); },
          [program](int position, std::unique_ptr<EVENT>&& copy) {
            return program.Events()->InsertEvent(position, std::move(copy));
          }};
}

PASTE_LIST<SEQUENCE_LINE> LinesOf(const CInstrument& instrument) {
  const CProgramView program(instrument);
  return {MAX_SEQUENCE_LINES, [program] { return program.LineCount(); },
          [program](int i) { return program.LineAt(i); },
          [program](int position, std::unique_ptr<SEQUENCE_LINE>&& copy) {
            return program.Sequence()->InsertLine(position, std::move(copy));
          }};
}

PASTE_LIST<EVENT_DEFINITION> RowsOf(EVENT& event) {
  return {MAX_EVENT_DEFINITIONS, [&event] { return event.GetNoOfEventDefinitions(); },
          [&event](int i) {
            EVENT_DEFINITION* row = nullptr;
            (void)event.GetEventDefinition(i, &row);  // the pointer tells
            return row;
          },
          [&event](int position, std::unique_ptr<EVENT_DEFINITION>&& copy) {
            return event.InsertEventDefinition(position, std::move(copy));
          }};
}

PASTE_LIST<SUBSEQUENCE_LINE> RowsOf(SUBSEQUENCE& subSequence) {
  return {MAX_SUBSEQUENCE_LINES, [&subSequence] { return subSequence.GetNoOfSubSequenceLines(); },
          [&subSequence](int i) {
            SUBSEQUENCE_LINE* line = nullptr;
            (void)subSequence.GetSubSequenceLine(i, &line);  // the pointer tells
            return line;
          },
          [&subSequence](int position, std::unique_ptr<SUBSEQUENCE_LINE>&& copy) {
            return subSequence.InsertSubSequenceLine(position, std::move(copy));
          }};
}

template <typename T>
Status KeepAsTheyAre(const PASTE_COPIES<T>& /*copies*/) {
  return S_OK;
}

// Refuses pairs of instruments between which blocks do not fit.
Status CheckShape(const CInstrument& source, const CInstrument& target) {
  ChannelMode sourceMode = ChannelMode::Full;
  ChannelMode targetMode = ChannelMode::Full;
  (void)source.GetChannelMode(sourceMode);
  (void)target.GetChannelMode(targetMode);
  if (sourceMode != targetMode) return RefusePaste(MSG_PASTE_CHANNEL_MODE);
  int sourceModules = 0;
  int targetModules = 0;
  (void)source.GetNoOfModules(sourceModules);
  (void)target.GetNoOfModules(targetModules);
  return sourceModules == targetModules ? S_OK : RefusePaste(MSG_PASTE_MODULE_COUNT);
}

bool HoldsSize(const CInstrument& instrument, int size) {
  int least = 0;
  long most = 0;
  (void)instrument.GetMinBlocksize(least);
  (void)instrument.GetMaxBlocksize(most);
  return size >= least && size <= most;
}

}  // namespace

// The list of blocks tells nobody of objects that are inserted. The front end hears of all copies
// when all are in their places, so that whatever it does then meets a finished list.
Status CAppServer::PasteBlock(CClipboardInfo* info) {
  PASTE_SIDES sides;
  Status status = sides.Find(*info, m_instrumentManager.get());
  if (!Failed(status)) status = CheckShape(*sides.source, *sides.target);
  if (Failed(status)) return status;
  auto target = BlocksOf(*sides.target);
  const int first = TargetPosition(*info, target.count());
  std::vector<std::string> pasted;
  std::size_t inserted = 0;  // fewer when memory runs out on the way
  target.insert = [&, insert = target.insert](int position, std::unique_ptr<BLOCK>&& copy) {
    const Status done = insert(position, std::move(copy));
    if (!Failed(done)) ++inserted;
    return done;
  };
  status = PasteObjects(*info, BlocksOf(*sides.source), target, [&](PASTE_COPIES<BLOCK>& copies) {
    CPasteNames names(MSG_UNIQUE_BLOCK);
    names.UseAll(target);
    names.UseAll(SubSequencesOf(*sides.target));
    for (const auto& copy : copies) {
      if (!HoldsSize(*sides.target, copy->GetBlockSize())) return E_FAIL;
      pasted.push_back(names.Take(copy->GetBlockName()));
      const Status named = copy->SetBlockName(pasted.back());
      if (Failed(named)) return named;
    }
    return S_OK;
  });
  for (std::size_t i = 0; i < inserted; ++i) {
    const int position = first + static_cast<int>(i);
    const Status told = sides.target->Tell(
        [&](CEventHandler& handler) { handler.OnBlockListChanged(pasted[i], position, 0); });
    if (Failed(told)) return told;
  }
  return status;
}

Status CAppServer::PasteEvent(CClipboardInfo* info) {
  PASTE_SIDES sides;
  const Status status = sides.Find(*info, m_instrumentManager.get());
  if (Failed(status)) return status;
  const auto target = EventsOf(*sides.target);
  return PasteObjects(*info, EventsOf(*sides.source), target, [&](PASTE_COPIES<EVENT>& copies) {
    CPasteNames names(MSG_UNIQUE_EVENT);
    names.UseAll(target);
    for (const auto& copy : copies) (void)copy->SetEventName(names.Take(copy->GetEventName()));
    return S_OK;
  });
}

// Storing its label also marks a copied line modified, whatever its original was.
Status CAppServer::PasteSeq(CClipboardInfo* info) {
  PASTE_SIDES sides;
  const Status status = sides.Find(*info, m_instrumentManager.get());
  if (Failed(status)) return status;
  const auto target = LinesOf(*sides.target);
  return PasteObjects(*info, LinesOf(*sides.source), target,
                      [&](PASTE_COPIES<SEQUENCE_LINE>& copies) {
                        CPasteNames labels(MSG_UNIQUE_LINE);
                        labels.UseAll(target);
                        for (const auto& copy : copies)
                          (void)copy->SetLabel(labels.Take(copy->GetLabel()));
                        return S_OK;
                      });
}

Status CAppServer::PasteSubSeq(CClipboardInfo* info) {
  PASTE_SIDES sides;
  const Status status = sides.Find(*info, m_instrumentManager.get());
  if (Failed(status)) return status;
  const auto target = SubSequencesOf(*sides.target);
  return PasteObjects(*info, SubSequencesOf(*sides.source), target,
                      [&](PASTE_COPIES<SUBSEQUENCE>& copies) {
                        CPasteNames names(MSG_UNIQUE_SUBSEQUENCE);
                        names.UseAll(BlocksOf(*sides.target));
                        names.UseAll(target);
                        for (const auto& copy : copies) {
                          (void)copy->SetSubSequenceName(names.Take(copy->GetSubSequenceName()));
                        }
                        return S_OK;
                      });
}

Status CAppServer::PasteEventDef(CClipboardInfo* info) {
  PASTE_SIDES sides;
  const Status status = sides.Find(*info, m_instrumentManager.get());
  if (Failed(status)) return status;
  EVENT* source = CProgramView(*sides.source).EventAt(info->sourceItem);
  EVENT* target = CProgramView(*sides.target).EventAt(info->targetItem);
  if (!source || !target) return PasteObjectMissing();
  return PasteObjects(*info, RowsOf(*source), RowsOf(*target), KeepAsTheyAre<EVENT_DEFINITION>);
}

Status CAppServer::PasteSubSeqDef(CClipboardInfo* info) {
  PASTE_SIDES sides;
  const Status status = sides.Find(*info, m_instrumentManager.get());
  if (Failed(status)) return status;
  SUBSEQUENCE* source = CProgramView(*sides.source).SubSequenceAt(info->sourceItem);
  SUBSEQUENCE* target = CProgramView(*sides.target).SubSequenceAt(info->targetItem);
  if (!source || !target) return PasteObjectMissing();
  return PasteObjects(*info, RowsOf(*source), RowsOf(*target), KeepAsTheyAre<SUBSEQUENCE_LINE>);
}

}  // namespace quillpg
