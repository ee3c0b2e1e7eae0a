#pragma once

#include "quillpg/result_codes.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iosfwd>
#include <limits>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// The one place that knows the byte order of setup files: integers and reals little-endian, strings
// counted and closed by a zero byte. Reader and writer offer the same operations, so that one
// template can describe a record to both (see setup_file_format.h). A field's name is a literal.

namespace quillpg {

/// A number of the file: a 32-bit integer or enumeration, a float or a double.
template <typename T>
concept FileNumber = (std::is_arithmetic_v<T> || std::is_enum_v<T>)&&(sizeof(T) == 4 ||
                                                                      sizeof(T) == 8);

/// The unsigned integer that carries a number's bytes.
template <FileNumber T>
using FileBits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

/// A field that is handed to `store(value)` as soon as it is read; a false answer refuses it.
template <typename T, typename Store>
struct READ_INTO {
  Store store;
};
template <typename T, typename Store>
READ_INTO<T, Store> ReadInto(Store store) {
  return {std::move(store)};
}

/// Reads fields one after the other, each with one check against what is left. The first failure
/// sticks: it keeps the field's name and offset, and everything after it reads nothing. Values of
/// fields that were not read are left as they were. Never throws, running out of memory is a
/// failure too.
class CByteReader {
 public:
  static constexpr std::uint64_t UNKNOWN = std::numeric_limits<std::uint64_t>::max();

  /// Reads from memory, which must stay while the reader lives.
  explicit CByteReader(std::span<const std::uint8_t> bytes)
      : m_begin(bytes.data()), m_cursor(bytes.data()), m_end(bytes.data() + bytes.size()) {}
  /// Reads from where the stream stands and takes not a byte more than the fields have.
  explicit CByteReader(std::istream& stream);
  CByteReader(const CByteReader&) = delete;
  CByteReader& operator=(const CByteReader&) = delete;

  template <FileNumber T>
  void Field(const char* name, T& value) {
    const std::uint8_t* bytes = Take(name, sizeof(T));
    if (!bytes) return;
    FileBits<T> bits = 0;
    for (std::size_t i = 0; i < sizeof(T); ++i) bits |= FileBits<T>{bytes[i]} << (8 * i);
    value = std::bit_cast<T>(bits);
  }
  /// The characters before the first zero byte.
  void Field(const char* name, std::string& text);
  template <typename T, typename Store>
  void Field(const char* name, const READ_INTO<T, Store>& target) {
    T value{};
    Field(name, value);
    if (Good() && !target.store(value)) Refuse(name);
  }
  /// 1 for every number but 0.
  void Truth(const char* name, std::int32_t& value) {
    Field(name, value);
    value = value != 0 ? 1 : 0;
  }
  template <typename T, typename Store>
  void Truth(const char* name, const READ_INTO<T, Store>& target) {
    Field(name, ReadInto<T>([&target](T value) { return target.store(value != 0 ? 1 : 0); }));
  }
  /// Number of records that follow; refused, and 0, when it is negative or so many of at least
  /// `leastBytes` each cannot follow.
  void Count(const char* name, int leastBytes, int& count);
  /// A part of a record that is described elsewhere.
  template <typename Describe>
  void Record(const char* /*name*/, int /*index*/, Describe&& describe) {
    describe();
  }

  /// The next `size` bytes, valid until the next read; empty when they are not there.
  std::span<const std::uint8_t> Bytes(const char* name, std::uint64_t size);
  /// Steps over `size` bytes without keeping them.
  void Skip(const char* name, std::uint64_t size);
  /// Steps over `bytes` when exactly they come next; never on a stream.
  bool SkipIfNext(std::span<const std::uint8_t> bytes);
  /// What was read since `offset`, which Offset gave; empty on a stream.
  std::span<const std::uint8_t> Since(std::uint64_t offset) const;

  bool Good() const { return !m_failedField; }
  /// S_OK, or PG_E_INSTRUMENT_RECORD after a failure.
  Status GetStatus() const { return Good() ? S_OK : PG_E_INSTRUMENT_RECORD; }
  /// Makes the field that was just read the one that failed.
  void Refuse(const char* name);
  /// Makes the field that would come next the one that failed.
  void RefuseNext(const char* name) {
    m_fieldOffset = Offset();
    Refuse(name);
  }
  /// The field that failed; null for none.
  const char* FailedField() const { return m_failedField; }
  std::uint64_t FailedOffset() const { return m_failedOffset; }

