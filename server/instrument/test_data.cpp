#include "instrument/test_data.h"

#include "base/guard.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/event_handler.h"
#include "quillpg/host_services.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace quillpg {

namespace {

constexpr char kBlockName[] = "Block%d";
constexpr char kLineName[] = "Line%d";
constexpr char kSubSequenceName[] = "SubSeq%d";
constexpr char kEventName[] = "Event%d";

constexpr int kSubSequenceBlocks = 80;  // times 50 subsequences: the most lines a sequence may have

std::string Name(const char* format, int index) { return FormatText(format, {index}); }

// Writes the number of each vector into its row, channel c from bit c.
template <typename NumberOf>
void WriteNumbers(BLOCK& block, NumberOf numberOf) {
  std::uint8_t* row = block.Data();
  const std::size_t rowBytes = block.RowBytes();
  for (int vector = 0; vector < block.GetBlockSize(); ++vector, row += rowBytes) {
    const auto number = static_cast<std::uint32_t>(numberOf(vector));
    std::memset(row, 0, rowBytes);
    for (std::size_t i = 0; i < std::min<std::size_t>(rowBytes, 4); ++i) {
      row[i] = static_cast<std::uint8_t>(number >> (8 * i));
    }
  }
}

// Writes test programs into one instrument.
class CTestDataWriter {
 public:
  explicit CTestDataWriter(CInstrument& instrument) : m_instrument(instrument) {
    (void)instrument.GetBlockManager(&m_blocks);
    (void)instrument.GetSequenceManager(&m_sequence);
    (void)instrument.GetSubSequenceManager(&m_subSequences);
    (void)instrument.GetEventManager(&m_events);
    (void)instrument.GetMaxChannels(m_channels);
    (void)instrument.GetMinBlocksize(m_minSize);
    (void)instrument.GetChannelMode(m_mode);
  }

  Status WriteWalkingOnes() {
    return WriteDefaultBlock(m_channels, [this](BLOCK& block) {
      WriteNumbers(block, [](int) { return 0; });
      for (int i = 0; i < m_channels; ++i) {
        const std::size_t row = static_cast<std::size_t>(i) * block.RowBytes();
        block.Data()[row + static_cast<std::size_t>(i) / 8] = static_cast<std::uint8_t>(1 << i % 8);
      }
    });
  }

  Status WriteCells() {
    (void)m_blocks->DeleteAll();
    const int count = m_mode == ChannelMode::Half ? 8 : 4;
    for (int i = 0; i < count; ++i) {
      const Status status = AddBlock(i, m_minSize + i, [](int vector) { return vector; });
      if (Failed(status)) return status;
    }
    return S_OK;
  }

  Status WriteMaxBlockSize() {
    long size = 0;
    const Status status = m_instrument.GetMaxBlocksize(size);
    if (Failed(status) || size > std::numeric_limits<int>::max()) return E_FAIL;
    return WriteDefaultBlock(static_cast<int>(size), [](BLOCK& block) {
      WriteNumbers(block, [](int vector) { return vector; });
    });
  }

  Status WriteMaxBlocks() {
    constexpr long shares = 1000;  // deliberate: 4000 blocks of a thousandth of the memory each
    const long reserve = m_mode == ChannelMode::Half ? 7 : 3;
    long size = 0;
    Status status = m_instrument.GetMaxBlocksize(size);
    size = (size - reserve * MAX_BLOCKS) / shares;
    if (!Failed(status) && size > std::numeric_limits<int>::max()) status = E_FAIL;
    return Failed(status) ? status : WriteBlockPerLine(MAX_BLOCKS, static_cast<int>(size));
  }

  Status WriteMaxSubSequences() {
    (void)m_sequence->DeleteAll();
    (void)m_subSequences->DeleteAll();
    Status status = ReplaceBlocks(kSubSequenceBlocks, m_minSize);
    for (int i = 0; i < MAX_SUBSEQUENCES && !Failed(status); ++i) status = AddSubSequence(i);
    for (int i = 0; i < MAX_SUBSEQUENCES && !Failed(status); ++i) {
      status = AddLine(i, Name(kSubSequenceName, i), {});
    }
    return status;
  }

  Status WriteMaxEvents() {
    (void)m_sequence->DeleteAll();
    (void)m_events->DeleteAll();
    Status status = ReplaceBlocks(MAX_EVENTS, m_minSize);
    for (int i = 0; i < MAX_EVENTS && !Failed(status); ++i) {
      status = AddLine(i, Name(kBlockName, i), Name(kEventName, i));
    }
    // Events last: their notifications let the front end in.
    for (int i = 0; i < MAX_EVENTS && !Failed(status); ++i) status = AddEvent(i);
    return status;
  }

  Status WriteMaxSequenceLines() { return WriteBlockPerLine(MAX_SEQUENCE_LINES, m_minSize); }

