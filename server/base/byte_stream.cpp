#include "base/byte_stream.h"

#include "base/guard.h"

#include <algorithm>
#include <istream>

namespace quillpg {

namespace {

// A count that lies is found out after this many bytes, whatever it claims.
constexpr std::uint64_t kChunk = 65'536;
// What a sink is handed at a time: few enough calls, and still in the cache.
constexpr std::size_t kSinkBuffer = 262'144;
constexpr std::size_t kLeastBuffer = 4096;

// Bytes from the stream's position to its end.
std::uint64_t LengthLeft(std::istream& stream) {
  const auto here = stream.tellg();
  if (here < 0) return CByteReader::UNKNOWN;
  stream.seekg(0, std::ios::end);
  const auto end = stream.tellg();
  stream.clear();
  stream.seekg(here);
  return end < here ? CByteReader::UNKNOWN : static_cast<std::uint64_t>(end - here);
}

}  // namespace

// --- reading ---

CByteReader::CByteReader(std::istream& stream) : m_stream(&stream) {
  if (stream.good()) m_streamLeft = LengthLeft(stream);
}

std::uint64_t CByteReader::Remaining() const {
  return m_stream ? m_streamLeft : static_cast<std::uint64_t>(m_end - m_cursor);
}

const std::uint8_t* CByteReader::TakeFromStream(const char* name, std::uint64_t size) {
  const std::uint64_t fieldOffset = m_fieldOffset;
  const Status status = GuardAllocation([&] {
    if (!Good() || !m_stream || size > m_streamLeft) return E_FAIL;
    m_fetched.clear();
    for (std::uint64_t left = size; left > 0;) {
      const std::uint64_t chunk = std::min(left, kChunk);
      const std::size_t held = m_fetched.size();
      m_fetched.resize(held + static_cast<std::size_t>(chunk));
      m_stream->read(reinterpret_cast<char*>(m_fetched.data() + held),
                     static_cast<std::streamsize>(chunk));
      m_taken += static_cast<std::uint64_t>(m_stream->gcount());
      if (!m_stream->good()) return E_FAIL;
      left -= chunk;
    }
    if (m_streamLeft != UNKNOWN) m_streamLeft -= size;
    return S_OK;
  });
  if (!Failed(status)) return m_fetched.data();
  m_fieldOffset = fieldOffset;
  Refuse(name);
  return nullptr;
}

void CByteReader::Refuse(const char* name) {
  if (!Good()) return;
  m_failedField = name;
  m_failedOffset = m_fieldOffset;
  m_begin = m_cursor;  // nothing is left for the fields that follow
  m_taken = m_fieldOffset;
  m_end = m_cursor;
  m_streamLeft = 0;
}

void CByteReader::Field(const char* name, std::string& text) {
  std::int32_t count = 0;
  Field(name, count);
  if (!Good() || count == 0) {
    if (Good()) text.clear();
    return;
  }
  const std::uint64_t start = m_fieldOffset;
  const std::uint8_t* bytes = nullptr;
  if (count > 0 && static_cast<std::uint64_t>(count) <= Remaining()) {
    bytes = Take(name, static_cast<std::size_t>(count));
  }
  const Status status = GuardAllocation([&] {
    if (!bytes) return E_FAIL;
    const auto* zero =
        static_cast<const std::uint8_t*>(std::memchr(bytes, 0, static_cast<std::size_t>(count)));
    const auto length = static_cast<std::size_t>(zero ? zero - bytes : count);
    text.assign(reinterpret_cast<const char*>(bytes), length);
    return S_OK;
  });
  m_fieldOffset = start;
  if (!Failed(status)) return;
  Refuse(name);
  m_failedOffset = start;
}

void CByteReader::Count(const char* name, int leastBytes, int& count) {
  count = 0;
  std::int32_t stored = 0;
  Field(name, stored);
  if (!Good()) return;
  const auto records = static_cast<std::uint64_t>(std::max(stored, 0));
  if (stored < 0 || records * static_cast<std::uint64_t>(leastBytes) > Remaining()) {
    Refuse(name);
  } else {
    count = stored;
  }
}

std::span<const std::uint8_t> CByteReader::Bytes(const char* name, std::uint64_t size) {
  if (size > Remaining()) {
    RefuseNext(name);
    return {};
  }
  const std::uint8_t* bytes = Take(name, static_cast<std::size_t>(size));
  return bytes ? std::span(bytes, static_cast<std::size_t>(size)) : std::span<const std::uint8_t>();
}

void CByteReader::Skip(const char* name, std::uint64_t size) {
  if (size <= Remaining()) {
    for (std::uint64_t left = size; left > 0 && Good();) {
      const std::uint64_t chunk = std::min(left, kChunk);
      (void)Take(name, static_cast<std::size_t>(chunk));
      left -= chunk;
    }
  } else {
    RefuseNext(name);
  }
}

bool CByteReader::SkipIfNext(std::span<const std::uint8_t> bytes) {
  if (bytes.empty() || bytes.size() > static_cast<std::size_t>(m_end - m_cursor) ||
      std::memcmp(m_cursor, bytes.data(), bytes.size()) != 0) {
    return false;
  }
  m_cursor += bytes.size();
  return true;
}

std::span<const std::uint8_t> CByteReader::Since(std::uint64_t offset) const {
  if (m_stream || !Good() || offset > Offset()) return {};
  return {m_begin + offset, m_cursor};
}

// --- writing ---

void CByteWriter::Field(const char* name, const std::string& text) {
  if (text.size() >= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    return Fail();  // the count has 31 bits
  }
  Field(name, static_cast<std::int32_t>(text.size() + 1));
  std::uint8_t* room = Room(text.size() + 1);
  if (room) std::memcpy(room, text.c_str(), text.size() + 1);
}

void CByteWriter::Bytes(const char* /*name*/, std::span<const std::uint8_t> bytes) {
  if (bytes.empty()) return;
  if (m_sink && bytes.size() >= kChunk) {  // large data need not pass through the buffer
    Flush();
    Put(bytes);
    return;
  }
  std::uint8_t* room = Room(bytes.size());
  if (room) std::memcpy(room, bytes.data(), bytes.size());
}

void CByteWriter::Zeros(const char* /*name*/, std::uint64_t count) {
  for (std::uint64_t left = count; left > 0 && Good();) {
    const std::uint64_t chunk = std::min(left, kChunk);
    std::uint8_t* room = Room(static_cast<std::size_t>(chunk));
    if (room) std::memset(room, 0, static_cast<std::size_t>(chunk));
    left -= chunk;
  }
}

// The buffer doubles; with a sink only up to what the sink is handed at a time.
bool CByteWriter::MakeRoom(std::size_t size) {
  if (m_buffer.size() >= kSinkBuffer) Flush();
  if (!m_failed && size > m_buffer.size() - m_used) {
    const Status status = GuardAllocation([&] {
      m_buffer.resize(std::max({kLeastBuffer, m_used + size, 2 * m_buffer.size()}));
      return S_OK;
    });
    if (Failed(status)) Fail();
  }
  return !m_failed;
}

void CByteWriter::Flush() {
  if (m_sink && m_used > 0) Put(Written());
  if (m_sink) m_used = 0;
}

void CByteWriter::Put(std::span<const std::uint8_t> bytes) {
  if (m_failed) return;
  m_failed = !m_sink->Put(bytes);
  m_handedOver += bytes.size();
}

// No room is left for what follows.
void CByteWriter::Fail() {
  m_failed = true;
  m_buffer.resize(m_used);
}

}  // namespace quillpg
