#pragma once

#include "instrument/program_operation.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

class CInstrument;
class CInstrumentManager;
class CSorrelModule;
struct PACK_RUN;

/// The download: sends the programs of all enabled instruments to their modules as text records and
/// packed pattern words. Only what changed since the last download is sent.
///
/// Control goes to the front end after each object. It may then abort the download, edit the
/// program (what it edits is sent next time) or delete the instrument; a nested compile or download
/// is refused. Nothing is sent to modules without hardware.
/// AbortOperation ends a running download at the next line, block or group of pattern words.
class QUILLPG_API CServer2HAL : public CProgramOperation {
 public:
  CServer2HAL();

  /// S_OK, also when a step failed (the others are sent all the same), or PG_E_ABORTED; what was
  /// not sent stays marked and is sent next time. Clears an earlier abort request at its start.
  /// E_FAIL with nothing touched while a compile or download runs.
  Status SendAll();

  // One step each, for an instrument of the system. E_FAIL for any other one, for a name that
  // cannot be resolved, for a missing subsequence or line and while a compile or download runs;
  // PG_E_INTERNAL for a missing event, definition row or block; PG_E_ABORTED. What is missing was
  // shown to the user.

  /// Events go to the first module only: deliberate. The library takes C strings: a row with a
  /// character of code 0 ends its event there.
  Status SendEventData(CInstrument* instrument);
  Status SendSubSequenceData(CInstrument* instrument);
  /// An empty sequence is not sent: the module keeps the old one.
  Status SendSequenceData(CInstrument* instrument);
  /// A modified list replaces all blocks in the modules. Otherwise the blocks that were edited are
  /// sent again, which relies on the modules still holding them.
  Status SendBlockData(CInstrument* instrument);

  /// Referenced; null drops the progress reports.
  Status SetMessageRouter(CMessageRouter* router);

  /// The character of an event row that stands for a level: '0', '1', and 'X' for any other value.
  static char FormatEventSigVal(SignalValue value);

 private:
  using Step = Status (CServer2HAL::*)();

  Status RunStep(CInstrument* instrument, Step step);
  Status SendAllInstruments(const CInstrumentManager& instruments);
  Status SendInstrument();

  // The steps, for the program that is open.
  Status SendEvents();
  Status FormatEvent(int index, std::string& text) const;
  Status SendSubSequences();
  Status SendSubSequence(int index, int module);
  Status SendSequence();
  Status SendSequenceTo(int module);
  Status SendBlocks();
  Status CreateBlocks();
  Status SendChangedBlocks();
  Status SendBlock(int index);
  Status SendRun(int block, ChannelMode mode, const PACK_RUN& run);
  Status PackRun(int block, ChannelMode mode, const PACK_RUN& run, int module);

  int ModuleCount() const;
  CSorrelModule* HardwareAt(int module) const;
  CMessageRouter* Router() const override { return m_router; }

  CMessageRouter* m_router = nullptr;  // referenced
  std::vector<std::uint16_t> m_words;  // of one transfer to one module
};

}  // namespace quillpg
