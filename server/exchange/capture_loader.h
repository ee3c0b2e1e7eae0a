#pragma once

#include "exchange/capture.h"
#include "exchange/capture_runs.h"
#include "quillpg/result_codes.h"

#include <functional>
#include <string>
#include <vector>

namespace quillpg {

class CAppServer;
class CInstrument;
class CInstrumentManager;
struct BLOCK;
struct CAPTURE_PLAN;

/// Puts a planned capture into a server: one instrument over the first modules of the system, a
/// group for each signal, the blocks and the sequence.
class CCaptureLoader {
 public:
  /// Called with the percentage done; false aborts.
  using Progress = std::function<bool(int percent)>;

  /// Both must outlive the loader.
  CCaptureLoader(const CAPTURE& capture, const CAPTURE_PLAN& plan);

  /// Replaces the server's instruments. On a failure after that it has none; GetErrorText says why.
  Status Load(CAppServer& server, const Progress& progress, CInstrument** instrument);

  const std::string& GetErrorText() const { return m_errorText; }

 private:
  Status MakeInstrument(CAppServer& server, CInstrumentManager& instruments,
                        CInstrument** instrument);
  Status ApplySettings(CInstrument& instrument);
  Status ClearProgram(CInstrument& instrument);
  Status MakeGroups(CInstrument& instrument);
  Status MakeBlocks(CInstrument& instrument, const Progress& progress);
  void Fill(BLOCK& block, std::int64_t first) const;
  Status MakeSequence(CInstrument& instrument);
  std::string BlockName(int block) const;
  Status Fail(const std::string& text);

  const CAPTURE& m_capture;
  const CAPTURE_PLAN& m_plan;
  CCaptureRuns m_runs;
  std::string m_blockWord;
  std::string m_errorText;
};

/// A name for each signal that no other has, without regard to case: clashes and empty names get a
/// number behind.
std::vector<std::string> GroupNamesOf(const std::vector<CAPTURE_SIGNAL>& signals);

}  // namespace quillpg
