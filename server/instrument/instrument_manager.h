#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

class CInstrument;
class CModuleManager;
class CSystem;

/// The system: the ordered list of instruments, which of them is current, file name and comment.
///
/// The manager owns its instruments; what it hands out stays its own. Entries may be null after
/// AddInstrumentAt beyond the end: every walk skips them, positions and counts include them. The
/// same object may be listed twice: destroying it empties its other entries.
/// Names are compared without regard to case; look-ups report failure by status and a result of -1
/// or null, never by a message. A null result pointer gives E_FAIL everywhere.
class QUILLPG_API CInstrumentManager {
 public:
  CInstrumentManager() = default;
  CInstrumentManager(const CInstrumentManager&) = delete;
  CInstrumentManager& operator=(const CInstrumentManager&) = delete;
  virtual ~CInstrumentManager();

  // --- set-up ---

  /// Builds the default system.
  Status Initialize();
  /// Stores where a default system takes its modules from, and does nothing else. Referenced.
  Status Initialize(CModuleManager* modules);
  Status GetModuleManager(CModuleManager** modules) const;
  /// Replaces all instruments by one for each module, named "PG 1", "PG 2" ..., and empties comment
  /// and file name. The first becomes current. E_FAIL while a compile or download runs.
  Status Default();
  /// CInstrument::ResetInstrument on every instrument: sends all stored settings again.
  Status ReInitialize();

  // --- look-ups ---

  /// Length of the list, null entries counted.
  Status GetNoOfInstruments(int& count) const;
  /// Number of instruments whose first module sits in mainframe `frame`.
  Status GetNoOfInstruments(int frame, int& count) const;
  Status GetInstrument(const std::string& name, CInstrument** instrument) const;
  /// Null with S_OK for a position outside the list: test the pointer, not the status.
  Status GetInstrumentAt(int position, CInstrument** instrument) const;
  Status GetInstrumentPos(const std::string& name, int& position) const;
  Status GetInstrumentPos(const CInstrument* instrument, int& position) const;
  /// The instrument that occupies mainframe slot `slot`: two slots a module, counted from the slot
  /// of its first module. PG_E_SLOT_EMPTY where there is none.
  Status GetInstrumentPos(int slot, int& position) const;
  /// Position, inside its own instrument, of the module whose first slot is `slot`. Unlike
  /// GetInstrumentPos it knows nothing of a module's second slot: deliberate.
  Status GetModulePos(int slot, int& position) const;
  /// Names of all instruments in list order.
  Status GetInstrumentNames(std::vector<std::string>& names) const;

  /// Stored and returned without checks; -1 means none. Deletions do not adjust it.
  Status SetCurrentInst(int position);
  Status GetCurrentInst(int& position) const;
  /// Null with S_OK when the current position holds no instrument.
  Status GetCurrentInstrument(CInstrument** instrument) const;

  // --- changes of the list: with S_OK ownership passes, with a failure it stays where it was ---

  /// Appends; E_FAIL for null. Neither duplicates nor names are checked.
  Status AddInstrument(CInstrument* instrument);
  /// Inserts before `position`; at or beyond the end the list grows to it with null entries in
  /// between. E_FAIL for null, a negative position and one above MAX_LIST_POSITIONS - 1.
  Status AddInstrumentAt(int position, CInstrument* instrument);
  /// Destroys and removes. The clipboard forgets the instrument first. E_FAIL, as for DeleteAll,
  /// while a load or save reports its progress.
  Status DeleteInstrument(const std::string& name);
  Status DeleteInstrumentAt(int position);
  /// Destroys all; afterwards there is no current instrument.
  Status DeleteAll();

  // --- properties of the system ---

  Status GetFileName(std::string& name) const;
  Status SetFileName(const std::string& name);
  Status GetComment(std::string& comment) const;
  Status SetComment(const std::string& comment);
  /// Number of expansion frames; 0 and E_FAIL without hardware library.
  Status GetNoOfExpansions(int& count) const;
  /// Modules are numbered from 0 through the whole system; `position` is an instrument's. -1 and
  /// E_FAIL for a bad position and for an instrument without modules.
  Status GetFirstModuleId(int position, int& id) const;
  Status GetLastModuleId(int position, int& id) const;
  /// CInstrument::GetModuleProperties for the module in mainframe slot `slot`; PG_E_SLOT_EMPTY when
  /// no module starts there.
  Status GetModuleProperties(int slot, std::string& text) const;
  Status GetControllerProperties(int controller, std::string& text) const;
  /// Bytes that the instrument at `position`, or with -1 all of them, take in a setup file. `flag`
  /// non-zero counts the programs too. Null entries count 0.
  Status GetSize(unsigned long& size, int flag, int position) const;

  // --- for the engine's own operations that yield to the front end ---

  /// True while a compile or download runs; list replacements are refused then.
  bool IsBusy() const { return m_busy; }
  /// True for an instrument that is still in the list.
  bool Holds(const CInstrument* instrument) const;
  /// Grows with every change of the list.
  std::uint64_t Revision() const { return m_revision; }

 private:
  friend class CBusyMark;

  bool InList(int position) const;
  int Count() const { return static_cast<int>(m_instruments.size()); }
  CInstrument* At(int position) const;
  int FindName(const std::string& name) const;
  Status AddDefaultInstrument(int module);
  void DestroyAt(int position);

  int m_currentInstrument = 0;
  std::string m_comment;
  std::string m_fileName;
  CModuleManager* m_moduleManager = nullptr;
  std::vector<CInstrument*> m_instruments;
  bool m_busy = false;
  bool m_kept = false;  ///< no instrument may be destroyed
  std::uint64_t m_revision = 0;
};

/// Marks the program as being compiled or downloaded for as long as it lives. The front end may
/// call back while such an operation yields: whoever finds the mark taken must refuse. A load or
/// save, which holds on to instruments while it reports its progress, Keeps them as well.
class CBusyMark {
 public:
  explicit CBusyMark(CInstrumentManager& instruments)
      : m_instruments(instruments), m_taken(!instruments.m_busy) {
    if (m_taken) m_instruments.m_busy = true;
  }
  ~CBusyMark() {
    if (m_taken) m_instruments.m_busy = false;
    if (m_keeps) m_instruments.m_kept = false;
  }
  CBusyMark(const CBusyMark&) = delete;
  CBusyMark& operator=(const CBusyMark&) = delete;

  /// False when another operation was running already.
  bool Taken() const { return m_taken; }
  /// From now on no instrument can be deleted; taken or not, but by one mark at a time.
  void Keep() { m_keeps = m_instruments.m_kept = true; }

 private:
  CInstrumentManager& m_instruments;
  bool m_taken;
  bool m_keeps = false;
};

}  // namespace quillpg
