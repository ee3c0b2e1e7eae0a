#include "compiler/finding_text.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/enum_text.h"
#include "base/text.h"
#include "quillpg/limits.h"

#include <cstddef>

namespace quillpg {

namespace {

// Texts of the catalogue by the value of each enumeration. Equal texts stand under several numbers.
constexpr std::array<int, 3> kTypes = {MSG_ERROR, MSG_WARNING, MSG_NO_ERROR};
constexpr std::array<int, 15> kErrors = {
    MSG_EMPTY,         MSG_FIELD_EMPTY,     MSG_ILLEGAL_VALUE,          MSG_INVALID,
    MSG_UNDEFINED,     MSG_ALREADY_DEFINED, MSG_NOT_REFERENCED,         MSG_NO_DEFINITION,
    MSG_OUT_OF_LIMITS, MSG_INVALID_RANGE,   MSG_BLOCK_AND_SUBSEQUENCE,  MSG_MEMORY_EXCEEDED,
    MSG_KEYWORD,       MSG_JUMP_TO_MISSING, MSG_TOO_MANY_SEQUENCE_LINES};
constexpr std::array<int, 6> kSections = {MSG_BLOCK_LIST,       MSG_SEQUENCE_LIST,
                                          MSG_SUBSEQUENCE_LIST, MSG_SUBSEQUENCE_DEFINITION,
                                          MSG_EVENT_LIST,       MSG_EVENT_DEFINITION};
// What has no name, when a finding in that section says that something has none.
constexpr std::array<int, 6> kUnnamedKinds = {MSG_UNIQUE_BLOCK,        MSG_OUTPUT,
                                              MSG_SUBSEQUENCE_SECTION, MSG_UNIQUE_BLOCK,
                                              MSG_UNIQUE_EVENT,        MSG_UNIQUE_EVENT};

template <std::size_t N>
std::array<std::string, N> LoadTexts(const std::array<int, N>& numbers) {
  std::array<std::string, N> texts;
  for (std::size_t i = 0; i < N; ++i) texts[i] = CMessageService::Text(numbers[i]);
  return texts;
}

// A record may hold any value: what is not in the table has no text.
template <typename Enum, std::size_t N>
const std::string& TextOf(const std::array<std::string, N>& texts, Enum value) {
  static const std::string kNone;
  const auto index = static_cast<std::size_t>(ToInt(value));
  return index < N ? texts[index] : kNone;
}

// The grids of these sections have a heading row more than the others.
bool HasHeadingRow(Section section) {
  return section == Section::SequenceList || section == Section::EventDefinition;
}

}  // namespace

void CFindingText::Load() {
  m_types = LoadTexts(kTypes);
  m_errors = LoadTexts(kErrors);
  m_sections = LoadTexts(kSections);
  m_unnamedKinds = LoadTexts(kUnnamedKinds);
  m_emptyName = CMessageService::Text(MSG_EMPTY_NAME);
  m_is = CMessageService::Text(MSG_IS);
  m_name = CMessageService::Text(MSG_NAME);
}

std::string CFindingText::Format(const CompileErrorInfo& info) const {
  const std::string& section = TextOf(m_sections, info.section);
  const std::string& type = TextOf(m_types, info.errorType);
  const std::string& error = TextOf(m_errors, info.error);
  if (info.error == CompileError::ListEmpty)
    return FormatText("%s : %s : %s %s %s", {section, type, section, m_is, error});
  if (info.error == CompileError::MemoryExceeded)
    return FormatText("%s : %s : %s", {section, type, error});

  std::string text = section;
  text += " [Line:";
  AppendNumber(text, HasHeadingRow(info.section) ? info.line - 1 : info.line);
  text += "][Column:";
  AppendNumber(text, info.column);
  text += "] : ";
  text += type;
  text += " : ";
  switch (info.error) {
    case CompileError::NameEmpty:
      return text +
             FormatText("%s %s %s %s", {TextOf(m_unnamedKinds, info.section), m_name, m_is, error});
    case CompileError::JumpToMissing:
      return text + error;
    case CompileError::TooManyLines:
      return text + FormatText(error, {MAX_SEQUENCE_LINES});
    default:
      text += info.text.empty() ? m_emptyName : info.text;
      text += ' ';
      return text + error;
  }
}

}  // namespace quillpg
