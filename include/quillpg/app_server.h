#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <memory>
#include <string>

namespace quillpg {

class CClipboardInfo;
class CCompiler;
class CExportManager;
class CFileManager;
class CFormatManager;
class CHardwareManager;
class CImportManager;
class CInstrument;
class CInstrumentManager;
class CMergeManager;
class CMessageRouter;
class CModuleManager;
class CPrintManager;
class CServer2HAL;
class CSystem;
class CVersionInfo;
class CVisaStubGen;

/// The root of the engine: owns every manager for the life of the process and is the one place from
/// which a manager reaches its siblings. One thread, the front end's: no operation locks, none lets
/// an exception out. A null result pointer gives E_FAIL everywhere.
class QUILLPG_API CAppServer {
 public:
  CAppServer(const CAppServer&) = delete;
  CAppServer& operator=(const CAppServer&) = delete;

  /// Destroys every owned manager. The engine itself never does; a host that must start afresh may
  /// delete the object, after which GetServer makes a new one.
  virtual ~CAppServer();

  // --- creation and wiring ---

  /// Gives the one server, creating and initialising it on the first call. `*server` is set even
  /// when the initialisation failed (its status is returned); it is not tried again: later calls
  /// answer S_OK.
  static Status GetServer(CAppServer** server);

  /// Installs the front end's message sink and passes it on to the managers that report: file
  /// manager, hardware manager, module manager, format, export and import manager, download bridge.
  /// The router stays the caller's; null drops messages from then on.
  Status SetMessageRouter(CMessageRouter* router);
  Status GetMessageRouter(CMessageRouter** router);

  /// Reads every module's settings from the hardware; model settings of the modules are lost.
  Status InitializeModules();

  // --- owned and referenced objects: what is handed out stays the server's, never delete it ---

  /// Asks the hardware library for its manager on each call.
  Status GetHardwareManager(CHardwareManager** manager);
  Status GetSystem(CSystem** system);
  Status GetCompiler(CCompiler** compiler);
  Status GetServer2HAL(CServer2HAL** bridge);
  Status GetFileManager(CFileManager** manager);
  Status GetPrintManager(CPrintManager** manager);
  Status GetFormatManager(CFormatManager** manager);
  Status GetExportManager(CExportManager** manager);
  Status GetImportManager(CImportManager** manager);
  Status GetInstrumentManager(CInstrumentManager** manager);
  Status GetModuleManager(CModuleManager** manager);
  Status GetVersionInfo(CVersionInfo** version);
  Status GetClipboardInfo(CClipboardInfo** clipboard);
  Status GetVisaStubGenerator(CVisaStubGen** generator);

  /// Re-initialises the merge manager from the current instruments on every call (deliberate),
  /// which throws unsaved merge edits away: fetch it once for each dialog.
  Status GetMergeManager(CMergeManager** manager);

  // --- run control: S_OK whatever the instruments report ---

  /// Run and Stop visit all instruments in list order under the wait cursor.
  Status Run();
  Status Stop();

  /// `position` is a place in the instrument list, from 0; a bad one does nothing.
  Status Advance(int position);
  Status Jump(int position);
  /// Steps that instrument by `steps` vectors.
  Status Step(int position, int steps);

  /// Refreshes every instrument's state; Active as soon as one of them is not idle, else Idle.
  Status GetSystemState(SystemState& state);

  /// The hardware manager's own diagnostics and status; E_FAIL without a hardware manager.
  Status RunPowerOnDiagnostics(TestResult& result);

  /// `module` must have been a CSorrelModule* (not a CModule*, not a base class) when it became a
  /// void*; null does nothing. S_OK always.
  Status WaitForEventTimeOut(void* module);

  /// Re-reads the pod types of all modules, in order; a missing module ends the walk with E_FAIL.
  /// The modules' own statuses are not looked at.
  Status UpdateProbes();

  // --- compile, download, abort ---

  /// S_OK, E_FAIL when an error was counted, PG_E_ABORTED.
  Status Compile();
  /// S_OK or PG_E_ABORTED. Does not ask whether the program compiles: compile first.
  Status Download();
  Status AbortCompilation();
  Status AbortDownload();
  Status AbortExport();
  Status AbortImport();
  Status ResetAbort();

  // --- defaults, load and save ---

  /// Replaces all instruments by one per module.
  Status DefaultSystem();
  /// Defaults of the current instrument, or of the named one; E_FAIL without it.
  Status DefaultModule();
  Status DefaultModule(const std::string& name);

