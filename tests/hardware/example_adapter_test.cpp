// A host with hardware of its own stands its library behind the engine's interface. This adapter
// does so for one module with one TTL pod whose level settles in steps of 0.1 V; it is as small as
// an adapter can be.

#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "quillpg/app_server.h"
#include "support/scripted_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

namespace quillpg {
namespace {

class CExampleModule : public CSorrelModule {
 public:
  Status SetLogDirectory(const std::string&) override { return Done(); }
  Status SetMessageRouter(CMessageRouter*) override { return Done(); }
  Status GetModuleProperties(std::string& text) override { return Give(text, "example"); }
  Status GetFrameNo(int& frame) override { return Give(frame, 0); }
  Status GetSlotNo(int& slot) override { return Give(slot, 4); }
  Status GetSlotsOccupied(int& slots) override { return Give(slots, 1); }
  Status GetManufacturerID(Manufacturer& id) override { return Give(id, Manufacturer::Quillmark); }
  Status GetModelCode(Device& code) override { return Give(code, Device::PatternGenerator); }
  Status GetModelName(std::string& name) override { return Give(name, "example"); }
  Status GetSerialNo(std::string& serial) override { return Give(serial, "1"); }
  Status GetFirmwareVersion(std::string& version) override { return Give(version, "1.0"); }
  Status IsFirmwareCompatible() override { return S_OK; }

  int VisaStub() override { return 0; }
  Status ResetModule() override { return Done(); }
  Status GetLastError(std::string& text, int& error) override {
    text = m_error != 0 ? "not supported" : "";
    error = m_error;
    return S_OK;
  }
  Status GetMemoryDepth(long& vectors) override { return Give(vectors, 1000L); }
  Status GetPodTypes(std::string& keywords) override {
    return Give(keywords, "TTL/CMOS,None,None,None");
  }
  Status GetDiagnosticsStatus(std::string& text) override { return Give(text, "PASS"); }
  Status GetSequencerStatus(std::string& text) override { return Give(text, "IDL"); }

  // Everything else that can be set is left to the base class: it fails, and m_error stays set.
  Status SetOutputLevel(char, float volts) override {
    m_level = std::round(volts * 10) / 10;
    return Done();
  }
  Status GetOutputLevel(char, float& volts) override { return Give(volts, m_level); }

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
  Status Done() {
    m_error = 0;
    return S_OK;
  }
  template <typename Value, typename Answer>
  Status Give(Value& out, const Answer& answer) {
    out = answer;
    return Done();
  }

  float m_level = 5;
  int m_error = 0;
};

class CExampleHardware : public CHardwareManager, public CSystem, public CSystemInfo {
 public:
  Status Initialize() override { return S_OK; }
  Status GetSystem(CSystem** system) override { return *system = this, S_OK; }
  Status IsHardwarePresent(int& present) override { return present = 1, S_OK; }
  Status SetMessageRouter(CMessageRouter*) override { return S_OK; }
  Status RunPowerOnDiagnostics(TestResult& result) override {
    return result = TestResult::NotRun, S_OK;
  }

  Status GetSystemInfo(CSystemInfo** info) override { return *info = this, S_OK; }
  Status GetFirstSorrelModulePos(int& pos) override { return pos = 0, S_OK; }
  Status GetNextSorrelModule(int& pos, CSorrelModule** module) override {
    *module = &m_module;
    pos = -1;
    return S_OK;
  }
  Status GetModuleAt(int slot, CVXIModule** module) override {
    *module = slot == 4 ? &m_module : nullptr;
    return *module ? S_OK : E_FAIL;
  }
  Status IsSorrelModule(Device, Manufacturer, int& is) override { return is = 1, S_OK; }
  Status IsBenchTop(int& is) override { return is = 1, S_OK; }
  Status GetControllerSlots(int& first, int& last) override { return first = last = 0, S_OK; }
  Status GetControllerProperties(int, std::string& text) override { return text = "", S_OK; }
  Status PrepareLoadFromStub() override { return E_FAIL; }
  Status AddModuleFromStub(int) override { return E_FAIL; }
  Status LoadFromStubComplete() override { return E_FAIL; }

  Status GetMainframeType(Mainframe& type) override { return type = Mainframe::BenchTop, S_OK; }
  Status GetNoOfExpansions(int& count) override { return count = 0, S_OK; }
  Status GetNoOfModules(int& count) override { return count = 1, S_OK; }
  Status GetSystemSlots(int& count) override { return count = 6, S_OK; }
  Status GetFrontPanelConfig(std::string& text) override { return text = "", S_OK; }

 private:
  CExampleModule m_module;
};

TEST(ExampleAdapter, StandsBehindTheEngine) {
  CScriptedHost host;
  CExampleHardware hardware;
  CHostServices::Set(&host);
  CHardwareManager::Install(&hardware);
  CAppServer* server = nullptr;
  EXPECT_EQ(S_OK, CAppServer::GetServer(&server));
  const std::unique_ptr<CAppServer> owner(server);
  CModuleManager* modules = nullptr;
  server->GetModuleManager(&modules);
  int count = 0;
  modules->GetNoOfModules(count);
  ASSERT_EQ(1, count);
  server->InitializeModules();

  CModule* module = nullptr;
  modules->GetModuleAt(0, &module);
  double level = 0;
  EXPECT_EQ(E_FAIL, module->SetOutputLevel(0, 3.34));  // the hardware took another level
  module->GetOutputLevel(0, level);
  EXPECT_NEAR(3.3, level, 1e-6);
  EXPECT_EQ(E_FAIL, module->SetOutputLevel(1, 3.3));  // no such pod
  long depth = 0;
  module->GetMemoryDepth(depth);
  EXPECT_EQ(1000, depth);
  CHardwareManager::Install(nullptr);
  CHostServices::Set(nullptr);
}

}  // namespace
}  // namespace quillpg
