#pragma once

#include "exchange/capture.h"
#include "exchange/capture_grid.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillpg {

/// A sampled capture as runs of equal vectors. Refers to the capture, which must outlive it.
class CCaptureRuns {
 public:
  CCaptureRuns(const CAPTURE& capture, const SAMPLE_GRID& grid);

  std::size_t Count() const { return m_points.size(); }
  /// Vectors of the capture.
  std::int64_t Length() const { return m_first.back(); }

  /// First vector of a run; one past the last run gives the capture's length.
  std::int64_t First(std::size_t run) const { return m_first[run]; }
  std::int64_t Size(std::size_t run) const { return m_first[run + 1] - m_first[run]; }
  /// What the run holds, CAPTURE::wordsPerRow words, and a number that stands for it.
  const std::uint64_t* Row(std::size_t run) const { return m_capture.Row(m_points[run]); }
  std::uint64_t RowHash(std::size_t run) const { return m_hashes[run]; }

  /// The run that holds a vector; the last run holds all vectors beyond the end.
  std::size_t At(std::int64_t vector) const;

  /// A number for what `size` vectors from `first` on hold: equal stretches have equal ones.
  std::uint64_t HashOf(std::int64_t first, std::int64_t size) const;
  /// True when `size` vectors from both places on are equal.
  bool AreEqual(std::int64_t a, std::int64_t b, std::int64_t size) const;

 private:
  bool SameRow(std::size_t pointA, std::size_t pointB) const;
  // Vectors from `vector` on, at most `size`, that its run holds.
  std::int64_t Rest(std::size_t run, std::int64_t vector, std::int64_t size) const;

  const CAPTURE& m_capture;
  std::vector<std::int64_t> m_first;  // one more than runs: the length ends it
  std::vector<std::size_t> m_points;  // change point of each run
  std::vector<std::uint64_t> m_hashes;
};

/// Mixes a number into a hash.
std::uint64_t MixHash(std::uint64_t hash, std::uint64_t value);

}  // namespace quillpg
