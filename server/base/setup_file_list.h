#pragma once

#include "base/guard.h"
#include "base/ordered_list.h"
#include "base/setup_file_format.h"
#include "base/setup_file_reader.h"

#include <memory>
#include <utility>

namespace quillpg {

/// Names of a list in a setup file.
struct LIST_NAMES {
  const char* count;
  const char* record;
  int leastBytes;
};

inline constexpr LIST_NAMES GROUP_LIST = {"group count", "group", LEAST_GROUP_BYTES};
inline constexpr LIST_NAMES BLOCK_LIST = {"block count", "block", LEAST_BLOCK_BYTES};
inline constexpr LIST_NAMES GROUP_STATE_LIST = {"group state count", "group state",
                                                LEAST_GROUP_STATE_BYTES};
inline constexpr LIST_NAMES ROW_LIST = {"waveform row count", "waveform row", LEAST_ROW_BYTES};
inline constexpr LIST_NAMES SEQUENCE_LIST = {"sequence line count", "sequence line",
                                             LEAST_SEQUENCE_LINE_BYTES};
inline constexpr LIST_NAMES SUBSEQUENCE_LIST = {"subsequence count", "subsequence",
                                                LEAST_SUBSEQUENCE_BYTES};
inline constexpr LIST_NAMES SUBSEQUENCE_LINE_LIST = {"subsequence line count", "subsequence line",
                                                     LEAST_SUBSEQUENCE_LINE_BYTES};
inline constexpr LIST_NAMES EVENT_LIST = {"event count", "event", LEAST_EVENT_BYTES};
inline constexpr LIST_NAMES EVENT_DEFINITION_LIST = {"event definition count", "event definition",
                                                     LEAST_EVENT_DEFINITION_BYTES};

/// Appends the records of a file to the list, each read by `read(object)`. The list's own limit
/// does not hold: what is too much, the compiler reports. After a failure the records read so far
/// stay.
template <typename T, typename Read>
Status ReadRecords(CSetupFileReader& reader, const LIST_NAMES& names, COrderedList<T>& list,
                   Read&& read) {
  const Status status = GuardAllocation([&] {
    int count = 0;
    LayOutList(reader, names.count, names.record, names.leastBytes, count, [&](int) {
      auto object = std::make_unique<T>();
      read(*object);
      if (reader.Good()) list.AppendRead(std::move(object));
    });
    return S_OK;
  });
  if (Failed(status)) reader.Refuse(names.record);
  return reader.GetStatus();
}

template <typename T>
Status ReadRecords(CSetupFileReader& reader, const LIST_NAMES& names, COrderedList<T>& list) {
  return ReadRecords(reader, names, list, [&reader](T& object) { (void)object.Read(reader); });
}

/// Writes the objects of the list; empty slots are neither written nor counted.
template <typename T, typename Write>
Status WriteRecords(CByteWriter& writer, const LIST_NAMES& names, const COrderedList<T>& list,
                    Write&& write) {
  int count = 0;
  list.ForEach([&count](const T&) { ++count; });
  int slot = 0;
  LayOutList(writer, names.count, names.record, names.leastBytes, count, [&](int) {
    while (!list.At(slot)) ++slot;
    write(std::as_const(*list.At(slot++)));
  });
  return writer.GetStatus();
}

template <typename T>
Status WriteRecords(CByteWriter& writer, const LIST_NAMES& names, const COrderedList<T>& list) {
  return WriteRecords(writer, names, list,
                      [&writer](const T& object) { (void)object.Write(writer); });
}

}  // namespace quillpg
