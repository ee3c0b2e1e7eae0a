#include "hardware/simulation/memory_sink.h"

#include <algorithm>

namespace quillpg {

void CMemorySink::OnRun(const VECTOR_RUN& run) {
  ++m_runs;
  m_vectors += run.count * run.repeat;
  for (int i = 0; i < run.moduleCount; ++i) {
    std::vector<VECTOR>& kept = m_modules[run.module + i];
    for (std::int64_t pass = 0; pass < run.repeat && kept.size() < m_limit; ++pass) {
      for (std::int64_t row = 0; row < run.count && kept.size() < m_limit; ++row) {
        const std::int64_t word = row * run.moduleCount + i;
        kept.push_back({run.levels[word], run.highZ ? run.highZ[word] : 0, run.line, run.signal});
      }
    }
  }
}

const std::vector<CMemorySink::VECTOR>& CMemorySink::Vectors(int module) const {
  static const std::vector<VECTOR> none;
  const auto found = m_modules.find(module);
  return found == m_modules.end() ? none : found->second;
}

std::vector<std::uint64_t> CMemorySink::Levels(int module) const {
  std::vector<std::uint64_t> levels;
  std::ranges::transform(Vectors(module), std::back_inserter(levels), &VECTOR::levels);
  return levels;
}

void CMemorySink::Clear() {
  m_modules.clear();
  m_vectors = 0;
  m_runs = 0;
}

}  // namespace quillpg
