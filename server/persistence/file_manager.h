#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace quillpg {

class CAppServer;
class CAtomicFile;
class CBusyMark;
class CByteWriter;
class CInputFile;
class CInstrument;
class CInstrumentManager;
class CMessageRouter;
class CModuleManager;
class CSetupFileReader;
struct FIXED_SECTION;

/// What a file dialog shows of a setup file.
struct PREVIEW_INFO {
  std::string comment;  ///< trimmed; empty for a file that is no setup file
};

/// Where a file could not be read any further.
struct READ_FAULT {
  const char* field = nullptr;  ///< null for none
  std::uint64_t offset = 0;     ///< bytes from the start of the file
};

/// Saves the system or one instrument to a setup file and loads it back; checks beforehand whether
/// a file fits the modules that are present; lists and previews files. A `flag` is non-zero to
/// store the programs too.
///
/// Progress goes to the message router as a percentage, per instrument anew: 0 after the groups,
/// then 25, 50, 75 and 100; a save without programs stops at 0. Whoever is called back there may
/// not call a load, a save or a look at a file, nor delete instruments: E_FAIL. Loads are refused
/// with E_FAIL, too, while a compile or download runs.
///
/// Every operation that opens a file to read it gives PG_E_FILE_MISSING, PG_E_FILE_NOT_OPENED,
/// PG_E_NOT_SETUP_FILE for a file of another product, and E_UNEXPECTED, with message
/// MSG_FILE_READ_ERROR, for one of this product whose head cannot be read.
class QUILLPG_API CFileManager {
 public:
  CFileManager();
  CFileManager(const CFileManager&) = delete;
  CFileManager& operator=(const CFileManager&) = delete;
  virtual ~CFileManager();

  /// Both are referenced.
  Status Initialize(CAppServer* server, CInstrumentManager* instruments);
  /// Referenced; null drops the progress reports.
  Status SetMessageRouter(CMessageRouter* router);

  // --- save: the old file stays whole until the new one is complete and on disk ---
  //
  // PG_E_FILE_NOT_OPENED for a file that may not be written, that cannot be created or that another
  // save is writing; E_FAIL for a failure while writing (a full disk), PG_E_MODULE_MISSING for an
  // instrument without one of its modules: the file and its name in the model stay as they were.
  // Only a device, a file with several hard links and one in a folder that takes no new file are
  // written in place, where a failure can damage them.

  /// The instrument manager takes the file name.
  Status SaveSystem(const std::string& fileName, const std::string& comment, int flag);
  /// `position` is the instrument's place in the list, which gives the file its entry. The
  /// instrument takes the file name. E_FAIL, with nothing written, for an unknown one.
  Status SaveModule(const std::string& fileName, const std::string& comment, int position,
                    CInstrument* instrument, int flag);

  // --- load: no notifications are raised, the front end shows the instruments anew ---

  /// Replaces all instruments by those of the file, whose modules must be there: see
  /// CanLoadSystemFile. `loadFlag` stays for the checks: 1 turns both off, any other value but 0
  /// the one of system files. After a failure the instruments made so far stay, those not read with
  /// defaults; the system has no file name then, so that no save overwrites the file that it had.
  Status LoadSystem(const std::string& fileName, int loadFlag);
  /// Loads the instrument `instrumentName` of the file into `target`, which keeps its own name.
  /// Takes the file name when the file holds that instrument alone and is not the system's. S_OK,
  /// with nothing changed, when the file has no such instrument.
  Status LoadModule(const std::string& fileName, const std::string& instrumentName,
                    CInstrument* target);
  /// For a window onto the data of one instrument: replaces all instruments and loads the named one
  /// whole; those before it get settings, groups and blocks without data, those after it defaults.
  /// There is no current instrument afterwards. S_OK once the file is open. The system takes the
  /// file name: saving to it would store what is there, blocks without data included.
  Status LoadDataWindow(const std::string& fileName, const std::string& instrumentName);
  /// Makes the instruments that the last file read lists, out of consecutive modules. Each is given
  /// as many of them as there are.
  Status CreateInstruments(CModuleManager* modules, CInstrumentManager* instruments);

  /// The records of one instrument. E_FAIL unless a save or load is going on, and while that is at
  /// the records of one.
  Status SaveInstrument(CInstrument* instrument);
  Status LoadInstrument(CInstrument* instrument);

  // --- looking at a file: its head becomes the one that the queries below answer for ---

