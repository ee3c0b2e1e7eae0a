#pragma once

#include "base/ordered_list.h"
#include "program/waveform_data.h"
#include "quillpg/engine_types.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillpg {

using WAVEFORM_ROWS = COrderedList<CWaveformData>;

/// A channel that switches a pod to high impedance, as its instrument reports it.
struct INHIBIT_CONTROL {
  int channel = -1;
  std::string name;

  bool operator==(const INHIBIT_CONTROL&) const = default;
};

/// A renaming of rows: of a group (by its old name) or of a channel (by its number).
struct WAVEFORM_RENAMING {
  WaveType type = WaveType::Group;
  std::string oldName = {};
  int channel = -1;
  std::string newName = {};

  bool operator==(const WAVEFORM_RENAMING&) const = default;
};

/// A row list and its bytes in a setup file.
struct WAVEFORM_ROWS_IMAGE {
  std::shared_ptr<WAVEFORM_ROWS> rows;
  std::vector<std::uint8_t> bytes;
};

/// Row lists that the blocks of one instrument share, since most of thousands of blocks show the
/// same rows. Kept by the group manager; a layer copies a list before it changes it.
struct WAVEFORM_ROW_CACHE {
  // The rows of all groups, and what they were made from.
  std::shared_ptr<WAVEFORM_ROWS> groupRows;
  std::uint64_t groupRevision = 0;
  ChannelMode channelMode = ChannelMode::Full;
  int modules = 0;

  // What the last update of inhibit rows made `updated` from.
  std::shared_ptr<WAVEFORM_ROWS> outdated;
  std::uint64_t updateRevision = 0;
  std::vector<INHIBIT_CONTROL> controls;
  std::shared_ptr<WAVEFORM_ROWS> updated;

  // The last renaming, and what it made `renamed` from.
  std::shared_ptr<WAVEFORM_ROWS> misnamed;
  WAVEFORM_RENAMING renaming;
  std::shared_ptr<WAVEFORM_ROWS> renamed;
};

}  // namespace quillpg
