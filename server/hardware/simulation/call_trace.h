#pragma once

#include "hardware/simulation/call_sink.h"
#include "quillpg/api.h"

#include <iosfwd>
#include <string>

namespace quillpg {

/// Writes each call as one line with one JSON object, in order:
///   {"module":0,"op":"SetOutputLevel","args":["A",3.3]}
/// DataVectorsSM also has "words": its 16-bit words as upper-case hexadecimal, four digits each,
/// without blanks. Numbers are the shortest decimal that reads back; a number that JSON has no
/// notation for is null. Calls that only ask are left out unless `queries` is set.
class QUILLPG_API CCallTrace : public CCallSink {
 public:
  /// `out` stays the caller's and must outlive the trace; its state tells whether writing failed.
  explicit CCallTrace(std::ostream& out, bool queries = false) : m_out(out), m_queries(queries) {}

  void OnCall(const MODULE_CALL& call) override;

 private:
  std::ostream& m_out;
  bool m_queries;
  std::string m_line;  // kept for its storage
};

}  // namespace quillpg
