#include "hardware/simulation/call_trace.h"

#include "base/text.h"
#include "hardware/simulation/call_text.h"

#include <array>
#include <cstddef>
#include <ostream>

namespace quillpg {
namespace {

void AppendWords(std::string& out, std::span<const std::uint16_t> words) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::size_t at = out.size();
  out.resize(at + 4 * words.size());
  for (const std::uint16_t word : words) {
    for (int shift = 12; shift >= 0; shift -= 4) out[at++] = kDigits[(word >> shift) & 15U];
  }
}

}  // namespace

void CCallTrace::OnCall(const MODULE_CALL& call) {
  if (!m_queries && IsQuery(call.operation)) return;
  m_line = R"({"module":)";
  AppendNumber(m_line, call.module);
  m_line += R"(,"op":")";
  m_line += call.operation;
  m_line += R"(","args":[)";
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    if (i > 0) m_line += ',';
    AppendJson(m_line, call.arguments[i]);
  }
  m_line += ']';
  if (call.operation == "DataVectorsSM") {
    m_line += R"(,"words":")";
    AppendWords(m_line, call.words);
    m_line += '"';
  }
  m_line += "}\n";
  m_out << m_line;
}

}  // namespace quillpg
