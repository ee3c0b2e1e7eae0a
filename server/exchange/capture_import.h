#pragma once

#include "exchange/capture.h"
#include "exchange/capture_folding.h"
#include "exchange/capture_grid.h"
#include "exchange/vcd_writer.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

class CInstrument;
class CMessageRouter;
class CSimulationControl;

/// What a capture needs to be played, and how.
struct CAPTURE_PLAN {
  SAMPLE_GRID grid;
  FOLDED_PROGRAM program;
  ChannelMode mode = ChannelMode::Full;
  int modules = 1;            ///< merged into the one instrument
  bool memoryOption = false;  ///< the modules need the memory option
};

/// Turns a capture into a loaded server. Call in this order: Read, Plan, ConfigureSimulation (with
/// simulated modules, before the first CAppServer::GetServer), Load. Each step needs the one before
/// and answers E_FAIL without it; GetErrorText says why a step failed.
class QUILLPG_API CCaptureImport {
 public:
  /// The front end's sink for progress; stays the caller's, null drops it.
  void SetMessageRouter(CMessageRouter* router) { m_router = router; }

  /// Ends the running step with PG_E_ABORTED; to be called from the router or the message loop,
  /// which run again and again meanwhile.
  void AbortOperation() { m_aborted = true; }

  /// Reads a value change dump; see CVcdReader::ReadFile for the statuses.
  Status Read(const std::string& path);

  /// Finds the sample grid (`period` in seconds overrides it; not set: found), folds the capture
  /// and chooses the least hardware that holds it: without the memory option if possible, then in
  /// FULL mode if possible, with as few modules as its channels need. PG_E_LIMIT with the figures
  /// in the text when five modules with the option cannot hold it.
  Status Plan(RATIO period);

  /// Gives a simulated mainframe the modules of the plan.
  Status ConfigureSimulation(CSimulationControl& simulation);

  /// Replaces the server's instruments by one that holds the capture as groups, blocks and
  /// sequence. `*instrument` stays the server's.
  Status Load(CInstrument** instrument);

  const CAPTURE& GetCapture() const { return m_capture; }
  const CAPTURE_PLAN& GetPlan() const { return m_plan; }
  const std::vector<std::string>& GetNotices() const { return m_notices; }
  const std::string& GetErrorText() const { return m_errorText; }

  /// Vectors after which the play ends: the capture's own length, which can be shorter than the
  /// program that plays it.
  std::int64_t GetLength() const { return m_plan.grid.vectors; }

  /// Describes the loaded instrument, which must still stand, for the dump: with the capture's own
  /// names and time grid.
  Status DescribeForVcd(VCD_INSTRUMENT& description) const;

 private:
  Status ChooseHardware(CAPTURE_PLAN& plan);
  bool ReportProgress(int percent);
  Status Fail(Status status, std::string_view text);

  CMessageRouter* m_router = nullptr;
  bool m_aborted = false;
  CAPTURE m_capture;
  CAPTURE_PLAN m_plan;
  CInstrument* m_instrument = nullptr;
  std::vector<std::string> m_notices;
  std::string m_errorText;
};

}  // namespace quillpg
