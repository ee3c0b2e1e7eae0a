#pragma once

#include "base/modified_flag.h"
#include "base/revision.h"
#include "program/listing_state.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;
class CWaveformManager;
struct WAVEFORM_ROWS_IMAGE;

/// A named run of pattern vectors, one bit for each channel of the instrument: vector after vector
/// in one buffer, width / 8 bytes each, channel c at bit c mod 8 of byte c / 8. The buffer is
/// absent when size or width is not positive or memory ran out.
struct QUILLPG_API BLOCK {
  BLOCK();
  BLOCK(const BLOCK&) = delete;
  BLOCK& operator=(const BLOCK&) = delete;
  ~BLOCK();

  /// Stores the name trimmed, sets the reference positions to 1 and `size`, marks the block changed
  /// and allocates. `size` in vectors, `width` in channels. Returns the allocation's status.
  Status Initialize(const std::string& name, int size, int width, char fill);

  /// Replaces the data by size x (width / 8) bytes, all 0x00 for a `fill` of code 0 and all 0xFF
  /// for every other character, '0' included (deliberate). E_OUTOFMEMORY, E_UNEXPECTED: the data is
  /// absent and the user was told.
  Status AllocateBlockData(char fill);
  /// True always.
  bool DeAllocateBlockData();

  /// Keeps the vectors that fit, fills new ones, sets the references to 1 and `size` and marks the
  /// block changed. The present size changes nothing. S_OK also when memory ran out, which leaves
  /// the new size without data (deliberate).
  Status ResizeBlock(int size, char fill);

  /// Gives the block another size and width with fresh data and hands the old data out; the
  /// references follow a change of size only. Marks the block changed and returns the allocation's
  /// status.
  Status Reshape(int size, int width, char fill, std::unique_ptr<std::uint8_t[]>& oldData);

  /// Copies size, name, width, listing state and data into `target`; not used, changed or waveform
  /// rows. Returns the allocation's status; a failed copy leaves the target as it was.
  Status Copy(BLOCK& target) const;

  const std::string& GetBlockName() const { return m_name; }
  /// Stores the name as given.
  Status SetBlockName(const std::string& name);
  int GetBlockSize() const { return m_size; }    ///< vectors
  int GetBlockWidth() const { return m_width; }  ///< channels
  bool IsValid() const { return true; }
  /// Stays the block's.
  CWaveformManager* GetWaveformManager() const { return m_waveformManager.get(); }

  /// What the compiler found: the sequence or a subsequence refers to the block.
  int IsBlockUsed() const { return m_used; }
  Status SetUsed(int used);
  /// Changed since the block was last sent to the hardware.
  bool IsChanged() const { return m_changed.IsSet(); }
  Status SetChanged(int changed);

  /// Null without data.
  std::uint8_t* Data() { return m_data.get(); }
  const std::uint8_t* Data() const { return m_data.get(); }
  /// Bytes of one vector: width / 8, rounded down.
  std::size_t RowBytes() const { return m_width > 0 ? static_cast<std::size_t>(m_width) / 8 : 0; }

  /// `list` counts the changes of name, size and width from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

  LISTING_STATE& GetListingState() { return m_listingState; }
  const LISTING_STATE& GetListingState() const { return m_listingState; }

  /// Number of group states.
  Status GetNoOfGroups(int& count) const;
  /// The state stays the block's; null and false without one. Names are not trimmed.
  bool GetGroupState(int index, GROUP_STATE** state) const;
  bool GetGroupState(const std::string& name, GROUP_STATE** state) const;
  bool FindGroupState(const std::string& name, int& index) const;
  /// Both take the state over on success only and look for no duplicate; E_FAIL for null and for a
  /// position outside 0 to 65535.
  Status AddGroupState(std::unique_ptr<GROUP_STATE>&& state);
  Status InsertGroupState(int position, std::unique_ptr<GROUP_STATE>&& state);
  /// True also for a bad range, which changes nothing (deliberate).
  bool DeleteGroupState(int first, int count);

  /// Bytes in a setup file, the data rounded up; Write rounds it down (deliberate).
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  /// `lastRows` keeps the row list met last, which an equal one then shares; null for none.
  Status Read(CSetupFileReader& reader, WAVEFORM_ROWS_IMAGE* lastRows = nullptr);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer, WAVEFORM_ROWS_IMAGE* lastRows = nullptr) const;

 private:
  void ReadData(CSetupFileReader& reader, int size, int width);
  void WriteData(CByteWriter& writer) const;

  int m_size = 0;
  int m_width = 0;
  int m_used = 0;
  CModifiedFlag m_changed;
  std::unique_ptr<std::uint8_t[]> m_data;
  std::string m_name;
  LISTING_STATE m_listingState;
  std::unique_ptr<CWaveformManager> m_waveformManager;
  CRevision m_revision;
};

inline std::string_view NameOf(const BLOCK& block) { return block.GetBlockName(); }

}  // namespace quillpg
