#pragma once

#include "instrument/instrument.h"
#include "program/program_view.h"

#include <string>

namespace quillpg::bench {

/// An instrument of its own over the first simulated module, with defaults.
class CBenchInstrument : public CInstrument {
 public:
  CBenchInstrument();

  CProgramView Program() const { return CProgramView(*this); }
  /// Replaces the groups by those of a capture of 64 lines: D0 to D47 of one line, a Bus of 16.
  void UseCaptureGroups();
  /// `channels` lines from `lowest` on, the highest first.
  void AddGroup(const std::string& name, int lowest, int channels);
  /// Appends a block of random data, the same in every run.
  BLOCK& AddRandomBlock(int vectors);
};

}  // namespace quillpg::bench
