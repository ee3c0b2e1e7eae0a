#include "exchange/capture_loader.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/text.h"
#include "exchange/capture_import.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/block.h"
#include "program/block_manager.h"
#include "program/group.h"
#include "program/group_manager.h"
#include "program/sequence_line.h"
#include "program/sequence_manager.h"
#include "quillpg/app_server.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace quillpg {

CCaptureLoader::CCaptureLoader(const CAPTURE& capture, const CAPTURE_PLAN& plan)
    : m_capture(capture),
      m_plan(plan),
      m_runs(capture, plan.grid),
      m_blockWord(CMessageService::Text(MSG_UNIQUE_BLOCK)) {}

Status CCaptureLoader::Load(CAppServer& server, const Progress& progress,
                            CInstrument** instrument) {
  CInstrumentManager* instruments = nullptr;
  Status status = server.GetInstrumentManager(&instruments);
  if (Failed(status) || !instruments) return Fail("the server has no instrument manager");
  CInstrument* loaded = nullptr;
  status = MakeInstrument(server, *instruments, &loaded);
  if (Failed(status)) return status;
  status = ApplySettings(*loaded);
  if (!Failed(status)) status = ClearProgram(*loaded);
  if (!Failed(status)) status = MakeGroups(*loaded);
  if (!Failed(status)) status = MakeBlocks(*loaded, progress);
  if (!Failed(status)) status = MakeSequence(*loaded);
  if (Failed(status)) {
    (void)instruments->DeleteAll();  // no half-loaded program stays behind
    return status;
  }
  *instrument = loaded;
  return S_OK;
}

Status CCaptureLoader::MakeInstrument(CAppServer& server, CInstrumentManager& instruments,
                                      CInstrument** instrument) {
  if (instruments.IsBusy()) return Fail("a program is being compiled or downloaded");
  CModuleManager* modules = nullptr;
  int count = 0;
  Status status = server.GetModuleManager(&modules);
  if (!Failed(status) && modules) status = modules->GetNoOfModules(count);
  if (Failed(status) || count < m_plan.modules) return Fail("the system has too few modules");
  (void)instruments.DeleteAll();
  auto made = std::make_unique<CInstrument>();
  status = made->Initialize();
  for (int i = 0; i < m_plan.modules && !Failed(status); ++i) {
    CModule* module = nullptr;
    status = modules->GetModuleAt(i, &module);
    if (!Failed(status)) status = made->AddModule(module);
  }
  if (!Failed(status)) {
    status = made->SetInstrumentName(FormatText(CMessageService::Text(MSG_INSTRUMENT_NAME), {1}));
  }
  if (!Failed(status)) status = made->Default();
  if (!Failed(status)) status = instruments.AddInstrument(made.get());
  if (Failed(status)) return Fail("the instrument cannot be made");
  *instrument = made.release();
  return instruments.SetCurrentInst(0);
}

Status CCaptureLoader::ApplySettings(CInstrument& instrument) {
  Status status = instrument.SetChannelMode(m_plan.mode);
  if (Failed(status)) return Fail("the modules refuse the channel mode");
  status = instrument.SetClockPeriod(m_plan.grid.period.ToDouble());
  if (Failed(status)) return Fail("the modules refuse the clock period");
  long depth = 0;
  status = instrument.GetMemoryDepth(depth);
  return Failed(status) || depth < m_plan.program.memory
             ? Fail("the modules' memory does not hold the capture")
             : S_OK;
}

// Blocks go before groups come: each block would follow every single group.
Status CCaptureLoader::ClearProgram(CInstrument& instrument) {
  CSequenceManager* sequence = nullptr;
  CBlockManager* blocks = nullptr;
  CGroupManager* groups = nullptr;
  Status status = instrument.GetSequenceManager(&sequence);
  if (!Failed(status)) status = sequence->DeleteAll();
  if (!Failed(status)) status = instrument.GetBlockManager(&blocks);
  if (!Failed(status)) status = blocks->DeleteAll();
  if (!Failed(status)) status = instrument.GetGroupManager(&groups);
  if (!Failed(status)) status = groups->DeleteAll();
  return Failed(status) ? Fail("the default program cannot be deleted") : S_OK;
}

