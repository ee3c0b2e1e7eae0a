#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quillpg {

class CModuleSettings;
class CPatternMemory;

/// What one module brings to the pins: its blocks, and the settings that switch outputs off. Both
/// stay the module's.
struct PIN_SOURCE {
  const CModuleSettings* settings;
  const CPatternMemory* memory;
  bool operator==(const PIN_SOURCE&) const = default;
};

/// A block as the pins show it: rows of one word for each module, side by side.
struct PIN_ROWS {
  std::int64_t size = 0;
  std::vector<std::uint64_t> levels;
  std::vector<std::uint64_t> highZ;  ///< empty: nothing is high impedance, else as `levels`
};

/// Makes rows of the blocks of a master and its followers. A block is unpacked when it is first
/// asked for and kept until a module's memory or settings change.
class CPinDriver {
 public:
  /// The master first. The sources must stay while the driver is used.
  void SetSources(const std::vector<PIN_SOURCE>& sources);
  int ModuleCount() const { return static_cast<int>(m_sources.size()); }

  /// Vectors of the master's block; followers play as many. 0 when there is none.
  std::int64_t BlockSize(std::int64_t block) const;

  /// Null when the block has no vectors. Valid until the next call.
  const PIN_ROWS* Rows(std::int64_t block);

  /// The high-impedance bits of rows with these levels; empty when there are none.
  std::vector<std::uint64_t> HighZ(const std::vector<std::uint64_t>& levels) const;

 private:
  std::uint64_t Revision() const;

  std::vector<PIN_SOURCE> m_sources;
  std::unordered_map<int, PIN_ROWS> m_rows;
  std::uint64_t m_revision = 0;  // of the sources when m_rows was filled
};

}  // namespace quillpg
