#pragma once

#include "hardware/pattern_packer.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg {

class CInstrument;
class CMessageRouter;

/// The download: sends the programs of all enabled instruments to their modules as text records and
/// packed pattern words. Only what changed since the last download is sent.
///
/// Control goes to the front end after each object. It may then abort the download, edit the
/// program or delete the instrument; a nested Compile or Download is refused.
class QUILLPG_API CServer2HAL {
 public:
  CServer2HAL() = default;
  CServer2HAL(const CServer2HAL&) = delete;
  CServer2HAL& operator=(const CServer2HAL&) = delete;
  virtual ~CServer2HAL() = default;

  /// S_OK, also when a step failed (the others are sent all the same), or PG_E_ABORTED; what was
  /// not sent stays marked and is sent next time. Clears an earlier abort request at its start.
  /// E_FAIL with nothing touched while a compile or download runs.
  Status SendAll();

  // One step each. E_FAIL for null, for a name that cannot be resolved and for a missing
  // subsequence or line; PG_E_INTERNAL for a missing event, definition row or block; PG_E_ABORTED.
  /// Events go to the first module only: deliberate.
  Status SendEventData(CInstrument* instrument);
  Status SendSubSequenceData(CInstrument* instrument);
  /// An empty sequence is not sent: the module keeps the old one.
  Status SendSequenceData(CInstrument* instrument);
  /// A modified list replaces all blocks in the modules. Otherwise the blocks that were edited are
  /// sent again, which relies on the modules still holding them.
  Status SendBlockData(CInstrument* instrument);

  /// Ends a running download at the next object or group of pattern words.
  Status AbortOperation();
  Status ResetAbort();

  /// Referenced; null drops the progress reports.
  Status SetMessageRouter(CMessageRouter* router);

 private:
  bool m_abort = false;
  CMessageRouter* m_router = nullptr;
};

}  // namespace quillpg