Status CCaptureLoader::MakeGroups(CInstrument& instrument) {
  CGroupManager* groups = nullptr;
  Status status = instrument.GetGroupManager(&groups);
  // All names come first and the channels go in by position: every channel sets the index of the
  // names back, and captures name their signals by the thousand.
  for (const std::string& name : GroupNamesOf(m_capture.signals)) {
    if (!Failed(status)) status = groups->AddGroup(name);
  }
  for (int i = 0; const CAPTURE_SIGNAL& signal : m_capture.signals) {
    GROUP* group = nullptr;
    if (!Failed(status)) status = groups->GetGroup(i++, &group);
    for (int bit = signal.width - 1; bit >= 0 && !Failed(status); --bit) {
      status = group->AddChannel(signal.firstBit + bit, -1);
    }
    if (!Failed(status)) instrument.RebuildChannelNames(*group);
  }
  return Failed(status) ? Fail("the groups cannot be made") : S_OK;
}

Status CCaptureLoader::MakeBlocks(CInstrument& instrument, const Progress& progress) {
  CBlockManager* blocks = nullptr;
  Status status = instrument.GetBlockManager(&blocks);
  const std::vector<FOLDED_PROGRAM::BLOCK_SOURCE>& sources = m_plan.program.blocks;
  const int count = static_cast<int>(sources.size());
  for (int i = 0; i < count && !Failed(status); ++i) {
    const FOLDED_PROGRAM::BLOCK_SOURCE& source = sources[static_cast<std::size_t>(i)];
    BLOCK* block = nullptr;
    status = blocks->AddBlock(BlockName(i), static_cast<int>(source.size));
    if (!Failed(status)) status = blocks->GetBlock(i, &block);
    if (Failed(status) || !block || !block->Data()) return Fail("the blocks cannot be made");
    Fill(*block, source.first);
    if (!progress(i * 100 / count)) return PG_E_ABORTED;
  }
  return Failed(status) ? Fail("the blocks cannot be made") : S_OK;
}

// Block rows and capture rows number the channels alike: channel c is bit c mod 8 of byte c / 8.
void CCaptureLoader::Fill(BLOCK& block, std::int64_t first) const {
  const std::size_t rowBytes = block.RowBytes();
  const auto words = static_cast<std::size_t>(m_capture.wordsPerRow);
  std::vector<std::uint8_t> row(std::max(rowBytes, words * 8));
  std::uint8_t* to = block.Data();
  std::int64_t left = block.GetBlockSize();
  for (std::size_t run = m_runs.At(first); left > 0; ++run) {
    const std::uint64_t* source = m_runs.Row(run);
    for (std::size_t i = 0; i < words * 8; ++i) {
      row[i] = static_cast<std::uint8_t>(source[i / 8] >> (i % 8 * 8));
    }
    std::int64_t count = left;
    if (run + 1 < m_runs.Count()) count = std::min(count, m_runs.First(run + 1) - first);
    first += count;
    left -= count;
    for (; count > 0; --count, to += rowBytes) std::memcpy(to, row.data(), rowBytes);
  }
}

Status CCaptureLoader::MakeSequence(CInstrument& instrument) {
  CSequenceManager* sequence = nullptr;
  Status status = instrument.GetSequenceManager(&sequence);
  int position = 0;
  for (const FOLDED_PROGRAM::LINE& source : m_plan.program.lines) {
    if (Failed(status)) break;
    auto line = std::make_unique<SEQUENCE_LINE>();
    (void)line->SetOutput(BlockName(source.block));  // the setters of a line store as given
    (void)line->SetRepeatCount(source.repeat);
    status = sequence->InsertLine(position++, std::move(line));
  }
  return Failed(status) ? Fail("the sequence cannot be made") : S_OK;
}

std::string CCaptureLoader::BlockName(int block) const {
  std::string name = m_blockWord;
  AppendNumber(name, block + 1);
  return name;
}

Status CCaptureLoader::Fail(const std::string& text) {
  m_errorText = text;
  return E_FAIL;
}

std::vector<std::string> GroupNamesOf(const std::vector<CAPTURE_SIGNAL>& signals) {
  std::unordered_set<std::string> own;  // a number must not make a later signal's name
  for (const CAPTURE_SIGNAL& signal : signals) own.insert(FoldCase(signal.name));
  std::unordered_set<std::string> used;
  std::unordered_map<std::string, int> lastNumber;  // aliases come by the thousand
  std::vector<std::string> names;
  for (const CAPTURE_SIGNAL& signal : signals) {
    std::string name = signal.name;
    int& last = lastNumber.try_emplace(FoldCase(name), name.empty() ? 0 : 1).first->second;
    while (name.empty() || !used.insert(FoldCase(name)).second) {
      do {
        name = signal.name + "_";
        AppendNumber(name, ++last);
      } while (own.contains(FoldCase(name)));
    }
    names.push_back(name);
  }
  return names;
}

}  // namespace quillpg