 private:
  // The default block, resized and filled by `fill(block)`, and the default line that plays it
  // without end. Resized below the smallest size too: the walk over the channels is as long as
  // there are channels. The front end hears of the size last: whatever it does then meets the
  // finished data. A block that ran out of memory does not stay.
  template <typename Fill>
  Status WriteDefaultBlock(int size, Fill fill) {
    Status status = m_blocks->Default();
    if (!Failed(status)) status = m_sequence->Default();
    if (Failed(status)) return status;
    BLOCK* block = nullptr;
    (void)m_blocks->GetBlock(0, &block);  // Default has made it
    const bool resized = block->GetBlockSize() != size;
    (void)block->ResizeBlock(size, '0');  // S_OK always
    if (!block->Data() || block->GetBlockWidth() < m_channels) {
      (void)m_blocks->DeleteAll();
      return E_FAIL;
    }
    fill(*block);
    (void)block->SetChanged(1);
    (void)m_blocks->SetModified(1);
    if (!resized) return S_OK;
    const std::string name = block->GetBlockName();
    return m_instrument.Tell([&](CEventHandler& handler) { handler.OnBlockResized(name, 0); });
  }

  template <typename NumberOf>
  Status AddBlock(int index, int size, NumberOf numberOf) {
    const Status status = m_blocks->AddBlock(Name(kBlockName, index), size);
    if (Failed(status)) return status;
    BLOCK* block = nullptr;
    (void)m_blocks->GetBlock(index, &block);
    WriteNumbers(*block, numberOf);
    return S_OK;
  }

  // `count` blocks, each filled with its index.
  Status ReplaceBlocks(int count, int size) {
    (void)m_blocks->DeleteAll();
    for (int i = 0; i < count; ++i) {
      const Status status = AddBlock(i, size, [i](int) { return i; });
      if (Failed(status)) return status;
    }
    return S_OK;
  }

  Status WriteBlockPerLine(int count, int size) {
    (void)m_sequence->DeleteAll();
    Status status = ReplaceBlocks(count, size);
    for (int i = 0; i < count && !Failed(status); ++i) status = AddLine(i, Name(kBlockName, i), {});
    return status;
  }

  Status AddLine(int index, const std::string& output, const std::string& waitFor) {
    auto line = std::make_unique<SEQUENCE_LINE>();
    (void)line->SetLabel(Name(kLineName, index));
    (void)line->SetOutput(output);
    (void)line->SetWaitFor(waitFor);
    return m_sequence->InsertLine(index, std::move(line));
  }

  Status AddSubSequence(int index) {
    auto subSequence = std::make_unique<SUBSEQUENCE>();
    Status status = subSequence->SetSubSequenceName(Name(kSubSequenceName, index));
    for (int i = 0; i < kSubSequenceBlocks && !Failed(status); ++i) {
      auto line = std::make_unique<SUBSEQUENCE_LINE>();
      (void)line->SetRepeatCount(1);
      (void)line->SetOutput(Name(kBlockName, i));
      status = subSequence->AddSubSequenceLine(std::move(line));
    }
    return Failed(status) ? status
                          : m_subSequences->InsertSubSequence(index, std::move(subSequence));
  }

  // Row d is the number d: the least significant bit last, the ninth one at the signal input.
  Status AddEvent(int index) {
    int count = 0;
    (void)m_events->GetNoOfEvents(count);
    if (count != index) return E_FAIL;  // the front end has changed the list meanwhile
    auto event = std::make_unique<EVENT>();
    Status status = event->SetEventName(Name(kEventName, index));
    for (int row = 0; row < MAX_EVENT_DEFINITIONS && !Failed(status); ++row) {
      auto definition = std::make_unique<EVENT_DEFINITION>();
      for (int bit = 0; bit < EVENT_INPUTS; ++bit) {
        const bool set = (row >> bit & 1) != 0;
        (void)definition->SetEventDefBit(EVENT_INPUTS - 1 - bit, set ? '1' : '0');
      }
      status = event->AddEventDefinition(std::move(definition));
    }
    return Failed(status) ? status : m_events->InsertEvent(index, std::move(event));
  }

  CInstrument& m_instrument;
  CBlockManager* m_blocks = nullptr;
  CSequenceManager* m_sequence = nullptr;
  CSubSequenceManager* m_subSequences = nullptr;
  CEventManager* m_events = nullptr;
  int m_channels = 0;
  int m_minSize = 0;
  ChannelMode m_mode = ChannelMode::Full;
};

using WRITE = Status (CTestDataWriter::*)();

// By TestDataType.
constexpr std::array<WRITE, 7> kPrograms = {
    &CTestDataWriter::WriteWalkingOnes,     &CTestDataWriter::WriteCells,
    &CTestDataWriter::WriteMaxBlockSize,    &CTestDataWriter::WriteMaxBlocks,
    &CTestDataWriter::WriteMaxSubSequences, &CTestDataWriter::WriteMaxEvents,
    &CTestDataWriter::WriteMaxSequenceLines};

}  // namespace

Status GenerateTestData(CInstrument& instrument, TestDataType type) {
  const auto program = static_cast<std::int32_t>(type);
  if (program < 0 || program >= static_cast<std::int32_t>(kPrograms.size())) return S_OK;
  int modules = 0;
  (void)instrument.GetNoOfModules(modules);
  if (modules == 0) return E_FAIL;
  const CWaitCursor cursor;
  const Status status = GuardAllocation([&] {
    return (CTestDataWriter(instrument).*kPrograms[static_cast<std::size_t>(program)])();
  });
  return Failed(status) ? E_FAIL : S_OK;
}

}  // namespace quillpg
