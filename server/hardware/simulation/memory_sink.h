#pragma once

#include "hardware/simulation/vector_sink.h"
#include "quillpg/api.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace quillpg {

/// Keeps every played vector of every module in memory, repeats written out. For programs that
/// look at what was driven; long plays are better taken by a sink that works on runs.
class QUILLPG_API CMemorySink : public CVectorSink {
 public:
  struct VECTOR {
    std::uint64_t levels;
    std::uint64_t highZ;
    int line;
    int signal;
    bool operator==(const VECTOR&) const = default;
  };

  /// Vectors kept for each module; those beyond are only counted.
  explicit CMemorySink(std::size_t limit = std::size_t{1} << 24) : m_limit(limit) {}

  void OnRun(const VECTOR_RUN& run) override;

  /// What the module with this index drove so far, vector by vector; empty when it never played.
  const std::vector<VECTOR>& Vectors(int module) const;
  /// The levels alone.
  std::vector<std::uint64_t> Levels(int module) const;

  std::int64_t CountedVectors() const { return m_vectors; }  ///< of all masters, kept or not
  std::int64_t CountedRuns() const { return m_runs; }
  void Clear();

 private:
  std::size_t m_limit;
  std::map<int, std::vector<VECTOR>> m_modules;
  std::int64_t m_vectors = 0;
  std::int64_t m_runs = 0;
};

}  // namespace quillpg
