#include "hardware/simulation/pattern_program.h"

#include "quillpg/limits.h"

#include <charconv>
#include <cstddef>
#include <span>
#include <utility>

namespace quillpg {
namespace {

constexpr int kSequenceFields = 6;
constexpr int kSubSequenceFields = 2;

/// Reads exactly `lines` times `fields` whole numbers joined by ",".
bool ParseNumbers(std::string_view text, int lines, int fields, std::vector<std::int64_t>& out) {
  if (lines < 0) return false;
  const std::size_t expected = static_cast<std::size_t>(lines) * static_cast<std::size_t>(fields);
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    std::int64_t number = 0;
    const auto [next, error] = std::from_chars(at, end, number);
    if (error != std::errc() || out.size() == expected) return false;
    out.push_back(number);
    at = next;
    if (at == end) break;
    if (*at++ != ',' || at == end) return false;
  }
  return out.size() == expected;
}

bool AddRow(std::string_view row, EVENT_TRUTH& truth) {
  if (row.size() != EVENT_INPUTS) return false;
  std::size_t care = 0;
  std::size_t value = 0;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i] == '0' || row[i] == '1') care |= std::size_t{1} << i;
    if (row[i] == '1') value |= std::size_t{1} << i;
  }
  for (std::size_t inputs = 0; inputs < truth.size(); ++inputs) {
    if ((inputs & care) == value) truth.set(inputs);
  }
  return true;
}

}  // namespace

Status CPatternProgram::DefineSequence(int lines, std::string_view text) {
  std::vector<std::int64_t> numbers;
  if (!ParseNumbers(text, lines, kSequenceFields, numbers)) return E_FAIL;
  std::vector<SEQUENCE_RECORD> sequence;
  for (std::size_t i = 0; i < numbers.size(); i += kSequenceFields) {
    const auto field = std::span(numbers).subspan(i, kSequenceFields);
    sequence.push_back({field[0], field[1], field[2], field[3], field[4], field[5]});
  }
  m_sequence = std::move(sequence);
  return S_OK;
}

Status CPatternProgram::DefineSubSequence(int number, int lines, std::string_view text) {
  std::vector<std::int64_t> numbers;
  if (number < 1 || !ParseNumbers(text, lines, kSubSequenceFields, numbers)) return E_FAIL;
  std::vector<SUBSEQUENCE_RECORD> records;
  for (std::size_t i = 0; i < numbers.size(); i += kSubSequenceFields) {
    records.push_back({numbers[i], numbers[i + 1]});
  }
  m_subSequences[number] = std::move(records);
  return S_OK;
}

Status CPatternProgram::DefineEvent(int number, std::string_view text) {
  if (number < 1) return E_FAIL;
  EVENT_TRUTH truth;
  while (!text.empty()) {
    const std::size_t bar = text.find('|');
    if (!AddRow(text.substr(0, bar), truth)) return E_FAIL;
    if (bar == std::string_view::npos) break;
    text.remove_prefix(bar + 1);
    if (text.empty()) return E_FAIL;
  }
  m_events[number] = truth;
  return S_OK;
}

const std::vector<SUBSEQUENCE_RECORD>* CPatternProgram::SubSequence(std::int64_t number) const {
  const auto found = m_subSequences.find(number);
  return found == m_subSequences.end() ? nullptr : &found->second;
}

const EVENT_TRUTH& CPatternProgram::Event(std::int64_t number) const {
  static const EVENT_TRUTH never;
  const auto found = m_events.find(number);
  return found == m_events.end() ? never : found->second;
}

}  // namespace quillpg
