#pragma once

#include "program/program_index.h"
#include "program/program_view.h"
#include "quillpg/api.h"

#include <cstdint>

namespace quillpg {

class CInstrument;
class CInstrumentManager;

/// The program of one instrument while an operation works on it that hands control to the front end
/// in between. The front end may delete the instrument or others before it: the work follows it
/// through the list. Objects must be fetched anew after each Yield and each StillThere.
class QUILLPG_API CProgramWork {
 public:
  CProgramWork() = default;
  CProgramWork(const CProgramWork&) = delete;
  CProgramWork& operator=(const CProgramWork&) = delete;

  /// Takes up `instrument`, at `position` of the list.
  void Open(const CInstrumentManager& instruments, CInstrument& instrument, int position);
  void Close();

  /// Lets the message loop run once; false when the instrument is gone, which closes the work.
  bool Yield();
  /// The same after another call of the front end, whose message router may pump messages.
  bool StillThere();

  /// Null while nothing is open.
  CInstrument* Instrument() const { return m_instrument; }
  /// Where the instrument stands now; when it is gone, an entry before those that followed it, the
  /// last one unless several went at once.
  int Position() const { return m_position; }

  const CProgramView& Program() const { return m_program; }
  CProgramIndex& Index() { return m_index; }

 private:
  bool Follow();

  const CInstrumentManager* m_instruments = nullptr;
  CInstrument* m_instrument = nullptr;
  int m_position = -1;
  // Of the instrument list when the instrument was last seen.
  std::uint64_t m_listRevision = 0;
  int m_listCount = 0;
  CProgramView m_program;
  CProgramIndex m_index;
};

}  // namespace quillpg
