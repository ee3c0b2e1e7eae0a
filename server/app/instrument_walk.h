#pragma once

#include "instrument/instrument_manager.h"

namespace quillpg {

/// Calls `visit(instrument)` for every instrument in list order; empty entries are left out, a
/// missing manager has none. `visit` may notify the front end, which may change the list: the walk
/// asks for the length anew, and stays where another instrument stands at the position now.
template <typename Visit>
void ForEachInstrument(const CInstrumentManager* instruments, Visit&& visit) {
  if (!instruments) return;
  int count = 0;
  for (int i = 0; instruments->GetNoOfInstruments(count) == S_OK && i < count;) {
    CInstrument* instrument = nullptr;
    (void)instruments->GetInstrumentAt(i, &instrument);  // the pointer tells
    if (instrument) visit(*instrument);
    CInstrument* now = nullptr;
    (void)instruments->GetInstrumentAt(i, &now);
    if (now == instrument) ++i;
  }
}

}  // namespace quillpg
