#include "program/block.h"

#include "app/message_service.h"
#include "app/setup_stream.h"
#include "base/setup_file_format.h"
#include "base/text.h"
#include "program/waveform_manager.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

namespace quillpg {

namespace {

constexpr char kOutOfMemory[] = "Out of memory.";
constexpr char kDataField[] = "pattern data";
constexpr char kInternalFailure[] = "Internal application error.";

// Far above what any instrument can hold (42 MB), far below what would take the host down.
constexpr std::uint64_t kMaxDataBytes = std::uint64_t{1} << 30;

using BUFFER = std::unique_ptr<std::uint8_t[]>;

// Runs an allocation; tells the user when it fails.
template <typename Operation>
Status GuardData(Operation&& operation) {
  Status status = S_OK;
  try {
    operation();
  } catch (const std::bad_alloc&) {
    status = E_OUTOFMEMORY;
  } catch (const std::length_error&) {
    status = E_OUTOFMEMORY;
  } catch (...) {
    status = E_UNEXPECTED;
  }
  if (Failed(status)) {
    CMessageService::Notice(status == E_OUTOFMEMORY ? kOutOfMemory : kInternalFailure);
  }
  return status;
}

// Bytes of `size` vectors; 0 where there is to be no data.
std::uint64_t DataBytes(int size, std::size_t rowBytes) {
  return size > 0 ? static_cast<std::uint64_t>(size) * rowBytes : 0;
}

// The caller fills the bytes. Null for none.
BUFFER MakeBuffer(std::uint64_t bytes) {
  if (bytes > kMaxDataBytes) throw std::length_error("block data");
  return bytes == 0
             ? nullptr
             : std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(bytes));
}

// Code 0 alone counts as zero, so the digit '0' gives ones: deliberate.
std::uint8_t FillByte(char fill) { return fill == '\0' ? 0x00 : 0xFF; }

}  // namespace

BLOCK::BLOCK() : m_waveformManager(std::make_unique<CWaveformManager>()) {}

BLOCK::~BLOCK() = default;

Status BLOCK::Initialize(const std::string& name, int size, int width, char fill) {
  const Status stored = GuardAllocation([&] { return StoreText(m_name, std::string(Trim(name))); });
  if (Failed(stored)) return stored;
  m_revision.Touch();
  m_size = size;
  m_width = width;
  m_listingState.firstReference = 1;
  m_listingState.secondReference = size;
  m_changed.Set();
  return AllocateBlockData(fill);
}

Status BLOCK::AllocateBlockData(char fill) {
  (void)DeAllocateBlockData();
  return GuardData([&] {
    const std::uint64_t bytes = DataBytes(m_size, RowBytes());
    m_data = MakeBuffer(bytes);
    if (m_data) std::memset(m_data.get(), FillByte(fill), static_cast<std::size_t>(bytes));
  });
}

bool BLOCK::DeAllocateBlockData() {
  m_data.reset();
  return true;
}

Status BLOCK::ResizeBlock(int size, char fill) {
  if (size == m_size) return S_OK;
  const std::uint64_t oldBytes = m_data ? DataBytes(m_size, RowBytes()) : 0;
  const BUFFER oldData = std::move(m_data);
  m_size = size;
  m_revision.Touch();
  m_changed.Set();
  const Status status = GuardData([&] { m_data = MakeBuffer(DataBytes(size, RowBytes())); });
  if (Failed(status)) return S_OK;  // deliberate: the new size without data
  if (m_data) {
    const auto bytes = static_cast<std::size_t>(DataBytes(size, RowBytes()));
    const std::size_t kept = std::min(bytes, static_cast<std::size_t>(oldBytes));
    if (kept > 0) std::memcpy(m_data.get(), oldData.get(), kept);
    std::memset(m_data.get() + kept, FillByte(fill), bytes - kept);
  }
  m_listingState.firstReference = 1;
  m_listingState.secondReference = size;
  return S_OK;
}

Status BLOCK::Reshape(int size, int width, char fill, BUFFER& oldData) {
  oldData = std::move(m_data);
  if (size != m_size) {
    m_listingState.firstReference = 1;
    m_listingState.secondReference = size;
  }
  m_size = size;
  m_width = width;
  m_revision.Touch();
  m_changed.Set();
  return AllocateBlockData(fill);
}

Status BLOCK::Copy(BLOCK& target) const {
  if (this == &target) return S_OK;
  BUFFER data;
  std::string name;
  const Status status = GuardData([&] {
    const std::uint64_t bytes = DataBytes(m_size, RowBytes());
    data = MakeBuffer(bytes);
    if (data && m_data) std::memcpy(data.get(), m_data.get(), static_cast<std::size_t>(bytes));
    if (data && !m_data) std::memset(data.get(), 0, static_cast<std::size_t>(bytes));
    name = m_name;
  });
  if (Failed(status)) return status;
  const Status listed = target.m_listingState.Assign(m_listingState);
  if (Failed(listed)) return listed;
  target.m_data = std::move(data);
  target.m_name = std::move(name);
  target.m_size = m_size;
  target.m_width = m_width;
  target.m_revision.Touch();
  return S_OK;
}

