#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>

// The hardware access library as the engine sees it: every class that stands between the engine and
// the modules. The simulated mainframe implements it; an adapter for real hardware implements it
// too and is installed with CHardwareManager::Install before the first CAppServer::GetServer.
//
// Objects handed out stay the library's; the engine refers to them and never deletes one. Every
// operation returns a status, S_OK for success, unless a result type is given. Outputs are left
// untouched on failure.

namespace quillpg {

class CMessageRouter;
class CSorrelModule;
class CSystem;
class CSystemInfo;
class CVXIModule;

/// Non-zero while a remote client drives the instrument: no message box is shown then and every
/// question is answered with its default. Set by the library or the host; the engine only reads it.
QUILLPG_API extern int GblClientConnected;

/// Entry to the library.
class QUILLPG_API CHardwareManager {
 public:
  virtual ~CHardwareManager() = default;

  /// The installed manager; the simulated mainframe when none was installed.
  static Status GetHardwareManager(CHardwareManager** manager);

  /// Installs `manager`, which stays the caller's and must outlive the engine's use of it; null
  /// brings the simulation back. Call before the first CAppServer::GetServer.
  static void Install(CHardwareManager* manager);

  virtual Status Initialize() = 0;
  virtual Status GetSystem(CSystem** system) = 0;
  /// `present` is non-zero when real hardware is there; settings are compared on read-back only
  /// then.
  virtual Status IsHardwarePresent(int& present) = 0;
  virtual Status SetMessageRouter(CMessageRouter* router) = 0;
  virtual Status RunPowerOnDiagnostics(TestResult& result) = 0;
};

/// The mainframe with its expansion frames and slots.
class QUILLPG_API CSystem {
 public:
  virtual ~CSystem() = default;

  virtual Status GetSystemInfo(CSystemInfo** info) = 0;

  /// Walks the pattern generator modules: `pos` is below 0 when there are none (any more).
  virtual Status GetFirstSorrelModulePos(int& pos) = 0;
  /// Gives the module at `pos` and advances `pos`.
  virtual Status GetNextSorrelModule(int& pos, CSorrelModule** module) = 0;

  /// The module in a slot, of any kind; null and E_FAIL for an empty slot.
  virtual Status GetModuleAt(int slot, CVXIModule** module) = 0;
  /// `is` is 1 when device and maker are those of a pattern generator module.
  virtual Status IsSorrelModule(Device device, Manufacturer manufacturer, int& is) = 0;
  virtual Status IsBenchTop(int& is) = 0;
  virtual Status GetControllerSlots(int& first, int& last) = 0;
  virtual Status GetControllerProperties(int controller, std::string& text) = 0;

  // Simulated modules made from a setup file: prepare, add one for each module, complete.
  virtual Status PrepareLoadFromStub() = 0;
  /// `option` non-zero: the module has the memory option.
  virtual Status AddModuleFromStub(int option) = 0;
  virtual Status LoadFromStubComplete() = 0;
};

/// Properties of the mainframe.
class QUILLPG_API CSystemInfo {
 public:
  virtual ~CSystemInfo() = default;

  virtual Status GetMainframeType(Mainframe& type) = 0;
  virtual Status GetNoOfExpansions(int& count) = 0;
  virtual Status GetNoOfModules(int& count) = 0;
  virtual Status GetSystemSlots(int& count) = 0;
  virtual Status GetFrontPanelConfig(std::string& text) = 0;
};

/// Where a module sits and what it is.
class QUILLPG_API CModuleInfo {
 public:
  virtual ~CModuleInfo() = default;

  virtual Status GetFrameNo(int& frame) = 0;  ///< 0 mainframe, n expansion frame n
  virtual Status GetSlotNo(int& slot) = 0;
  virtual Status GetSlotsOccupied(int& slots) = 0;
  virtual Status GetManufacturerID(Manufacturer& manufacturer) = 0;
  virtual Status GetModelCode(Device& device) = 0;
  virtual Status GetModelName(std::string& name) = 0;
  virtual Status GetSerialNo(std::string& serial) = 0;
  virtual Status GetFirmwareVersion(std::string& version) = 0;
  /// S_OK when the engine can work with the module's firmware.
  virtual Status IsFirmwareCompatible() = 0;
};

/// Any module in a slot.
class QUILLPG_API CVXIModule {
 public:
  virtual ~CVXIModule() = default;

