#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>
#include <vector>

namespace quillpg {

class CAppServer;
class CInstrument;
class CInstrumentManager;
class CMessageRouter;
class CModuleManager;

/// What a file dialog shows of a setup file.
struct PREVIEW_INFO {
  std::string comment;  ///< trimmed; empty for a file that is no setup file
};

/// Saves the system or one instrument to a setup file and loads it back; checks beforehand whether
/// a file fits the modules that are present; lists and previews files. A `flag` is non-zero to
/// store the programs too.
class QUILLPG_API CFileManager {
 public:
  CFileManager() = default;
  CFileManager(const CFileManager&) = delete;
  CFileManager& operator=(const CFileManager&) = delete;
  virtual ~CFileManager() = default;

  /// Both are referenced.
  Status Initialize(CAppServer* server, CInstrumentManager* instruments);
  /// Referenced; null drops the progress reports.
  Status SetMessageRouter(CMessageRouter* router);

  // --- save and load ---

  Status SaveSystem(const std::string& fileName, const std::string& comment, int flag);
  /// Replaces all instruments. A failure leaves what was loaded so far.
  Status LoadSystem(const std::string& fileName, int loadFlag);
  Status SaveModule(const std::string& fileName, const std::string& comment, int position,
                    CInstrument* instrument, int flag);
  /// Loads the instrument `instrumentName` of the file into `target`, which keeps its own name.
  Status LoadModule(const std::string& fileName, const std::string& instrumentName,
                    CInstrument* target);
  /// Replaces all instruments and loads the program of the named one alone.
  Status LoadDataWindow(const std::string& fileName, const std::string& instrumentName);
  Status SaveInstrument(CInstrument* instrument);
  Status LoadInstrument(CInstrument* instrument);
  /// Makes the instruments that the last file read lists, out of consecutive modules.
  Status CreateInstruments(CModuleManager* modules, CInstrumentManager* instruments);

  // --- looking at a file ---

  Status CanLoadSystemFile(const std::string& fileName);
  Status CanLoadModuleFile(const std::string& fileName, const std::string& instrumentName,
                           CInstrument* instrument);
  /// S_OK for a file of this product.
  Status IsPGFile(const std::string& fileName);
  /// Software version of the last file read or written; empty before the first.
  Status GetFileVersion(std::string& version) const;
  Status Preview(const std::string& fileName, PREVIEW_INFO& info);
  /// Names of the file's instruments, and the number of modules of all of them.
  Status GetModuleList(const std::string& fileName, std::vector<std::string>& names, int& modules);
  /// Truth value of the last file read or written.
  int IsProgramDataSaved() const;
  /// 1 while records are read only to step over them.
  static int IsLoadModuleEnabled();

  // --- sizes and progress ---

  /// Bytes that a save would write for the instrument at `position`, with -1 for the system.
  Status GetSize(unsigned long& size, int flag, int position) const;
  Status GetSystemSize(unsigned long& size, int flag) const;
  Status GetCurrentInstSize(unsigned long& size, int flag) const;
  Status SetProgressBarMessage(int percent);

  /// Simulates the modules of the last file read; nothing happens while hardware is present.
  Status GenerateVisaStub();

 private:
  CAppServer* m_server = nullptr;
  CInstrumentManager* m_instruments = nullptr;
  CMessageRouter* m_router = nullptr;
};

}  // namespace quillpg
