#include "hardware/simulation/call_monitor.h"

#include "base/text.h"
#include "hardware/simulation/call_text.h"

#include <utility>

namespace quillpg {
namespace {

std::string LogText(const MODULE_CALL& call) {
  std::string text;
  AppendNumber(text, call.module);
  text += ' ';
  text += call.operation;
  text += '(';
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    if (i > 0) text += ',';
    AppendPlain(text, call.arguments[i]);
  }
  text += ')';
  return text;
}

}  // namespace

bool IsQuery(std::string_view operation) {
  return operation.starts_with("Get") || operation.starts_with("Is") || operation == "VisaStub";
}

bool CCallMonitor::Enter(const MODULE_CALL& call) {
  Report(call);
  return !IsFault(call);
}

void CCallMonitor::Report(const MODULE_CALL& call) {
  for (CCallSink* sink : m_sinks) sink->OnCall(call);
  if (m_logs && (m_logsQueries || !IsQuery(call.operation))) m_log.push_back(LogText(call));
}

bool CCallMonitor::IsFault(const MODULE_CALL& call) {
  bool fails = false;
  for (FAULT& fault : m_faults) {
    const bool meant =
        fault.operation == call.operation && (fault.module < 0 || fault.module == call.module);
    if (meant && --fault.remaining == 0) fails = true;
  }
  std::erase_if(m_faults, [](const FAULT& fault) { return fault.remaining <= 0; });
  return fails;
}

double CCallMonitor::ReadBack(std::string_view operation, double value) const {
  const auto found = m_quantisers.find(operation);
  return found == m_quantisers.end() ? value : found->second(value);
}

void CCallMonitor::FailCall(const std::string& operation, int nth, int module) {
  if (nth > 0) m_faults.push_back({operation, nth, module});
}

void CCallMonitor::Quantise(const std::string& operation, std::function<double(double)> quantiser) {
  if (quantiser) {
    m_quantisers[operation] = std::move(quantiser);
  } else {
    m_quantisers.erase(operation);
  }
}

void CCallMonitor::AddSink(CCallSink* sink) {
  if (sink) m_sinks.push_back(sink);
}

void CCallMonitor::RemoveSink(CCallSink* sink) { std::erase(m_sinks, sink); }

void CCallMonitor::LogCalls(bool on, bool queries) {
  m_logs = on;
  m_logsQueries = queries;
}

std::vector<std::string> CCallMonitor::TakeCalls() { return std::exchange(m_log, {}); }

}  // namespace quillpg