  /// E_FAIL without modules, PG_E_NOT_SETUP_FILE for a module file, PG_E_MODULE_COUNT,
  /// PG_E_MEMORY_DEPTH. S_OK unseen while the load flag is not 0.
  Status CanLoadSystemFile(const std::string& fileName);
  /// E_FAIL for an instrument that the file does not hold, PG_E_INSTRUMENT_MODULES,
  /// PG_E_MEMORY_DEPTH. S_OK unseen while the load flag is 1.
  Status CanLoadModuleFile(const std::string& fileName, const std::string& instrumentName,
                           CInstrument* instrument);
  /// S_OK for a file of this product.
  Status IsPGFile(const std::string& fileName);
  /// Software version of the last file read or written; empty before the first.
  Status GetFileVersion(std::string& version) const;
  /// S_OK always.
  Status Preview(const std::string& fileName, PREVIEW_INFO& info);
  /// Names of the file's instruments, and the number of modules of all of them.
  Status GetModuleList(const std::string& fileName, std::vector<std::string>& names, int& modules);
  /// Truth value of the last file read or written.
  int IsProgramDataSaved() const;
  /// 1 while records are read only to step over them.
  static int IsLoadModuleEnabled();
  /// Head of the last file read or written.
  const FIXED_SECTION& FixedSection() const { return *m_fixedSection; }
  /// Of the last file read; there may be one behind the blocks of a load that gave S_OK.
  const READ_FAULT& Fault() const { return m_fault; }

  // --- the head alone, on a binary stream ---

  /// Takes the record from the live system first. `position` counts for FileType::Module.
  Status WriteFixedSection(std::ostream& stream, FileType type, int position);
  Status ReadFixedSection(std::istream& stream);

  // --- sizes and progress ---

  /// Bytes that a save would write for the instrument at `position`, with -1 for the system; at
  /// most 0xFFFFFFFF is told.
  Status GetSize(unsigned long& size, int flag, int position) const;
  Status GetSystemSize(unsigned long& size, int flag) const;
  /// Of the whole system when there is no current instrument.
  Status GetCurrentInstSize(unsigned long& size, int flag) const;
  Status SetProgressBarMessage(int percent);

  /// Truth value; 0 without a hardware library.
  static int IsHardwarePresent();
  /// Simulates one module for each memory depth of the last file read, lets the engine discover
  /// them and writes the file of CAppServer::InitializeVisaStubFile; without a path, or when it
  /// cannot be written, the modules are there all the same. All instruments lose their modules: a
  /// load or DefaultSystem must follow. Nothing happens while hardware is present or a load, save,
  /// compile or download is going on. S_OK always.
  Status GenerateVisaStub();

 private:
  std::string ProductName() const;
  CModuleManager* LiveModules() const;
  void SetStatusMessage(const std::string& text) const;
  void ShowReadingMessage(const std::string& fileName) const;

  Status OpenForReading(const std::string& fileName);
  Status ReadHead();
  void FetchRecords();
  void CloseInput();
  Status LookAt(const std::string& fileName);

  Status SimulateModules();

  Status MakeInstruments(CModuleManager& modules, CInstrumentManager& instruments) const;
  Status ReadProgram(CInstrument& instrument);
  Status LoadAll(CModuleManager& modules, CBusyMark& busy);
  Status LoadNamed(const std::string& fileName, const std::string& instrumentName,
                   CInstrument& target);
  Status StepTo(const std::string& instrumentName, bool& found);

  void UpdateFixedSection(FIXED_SECTION& section, FileType type, int position, int flag) const;
  Status WriteFile(const std::string& fileName, FileType type, int position,
                   const std::vector<CInstrument*>& instruments);
  Status WriteRecords(FileType type, int position, const std::vector<CInstrument*>& instruments);
  Status WriteProgram(const CInstrument& instrument);

  CAppServer* m_server = nullptr;
  CInstrumentManager* m_instruments = nullptr;
  CMessageRouter* m_router = nullptr;
  int m_programDataFlag = 1;
  int m_loadFlag = 0;
  std::string m_comment;
  std::unique_ptr<FIXED_SECTION> m_fixedSection;
  std::unique_ptr<CInputFile> m_input;
  std::unique_ptr<CSetupFileReader> m_reader;
  READ_FAULT m_fault;
  std::unique_ptr<CAtomicFile> m_output;
  std::unique_ptr<CByteWriter> m_writer;
  bool m_working = false;
  bool m_inInstrument = false;  ///< the records of one are being written or read

  static int m_loadModule;
};

}  // namespace quillpg
