#pragma once

#include "hardware/simulation/event_stimulus.h"
#include "hardware/simulation/simulated_mainframe.h"
#include "hardware/simulation/vector_sink.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quillpg {

class CCallMonitor;
class CCallSink;
class CSimulatedSystem;
class CSorrelModule;
class CVirtualClock;
enum class StubTermination;

/// Why a play ended.
enum class PlayEnd {
  Idle,      ///< every sequencer reached its end
  Limit,     ///< the vectors asked for were clocked
  Waiting,   ///< a line waits for an event that no stimulus line to come can make true
  Stepping,  ///< the modules that are left are in step mode: only Step clocks them
};

/// Where a sequencer stands.
struct SEQUENCER_POSITION {
  ModuleState state = ModuleState::Idle;
  int line = -1;             ///< sequence line that plays or waits; -1 when idle
  int event = 0;             ///< number of the event that the line waits for; 0 when it does not
  bool stuck = false;        ///< it waits, and no stimulus line to come can make the event true
  std::int64_t clocked = 0;  ///< vectors clocked since Start
};

/// The hand on the simulated mainframe: what it consists of, what goes wrong, what is recorded and
/// how its clock runs. Belongs to a CSimulatedHardware. Sinks are the caller's: they stay until
/// removed and must outlive that.
class QUILLPG_API CSimulationControl {
 public:
  CSimulationControl(CSimulatedSystem& system, CCallMonitor& calls, CVirtualClock& clock);

  // --- what is there ---

  /// Replaces the modules by `count` equal ones in slots 3, 5, 7, ... of the mainframe, with or
  /// without the memory option. At most SIMULATED_MOST_MODULES, else E_FAIL. The engine sees them
  /// at its next discovery; the old ones live on until the replacement after that.
  Status SetModules(int count, bool option = false);
  /// Replaces the modules by these.
  Status SetModules(std::vector<SIMULATED_MODULE> modules);
  int ModuleCount() const;
  /// Answers of a module, to be changed in place at any time (settings: they hold from the next
  /// ResetModule on); null for a bad index.
  SIMULATED_MODULE* Module(int index);
  /// The module as the engine sees it; null for a bad index.
  CSorrelModule* HardwareModule(int index);
  /// The simulation configuration file to read instead of the one that is found beside the program
  /// or in the host's system folder; empty brings the search back. Modules are made from it when
  /// the library is initialised the next time.
  void SetStubFile(const std::string& path);
  /// What the module in `slot` answers to an instrument command, without termination. E_FAIL, with
  /// `reply` untouched, for an empty slot and a command without an answer.
  Status Query(int slot, const std::string& command, std::string& reply);
  /// How the module in `slot` ends its replies on the bus.
  Status GetTermination(int slot, StubTermination& termination);
  /// Answers of the mainframe, to be changed in place.
  SIMULATED_MAINFRAME& Mainframe();

  // --- what goes wrong ---

  static constexpr int ANY_MODULE = -1;
  /// Lets the n-th call of `operation` from now on fail (n from 1): it changes nothing, answers
  /// E_FAIL, and GetLastError reports an error. Holds for one call; may be given several times.
  void FailCall(const std::string& operation, int nth = 1, int module = ANY_MODULE);
  /// Passes every value that the getter `operation` ("GetOutputLevel") reads back through
  /// `quantiser`; an empty function ends that.
  void Quantise(const std::string& operation, std::function<double(double)> quantiser);
  /// What GetSequencerStatus of a module answers; nullopt: its true state again.
  void SetSequencerText(int module, std::optional<std::string> text);

  // --- what is recorded ---

  void AddCallSink(CCallSink* sink);
  void RemoveCallSink(CCallSink* sink);
  /// Starts or ends keeping a log of the calls; `queries` also those that only ask.
  void LogCalls(bool on, bool queries = false);
  /// The calls logged so far, each as "0 SetOutputLevel(A,3.3)": module, operation, arguments.
  /// Empties the log.
  std::vector<std::string> TakeCalls();
  void AddVectorSink(CVectorSink* sink);
  void RemoveVectorSink(CVectorSink* sink);

  // --- the clock: it moves here, by Step, and by a poll of GetSequencerStatus ---

  /// The event inputs; see CEventStimulus::Set.
  Status SetStimulus(const std::vector<STIMULUS_LINE>& lines);
  /// Vectors by which each poll of GetSequencerStatus moves the clock; 0 at start.
  void SetVectorsPerPoll(std::int64_t vectors);
  /// Clocks `vectors` vectors on every started module, waiting or playing; modules in step mode
  /// stand. E_FAIL for a negative number or when memory runs out.
  Status Clock(std::int64_t vectors);
  /// Clocks until all modules are idle, or each clocked `vectors` more, or none can go on.
  /// Calling it again goes on where it stopped.
  Status PlayUntilIdle(std::int64_t vectors, PlayEnd& end);
  /// Where the sequencer stands that drives the module (a follower answers for its master);
  /// E_FAIL for a bad index.
  Status GetSequencer(int module, SEQUENCER_POSITION& position) const;

 private:
  CSimulatedSystem& m_system;
  CCallMonitor& m_calls;
  CVirtualClock& m_clock;
};

}  // namespace quillpg