  virtual Status SetLogDirectory(const std::string& directory) = 0;
  virtual Status SetMessageRouter(CMessageRouter* router) = 0;
  /// The module's own description.
  virtual Status GetModuleProperties(std::string& text) = 0;
};

/// A pattern generator module. Pods are the letters 'A' to 'D', variable channels 0 to 3.
///
/// After each setter and getter the engine asks GetLastError; its flag is non-zero when that call
/// failed, whatever the call returned. An adapter overrides what its hardware has; what it does not
/// override answers E_FAIL (and GetLastError must then say so).
class QUILLPG_API CSorrelModule : public CVXIModule, public CModuleInfo {
 public:
  // --- identity and state ---
  /// 1 exactly for a simulated module.
  virtual int VisaStub() = 0;
  virtual Status ResetModule() = 0;
  /// Text and flag of the last call before this one.
  virtual Status GetLastError(std::string& text, int& error) = 0;
  /// Vectors in FULL mode.
  virtual Status GetMemoryDepth(long& vectors) = 0;
  /// Comma-separated pod type keywords, pods A to D.
  virtual Status GetPodTypes(std::string& keywords) = 0;
  virtual Status GetDiagnosticsStatus(std::string& text) = 0;
  /// "IDL", "INIT", "WAIT" or "RUNN".
  virtual Status GetSequencerStatus(std::string& text) = 0;

  // --- settings of the whole module ---
  virtual Status SetChannelMode(ChannelMode) { return E_FAIL; }
  virtual Status GetChannelMode(ChannelMode&) { return E_FAIL; }
  virtual Status SetClockSource(ClockSource) { return E_FAIL; }
  virtual Status GetClockSource(ClockSource&) { return E_FAIL; }
  /// Seconds.
  virtual Status SetClockPeriod(double) { return E_FAIL; }
  virtual Status GetClockPeriod(double&) { return E_FAIL; }
  virtual Status SetClockPolarity(Polarity) { return E_FAIL; }
  virtual Status GetClockPolarity(Polarity&) { return E_FAIL; }
  /// Volts.
  virtual Status SetClockInputThreshold(float) { return E_FAIL; }
  virtual Status GetClockInputThreshold(float&) { return E_FAIL; }
  /// Steps of 25 ps.
  virtual Status SetClockDeskew(int) { return E_FAIL; }
  virtual Status GetClockDeskew(int&) { return E_FAIL; }
  /// Internal clock on (1) or off (0).
  virtual Status SetClockState(int) { return E_FAIL; }
  virtual Status SetRunMode(RunMode) { return E_FAIL; }
  virtual Status GetRunMode(RunMode&) { return E_FAIL; }
  virtual Status SetSignalInputSource(SignalType) { return E_FAIL; }
  virtual Status GetSignalInputSource(SignalType&) { return E_FAIL; }
  virtual Status SetSignalInputPolarity(Polarity) { return E_FAIL; }
  virtual Status SetSignalOutDest(SignalType) { return E_FAIL; }
  virtual Status GetSignalOutDest(SignalType&) { return E_FAIL; }
  virtual Status SetSignalOutPolarity(Polarity) { return E_FAIL; }
  virtual Status SetEventFilter(int) { return E_FAIL; }
  virtual Status GetEventFilter(int&) { return E_FAIL; }
  virtual Status SetEventForInhibit(int) { return E_FAIL; }
  virtual Status GetEventForInhibit(int&) { return E_FAIL; }
  virtual Status SetEventModeForAdvance(EventMode) { return E_FAIL; }
  virtual Status GetEventModeForAdvance(EventMode&) { return E_FAIL; }
  virtual Status SetEventModeForJump(EventMode) { return E_FAIL; }
  virtual Status GetEventModeForJump(EventMode&) { return E_FAIL; }
  /// 0 the module runs by itself or as the master, i > 0 it follows the module i places before it.
  virtual Status SetWeldMode(int) { return E_FAIL; }
  virtual Status EnableOutput(int) { return E_FAIL; }

