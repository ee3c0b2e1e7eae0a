#include "exchange/capture_runs.h"

#include <algorithm>

namespace quillpg {

std::uint64_t MixHash(std::uint64_t hash, std::uint64_t value) {
  std::uint64_t mixed = (hash ^ value) * 0x9E3779B97F4A7C15u;
  mixed = (mixed ^ (mixed >> 32)) * 0xD6E8FEB86659FD93u;
  return mixed ^ (mixed >> 29);
}

CCaptureRuns::CCaptureRuns(const CAPTURE& capture, const SAMPLE_GRID& grid) : m_capture(capture) {
  m_first.reserve(grid.first.size() + 1);
  m_points.reserve(grid.first.size());
  m_hashes.reserve(grid.first.size());
  for (std::size_t i = 0; i < grid.first.size(); ++i) {
    const std::size_t point = grid.point[i];
    if (!m_points.empty() && SameRow(m_points.back(), point)) continue;
    std::uint64_t hash = 1;
    const std::uint64_t* row = capture.Row(point);
    for (int word = 0; word < capture.wordsPerRow; ++word) hash = MixHash(hash, row[word]);
    m_first.push_back(grid.first[i]);
    m_points.push_back(point);
    m_hashes.push_back(hash);
  }
  m_first.push_back(grid.vectors);
}

bool CCaptureRuns::SameRow(std::size_t pointA, std::size_t pointB) const {
  const std::uint64_t* row = m_capture.Row(pointA);
  return std::equal(row, row + m_capture.wordsPerRow, m_capture.Row(pointB));
}

std::size_t CCaptureRuns::At(std::int64_t vector) const {
  const auto next = std::upper_bound(m_first.begin(), m_first.end() - 1, vector);
  return static_cast<std::size_t>(next - m_first.begin()) - 1;
}

std::int64_t CCaptureRuns::Rest(std::size_t run, std::int64_t vector, std::int64_t size) const {
  return run + 1 == Count() ? size : std::min(size, m_first[run + 1] - vector);
}

std::uint64_t CCaptureRuns::HashOf(std::int64_t first, std::int64_t size) const {
  std::uint64_t hash = 0;
  for (std::size_t run = At(first); size > 0; ++run) {
    const std::int64_t part = Rest(run, first, size);
    hash = MixHash(MixHash(hash, m_hashes[run]), static_cast<std::uint64_t>(part));
    first += part;
    size -= part;
  }
  return hash;
}

bool CCaptureRuns::AreEqual(std::int64_t a, std::int64_t b, std::int64_t size) const {
  std::size_t runA = At(a);
  std::size_t runB = At(b);
  while (size > 0) {
    const std::int64_t part = Rest(runA, a, size);
    if (part != Rest(runB, b, size) || !SameRow(m_points[runA], m_points[runB])) return false;
    a += part;
    b += part;
    size -= part;
    ++runA;
    ++runB;
  }
  return true;
}

}  // namespace quillpg