  /// Bytes read so far.
  std::uint64_t Offset() const { return m_taken + static_cast<std::uint64_t>(m_cursor - m_begin); }
  /// Bytes left; UNKNOWN for a stream that cannot tell its length.
  std::uint64_t Remaining() const;

 private:
  const std::uint8_t* Take(const char* name, std::size_t size) {
    m_fieldOffset = Offset();
    if (size > static_cast<std::size_t>(m_end - m_cursor)) return TakeFromStream(name, size);
    const std::uint8_t* bytes = m_cursor;
    m_cursor += size;
    return bytes;
  }
  const std::uint8_t* TakeFromStream(const char* name, std::uint64_t size);

  const std::uint8_t* m_begin = nullptr;
  const std::uint8_t* m_cursor = nullptr;
  const std::uint8_t* m_end = nullptr;

  std::istream* m_stream = nullptr;
  std::uint64_t m_taken = 0;             // from the stream
  std::uint64_t m_streamLeft = UNKNOWN;  // where the stream can tell
  std::vector<std::uint8_t> m_fetched;   // the stream's last field

  std::uint64_t m_fieldOffset = 0;
  const char* m_failedField = nullptr;
  std::uint64_t m_failedOffset = 0;
};

/// Takes what a writer has collected.
class CByteSink {
 public:
  virtual ~CByteSink() = default;
  /// False when the bytes could not be written.
  virtual bool Put(std::span<const std::uint8_t> bytes) = 0;
};

/// Appends fields to a buffer, which grows, or which a sink takes piece by piece. The first failure
/// sticks; nothing is written after it. Never throws.
class CByteWriter {
 public:
  CByteWriter() = default;
  /// `sink` must stay while the writer lives; call Flush at the end.
  explicit CByteWriter(CByteSink& sink) : m_sink(&sink) {}
  CByteWriter(const CByteWriter&) = delete;
  CByteWriter& operator=(const CByteWriter&) = delete;

  template <FileNumber T>
  void Field(const char* /*name*/, const T& value) {
    std::uint8_t* room = Room(sizeof(T));
    if (!room) return;
    const auto bits = std::bit_cast<FileBits<T>>(value);
    for (std::size_t i = 0; i < sizeof(T); ++i) {
      room[i] = static_cast<std::uint8_t>(bits >> (8 * i));
    }
  }
  void Field(const char* name, const std::string& text);
  void Truth(const char* name, std::int32_t value) { Field(name, value != 0 ? 1 : 0); }
  void Count(const char* name, int /*leastBytes*/, int count) { Field(name, count); }
  template <typename Describe>
  void Record(const char* /*name*/, int /*index*/, Describe&& describe) {
    describe();
  }
  void Bytes(const char* name, std::span<const std::uint8_t> bytes);
  void Zeros(const char* name, std::uint64_t count);

  bool Good() const { return !m_failed; }
  /// S_OK, or E_FAIL when memory ran out or the sink refused.
  Status GetStatus() const { return m_failed ? E_FAIL : S_OK; }
  /// For what has to be written and cannot be got.
  void Fail();
  /// Hands the sink what is left.
  void Flush();
  /// What was written and not yet handed to a sink.
  std::span<const std::uint8_t> Written() const { return {m_buffer.data(), m_used}; }
  /// Empties the buffer for the next use.
  void Clear() { m_used = 0; }
  /// Bytes written so far.
  std::uint64_t Offset() const { return m_handedOver + m_used; }

 private:
  std::uint8_t* Room(std::size_t size) {
    if (size > m_buffer.size() - m_used && !MakeRoom(size)) return nullptr;
    std::uint8_t* room = m_buffer.data() + m_used;
    m_used += size;
    return room;
  }
  bool MakeRoom(std::size_t size);
  void Put(std::span<const std::uint8_t> bytes);

  CByteSink* m_sink = nullptr;
  std::vector<std::uint8_t> m_buffer;
  std::size_t m_used = 0;
  std::uint64_t m_handedOver = 0;
  bool m_failed = false;
};

}  // namespace quillpg