  // --- settings of a pod ---
  /// Volts.
  virtual Status SetOutputLevel(char /*pod*/, float) { return E_FAIL; }
  virtual Status GetOutputLevel(char /*pod*/, float&) { return E_FAIL; }
  virtual Status SetStrobeInhibit(char /*pod*/, int) { return E_FAIL; }
  virtual Status GetStrobeInhibit(char /*pod*/, int&) { return E_FAIL; }
  /// Inhibit by the data of pod D.
  virtual Status SetInhibitByData(char /*pod*/, int) { return E_FAIL; }
  virtual Status GetInhibitByData(char /*pod*/, int&) { return E_FAIL; }
  virtual Status SetInhibitByEvent(char /*pod*/, int) { return E_FAIL; }
  virtual Status GetInhibitByEvent(char /*pod*/, int&) { return E_FAIL; }
  /// Strobe timing, the value of a StrobeDelay.
  virtual Status SetStrobeFormat(char /*pod*/, int) { return E_FAIL; }
  virtual Status GetStrobeFormat(char /*pod*/, int&) { return E_FAIL; }
  virtual Status SetStrobeEnable(char /*pod*/, int) { return E_FAIL; }
  virtual Status GetStrobeEnable(char /*pod*/, int&) { return E_FAIL; }
  /// Volts; index 0 or 1.
  virtual Status SetInputThreshold(char /*pod*/, int /*index*/, float) { return E_FAIL; }
  virtual Status GetInputThreshold(char /*pod*/, int /*index*/, float&) { return E_FAIL; }
  virtual Status SetOutputPolarity(char /*pod*/, Polarity) { return E_FAIL; }
  virtual Status GetOutputPolarity(char /*pod*/, Polarity&) { return E_FAIL; }
  /// The value of a CH6OutputMode.
  virtual Status SetCH6OutputMode(char /*pod*/, int) { return E_FAIL; }
  virtual Status GetCH6OutputMode(char /*pod*/, int&) { return E_FAIL; }

  // --- settings of a variable channel ---
  /// Volts.
  virtual Status SetHighLevel(char /*pod*/, int /*channel*/, float) { return E_FAIL; }
  virtual Status GetHighLevel(char /*pod*/, int /*channel*/, float&) { return E_FAIL; }
  virtual Status SetLowLevel(char /*pod*/, int /*channel*/, float) { return E_FAIL; }
  virtual Status GetLowLevel(char /*pod*/, int /*channel*/, float&) { return E_FAIL; }
  virtual Status SetSlewRate(char /*pod*/, int /*channel*/, float) { return E_FAIL; }
  virtual Status GetSlewRate(char /*pod*/, int /*channel*/, float&) { return E_FAIL; }
  /// The values of an InhibitMask, a DataFormat and a DelayRange.
  virtual Status SetInhibitMask(char /*pod*/, int /*channel*/, int) { return E_FAIL; }
  virtual Status GetInhibitMask(char /*pod*/, int /*channel*/, int&) { return E_FAIL; }
  virtual Status SetDataFormat(char /*pod*/, int /*channel*/, int) { return E_FAIL; }
  virtual Status GetDataFormat(char /*pod*/, int /*channel*/, int&) { return E_FAIL; }
  virtual Status SetDelayRange(char /*pod*/, int /*channel*/, int) { return E_FAIL; }
  virtual Status GetDelayRange(char /*pod*/, int /*channel*/, int&) { return E_FAIL; }
  /// Seconds.
  virtual Status SetDelay(char /*pod*/, int /*channel*/, double) { return E_FAIL; }
  virtual Status GetDelay(char /*pod*/, int /*channel*/, double&) { return E_FAIL; }

  // --- program ---
  virtual Status DeleteAllBlocks() = 0;
  /// Reserves memory for block `block` of `size` vectors.
  virtual Status CreateDataBlock(int block, int size) = 0;
  /// `unitCount` memory units of 16 words each, from unit `firstUnit` of the block on. `words` is
  /// valid during the call only.
  virtual Status DataVectorsSM(const std::uint16_t* words, int block, int firstUnit, int unitCount,
                               int last) = 0;
  /// Six numbers a line, all joined by ",".
  virtual Status DefineSequence(int lines, const std::string& text) = 0;
  /// Subsequences are numbered from 1; two numbers a line, all joined by ",".
  virtual Status DefineSubSequence(int number, int lines, const std::string& text) = 0;
  /// Events are numbered from 1; nine characters a row, rows joined by "|".
  virtual Status DefineEvent(int number, const char* text) = 0;

  // --- run control ---
  virtual Status Initiate() = 0;
  virtual Status Start() = 0;
  virtual Status Step(int steps) = 0;
  virtual Status Advance() = 0;
  virtual Status Jump() = 0;
  virtual Status Abort() = 0;
  virtual Status WaitForEventTimeOut() = 0;
};

}  // namespace quillpg
