#pragma once

#include "base/name_index.h"
#include "program/waveform_rows.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace quillpg {

/// Finds the first row of a name or channel, as a walk from the top would: a grid looks rows up for
/// each cell that it paints. Built at the first look-up and again when the list has changed; rows
/// that were handed out for change are walked, since nobody reports what is written into them.
class CWaveformIndex {
 public:
  using LIST = std::shared_ptr<WAVEFORM_ROWS>;

  /// Position of the first row of that type and name without regard to case (group rows bear their
  /// group's name), or -1.
  int Find(const LIST& rows, WaveType type, std::string_view name);
  /// Position of the first channel row of that channel number, or -1.
  int FindChannel(const LIST& rows, int channel);
  /// From now on somebody may write into these rows.
  void HandedOut(const LIST& rows) { m_handedOut = rows; }
  /// Names or channel numbers were changed in place.
  void Renamed() { m_indexed.reset(); }

 private:
  static constexpr std::size_t kTypes = 3;

  bool Refresh(const LIST& rows);
  void Build(const WAVEFORM_ROWS& rows);

  // Weak: they neither keep a list alive nor make it look shared, and tell it from a later one.
  std::weak_ptr<WAVEFORM_ROWS> m_handedOut;
  std::weak_ptr<WAVEFORM_ROWS> m_indexed;
  std::uint64_t m_revision = 0;
  std::array<CNameIndex, kTypes> m_names;  // by wave type
  std::unordered_map<int, int> m_channels;
};

}  // namespace quillpg
