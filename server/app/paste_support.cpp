#include "app/paste_support.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/text.h"
#include "instrument/instrument_manager.h"
#include "program/block_manager.h"
#include "program/program_view.h"
#include "program/subsequence_manager.h"
#include "quillpg/grid_window.h"

namespace quillpg {

namespace {

CInstrument* ShownIn(CSorrelGridWnd* window, const CInstrumentManager* instruments) {
  CInstrument* shown = nullptr;
  if (window) window->GetInstrument(&shown);
  int position = -1;
  const bool listed =
      shown && instruments && instruments->GetInstrumentPos(shown, position) == S_OK;
  return listed ? shown : nullptr;
}

}  // namespace

Status RefusePaste(int message) {
  CMessageService::Notice(message);
  return E_FAIL;
}

Status PasteObjectMissing() { return RefusePaste(MSG_INTERNAL_ERROR); }

Status PASTE_SIDES::Find(const CClipboardInfo& info, const CInstrumentManager* instruments) {
  source = ShownIn(info.GetSourceWnd(), instruments);
  target = ShownIn(info.GetTargetWnd(), instruments);
  return source && target ? S_OK : PasteObjectMissing();
}

Status PASTE_RANGE::Set(int from, int to, int listed) {
  if (from < 0 || to < from || to >= listed) return E_FAIL;
  first = from;
  count = to - from + 1;
  return S_OK;
}

int TargetPosition(const CClipboardInfo& info, int count) {
  const bool inserts = info.insert == 1 && info.targetFirst >= 0 && info.targetFirst <= count;
  return inserts ? info.targetFirst : count;
}

PASTE_LIST<BLOCK> BlocksOf(const CInstrument& instrument) {
  const CProgramView program(instrument);
  return {MAX_BLOCKS, [program] { return program.BlockCount(); },
          [program](int i) { return program.BlockAt(i); },
          [program](int position, std::unique_ptr<BLOCK>&& copy) {
            return program.Blocks()->InsertBlock(position, std::move(copy));
          }};
}

PASTE_LIST<SUBSEQUENCE> SubSequencesOf(const CInstrument& instrument) {
  const CProgramView program(instrument);
  return {MAX_SUBSEQUENCES, [program] { return program.SubSequenceCount(); },
          [program](int i) { return program.SubSequenceAt(i); },
          [program](int position, std::unique_ptr<SUBSEQUENCE>&& copy) {
            return program.SubSequences()->InsertSubSequence(position, std::move(copy));
          }};
}

CPasteNames::CPasteNames(int word) : m_word(CMessageService::Text(word)) {}

void CPasteNames::Use(std::string_view name) {
  if (!name.empty()) m_used.insert(FoldCase(name));
}

std::string CPasteNames::Take(const std::string& own) {
  if (own.empty() || m_used.insert(FoldCase(std::string_view(own))).second) return own;
  // Names are never given back, so that the search goes on where it ended.
  std::string name;
  do {
    name = m_word;
    AppendNumber(name, ++m_number);
  } while (!m_used.insert(FoldCase(std::string_view(name))).second);
  return name;
}

}  // namespace quillpg
