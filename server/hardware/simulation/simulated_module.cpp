#include "hardware/simulation/simulated_module.h"

#include "base/guard.h"
#include "hardware/simulation/call_monitor.h"
#include "hardware/simulation/module_list.h"
#include "hardware/simulation/stub_file.h"
#include "hardware/simulation/stub_identity.h"
#include "hardware/simulation/stub_section.h"
#include "hardware/simulation/unit_unpacker.h"
#include "hardware/simulation/virtual_clock.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <sstream>
#include <utility>

namespace quillpg {
namespace {

constexpr std::string_view kNoError = "0, No Error";

std::string_view StateText(ModuleState state) {
  switch (state) {
    case ModuleState::Initialising:
      return "INIT";
    case ModuleState::Waiting:
      return "WAIT";
    case ModuleState::Running:
      return "RUNN";
    default:
      return "IDL";
  }
}

long MemoryDepth(const SIMULATED_MODULE& description) {
  return description.option ? OPTION_MEMORY_DEPTH : DEFAULT_MEMORY_DEPTH;
}

}  // namespace

CSimulatedModule::CSimulatedModule(int index, SIMULATED_MODULE description, CCallMonitor& calls,
                                   CVirtualClock& clock, CModuleList& list)
    : m_index(index),
      m_description(std::move(description)),
      m_calls(calls),
      m_clock(clock),
      m_list(list),
      m_settings(m_description.settings),
      m_sequencer(index, m_program, m_settings, clock.Environment()),
      m_errorText(kNoError) {}

// --- every call ---

bool CSimulatedModule::Enter(std::string_view operation, std::span<const CALL_ARGUMENT> arguments,
                             std::span<const std::uint16_t> words) {
  m_list.OpenAnswers();
  return m_calls.Enter({m_index, operation, arguments, words});
}

Status CSimulatedModule::Leave(std::string_view operation, Status status) {
  m_error = Failed(status) ? 1 : 0;
  m_errorText = kNoError;
  if (m_error != 0) m_errorText = "-200, " + std::string(operation) + " failed";
  return status;
}

template <typename Action>
Status CSimulatedModule::Call(std::string_view operation, ARGUMENTS arguments, Action&& action) {
  const Status status = GuardAllocation(
      [&]() -> Status { return Enter(operation, arguments, {}) ? action() : E_FAIL; });
  return Leave(operation, status);
}

Status CSimulatedModule::Tell(std::string_view operation, ARGUMENTS arguments) {
  const Status status = GuardAllocation([&] {
    return m_calls.Enter({m_index, operation, arguments, {}}) ? S_OK : E_FAIL;
  });
  return Leave(operation, status);
}

template <typename Value>
Status CSimulatedModule::Answer(std::string_view operation, Value& out, const Value& value) {
  return Call(operation, {}, [&] {
    out = value;
    return S_OK;
  });
}

Status CSimulatedModule::StoreSetting(Setting setting, std::string_view operation, int place,
                                      ARGUMENTS arguments, double value) {
  return Call(operation, arguments, [&] {
    if (place < 0) return E_FAIL;
    m_settings.Store(setting, place, value);
    return S_OK;
  });
}

Status CSimulatedModule::ReadSetting(Setting setting, std::string_view operation, int place,
                                     ARGUMENTS arguments, double& value) {
  return Call(operation, arguments, [&] {
    if (place < 0) return E_FAIL;
    value = m_calls.ReadBack(operation, m_settings.At(setting, place));
    return S_OK;
  });
}

// --- answers of the configuration file ---

void CSimulatedModule::AnswerFrom(CStubFile& file, int section) {
  m_stubFile = &file;
  m_section = section;
  ApplyStubAnswers(file, section, m_description);
  m_settings.Assign(m_description.settings);
}

// Hands the file to `action`; without one, the section that would be written for this module.
template <typename Action>
Status CSimulatedModule::WithStubFile(Action&& action) {
  return GuardAllocation([&] {
    m_list.OpenAnswers();
    if (m_stubFile) return action(*m_stubFile, m_section);
    std::string text;
    AppendPatternGeneratorSection(
        {m_description.slot, m_index + 1, m_description.option, m_description.pods}, text);
    std::istringstream stream(text);
    CStubFile builtIn;
    const Status status = builtIn.Read(stream);
    return status == S_OK && builtIn.ModuleCount() > 0 ? action(builtIn, 0) : E_FAIL;
  });
}

Status CSimulatedModule::Query(const std::string& command, std::string& reply) {
  return WithStubFile(
      [&](CStubFile& file, int section) { return file.Query(section, command, reply); });
}

Status CSimulatedModule::GetTermination(StubTermination& termination) {
  return WithStubFile([&](const CStubFile& file, int section) {
    termination = file.Termination(section);
    return S_OK;
  });
}

// --- identity ---

Status CSimulatedModule::SetLogDirectory(const std::string& directory) {
  return Tell("SetLogDirectory", {std::string_view(directory)});
}
Status CSimulatedModule::SetMessageRouter(CMessageRouter* /*router*/) {
  return Tell("SetMessageRouter", {});
}
Status CSimulatedModule::GetModuleProperties(std::string& text) {
  return Call("GetModuleProperties", {}, [&] {
    text = m_description.model + "," + m_description.serial + "," + m_description.firmware;
    return S_OK;
  });
}
Status CSimulatedModule::GetFrameNo(int& frame) {
  return Answer("GetFrameNo", frame, m_description.frame);
}
Status CSimulatedModule::GetSlotNo(int& slot) {
  return Answer("GetSlotNo", slot, m_description.slot);
}
Status CSimulatedModule::GetSlotsOccupied(int& slots) {
  return Answer("GetSlotsOccupied", slots, SIMULATED_MODULE_SLOTS);
}
Status CSimulatedModule::GetManufacturerID(Manufacturer& manufacturer) {
  return Answer("GetManufacturerID", manufacturer, m_description.manufacturer);
}
Status CSimulatedModule::GetModelCode(Device& device) {
  return Answer("GetModelCode", device, m_description.device);
}
Status CSimulatedModule::GetModelName(std::string& name) {
  return Answer("GetModelName", name, m_description.model);
}
Status CSimulatedModule::GetSerialNo(std::string& serial) {
  return Answer("GetSerialNo", serial, m_description.serial);
}
Status CSimulatedModule::GetFirmwareVersion(std::string& version) {
  return Answer("GetFirmwareVersion", version, m_description.firmware);
}
Status CSimulatedModule::IsFirmwareCompatible() {
  return Call("IsFirmwareCompatible", {},
              [&] { return m_description.firmwareCompatible ? S_OK : E_FAIL; });
}

int CSimulatedModule::VisaStub() {
  m_calls.Report({m_index, "VisaStub", {}, {}});
  return m_description.simulated ? 1 : 0;
}

Status CSimulatedModule::ResetModule() {
  return Call("ResetModule", {}, [&] {
    m_settings.Assign(m_description.settings);
    m_sequencer.Abort();
    return S_OK;
  });
}

Status CSimulatedModule::GetLastError(std::string& text, int& error) {
  return GuardAllocation([&] {
    m_calls.Report({m_index, "GetLastError", {}, {}});
    text = m_errorText;
    error = m_error;
    return S_OK;
  });
}

Status CSimulatedModule::GetMemoryDepth(long& vectors) {
  return Answer("GetMemoryDepth", vectors, MemoryDepth(m_description));
}
Status CSimulatedModule::GetPodTypes(std::string& keywords) {
  return Answer("GetPodTypes", keywords, m_description.pods);
}
Status CSimulatedModule::GetDiagnosticsStatus(std::string& text) {
  return Answer("GetDiagnosticsStatus", text, m_description.diagnostics);
}

Status CSimulatedModule::GetSequencerStatus(std::string& text) {
  return Call("GetSequencerStatus", {}, [&] {
    m_clock.Poll();
    text =
        m_sequencerText ? *m_sequencerText : StateText(m_clock.MasterOf(*this).Sequencer().State());
    return S_OK;
  });
}

// --- program ---

Status CSimulatedModule::DeleteAllBlocks() {
  return Call("DeleteAllBlocks", {}, [&] {
    m_memory.DeleteAll();
    return S_OK;
  });
}

Status CSimulatedModule::CreateDataBlock(int block, int size) {
  return Call("CreateDataBlock", {Argument(block), Argument(size)}, [&] {
    const auto mode = static_cast<ChannelMode>(m_settings.Number(Setting::ChannelMode));
    const std::int64_t depth = MemoryDepth(m_description);
    return m_memory.Create(block, size, mode, mode == ChannelMode::Half ? 2 * depth : depth);
  });
}

Status CSimulatedModule::DataVectorsSM(const std::uint16_t* words, int block, int firstUnit,
                                       int unitCount, int last) {
  const std::size_t count =
      words && unitCount > 0 ? static_cast<std::size_t>(unitCount) * WORDS_PER_UNIT : 0;
  const Status status = GuardAllocation([&]() -> Status {
    const CALL_ARGUMENT arguments[] = {Argument(block), Argument(firstUnit), Argument(unitCount),
                                       Argument(last)};
    if (!Enter("DataVectorsSM", arguments, {words, count})) return E_FAIL;
    return m_memory.Write(words, block, firstUnit, unitCount);
  });
  return Leave("DataVectorsSM", status);
}

Status CSimulatedModule::DefineSequence(int lines, const std::string& text) {
  return Call("DefineSequence", {Argument(lines), std::string_view(text)},
              [&] { return m_program.DefineSequence(lines, text); });
}

Status CSimulatedModule::DefineSubSequence(int number, int lines, const std::string& text) {
  return Call("DefineSubSequence", {Argument(number), Argument(lines), std::string_view(text)},
              [&] { return m_program.DefineSubSequence(number, lines, text); });
}

Status CSimulatedModule::DefineEvent(int number, const char* text) {
  const std::string_view rows = text ? std::string_view(text) : std::string_view();
  return Call("DefineEvent", {Argument(number), rows},
              [&] { return text ? m_program.DefineEvent(number, rows) : E_FAIL; });
}

// --- run control ---

Status CSimulatedModule::Initiate() {
  return Call("Initiate", {}, [&] {
    m_sequencer.Initiate();
    return S_OK;
  });
}
Status CSimulatedModule::Start() {
  return Call("Start", {}, [&] { return m_clock.Start(*this); });
}
Status CSimulatedModule::Step(int steps) {
  return Call("Step", {Argument(steps)}, [&] { return m_clock.Step(*this, steps); });
}
Status CSimulatedModule::Advance() {
  return Call("Advance", {}, [&] {
    m_sequencer.Advance();
    return S_OK;
  });
}
Status CSimulatedModule::Jump() {
  return Call("Jump", {}, [&] {
    m_sequencer.Jump();
    return S_OK;
  });
}
Status CSimulatedModule::Abort() {
  return Call("Abort", {}, [&] {
    m_sequencer.Abort();
    return S_OK;
  });
}
Status CSimulatedModule::WaitForEventTimeOut() {
  return Call("WaitForEventTimeOut", {}, [] { return S_OK; });
}

}  // namespace quillpg
