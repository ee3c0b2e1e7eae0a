#pragma once

#include "base/modified_flag.h"
#include "base/ordered_list.h"
#include "program/block.h"
#include "program/program_manager.h"

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// The blocks of an instrument, at most MAX_BLOCKS slots. Names need neither be given nor unique:
/// the compiler reports what is wrong with them. Every change sets the modified flag, which only
/// SetModified clears.
class QUILLPG_API CBlockManager : public CProgramManager {
 public:
  CBlockManager();
  ~CBlockManager() override;

  /// Also hands the handler to the waveform layer of every block.
  Status SetEventHandler(CEventHandler* handler) override;

  /// 1 when the list changed since the last download.
  int IsModified() const { return m_modified.IsSet() ? 1 : 0; }
  /// Stores the flag; the blocks' own flags stay.
  Status SetModified(int flag);
  /// Number of slots, empty ones included.
  Status GetNoOfBlocks(int& count) const;
  /// One block "Block" of the instrument's smallest size.
  Status Default();

  /// Appends a block filled with the root's default channel value, without a notification. E_FAIL
  /// for a full list or a size outside the instrument's limits, else the allocation's status.
  Status AddBlock(const std::string& name, int size);
  /// The same before `position`; raises OnBlockListChanged.
  Status InsertBlock(const std::string& name, int size, int position);
  /// Takes over a prepared block on success only, without a notification; at or beyond the end the
  /// list is extended with empty slots. E_FAIL for a full list, null or a bad position.
  Status InsertBlock(int position, std::unique_ptr<BLOCK>&& block);
  /// Raises OnBlockListChanged for each block while it still exists, with the positions before any
  /// removal.
  Status DeleteBlock(int first, int count);
  /// Silent; sets the modified flag.
  Status DeleteAll();

  /// First block of that name (untrimmed); -1 and E_FAIL without one.
  Status FindBlock(const std::string& name, int& index) const;
  /// Blocks of exactly that name (untrimmed); 0 and E_FAIL for an empty name.
  Status CountBlocks(const std::string& name, int& count) const;
  /// The block stays the manager's. A bad index gives null with S_OK (deliberate: unlike groups).
  Status GetBlock(int index, BLOCK** block) const;
  /// Null and E_FAIL for an unknown name.
  Status GetBlock(const std::string& name, BLOCK** block) const;
  /// Copies `block` over the one at `index`. E_FAIL for null; a bad index is S_OK and changes
  /// nothing; else the allocation's status.
  Status SetBlock(int index, const BLOCK* block);

  /// Stores the name trimmed and raises OnBlockRenamed with the name as given. Sequence and
  /// subsequence lines that name the block are not updated.
  Status SetBlockName(int index, const std::string& name);
  /// Resizes and raises OnBlockResized. E_FAIL outside the instrument's limits and for the present
  /// size (deliberate).
  Status SetBlockSize(int index, int size);
  /// SetBlockName, then SetBlockSize; S_OK whatever they answer.
  Status SetBlockInfo(int index, const std::string& name, int size);
  /// Exchange with the neighbour; raise OnBlocksSwapped.
  Status MoveUp(int index);
  Status MoveDown(int index);

  /// Reference positions run from 0 to the block's size, both included; `which` 1 is the first, any
  /// other value the second. Without a block setting is S_OK and getting E_FAIL (deliberate).
  Status SetReferencePos(int index, int position, int which);
  Status GetReferencePos(int index, int& position, int which) const;

  /// Counts the changes of the list and of the names and sizes in it.
  std::uint64_t Revision() const { return m_blocks.Revision(); }

  /// Bytes in a setup file.
  Status GetSize(std::uint64_t& size) const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  Status CreateBlock(const std::string& name, int size, std::unique_ptr<BLOCK>& block) const;
  bool IsSizeAllowed(int size) const;
  char DefaultChannelValue() const;
  void UpdateListingState(BLOCK& block) const;
  Status Moved(Status status, int index, int step);

  COrderedList<BLOCK> m_blocks;
  CModifiedFlag m_modified;
};

}  // namespace quillpg
