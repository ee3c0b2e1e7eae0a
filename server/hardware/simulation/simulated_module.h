#pragma once

#include "hardware/hardware_library.h"
#include "hardware/simulation/call_sink.h"
#include "hardware/simulation/module_settings.h"
#include "hardware/simulation/pattern_memory.h"
#include "hardware/simulation/pattern_program.h"
#include "hardware/simulation/sequencer.h"
#include "hardware/simulation/simulated_mainframe.h"

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quillpg {

class CCallMonitor;
class CModuleList;
class CStubFile;
class CVirtualClock;
enum class StubTermination;

/// A simulated pattern generator module: answers from its description, keeps every setting and
/// reads it back, takes the program and plays it.
///
/// Every operation fails, and GetLastError says so, for a pod or index that the setting does not
/// have. Pattern words for a block that was not created, or beyond its size, are dropped and
/// reported likewise.
class CSimulatedModule final : public CSorrelModule {
 public:
  /// `index` counts over the whole system. Monitor, clock and list must outlive the module.
  CSimulatedModule(int index, SIMULATED_MODULE description, CCallMonitor& calls,
                   CVirtualClock& clock, CModuleList& list);

  SIMULATED_MODULE& Description() { return m_description; }
  const SIMULATED_MODULE& Description() const { return m_description; }
  const CModuleSettings& Settings() const { return m_settings; }
  CSequencer& Sequencer() { return m_sequencer; }
  const CSequencer& Sequencer() const { return m_sequencer; }
  PIN_SOURCE Pins() const { return {&m_settings, &m_memory}; }
  int WeldMode() const { return m_settings.Number(Setting::WeldMode); }
  /// What GetSequencerStatus answers instead of the true state.
  void SetSequencerText(std::optional<std::string> text) { m_sequencerText = std::move(text); }

  /// Takes identity and settings from a section of `file`, which must outlive the module, and
  /// answers queries from it.
  void AnswerFrom(CStubFile& file, int section);
  /// Answers an instrument command, without the termination that the bus would add. E_FAIL, with
  /// `reply` untouched, when there is no answer. What was set does not change what is answered.
  Status Query(const std::string& command, std::string& reply);
  Status GetTermination(StubTermination& termination);

  // CVXIModule, CModuleInfo
  Status SetLogDirectory(const std::string& directory) override;
  Status SetMessageRouter(CMessageRouter* router) override;
  Status GetModuleProperties(std::string& text) override;
  Status GetFrameNo(int& frame) override;
  Status GetSlotNo(int& slot) override;
  Status GetSlotsOccupied(int& slots) override;
  Status GetManufacturerID(Manufacturer& manufacturer) override;
  Status GetModelCode(Device& device) override;
  Status GetModelName(std::string& name) override;
  Status GetSerialNo(std::string& serial) override;
  Status GetFirmwareVersion(std::string& version) override;
  Status IsFirmwareCompatible() override;

  // Identity and state
  int VisaStub() override;
  Status ResetModule() override;
  Status GetLastError(std::string& text, int& error) override;
  Status GetMemoryDepth(long& vectors) override;
  Status GetPodTypes(std::string& keywords) override;
  Status GetDiagnosticsStatus(std::string& text) override;
  Status GetSequencerStatus(std::string& text) override;

  // Settings: the operations of each row of the table
  // NOLINTBEGIN(bugprone-macro-parentheses): a type cannot stand in parentheses
#define QUILLPG_MODULE_SETTING(name, type, initial)                                        \
  Status Set##name(type value) override { return Set(Setting::name, "Set" #name, value); } \
  Status Get##name(type& value) override { return Get(Setting::name, "Get" #name, value); }
#define QUILLPG_MODULE_COMMAND(name, operation, type, initial) \
  Status operation(type value) override { return Set(Setting::name, #operation, value); }
#define QUILLPG_POD_SETTING(name, type, a, b, c, d)        \
  Status Set##name(char pod, type value) override {        \
    return SetPod(Setting::name, "Set" #name, pod, value); \
  }                                                        \
  Status Get##name(char pod, type& value) override {       \
    return GetPod(Setting::name, "Get" #name, pod, value); \
  }
#define QUILLPG_INDEXED_SETTING(name, type, first, last, i0, i1, i2, i3) \
  Status Set##name(char pod, int index, type value) override {           \
    return SetIndexed(Setting::name, "Set" #name, pod, index, value);    \
  }                                                                      \
  Status Get##name(char pod, int index, type& value) override {          \
    return GetIndexed(Setting::name, "Get" #name, pod, index, value);    \
  }
#include "hardware/simulation/module_settings.def"
#undef QUILLPG_MODULE_SETTING
#undef QUILLPG_MODULE_COMMAND
#undef QUILLPG_POD_SETTING
#undef QUILLPG_INDEXED_SETTING
  // NOLINTEND(bugprone-macro-parentheses)

  // Program
  Status DeleteAllBlocks() override;
  Status CreateDataBlock(int block, int size) override;
  Status DataVectorsSM(const std::uint16_t* words, int block, int firstUnit, int unitCount,
                       int last) override;
  Status DefineSequence(int lines, const std::string& text) override;
  Status DefineSubSequence(int number, int lines, const std::string& text) override;
  Status DefineEvent(int number, const char* text) override;

  // Run control
  Status Initiate() override;
  Status Start() override;
  Status Step(int steps) override;
  Status Advance() override;
  Status Jump() override;
  Status Abort() override;
  /// Changes nothing: waits of the simulation end by their event, Advance or Jump alone.
  Status WaitForEventTimeOut() override;

 private:
  using ARGUMENTS = std::initializer_list<CALL_ARGUMENT>;

  /// Reports the call, carries `action` out unless the call was to fail, keeps the outcome for
  /// GetLastError.
  template <typename Action>
  Status Call(std::string_view operation, ARGUMENTS arguments, Action&& action);
  /// A call that asks for no answer: modules are told before their configuration file is written.
  Status Tell(std::string_view operation, ARGUMENTS arguments);
  bool Enter(std::string_view operation, std::span<const CALL_ARGUMENT> arguments,
             std::span<const std::uint16_t> words);
  Status Leave(std::string_view operation, Status status);
  template <typename Action>
  Status WithStubFile(Action&& action);
  template <typename Value>
  Status Answer(std::string_view operation, Value& out, const Value& value);

  Status StoreSetting(Setting setting, std::string_view operation, int place, ARGUMENTS arguments,
                      double value);
  Status ReadSetting(Setting setting, std::string_view operation, int place, ARGUMENTS arguments,
                     double& value);

  template <typename Value>
  static CALL_ARGUMENT Argument(Value value) {
    if constexpr (std::is_floating_point_v<Value>) {
      return value;
    } else {
      return static_cast<std::int64_t>(value);
    }
  }
  /// A read-back that a quantiser moved out of the type's range becomes 0.
  template <typename Value>
  static Value FromNumber(double number) {
    if constexpr (std::is_floating_point_v<Value>) {
      return static_cast<Value>(number);
    } else {
      const bool fits = number >= std::numeric_limits<std::int32_t>::min() &&
                        number <= std::numeric_limits<std::int32_t>::max();
      return static_cast<Value>(fits ? static_cast<std::int32_t>(number) : 0);
    }
  }

  template <typename Value>
  Status Set(Setting setting, std::string_view operation, Value value) {
    return StoreSetting(setting, operation, 0, {Argument(value)}, static_cast<double>(value));
  }
  template <typename Value>
  Status SetPod(Setting setting, std::string_view operation, char pod, Value value) {
    return StoreSetting(setting, operation, CModuleSettings::Place(setting, pod, 0),
                        {pod, Argument(value)}, static_cast<double>(value));
  }
  template <typename Value>
  Status SetIndexed(Setting setting, std::string_view operation, char pod, int index, Value value) {
    return StoreSetting(setting, operation, CModuleSettings::Place(setting, pod, index),
                        {pod, Argument(index), Argument(value)}, static_cast<double>(value));
  }
  template <typename Value>
  Status Get(Setting setting, std::string_view operation, Value& value) {
    return Fetch(setting, operation, 0, {}, value);
  }
  template <typename Value>
  Status GetPod(Setting setting, std::string_view operation, char pod, Value& value) {
    return Fetch(setting, operation, CModuleSettings::Place(setting, pod, 0), {pod}, value);
  }
  template <typename Value>
  Status GetIndexed(Setting setting, std::string_view operation, char pod, int index,
                    Value& value) {
    return Fetch(setting, operation, CModuleSettings::Place(setting, pod, index),
                 {pod, Argument(index)}, value);
  }
  template <typename Value>
  Status Fetch(Setting setting, std::string_view operation, int place, ARGUMENTS arguments,
               Value& value) {
    double number = 0;
    const Status status = ReadSetting(setting, operation, place, arguments, number);
    if (!Failed(status)) value = FromNumber<Value>(number);
    return status;
  }

  const int m_index;
  SIMULATED_MODULE m_description;
  CCallMonitor& m_calls;
  CVirtualClock& m_clock;
  CModuleList& m_list;
  CStubFile* m_stubFile = nullptr;  // null: built-in answers
  int m_section = 0;
  CModuleSettings m_settings;
  CPatternMemory m_memory;
  CPatternProgram m_program;
  CSequencer m_sequencer;
  std::optional<std::string> m_sequencerText;
  std::string m_errorText;
  int m_error = 0;
};

}  // namespace quillpg