  /// Hands the file manager's own status through.
  Status LoadSystem(const std::string& path);
  /// Saves under the system file name; E_FAIL without one. `flag` 1 stores programs too.
  Status SaveSystem(int flag);
  /// Any failure is E_FAIL; the comment is taken over on success alone.
  Status SaveSystem(std::string& name, std::string& comment, int flag);
  /// Loads the instrument `instrument` of the file `path` into the current one; hands the file
  /// manager's status through.
  Status LoadModule(const std::string& path, const std::string& instrument);
  Status SaveModule(std::string& name, int flag);
  Status SaveModule(std::string& name, std::string& comment, int flag);
  Status GetFileName(std::string& name);
  Status SetFileName(const std::string& name);
  /// Names the file that CFileManager::GenerateVisaStub writes and forgets its modules so far.
  Status InitializeVisaStubFile(const std::string& path);

  // --- versions ---

  Status GetFileVersion(std::string& version);
  Status GetSoftwareVersion(std::string& version);
  /// The same, cut before the last "." unless that is the first character.
  Status GetFileVersion2(std::string& version);
  Status GetSoftwareVersion2(std::string& version);
  /// A truth value: 0 only for a file of version "1.0" under a software of another version.
  int IsNewVersion();
  /// A truth value: records are being read only to step over them, without pattern data.
  int IsLoadModuleEnabled() const;

  // --- modified state ---

  /// 1 when one instrument reports itself modified.
  Status IsModified(int& modified);
  /// Writes the block managers' flags and nothing else: the instruments' own flags, which
  /// IsModified reads, are separate on purpose. SetModified(0) between editing blocks and
  /// downloading makes the download skip the deletion and creation of blocks, yet it still sends
  /// blocks whose own flag is set; the hardware drops words for a block that was not created.
  Status SetModified(int flag);

  // --- data entry, messages, clipboard ---

  /// Level that new channel data takes, a character: code 0 gives zeros, any other one - the digit
  /// '0' included - gives ones.
  Status SetDefaultChannelValue(char value);
  Status GetDefaultChannelValue(char& value);
  Status SetDefaultRadix(Radix radix);
  Status GetDefaultRadix(Radix& radix);

  /// Hands `text` to the router's status line, if there is a router; empty clears the line.
  void SetStatusMessage(const std::string& text);

  /// Pastes what `info` describes. E_FAIL, with nothing changed, without information or source (a
  /// source without a target marks the clipboard as holding nothing first), for a range outside the
  /// source, a target without room, and, after telling the user, for what does not fit or is
  /// missing; PG_E_ABORTED when the user declines. A name that is in use becomes a free one.
  Status Paste(CClipboardInfo* info);

 private:
  // They must see an existing server only and never create one.
  friend class CInstrumentManager;
  friend class CModuleManager;

  CAppServer();
  Status Initialize();

  /// Takes the modules of `owner`, which are about to be destroyed, out of all instruments of the
  /// existing server.
  static void ReleaseModules(const CModuleManager& owner);

  Status PasteContent(CClipboardInfo* info);
  Status PasteBlock(CClipboardInfo* info);
  Status PasteEvent(CClipboardInfo* info);
  Status PasteEventDef(CClipboardInfo* info);
  Status PasteSeq(CClipboardInfo* info);
  Status PasteSubSeq(CClipboardInfo* info);
  Status PasteSubSeqDef(CClipboardInfo* info);
  Status PasteRows(CClipboardInfo* info);
  Status PasteColumn(CClipboardInfo* info);
  Status PasteChannelCol(CClipboardInfo* info);

  static CAppServer* m_pServer;

  char m_defaultChannelValue = '0';
  Radix m_defaultRadix = Radix::Hex;
  CSystem* m_system = nullptr;
  std::unique_ptr<CCompiler> m_compiler;
  std::unique_ptr<CServer2HAL> m_server2Hal;
  std::unique_ptr<CVersionInfo> m_versionInfo;
  std::unique_ptr<CClipboardInfo> m_clipboardInfo;
  CMessageRouter* m_messageRouter = nullptr;
  std::unique_ptr<CFileManager> m_fileManager;
  std::unique_ptr<CPrintManager> m_printManager;
  std::unique_ptr<CMergeManager> m_mergeManager;
  std::unique_ptr<CFormatManager> m_formatManager;
  std::unique_ptr<CExportManager> m_exportManager;
  std::unique_ptr<CImportManager> m_importManager;
  std::unique_ptr<CModuleManager> m_moduleManager;
  CHardwareManager* m_hardwareManager = nullptr;
  std::unique_ptr<CInstrumentManager> m_instrumentManager;
  std::unique_ptr<CVisaStubGen> m_visaStubGen;
};

}  // namespace quillpg
