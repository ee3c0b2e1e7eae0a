#include "hardware/simulation/simulation_control.h"

#include "base/guard.h"
#include "hardware/simulation/call_monitor.h"
#include "hardware/simulation/simulated_module.h"
#include "hardware/simulation/simulated_system.h"
#include "hardware/simulation/virtual_clock.h"

#include <utility>

namespace quillpg {

CSimulationControl::CSimulationControl(CSimulatedSystem& system, CCallMonitor& calls,
                                       CVirtualClock& clock)
    : m_system(system), m_calls(calls), m_clock(clock) {}

// --- what is there ---

Status CSimulationControl::SetModules(int count, bool option) {
  if (count < 0 || count > SIMULATED_MOST_MODULES) return E_FAIL;
  return GuardAllocation(
      [&] { return SetModules(CSimulatedSystem::MakeDescriptions(count, option)); });
}

Status CSimulationControl::SetModules(std::vector<SIMULATED_MODULE> modules) {
  if (modules.size() > SIMULATED_MOST_MODULES) return E_FAIL;
  return GuardAllocation([&] {
    m_system.SetModules(std::move(modules));
    return S_OK;
  });
}

int CSimulationControl::ModuleCount() const { return m_system.Modules().Count(); }

void CSimulationControl::SetStubFile(const std::string& path) {
  (void)GuardAllocation([&] {
    m_system.SetStubFile(path);
    return S_OK;
  });
}

SIMULATED_MODULE* CSimulationControl::Module(int index) {
  CSimulatedModule* module = m_system.Modules().At(index);
  (void)GuardAllocation([&] {  // a file that does not fit leaves the built-in answers
    m_system.Modules().OpenAnswers();
    return S_OK;
  });
  return module ? &module->Description() : nullptr;
}

CSorrelModule* CSimulationControl::HardwareModule(int index) {
  return m_system.Modules().At(index);
}

Status CSimulationControl::Query(int slot, const std::string& command, std::string& reply) {
  CSimulatedModule* module = m_system.Modules().InSlot(slot);
  return module ? module->Query(command, reply) : E_FAIL;
}

Status CSimulationControl::GetTermination(int slot, StubTermination& termination) {
  CSimulatedModule* module = m_system.Modules().InSlot(slot);
  return module ? module->GetTermination(termination) : E_FAIL;
}

SIMULATED_MAINFRAME& CSimulationControl::Mainframe() { return m_system.Mainframe(); }

// --- what goes wrong ---

void CSimulationControl::FailCall(const std::string& operation, int nth, int module) {
  m_calls.FailCall(operation, nth, module);
}

void CSimulationControl::Quantise(const std::string& operation,
                                  std::function<double(double)> quantiser) {
  m_calls.Quantise(operation, std::move(quantiser));
}

void CSimulationControl::SetSequencerText(int module, std::optional<std::string> text) {
  if (CSimulatedModule* target = m_system.Modules().At(module)) {
    target->SetSequencerText(std::move(text));
  }
}

// --- what is recorded ---

void CSimulationControl::AddCallSink(CCallSink* sink) { m_calls.AddSink(sink); }
void CSimulationControl::RemoveCallSink(CCallSink* sink) { m_calls.RemoveSink(sink); }
void CSimulationControl::LogCalls(bool on, bool queries) { m_calls.LogCalls(on, queries); }
std::vector<std::string> CSimulationControl::TakeCalls() { return m_calls.TakeCalls(); }

void CSimulationControl::AddVectorSink(CVectorSink* sink) {
  if (sink) m_clock.Environment().sinks.push_back(sink);
}

void CSimulationControl::RemoveVectorSink(CVectorSink* sink) {
  std::erase(m_clock.Environment().sinks, sink);
}

// --- the clock ---

Status CSimulationControl::SetStimulus(const std::vector<STIMULUS_LINE>& lines) {
  return m_clock.Environment().stimulus.Set(lines);
}

void CSimulationControl::SetVectorsPerPoll(std::int64_t vectors) {
  m_clock.SetVectorsPerPoll(vectors);
}

Status CSimulationControl::Clock(std::int64_t vectors) { return m_clock.Clock(vectors); }

Status CSimulationControl::PlayUntilIdle(std::int64_t vectors, PlayEnd& end) {
  return m_clock.PlayUntilIdle(vectors, end);
}

Status CSimulationControl::GetSequencer(int module, SEQUENCER_POSITION& position) const {
  CSimulatedModule* asked = m_system.Modules().At(module);
  if (!asked) return E_FAIL;
  const CSequencer& sequencer = m_clock.MasterOf(*asked).Sequencer();
  position = {sequencer.State(), sequencer.Line(), sequencer.AwaitedEvent(), sequencer.IsStuck(),
              sequencer.Clocked()};
  return S_OK;
}

}  // namespace quillpg
