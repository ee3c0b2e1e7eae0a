#pragma once

#include "compiler/compile_error_info.h"
#include "compiler/finding_text.h"
#include "instrument/program_operation.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

class CAppServer;
class CInstrument;
class CInstrumentManager;
struct BLOCK;
struct EVENT;
struct SEQUENCE_LINE;
struct SUBSEQUENCE;

/// Checks the pattern programs of all enabled instruments and tells what is wrong with them: one
/// line of the front end's output window and one record for each finding. Only lists that changed
/// since the last download are checked.
///
/// The checks hand control to the front end after each object, whose findings are told first. It
/// may then abort the run, edit the program or delete the instrument; a nested compile or download
/// is refused. AbortOperation ends a running compile at the next object; a run clears the request
/// at its start.
class QUILLPG_API CCompiler : public CProgramOperation {
 public:
  /// Refers to `server` and loads the texts of the findings; E_FAIL for null.
  Status Initialize(CAppServer* server);

  /// S_OK when no error was found (warnings do not count), E_FAIL when one was, PG_E_ABORTED.
  /// E_FAIL with nothing touched while a compile or download runs.
  Status Compile();

  /// Counts of the last run.
  Status GetNoOfErrors(int& count) const;
  Status GetNoOfWarnings(int& count) const;

  /// The finding that stands in line `outputLine` (from 0, counted since the window was cleared) of
  /// the output window; E_FAIL for a line without one. Safe while a compile runs.
  Status GetCompileErrorInfo(int outputLine, CompileErrorInfo& info) const;

 protected:
  // The four checks. S_OK, PG_E_ABORTED, PG_E_INTERNAL when an object is missing, PG_E_LIMIT when
  // the expanded sequence is too long. Findings alone do not stop them.
  Status CompileBlock();
  Status CompileSequence();
  Status CompileSubSequence();
  Status CompileSubSeqDefinition(int index, const SUBSEQUENCE& subSequence);
  Status CompileEvent();
  void CompileEventExpression(int index, const EVENT& event);

  /// PG_E_LIMIT when all blocks together exceed the instrument's memory depth.
  Status CheckBlockSize() const;
  /// PG_E_LIMIT when the sequence with its subsequences expanded exceeds MAX_SEQUENCE_LINES.
  Status CheckMaxSequenceLines();
  bool IsValidBlockSize(int size) const;

  /// Records a finding at the present place. TellFindings writes its output line and counts it.
  void SetErrorInfo(int column, ErrorType type, CompileError error, const std::string& text);

  void Clear();
  Status PrepareToCompile(int position, CInstrument& instrument);
  void CompilationOver(Status status);

  // To the front end's router. Nothing happens, and no output line is counted, without one.
  void SetMessage(const std::string& text, int flag);
  void SetEmptyMessage(int count);

 private:
  CMessageRouter* Router() const override;

  Status CompileAll();
  Status CompileInstrument();
  // False when the instrument is gone.
  bool BeginCheck(Section section, int firstLine, std::string_view what);
  // Tells what was found since the last time, when nothing of the program is held any more; a
  // `status` that is not S_OK stays what it is.
  Status TellFindings(Status status);

  // Walks a list of the program by position, since it may change at every yield: tests for an
  // abort, looks the object up, runs `check(index, object)`, tells what that found, yields.
  template <typename T, typename Check>
  Status ForEachObject(int (CProgramView::*countOf)() const,
                       T* (CProgramView::*objectAt)(int) const, int firstLine, Check check);

  void Error(int column, CompileError error, const std::string& text);
  void Warning(int column, CompileError error, const std::string& text);
  void CheckName(const std::string& name);
  void CheckUse(const INDEXED_NAME* name, const std::string& text);
  void CheckUnique(const INDEXED_NAME* name, const std::string& text);

  void CheckOneBlock(BLOCK& block);
  void CheckLine(const SEQUENCE_LINE& line, const LINE_REFERENCES& references);
  void CheckLabel(const std::string& label);
  void CheckOutput(const std::string& output, const LINE_REFERENCES& references);
  void CheckJump(const SEQUENCE_LINE& line, const LINE_REFERENCES& references);
  void CheckSubSequenceName(const SUBSEQUENCE& subSequence);
  void CheckEventName(const EVENT& event);

  CAppServer* m_server = nullptr;
  CInstrumentManager* m_instruments = nullptr;
  CFindingText m_text;

  int m_errors = 0;
  int m_warnings = 0;
  int m_outputLines = 0;
  std::vector<CompileErrorInfo> m_records;
  std::vector<int> m_linesOfRecords;  // in the output window, rising; of those told so far

  CompileErrorInfo m_place;  // where the next finding lies
};

template <typename T, typename Check>
Status CCompiler::ForEachObject(int (CProgramView::*countOf)() const,
                                T* (CProgramView::*objectAt)(int) const, int firstLine,
                                Check check) {
  for (int i = 0; i < (m_work.Program().*countOf)(); ++i) {
    if (AbortRequested()) return PG_E_ABORTED;
    T* object = (m_work.Program().*objectAt)(i);
    if (!object) return PG_E_INTERNAL;
    m_place.line = firstLine + i;
    const Status status = TellFindings(check(i, *object));
    if (status != S_OK) return status;
    if (!YieldAndReport(i, (m_work.Program().*countOf)())) return PG_E_INTERNAL;
  }
  return S_OK;
}

}  // namespace quillpg
