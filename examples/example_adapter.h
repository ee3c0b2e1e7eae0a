#pragma once

#include "hardware/hardware_library.h"

#include <array>
#include <cmath>
#include <string>

namespace quillpg {

/// The smallest adapter to hardware: one module, which can do nothing but keep the output level of
/// its pods in steps of 0.25 V. What it does not override fails, and GetLastError says so.
class CExampleModule : public CSorrelModule {
 public:
  // --- where it sits and what it is ---
  Status GetFrameNo(int& frame) override { return Answer(frame, 0); }
  Status GetSlotNo(int& slot) override { return Answer(slot, 4); }
  Status GetSlotsOccupied(int& slots) override { return Answer(slots, 2); }
  Status GetManufacturerID(Manufacturer& maker) override {
    return Answer(maker, Manufacturer::Quillmark);
  }
  Status GetModelCode(Device& device) override { return Answer(device, Device::PatternGenerator); }
  Status GetModelName(std::string& name) override { return Answer(name, "QPG-64"); }
  Status GetSerialNo(std::string& serial) override { return Answer(serial, "EX000001"); }
  Status GetFirmwareVersion(std::string& version) override { return Answer(version, "1.0"); }
  Status IsFirmwareCompatible() override { return S_OK; }
  Status SetLogDirectory(const std::string&) override { return S_OK; }
  Status SetMessageRouter(CMessageRouter*) override { return S_OK; }
  Status GetModuleProperties(std::string& text) override { return Answer(text, "QPG-64"); }

  // --- state ---
  int VisaStub() override { return 0; }
  Status ResetModule() override { return m_levels.fill(1.0F), Done(); }
  Status GetLastError(std::string& text, int& error) override {
    text = m_failed ? "not supported" : "";
    error = m_failed ? 1 : 0;
    m_failed = true;  // unless the next call is one that works
    return S_OK;
  }
  Status GetMemoryDepth(long& vectors) override { return Answer(vectors, 262140L); }
  Status GetPodTypes(std::string& keywords) override {
    return Answer(keywords, "TTL/CMOS,TTL/CMOS,None,None");
  }
  Status GetDiagnosticsStatus(std::string& text) override { return Answer(text, "PASS"); }
  Status GetSequencerStatus(std::string& text) override { return Answer(text, "IDL"); }

  // --- the one setting ---
  Status SetOutputLevel(char pod, float volts) override {
    return Level(pod) = std::round(volts * 4) / 4, Done();
  }
  Status GetOutputLevel(char pod, float& volts) override { return Answer(volts, Level(pod)); }

  // --- program and run control ---
  Status DeleteAllBlocks() override { return Done(); }
  Status CreateDataBlock(int, int) override { return Done(); }
  Status DataVectorsSM(const std::uint16_t*, int, int, int, int) override { return Done(); }
  Status DefineSequence(int, const std::string&) override { return Done(); }
  Status DefineSubSequence(int, int, const std::string&) override { return Done(); }
  Status DefineEvent(int, const char*) override { return Done(); }
  Status Initiate() override { return Done(); }
  Status Start() override { return Done(); }
  Status Step(int) override { return Done(); }
  Status Advance() override { return Done(); }
  Status Jump() override { return Done(); }
  Status Abort() override { return Done(); }
  Status WaitForEventTimeOut() override { return Done(); }

 private:
  Status Done() { return m_failed = false, S_OK; }

  template <typename T, typename V>
  Status Answer(T& out, const V& value) {
    out = value;
    return Done();
  }

  float& Level(char pod) { return m_levels[static_cast<std::size_t>(pod - 'A') % m_levels.size()]; }

  std::array<float, 4> m_levels{};
  bool m_failed = true;
};

/// The mainframe around that module; its walk over the modules can be replaced.
class CExampleSystem : public CSystem, public CSystemInfo {
 public:
  Status GetSystemInfo(CSystemInfo** info) override { return *info = this, S_OK; }
  Status GetFirstSorrelModulePos(int& pos) override { return pos = 0, S_OK; }
  Status GetNextSorrelModule(int& pos, CSorrelModule** found) override {
    return pos = -1, *found = &module, S_OK;
  }
  Status GetModuleAt(int slot, CVXIModule** found) override {
    *found = slot == 4 ? &module : nullptr;
    return *found ? S_OK : E_FAIL;
  }
  Status IsSorrelModule(Device, Manufacturer, int& is) override { return is = 1, S_OK; }
  Status IsBenchTop(int& is) override { return is = 0, S_OK; }
  Status GetControllerSlots(int& first, int& last) override { return first = last = 0, S_OK; }
  Status GetControllerProperties(int, std::string& text) override { return text = {}, S_OK; }
  Status PrepareLoadFromStub() override { return E_FAIL; }  // nothing is simulated here
  Status AddModuleFromStub(int) override { return E_FAIL; }
  Status LoadFromStubComplete() override { return E_FAIL; }

  Status GetMainframeType(Mainframe& type) override { return type = Mainframe::Slots13, S_OK; }
  Status GetNoOfExpansions(int& count) override { return count = 0, S_OK; }
  Status GetNoOfModules(int& count) override { return count = 1, S_OK; }
  Status GetSystemSlots(int& count) override { return count = 13, S_OK; }
  Status GetFrontPanelConfig(std::string& text) override { return text = {}, S_OK; }

  CExampleModule module;
};

/// The library: installed with CHardwareManager::Install before the first GetServer.
class CExampleLibrary : public CHardwareManager {
 public:
  explicit CExampleLibrary(CSystem* system) : m_system(system) {}

  Status Initialize() override { return S_OK; }
  Status GetSystem(CSystem** system) override {
    *system = m_system;
    return m_system ? S_OK : E_FAIL;
  }
  Status IsHardwarePresent(int& present) override { return present = 1, S_OK; }
  Status SetMessageRouter(CMessageRouter*) override { return S_OK; }
  Status RunPowerOnDiagnostics(TestResult& result) override {
    return result = TestResult::Pass, S_OK;
  }

 private:
  CSystem* m_system;
};

}  // namespace quillpg
