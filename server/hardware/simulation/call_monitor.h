#pragma once

#include "hardware/simulation/call_sink.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

/// Stands at the door of every simulated module: tells the sinks of each call, keeps the log,
/// decides which call fails and what a read-back becomes.
class CCallMonitor {
 public:
  /// Reports the call; false when it is one that was to fail.
  bool Enter(const MODULE_CALL& call);
  /// Reports a call that cannot fail.
  void Report(const MODULE_CALL& call);
  /// What the getter `operation` answers for a stored `value`.
  double ReadBack(std::string_view operation, double value) const;

  void FailCall(const std::string& operation, int nth, int module);
  void Quantise(const std::string& operation, std::function<double(double)> quantiser);
  void AddSink(CCallSink* sink);
  void RemoveSink(CCallSink* sink);
  void LogCalls(bool on, bool queries);
  std::vector<std::string> TakeCalls();

 private:
  struct FAULT {
    std::string operation;
    int remaining;  // calls until the one that fails, itself included
    int module;     // below 0: any
  };
  bool IsFault(const MODULE_CALL& call);

  std::vector<CCallSink*> m_sinks;
  std::vector<FAULT> m_faults;
  std::map<std::string, std::function<double(double)>, std::less<>> m_quantisers;
  std::vector<std::string> m_log;
  bool m_logs = false;
  bool m_logsQueries = false;
};

}  // namespace quillpg
