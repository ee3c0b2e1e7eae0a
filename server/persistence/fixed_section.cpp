#include "persistence/fixed_section.h"

#include "base/guard.h"
#include "base/setup_file_format.h"
#include "base/setup_file_reader.h"
#include "base/text.h"
#include "persistence/field_tracer.h"

#include <algorithm>

namespace quillpg {

namespace {

// Fields of fixed size, counts and closing zeros; the date is taken for its 17 characters.
constexpr std::uint64_t kFixedBytes = 49;
constexpr std::uint64_t kEntryBytes = 9;
constexpr std::uint64_t kDepthBytes = 4;

// Exactly as many bytes as this software's own identifier has.
template <typename File>
Status ReadIdentifier(File& file, const std::string& product, std::string& found) {
  const auto bytes = file.Bytes("product identifier", product.size() + 1);
  if (!file.Good()) return PG_E_NOT_SETUP_FILE;
  const auto zero = std::ranges::find(bytes, std::uint8_t{0});
  found.assign(bytes.begin(), zero);
  return zero == bytes.end() - 1 && EqualNoCase(found, product) ? S_OK : PG_E_NOT_SETUP_FILE;
}

// Instruments and modules are made from these counts: bounds of their own keep a bad file cheap.
template <typename File, typename T>
void ReadCounted(File& file, const char* name, int leastBytes, int most, std::vector<T>& list,
                 auto&& describe) {
  int count = 0;
  file.Count(name, leastBytes, count);
  if (count > most) file.Refuse(name);
  if (!file.Good()) return;
  list.resize(static_cast<std::size_t>(count));
  for (int i = 0; i < count && file.Good(); ++i) describe(i, list[static_cast<std::size_t>(i)]);
}

template <typename File>
Status ReadSection(File& file, FIXED_SECTION& section, const std::string& product) {
  section.Clear();
  const Status read = GuardAllocation(
      [&] {
        const Status status = ReadIdentifier(file, product, section.productName);
        if (Failed(status)) return status;
        LayOutFixedSection(
            file, section,
            [&] {
              ReadCounted(file, "instrument count", LEAST_ENTRY_BYTES, MAX_FILE_ENTRIES,
                          section.instruments, [&](int index, INSTRUMENT_ENTRY& entry) {
                            file.Record("instrument entry", index,
                                        [&] { LayOutInstrumentEntry(file, entry); });
                          });
            },
            [&] {
              ReadCounted(file, "module depth count", LEAST_DEPTH_BYTES, MAX_FILE_DEPTHS,
                          section.memoryDepths, [&](int /*index*/, std::int32_t& depth) {
                            file.Field("memory depth", depth);
                          });
            });
        return file.Good() ? S_OK : E_UNEXPECTED;
      },
      E_UNEXPECTED);
  if (read == E_UNEXPECTED) section.Clear();
  return read;
}

}  // namespace

void FIXED_SECTION::Clear() { *this = FIXED_SECTION(); }

std::int64_t FIXED_SECTION::ModuleCount() const {
  std::int64_t modules = 0;
  for (const INSTRUMENT_ENTRY& entry : instruments) modules += std::max(entry.modules, 0);
  return modules;
}

Status FIXED_SECTION::Read(CSetupFileReader& reader, const std::string& product) {
  return ReadSection(reader, *this, product);
}

Status FIXED_SECTION::Read(CFieldTracer& tracer, const std::string& product) {
  return ReadSection(tracer, *this, product);
}

Status FIXED_SECTION::Write(CByteWriter& writer) const {
  // The one string without a count.
  writer.Bytes("product identifier", {reinterpret_cast<const std::uint8_t*>(productName.c_str()),
                                      productName.size() + 1});
  LayOutFixedSection(
      writer, *this,
      [&] {
        writer.Count("instrument count", LEAST_ENTRY_BYTES, static_cast<int>(instruments.size()));
        for (const INSTRUMENT_ENTRY& entry : instruments) LayOutInstrumentEntry(writer, entry);
      },
      [&] {
        writer.Count("module depth count", LEAST_DEPTH_BYTES,
                     static_cast<int>(memoryDepths.size()));
        for (const std::int32_t depth : memoryDepths) writer.Field("memory depth", depth);
      });
  return writer.GetStatus();
}

std::uint64_t FIXED_SECTION::GetSize() const {
  std::uint64_t size = kFixedBytes + productName.size() + softwareVersion.size() + comment.size() +
                       kDepthBytes * memoryDepths.size();
  for (const INSTRUMENT_ENTRY& entry : instruments) size += kEntryBytes + entry.name.size();
  return size;
}

}  // namespace quillpg
