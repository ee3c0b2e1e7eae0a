#include "exchange/piece_joiner.h"

#include "quillpg/limits.h"

#include <algorithm>

namespace quillpg {
namespace {

constexpr std::int64_t kRoundShare = 16;  // a round saves this part of the surplus lines at least

}  // namespace

CPieceJoiner::CPieceJoiner(const CCaptureRuns& runs, const std::vector<PIECE>& pieces)
    : m_runs(runs) {
  m_tokens.reserve(pieces.size());
  for (const PIECE& piece : pieces) {
    Append(m_tokens, {piece.first, FindOrAdd(piece.first, piece.size), piece.repeat});
  }
}

std::size_t CPieceJoiner::PAIR_HASH::operator()(const PAIR_KEY& key) const {
  std::uint64_t hash =
      MixHash(static_cast<std::uint64_t>(key.blockA), static_cast<std::uint64_t>(key.repeatA));
  hash = MixHash(hash, static_cast<std::uint64_t>(key.blockB));
  return static_cast<std::size_t>(MixHash(hash, static_cast<std::uint64_t>(key.repeatB)));
}

std::int64_t CPieceJoiner::LinesOf(std::int64_t repeat) {
  return (repeat + MAX_REPEAT_COUNT - 1) / MAX_REPEAT_COUNT;
}

CPieceJoiner::PAIR_KEY CPieceJoiner::KeyOf(const TOKEN& a, const TOKEN& b) {
  return {a.block, b.block, a.repeat, b.repeat};
}

std::int64_t CPieceJoiner::Lines() const {
  std::int64_t lines = 0;
  for (const TOKEN& token : m_tokens) lines += LinesOf(token.repeat);
  return lines;
}

int CPieceJoiner::FindOrAdd(std::int64_t first, std::int64_t size) {
  const std::uint64_t hash = m_runs.HashOf(first, size);
  const auto [from, to] = m_blockOfHash.equal_range(hash);
  for (auto at = from; at != to; ++at) {
    const FOLDED_PROGRAM::BLOCK_SOURCE& block = m_blocks[static_cast<std::size_t>(at->second)];
    if (block.size == size && m_runs.AreEqual(block.first, first, size)) return at->second;
  }
  m_blocks.push_back({first, size});
  const int index = static_cast<int>(m_blocks.size()) - 1;
  m_blockOfHash.emplace(hash, index);
  return index;
}

void CPieceJoiner::Append(std::vector<TOKEN>& tokens, const TOKEN& token) const {
  if (!tokens.empty() && tokens.back().block == token.block) {
    tokens.back().repeat += token.repeat;
  } else {
    tokens.push_back(token);
  }
}

void CPieceJoiner::JoinTo(std::int64_t mostLines) {
  for (;;) {
    CountPairs();
    RatePairs();
    if (!ChoosePairs(Lines() - mostLines)) return;
    JoinChosen();
  }
}

void CPieceJoiner::CountPairs() {
  m_pairs.clear();
  m_pairOfKey.clear();
  for (std::size_t i = 0; i + 1 < m_tokens.size(); ++i) {
    const PAIR_KEY key = KeyOf(m_tokens[i], m_tokens[i + 1]);
    const auto [at, isNew] = m_pairOfKey.try_emplace(key, m_pairs.size());
    if (isNew) m_pairs.push_back({key, m_tokens[i].first});
    ++m_pairs[at->second].count;
  }
}

// What a pair costs: its joint block, less the blocks that then are used nowhere else.
void CPieceJoiner::RatePairs() {
  std::vector<std::int64_t> uses(m_blocks.size());
  for (const TOKEN& token : m_tokens) ++uses[static_cast<std::size_t>(token.block)];
  for (PAIR& pair : m_pairs) {
    const auto a = static_cast<std::size_t>(pair.key.blockA);
    const auto b = static_cast<std::size_t>(pair.key.blockB);
    pair.growth = m_blocks[a].size * pair.key.repeatA + m_blocks[b].size * pair.key.repeatB;
    if (uses[a] == pair.count) pair.growth -= m_blocks[a].size;
    if (uses[b] == pair.count) pair.growth -= m_blocks[b].size;
    pair.saved = pair.count * (LinesOf(pair.key.repeatA) + LinesOf(pair.key.repeatB) - 1);
  }
}

// Marks what is joined next: all pairs for nothing, else the cheapest as long as there are too many
// lines. A block takes part in one chosen pair only, so that the counts stay true. False when there
// is nothing to join.
bool CPieceJoiner::ChoosePairs(std::int64_t surplusLines) {
  const auto costOf = [](const PAIR& pair) {
    return static_cast<double>(pair.growth) / static_cast<double>(pair.saved);
  };
  std::sort(m_pairs.begin(), m_pairs.end(), [&costOf](const PAIR& a, const PAIR& b) {
    const double costA = costOf(a);
    const double costB = costOf(b);
    return costA != costB ? costA < costB : a.first < b.first;
  });
  if (m_pairs.empty()) return false;
  if (m_pairs.front().growth > 0 && surplusLines <= 0) return false;
  // The next round may find cheaper ones than the dearer of this one; yet there is not to be a
  // round for every few lines.
  const double dearest = costOf(m_pairs.front()) * 1.25 + 1;
  const std::int64_t leftToNext = surplusLines - surplusLines / kRoundShare;
  std::vector<bool> taken(m_blocks.size());
  for (PAIR& pair : m_pairs) {
    if (pair.growth > 0) {
      if (surplusLines <= 0) break;
      if (costOf(pair) > dearest && surplusLines <= leftToNext) break;
    }
    const auto a = static_cast<std::size_t>(pair.key.blockA);
    const auto b = static_cast<std::size_t>(pair.key.blockB);
    if (taken[a] || taken[b]) continue;
    taken[a] = taken[b] = true;
    const std::int64_t size =
        m_blocks[a].size * pair.key.repeatA + m_blocks[b].size * pair.key.repeatB;
    pair.joined = FindOrAdd(pair.first, size);
    surplusLines -= pair.saved;
  }
  m_pairOfKey.clear();
  for (std::size_t i = 0; i < m_pairs.size(); ++i) {
    if (m_pairs[i].joined >= 0) m_pairOfKey.emplace(m_pairs[i].key, i);
  }
  return true;
}

void CPieceJoiner::JoinChosen() {
  std::vector<TOKEN> joined;
  joined.reserve(m_tokens.size());
  for (std::size_t i = 0; i < m_tokens.size(); ++i) {
    const auto at = i + 1 < m_tokens.size() ? m_pairOfKey.find(KeyOf(m_tokens[i], m_tokens[i + 1]))
                                            : m_pairOfKey.end();
    if (at == m_pairOfKey.end()) {
      Append(joined, m_tokens[i]);
    } else {
      Append(joined, {m_tokens[i].first, m_pairs[at->second].joined, 1});
      ++i;
    }
  }
  m_tokens = std::move(joined);
}

void CPieceJoiner::GiveProgram(FOLDED_PROGRAM& program) const {
  std::vector<int> places(m_blocks.size(), -1);
  for (const TOKEN& token : m_tokens) {
    int& place = places[static_cast<std::size_t>(token.block)];
    if (place < 0) {
      place = static_cast<int>(program.blocks.size());
      program.blocks.push_back(m_blocks[static_cast<std::size_t>(token.block)]);
    }
    for (std::int64_t left = token.repeat; left > 0; left -= MAX_REPEAT_COUNT) {
      const auto repeat = std::min<std::int64_t>(left, MAX_REPEAT_COUNT);
      program.lines.push_back({place, static_cast<int>(repeat)});
    }
  }
}

}  // namespace quillpg
