#include "program/block_manager.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "app/setup_stream.h"
#include "base/setup_file_list.h"
#include "instrument/instrument.h"
#include "program/waveform_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/event_handler.h"

#include <utility>

namespace quillpg {

namespace {

std::string NameOrEmpty(const BLOCK* block) {
  return block ? block->GetBlockName() : std::string();
}

}  // namespace

CBlockManager::CBlockManager() : m_blocks(MAX_BLOCKS) {}

CBlockManager::~CBlockManager() = default;

Status CBlockManager::SetEventHandler(CEventHandler* handler) {
  m_blocks.ForEach(
      [handler](BLOCK& block) { (void)block.GetWaveformManager()->SetEventHandler(handler); });
  return CProgramManager::SetEventHandler(handler);
}

Status CBlockManager::SetModified(int flag) {
  m_modified.Store(flag);
  return S_OK;
}

Status CBlockManager::GetNoOfBlocks(int& count) const {
  count = m_blocks.Count();
  return S_OK;
}

Status CBlockManager::Default() {
  (void)DeleteAll();
  if (!Instrument()) return E_FAIL;
  int size = 0;
  (void)Instrument()->GetMinBlocksize(size);
  return AddBlock(CMessageService::Text(MSG_UNIQUE_BLOCK), size);
}

// --- adding and inserting ---

Status CBlockManager::AddBlock(const std::string& name, int size) {
  std::unique_ptr<BLOCK> block;
  const Status status = CreateBlock(name, size, block);
  return Failed(status) ? status : InsertBlock(m_blocks.Count(), std::move(block));
}

Status CBlockManager::InsertBlock(const std::string& name, int size, int position) {
  return GuardAllocation([&] {
    std::unique_ptr<BLOCK> block;
    Status status = CreateBlock(name, size, block);
    if (Failed(status)) return status;
    const std::string stored = block->GetBlockName();
    status = InsertBlock(position, std::move(block));
    if (Failed(status)) return status;
    return Tell([&](CEventHandler& handler) { handler.OnBlockListChanged(stored, position, 0); });
  });
}

Status CBlockManager::InsertBlock(int position, std::unique_ptr<BLOCK>&& block) {
  const Status status = m_blocks.Insert(position, std::move(block));
  if (Failed(status)) return status;
  BLOCK& inserted = *m_blocks.At(position);
  (void)inserted.SetChanged(1);
  m_modified.Set();
  CWaveformManager& rows = *inserted.GetWaveformManager();
  (void)rows.Initialize(Instrument());  // nothing to show before the manager has its instrument
  (void)rows.SetEventHandler(EventHandler());
  UpdateListingState(inserted);
  return S_OK;
}

Status CBlockManager::CreateBlock(const std::string& name, int size,
                                  std::unique_ptr<BLOCK>& block) const {
  if (m_blocks.IsFull() || !IsSizeAllowed(size)) return E_FAIL;
  return GuardAllocation([&] {
    int width = 0;
    (void)Instrument()->GetBlockWidth(width);
    auto created = std::make_unique<BLOCK>();
    const Status status = created->Initialize(name, size, width, DefaultChannelValue());
    if (!Failed(status)) block = std::move(created);
    return status;
  });
}

bool CBlockManager::IsSizeAllowed(int size) const {
  if (!Instrument()) return false;
  int least = 0;
  long most = 0;
  (void)Instrument()->GetMinBlocksize(least);
  (void)Instrument()->GetMaxBlocksize(most);
  return size >= least && size <= most;
}

char CBlockManager::DefaultChannelValue() const {
  char value = '0';
  if (Server()) (void)Server()->GetDefaultChannelValue(value);
  return value;
}

// For one block alone: the form for all blocks would make adding blocks quadratic.
void CBlockManager::UpdateListingState(BLOCK& block) const {
  if (Instrument()) (void)Instrument()->UpdateListingState(block);
}

// --- deleting ---

Status CBlockManager::DeleteBlock(int first, int count) {
  const auto visit = [this](int position, const BLOCK* block, const auto& destroy) {
    const std::string name = NameOrEmpty(block);
    const Status told =
        Tell([&](CEventHandler& handler) { handler.OnBlockListChanged(name, position, 1); });
    if (!Failed(told)) destroy();
    return told;
  };
  const Status status = m_blocks.RemoveEach(first, count, visit);
  if (!Failed(status)) m_modified.Set();
  return status;
}

Status CBlockManager::DeleteAll() {
  m_blocks.Clear();
  m_modified.Set();
  return S_OK;
}

// --- look-ups ---

Status CBlockManager::FindBlock(const std::string& name, int& index) const {
  index = name.empty() ? -1 : m_blocks.Find(name);
  return index < 0 ? E_FAIL : S_OK;
}

Status CBlockManager::CountBlocks(const std::string& name, int& count) const {
  count = name.empty() ? 0 : m_blocks.CountNamed(name);
  return name.empty() ? E_FAIL : S_OK;
}

Status CBlockManager::GetBlock(int index, BLOCK** block) const {
  if (!block) return E_FAIL;
  *block = m_blocks.At(index);
  return S_OK;
}

Status CBlockManager::GetBlock(const std::string& name, BLOCK** block) const {
  if (!block) return E_FAIL;
  int index = -1;
  const Status status = FindBlock(name, index);
  *block = m_blocks.At(index);
  return status;
}

// --- changing one block ---

Status CBlockManager::SetBlock(int index, const BLOCK* block) {
  if (!block) return E_FAIL;
  BLOCK* target = m_blocks.At(index);
  if (!target) return S_OK;
  const Status status = block->Copy(*target);
  if (Failed(status)) return status;
  (void)target->SetChanged(1);
  m_modified.Set();
  UpdateListingState(*target);
  return S_OK;
}

Status CBlockManager::SetBlockName(int index, const std::string& name) {
  BLOCK* block = m_blocks.At(index);
  if (!block) return E_FAIL;
  return GuardAllocation([&] {
    const std::string given = name;  // it may be the block's own
    const std::string oldName = block->GetBlockName();
    const Status status = block->SetBlockName(std::string(Trim(given)));
    if (Failed(status)) return status;
    m_modified.Set();
    return Tell([&](CEventHandler& handler) { handler.OnBlockRenamed(oldName, given, index); });
  });
}

Status CBlockManager::SetBlockSize(int index, int size) {
  BLOCK* block = m_blocks.At(index);
  if (!IsSizeAllowed(size) || !block || size == block->GetBlockSize()) return E_FAIL;
  return GuardAllocation([&] {
    const std::string name = block->GetBlockName();
    (void)block->ResizeBlock(size, DefaultChannelValue());  // S_OK always
    m_modified.Set();
    return Tell([&](CEventHandler& handler) { handler.OnBlockResized(name, index); });
  });
}

Status CBlockManager::SetBlockInfo(int index, const std::string& name, int size) {
  const auto block = m_blocks.IdAt(index);  // the front end may move it when told of the name
  if (!Failed(SetBlockName(index, name)))
    (void)SetBlockSize(m_blocks.PositionOf(block, index), size);
  return S_OK;  // deliberate: whatever the two answered
}

Status CBlockManager::MoveUp(int index) { return Moved(m_blocks.MoveUp(index), index, -1); }
Status CBlockManager::MoveDown(int index) { return Moved(m_blocks.MoveDown(index), index, 1); }

// Reports that the block of `index` changed places with the one `step` further.
Status CBlockManager::Moved(Status status, int index, int step) {
  if (Failed(status)) return status;
  m_modified.Set();
  return GuardAllocation([&] {
    const int neighbour = index + step;
    const std::string name = NameOrEmpty(m_blocks.At(neighbour));
    const std::string neighbourName = NameOrEmpty(m_blocks.At(index));
    return Tell([&](CEventHandler& handler) {
      handler.OnBlocksSwapped(name, index, neighbourName, neighbour);
    });
  });
}

Status CBlockManager::SetReferencePos(int index, int position, int which) {
  BLOCK* block = m_blocks.At(index);
  if (!block) return S_OK;  // deliberate, unlike GetReferencePos
  if (position < 0 || position > block->GetBlockSize()) return E_FAIL;
  LISTING_STATE& state = block->GetListingState();
  (which == 1 ? state.firstReference : state.secondReference) = position;
  return S_OK;
}

Status CBlockManager::GetReferencePos(int index, int& position, int which) const {
  const BLOCK* block = m_blocks.At(index);
  if (!block) return E_FAIL;
  const LISTING_STATE& state = block->GetListingState();
  position = which == 1 ? state.firstReference : state.secondReference;
  return S_OK;
}

// --- setup file ---

Status CBlockManager::GetSize(std::uint64_t& size) const {
  size = 4 + m_blocks.SizeOfAll();
  return S_OK;
}

Status CBlockManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CBlockManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CBlockManager::Read(CSetupFileReader& reader) {
  m_modified.Set();              // what is loaded is not in the hardware
  WAVEFORM_ROWS_IMAGE lastRows;  // most blocks show the rows of the block before
  return ReadRecords(reader, BLOCK_LIST, m_blocks, [&](BLOCK& block) {
    CWaveformManager& rows = *block.GetWaveformManager();
    (void)rows.Initialize(Instrument());  // files of the old version have no rows
    (void)rows.SetEventHandler(EventHandler());
    (void)block.Read(reader, &lastRows);
  });
}

Status CBlockManager::Write(CByteWriter& writer) const {
  WAVEFORM_ROWS_IMAGE lastRows;
  return WriteRecords(writer, BLOCK_LIST, m_blocks,
                      [&](const BLOCK& block) { (void)block.Write(writer, &lastRows); });
}

}  // namespace quillpg
