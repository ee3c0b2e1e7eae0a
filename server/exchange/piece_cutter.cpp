#include "exchange/piece_cutter.h"

#include "quillpg/limits.h"

#include <algorithm>

namespace quillpg {
namespace {

constexpr std::int64_t kLongestUnit = 64;  // minimum sizes in one piece of a very long idle time
constexpr std::int64_t kLineCost = 64;     // vectors of memory that one line is worth
constexpr std::size_t kSurroundingRuns = 3;

}  // namespace

std::vector<PIECE> CPieceCutter::Cut() {
  m_pieces.clear();
  m_constants.clear();
  const std::int64_t length = m_runs.Length();
  std::int64_t at = 0;
  std::size_t run = 0;
  while (length - at >= 2 * m_minSize) {
    while (m_runs.First(run + 1) <= at) ++run;
    std::int64_t size = m_runs.First(run + 1) - at;
    if (size >= 2 * m_minSize) {
      // What follows must not be too short for a piece of its own.
      const std::int64_t tail = length - at - size;
      if (tail > 0 && tail < m_minSize) size -= m_minSize;
      AddIdle(at, size, m_runs.RowHash(run));
      at += size;
    } else {
      const std::int64_t cut = FindCut(at, run);
      m_pieces.push_back({at, cut - at, 1});
      at = cut;
    }
  }
  if (at < length) m_pieces.push_back({at, std::max(length - at, m_minSize), 1});
  return std::move(m_pieces);
}

// The end of the piece that begins at `from`, in `run`: the begin of an idle time if one comes in
// reach, else the change point of the window with the lowest hash, else the next change point. A
// piece may go on into an idle time, which is long enough for it.
std::int64_t CPieceCutter::FindCut(std::int64_t from, std::size_t run) const {
  const std::int64_t earliest = from + m_minSize;
  const std::int64_t latest = m_runs.Length() - m_minSize;
  std::int64_t cut = 0;
  std::uint64_t lowest = 0;
  for (++run; run < m_runs.Count(); ++run) {
    const std::int64_t change = m_runs.First(run);
    if (change > latest) break;
    if (IsIdle(run)) {
      if (cut == 0 || change < from + 2 * m_minSize) cut = std::max(change, earliest);
      break;
    }
    if (change < earliest) continue;
    if (change >= from + 2 * m_minSize) {
      if (cut == 0) cut = change;
      break;
    }
    const std::uint64_t hash = Surroundings(run);
    if (cut == 0 || hash < lowest) {
      cut = change;
      lowest = hash;
    }
  }
  return cut == 0 ? earliest : cut;
}

std::uint64_t CPieceCutter::Surroundings(std::size_t run) const {
  std::uint64_t hash = m_runs.RowHash(run - 1);
  const std::size_t end = std::min(run + kSurroundingRuns, m_runs.Count());
  for (; run < end; ++run) {
    const std::int64_t size = std::min(m_runs.Size(run), 2 * m_minSize);
    hash = MixHash(MixHash(hash, m_runs.RowHash(run)), static_cast<std::uint64_t>(size));
  }
  return hash;
}

// Repeats of one constant piece, and where no piece divides the idle time a second, longer one.
void CPieceCutter::AddIdle(std::int64_t first, std::int64_t size, std::uint64_t rowHash) {
  const std::int64_t units =
      std::min((size / m_minSize + MAX_REPEAT_COUNT - 1) / MAX_REPEAT_COUNT, kLongestUnit);
  if (units > 1) {
    const std::int64_t unit = units * m_minSize;
    std::int64_t repeat = size / unit;
    const std::int64_t rest = size % unit;
    if (rest > 0 && rest < m_minSize) --repeat;
    AddConstant(first, unit, repeat, rowHash);
    size -= unit * repeat;
    if (size == 0) return;
  }
  const std::vector<std::int64_t>& known = m_constants[rowHash];
  const auto costOf = [&known](std::int64_t piece) {
    return std::find(known.begin(), known.end(), piece) == known.end() ? piece : 0;
  };
  std::int64_t best = 0;
  const std::int64_t last = m_minSize + size % m_minSize;
  std::int64_t lowest =
      size % m_minSize == 0 ? costOf(m_minSize) : costOf(m_minSize) + costOf(last) + kLineCost;
  for (std::int64_t piece = m_minSize; piece <= std::min(2 * m_minSize, size); ++piece) {
    if (size % piece != 0 || costOf(piece) >= lowest) continue;
    lowest = costOf(piece);
    best = piece;
  }
  if (best == 0 && size % m_minSize == 0) best = m_minSize;
  if (best != 0) {
    AddConstant(first, best, size / best, rowHash);
    return;
  }
  if (size > last) AddConstant(first, m_minSize, (size - last) / m_minSize, rowHash);
  AddConstant(first, last, 1, rowHash);
}

void CPieceCutter::AddConstant(std::int64_t& first, std::int64_t size, std::int64_t repeat,
                               std::uint64_t rowHash) {
  std::vector<std::int64_t>& known = m_constants[rowHash];
  if (std::find(known.begin(), known.end(), size) == known.end()) known.push_back(size);
  m_pieces.push_back({first, size, repeat});
  first += size * repeat;
}

}  // namespace quillpg
