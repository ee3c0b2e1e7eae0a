#pragma once

#include "instrument/instrument_manager.h"

namespace quillpg {

/// Calls `visit(instrument)` for every instrument in list order; empty entries are left out, a
/// missing manager has none. `visit` may notify the front end, which may change the list: the walk
/// goes by position and asks for the length anew.
template <typename Visit>
void ForEachInstrument(const CInstrumentManager* instruments, Visit&& visit) {
  if (!instruments) return;
  int count = 0;
  for (int i = 0; instruments->GetNoOfInstruments(count) == S_OK && i < count; ++i) {
    CInstrument* instrument = nullptr;
    (void)instruments->GetInstrumentAt(i, &instrument);  // the pointer tells
    if (instrument) visit(*instrument);
  }
}

}  // namespace quillpg
