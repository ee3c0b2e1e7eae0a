#pragma once

#include "program/block_manager.h"
#include "program/waveform_manager.h"

#include <cstdint>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

namespace quillpg {

/// Block records written and read one field after the other, with a call of the stream for each.
class CPlainSetupFile {
 public:
  static void Write(std::ostream& stream, const CBlockManager& blocks) {
    int count = 0;
    (void)blocks.GetNoOfBlocks(count);
    PutNumber(stream, count);
    for (int i = 0; i < count; ++i) {
      BLOCK* block = nullptr;
      (void)blocks.GetBlock(i, &block);
      WriteBlock(stream, *block);
    }
  }

  static void Read(std::istream& stream, CBlockManager& blocks) {
    (void)blocks.DeleteAll();
    const int count = GetNumber(stream);
    for (int i = 0; i < count; ++i) {
      auto block = std::make_unique<BLOCK>();
      ReadBlock(stream, *block);
      (void)blocks.InsertBlock(i, std::move(block));
    }
  }

 private:
  static void PutNumber(std::ostream& stream, std::int32_t number) {
    char bytes[4];
    for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>(number >> (8 * i));
    stream.write(bytes, 4);
  }
  static void PutText(std::ostream& stream, const std::string& text) {
    PutNumber(stream, static_cast<std::int32_t>(text.size()) + 1);
    stream.write(text.c_str(), static_cast<std::streamsize>(text.size()) + 1);
  }
  static std::int32_t GetNumber(std::istream& stream) {
    char bytes[4] = {};
    stream.read(bytes, 4);
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
      number |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[i])) << (8 * i);
    }
    return static_cast<std::int32_t>(number);
  }
  static std::string GetText(std::istream& stream) {
    std::string text(static_cast<std::size_t>(GetNumber(stream)), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(text.find('\0'));
    return text;
  }

  static void WriteBlock(std::ostream& stream, const BLOCK& block) {
    PutNumber(stream, block.GetBlockSize());
    PutNumber(stream, block.GetBlockWidth());
    PutText(stream, block.GetBlockName());
    stream.write(reinterpret_cast<const char*>(block.Data()),
                 std::streamsize{block.GetBlockSize()} * block.GetBlockWidth() / 8);
    const LISTING_STATE& listing = block.GetListingState();
    PutNumber(stream, listing.firstReference);
    PutNumber(stream, listing.secondReference);
    PutNumber(stream, listing.groupStates.Count());
    listing.groupStates.ForEach([&stream](const GROUP_STATE& state) {
      PutText(stream, state.GetGroupName());
      PutNumber(stream, static_cast<std::int32_t>(state.GetRadix()));
      PutNumber(stream, state.GetDisplayValue1());
      PutNumber(stream, state.GetDisplayValue3());
    });
    const CWaveformManager& rows = *block.GetWaveformManager();
    int count = 0;
    (void)rows.GetNoOfRows(count);
    PutNumber(stream, count);
    for (int i = 0; i < count; ++i) WriteRow(stream, *rows.Row(i));
  }

  static void WriteRow(std::ostream& stream, const CWaveformData& row) {
    PutNumber(stream, row.reserved);
    PutNumber(stream, row.channel);
    PutNumber(stream, row.groupIndex);
    PutNumber(stream, static_cast<std::int32_t>(row.waveType));
    PutText(stream, row.groupName);
    PutText(stream, row.channelName);
    PutNumber(stream, row.flag);
  }

  static void ReadBlock(std::istream& stream, BLOCK& block) {
    const int size = GetNumber(stream);
    const int width = GetNumber(stream);
    (void)block.Initialize(GetText(stream), size, width, '\0');
    stream.read(reinterpret_cast<char*>(block.Data()), std::streamsize{size} * width / 8);
    LISTING_STATE& listing = block.GetListingState();
    listing.firstReference = GetNumber(stream);
    listing.secondReference = GetNumber(stream);
    const int states = GetNumber(stream);
    for (int i = 0; i < states; ++i) {
      auto state = std::make_unique<GROUP_STATE>();
      (void)state->SetGroupName(GetText(stream));
      (void)state->SetRadix(static_cast<Radix>(GetNumber(stream)));
      (void)state->SetDisplayValue1(GetNumber(stream));
      (void)state->SetDisplayValue3(GetNumber(stream));
      (void)block.AddGroupState(std::move(state));
    }
    const int rows = GetNumber(stream);
    for (int i = 0; i < rows; ++i) {
      auto row = std::make_unique<CWaveformData>();
      row->reserved = GetNumber(stream);
      row->channel = GetNumber(stream);
      row->groupIndex = GetNumber(stream);
      row->waveType = static_cast<WaveType>(GetNumber(stream));
      row->groupName = GetText(stream);
      row->channelName = GetText(stream);
      row->flag = GetNumber(stream);
      (void)block.GetWaveformManager()->AddWaveformData(std::move(row));
    }
  }
};

}  // namespace quillpg
