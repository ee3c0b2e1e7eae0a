#pragma once

#include "base/setup_file_reader.h"

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quillpg {

/// One field of a setup file as it lies there.
struct SETUP_FIELD {
  std::uint64_t offset = 0;  ///< bytes from the start of the file
  std::uint64_t size = 0;    ///< bytes, a string's count included
  std::string_view record;   ///< where it belongs: "instrument 0 / block 2"; empty at the top
  std::string_view name;
  std::string value;  ///< texts quoted, data in hexadecimal, cut after 32 bytes
};

/// Walks the layout of records in the place of a reader and tells of every field that it meets.
class CFieldTracer {
 public:
  using Visit = std::function<void(const SETUP_FIELD&)>;

  /// An empty `visit` only walks.
  CFieldTracer(CSetupFileReader& reader, Visit visit)
      : m_reader(reader), m_visit(std::move(visit)) {}

  template <typename T>
  requires(FileNumber<T> || std::is_same_v<T, std::string>) void Field(const char* name, T& value) {
    const std::uint64_t offset = m_reader.Offset();
    m_reader.Field(name, value);
    Tell(name, offset, value);
  }
  /// Tells of a value that is refused, too.
  template <typename T, typename Store>
  void Field(const char* name, const READ_INTO<T, Store>& target) {
    T value{};
    Field(name, value);
    if (Good() && !target.store(value)) Refuse(name);
  }
  void Truth(const char* name, std::int32_t& value) { Field(name, value); }
  void Count(const char* name, int leastBytes, int& count) {
    const std::uint64_t offset = m_reader.Offset();
    m_reader.Count(name, leastBytes, count);
    Tell(name, offset, count);
  }
  template <typename Describe>
  void Record(const char* name, int index, Describe&& describe) {
    if (!Good()) return;  // a failure keeps its place
    const std::size_t length = Enter(name, index);
    describe();
    if (Good()) m_record.resize(length);
  }
  std::span<const std::uint8_t> Bytes(const char* name, std::uint64_t size);

  bool Good() const { return m_reader.Good(); }
  /// The field that failed and the record it belongs to; empty for none.
  std::string FailedField() const;
  void Refuse(const char* name) { m_reader.Refuse(name); }
  CSetupFileReader& Reader() { return m_reader; }

  /// Quotes and backslashes escaped, and everything that is no printable ASCII.
  static std::string Escaped(const std::string& text);

 private:
  template <typename T>
  void Tell(const char* name, std::uint64_t offset, const T& value) {
    if (m_visit && Good())
      m_visit({offset, m_reader.Offset() - offset, m_record, name, Text(value)});
  }
  template <FileNumber T>
  static std::string Text(const T& value) {
    if constexpr (std::is_enum_v<T>) {
      return NumberText(static_cast<std::int64_t>(value));
    } else {
      return NumberText(value);
    }
  }
  static std::string Text(const std::string& value) { return '"' + Escaped(value) + '"'; }
  static std::string NumberText(std::int64_t value);
  static std::string NumberText(std::int32_t value) { return NumberText(std::int64_t{value}); }
  static std::string NumberText(float value);
  static std::string NumberText(double value);
  std::size_t Enter(const char* name, int index);

  CSetupFileReader& m_reader;
  Visit m_visit;
  std::string m_record;
};

}  // namespace quillpg
