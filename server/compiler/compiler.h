#pragma once

#include "compiler/compile_error_info.h"
#include "compiler/finding_text.h"
#include "program/program_index.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>
#include <vector>

namespace quillpg {

class CAppServer;
class CBlockManager;
class CEventManager;
class CInstrument;
class CInstrumentManager;
class CMessageRouter;
class CSequenceManager;
class CSubSequenceManager;
struct BLOCK;
struct EVENT;
struct SEQUENCE_LINE;
struct SUBSEQUENCE;

/// Checks the pattern programs of all enabled instruments and tells what is wrong with them: one
/// line of the front end's output window and one record for each finding. Only lists that changed
/// since the last download are checked.
///
/// The checks hand control to the front end after each object. It may then abort the run, edit the
/// program or delete the instrument; a nested Compile or Download is refused.
class QUILLPG_API CCompiler {
 public:
  CCompiler() = default;
  CCompiler(const CCompiler&) = delete;
  CCompiler& operator=(const CCompiler&) = delete;
  virtual ~CCompiler() = default;

  /// Refers to `server` and loads the texts of the findings.
  Status Initialize(CAppServer* server);

  /// S_OK when no error was found (warnings do not count), E_FAIL when one was, PG_E_ABORTED.
  /// E_FAIL with nothing touched while a compile or download runs.
  Status Compile();

  /// Ends a running compile at the next object; a run clears the request at its start.
  Status AbortOperation();
  Status ResetAbort();

  /// Counts of the last run.
  Status GetNoOfErrors(int& count) const;
  Status GetNoOfWarnings(int& count) const;

  /// The finding that stands in line `outputLine` (from 0, counted since the window was cleared) of
  /// the output window; E_FAIL for a line without one. Safe while a compile runs.
  Status GetCompileErrorInfo(int outputLine, CompileErrorInfo& info) const;

 protected:
  // The four checks, in the order in which they run. S_OK, PG_E_ABORTED, PG_E_INTERNAL when an
  // object is missing, PG_E_LIMIT when the expanded sequence is too long. Findings alone do not
  // stop them.
  Status CompileBlock();
  Status CompileSequence();
  Status CompileSubSequence();
  Status CompileSubSeqDefinition(int index, const SUBSEQUENCE& subSequence);
  Status CompileEvent();
  Status CompileEventExpression(int index, const EVENT& event);

  /// PG_E_LIMIT when all blocks together exceed the instrument's memory depth.
  Status CheckBlockSize();
  /// PG_E_LIMIT when the sequence with its subsequences expanded exceeds MAX_SEQUENCE_LINES.
  Status CheckMaxSequenceLines();
  bool IsValidBlockSize(int size) const;

  void SetErrorInfo(int column, ErrorType type, CompileError error, const std::string& text);
  std::string FormatMessage(const CompileErrorInfo& info) const;

  void Clear();
  Status PrepareToCompile(int position, CInstrument* instrument);
  void CompilationOver(Status status);

  // To the front end's router; nothing happens, and no output line is counted, without one.
  void SetMessage(const std::string& text, int flag);
  void SetEmptyMessage(int count);
  void SetProgressMessage(const std::string& text);
  void SetProgressTitle(const std::string& text);
  void SetProgressStatus(int percent);

 private:
  // Where the next finding lies: what all findings of an object have in common.
  struct CONTEXT {
    int line = -1;
    int instrumentIndex = -1;
    int itemIndex = -1;
    std::string instrumentName;
    Section section = Section::BlockList;
  };
  // Ties a line of the output window to a record.
  struct KEY {
    int outputLine;
    int record;
  };

  Status CompileAll();
  Status CompileInstrument();
  void BeginCheck(Section section, int line, std::string_view what);
  Status BeforeObject() const;
  Status AfterObject(int index, int count);
  static Status ReportMissingObject();
  void Error(int column, CompileError error, const std::string& text);
  void Warning(int column, CompileError error, const std::string& text);
  void CheckName(const std::string& text);

  void CheckOneBlock(const BLOCK& block);
  void CheckLine(const SEQUENCE_LINE& line);
  void CheckLabel(const std::string& label);
  void CheckOutput(const std::string& output);
  void CheckJump(const SEQUENCE_LINE& line);
  void CheckSubSequenceName(const SUBSEQUENCE& subSequence);
  void CheckEventName(const EVENT& event);
  bool MemoryExceeded() const;
  bool ExpandsTooFar();

  CAppServer* m_server = nullptr;
  CInstrumentManager* m_instruments = nullptr;
  CMessageRouter* m_router = nullptr;  // held during one Compile, so that it is never a stale one
  CFindingText m_text;

  int m_errors = 0;
  int m_warnings = 0;
  int m_outputLines = 0;
  bool m_abort = false;
  std::vector<KEY> m_keys;
  std::vector<CompileErrorInfo> m_records;

  // The instrument being checked.
  CONTEXT m_context;
  CInstrument* m_instrument = nullptr;
  CBlockManager* m_blocks = nullptr;
  CSequenceManager* m_sequence = nullptr;
  CSubSequenceManager* m_subSequences = nullptr;
  CEventManager* m_events = nullptr;
  CProgramIndex m_index;
};

}  // namespace quillpg
