#include "instrument/program_work.h"

#include "instrument/instrument_manager.h"
#include "quillpg/host_services.h"

#include <algorithm>

namespace quillpg {

void CProgramWork::Open(const CInstrumentManager& instruments, CInstrument& instrument,
                        int position) {
  m_instruments = &instruments;
  m_instrument = &instrument;
  m_position = position;
  m_listRevision = instruments.Revision();
  (void)instruments.GetNoOfInstruments(m_listCount);  // a stored value, cannot fail
  m_program = CProgramView(instrument);
  m_index.Attach(m_program);
}

void CProgramWork::Close() {
  m_instrument = nullptr;
  m_index.Detach();
  m_program = CProgramView();
}

bool CProgramWork::Yield() {
  CHostServices::Get().YieldToMessageLoop();
  return StillThere();
}

bool CProgramWork::StillThere() {
  return m_instrument && (m_instruments->Revision() == m_listRevision || Follow());
}

// The instrument list changed. Another instrument may have come to lie in the same memory, so even
// an instrument that seems to be there still is taken up anew.
bool CProgramWork::Follow() {
  int position = -1;
  if (m_instruments->GetInstrumentPos(m_instrument, position) != S_OK) {
    int count = 0;
    (void)m_instruments->GetNoOfInstruments(count);
    m_position = std::max(m_position - std::max(m_listCount - count, 1), -1);
    Close();
    return false;
  }
  Open(*m_instruments, *m_instrument, position);
  return true;
}

}  // namespace quillpg
