#include "compiler/finding_text.h"

#include "app/message_service.h"
#include "base/enum_text.h"
#include "base/text.h"
#include "quillpg/limits.h"

#include <cstddef>

namespace quillpg {

namespace {

// Catalogue numbers by the value of each enumeration. Equal texts stand under several numbers.
constexpr std::array<int, 3> kTypes = {12004, 12005, 12006};
constexpr std::array<int, 15> kErrors = {12080, 12111, 12007, 12008, 12009, 12010, 12063, 12064,
                                         12065, 12066, 12090, 12112, 12117, 12118, 12137};
constexpr std::array<int, 6> kSections = {12011, 12012, 12013, 12014, 12015, 12016};
// What has no name, when a finding in that section says that something has none.
constexpr std::array<int, 6> kUnnamedKinds = {12096, 12109, 12108, 12096, 12098, 12098};
constexpr int kEmptyName = 12061;
constexpr int kIs = 12081;
constexpr int kName = 12107;

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
  m_emptyName = CMessageService::Text(kEmptyName);
  m_is = CMessageService::Text(kIs);
  m_name = CMessageService::Text(kName);
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