Status BLOCK::SetBlockName(const std::string& name) {
  const Status status = StoreText(m_name, name);
  m_revision.Touch();
  return status;
}

Status BLOCK::SetUsed(int used) {
  m_used = used;
  return S_OK;
}

Status BLOCK::SetChanged(int changed) {
  m_changed.Store(changed);
  return S_OK;
}

// --- group states ---

Status BLOCK::GetNoOfGroups(int& count) const {
  count = m_listingState.groupStates.Count();
  return S_OK;
}

bool BLOCK::GetGroupState(int index, GROUP_STATE** state) const {
  if (!state) return false;
  *state = m_listingState.groupStates.At(index);
  return *state != nullptr;
}

bool BLOCK::GetGroupState(const std::string& name, GROUP_STATE** state) const {
  return GetGroupState(m_listingState.groupStates.Find(name), state);
}

bool BLOCK::FindGroupState(const std::string& name, int& index) const {
  index = m_listingState.groupStates.Find(name);
  return index >= 0;
}

Status BLOCK::AddGroupState(std::unique_ptr<GROUP_STATE>&& state) {
  return m_listingState.groupStates.Append(std::move(state));
}

Status BLOCK::InsertGroupState(int position, std::unique_ptr<GROUP_STATE>&& state) {
  return m_listingState.groupStates.Insert(position, std::move(state));
}

bool BLOCK::DeleteGroupState(int first, int count) {
  (void)m_listingState.groupStates.Remove(first, count);
  return true;  // deliberate: also for a bad range
}

// --- setup file ---

std::uint64_t BLOCK::GetSize() const {
  const std::uint64_t bits = m_size > 0 && m_width > 0 ? static_cast<std::uint64_t>(m_size) *
                                                             static_cast<std::uint64_t>(m_width)
                                                       : 0;
  std::uint64_t rows = 0;
  (void)m_waveformManager->GetSize(rows);
  return (bits + 7) / 8 + m_name.size() + 13 + m_listingState.GetSize() + rows;
}

Status BLOCK::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status BLOCK::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status BLOCK::Read(CSetupFileReader& reader, WAVEFORM_ROWS_IMAGE* lastRows) {
  int size = 0;
  int width = 0;
  LayOutBlock(
      reader, reader.Form().hasNamesAndRows, ReadBlockSize(size), ReadBlockWidth(width), m_name,
      [&] { ReadData(reader, size, width); }, [&] { (void)m_listingState.Read(reader); },
      [&] { (void)m_waveformManager->Read(reader, lastRows); });
  m_revision.Touch();
  return reader.GetStatus();
}

void BLOCK::ReadData(CSetupFileReader& reader, int size, int width) {
  if (reader.Form().stepsOver) {  // size and data stay
    reader.Skip(kDataField, PatternDataBytes(size, width));
    if (reader.Good() && width != m_width) {
      m_width = width;
      if (m_data) (void)AllocateBlockData('\0');  // never rows of another width
    }
    return;
  }
  const auto data = reader.Bytes(kDataField, PatternDataBytes(size, width));
  if (!reader.Good()) return;
  (void)DeAllocateBlockData();
  m_size = size;
  m_width = width;
  m_listingState.firstReference = 1;
  m_listingState.secondReference = size;
  m_changed.Set();
  const std::uint64_t held = DataBytes(size, RowBytes());
  if (Failed(GuardData([&] { m_data = MakeBuffer(held); }))) return reader.Refuse(kDataField);
  // A width that is no multiple of 8 has more bytes in the file than the buffer takes.
  if (m_data) std::memcpy(m_data.get(), data.data(), static_cast<std::size_t>(held));
}

Status BLOCK::Write(CByteWriter& writer, WAVEFORM_ROWS_IMAGE* lastRows) const {
  LayOutBlock(
      writer, true, m_size, m_width, m_name, [&] { WriteData(writer); },
      [&] { (void)m_listingState.Write(writer); },
      [&] { (void)m_waveformManager->Write(writer, lastRows); });
  return writer.GetStatus();
}

void BLOCK::WriteData(CByteWriter& writer) const {
  const std::uint64_t bytes = PatternDataBytes(m_size, m_width);
  const std::uint64_t held = m_data ? std::min(bytes, DataBytes(m_size, RowBytes())) : 0;
  writer.Bytes(kDataField, {m_data.get(), static_cast<std::size_t>(held)});
  writer.Zeros(kDataField, bytes - held);
}

}  // namespace quillpg
