#include "hardware/simulation/stub_file.h"

#include "base/guard.h"
#include "base/text.h"
#include "quillpg/engine_types.h"
#include "quillpg/host_services.h"

#include <algorithm>
#include <fstream>
#include <istream>
#include <streambuf>
#include <system_error>
#include <utility>

namespace quillpg {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kFileName = "VISASTUB.INI";
constexpr std::string_view kBlanks = " \t";

struct TERMINATION_ROW {
  std::string_view flag;
  StubTermination termination;
};

constexpr TERMINATION_ROW kTerminations[] = {
    {"[TERMINATION NONE]", StubTermination::None}, {"[TERMINATION CR]", StubTermination::Cr},
    {"[TERMINATION LF]", StubTermination::Lf},     {"[TERMINATION CRLF]", StubTermination::CrLf},
    {"[TERMINATION LFCR]", StubTermination::LfCr},
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

bool TakeNumber(std::string_view& text, int& number) {
  const std::string_view word = TakeWord(text);
  return !word.empty() && IsDigit(word.front()) && ParseNumber(word, number);
}

// Takes the next line without its end; false when there is no further line end.
bool TakeLine(std::streambuf& bytes, std::size_t& left, std::string& line) {
  using traits = std::streambuf::traits_type;
  line.clear();
  while (left > 0) {
    --left;
    const traits::int_type byte = bytes.sbumpc();
    if (traits::eq_int_type(byte, traits::eof())) return false;
    const char c = traits::to_char_type(byte);
    if (c == '\n') return true;
    if (line.size() < CStubFile::MOST_LINE_BYTES) line += c;
  }
  return false;
}

fs::path FindIn(const std::string& folder) {
  fs::path found;
  std::error_code error;
  if (folder.empty()) return found;
  fs::directory_iterator entry(folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const fs::path& path = entry->path();
    std::error_code unknown;
    if (!EqualNoCase(path.filename().string(), kFileName)) continue;
    // Of several spellings the first in byte order, whatever order the folder has.
    if (entry->is_regular_file(unknown) && (found.empty() || path < found)) found = path;
  }
  return found;
}

// Where an answer is searched: the module's commands, the common ones, then the defaults likewise.
template <typename Scope, typename Ask, typename AskDefault>
std::optional<STUB_RESPONSE> Search(Scope& own, Scope& common, Ask ask, AskDefault askDefault) {
  std::optional<STUB_RESPONSE> response = ask(own);
  if (!response) response = ask(common);
  if (!response) response = askDefault(own);
  if (!response) response = askDefault(common);
  return response;
}

}  // namespace

std::optional<STUB_DECLARATION> ParseStubDeclaration(std::string_view line) {
  STUB_DECLARATION declared;
  if (line.empty() || !IsDigit(line.front())) return std::nullopt;
  for (int* number :
       {&declared.manufacturer, &declared.model, &declared.slot, &declared.logicalAddress}) {
    if (!TakeNumber(line, *number)) return std::nullopt;
  }
  const std::string_view interfaceType = TakeWord(line);
  const bool known = interfaceType.empty() || interfaceType == "V" || interfaceType == "G";
  return known && TakeWord(line).empty() ? std::optional(declared) : std::nullopt;
}

// --- reading ---

Status CStubFile::Open(const fs::path& path) {
  return GuardAllocation([&]() -> Status {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) return PG_E_FILE_NOT_OPENED;
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return PG_E_FILE_NOT_OPENED;
    m_path = path;
    return Read(stream);
  });
}

Status CStubFile::Read(std::istream& stream) {
  return GuardAllocation([&] {
    std::string line;
    std::size_t left = MOST_FILE_BYTES;
    while (stream.rdbuf() && TakeLine(*stream.rdbuf(), left, line)) {
      if (line.ends_with('\r')) line.pop_back();
      ReadLine(line);
    }
    return S_OK;
  });
}

void CStubFile::ReadLine(std::string_view line) {
  if (line.empty()) return;
  if (IsDigit(line.front())) {
    // What follows a declaration that cannot be read, or that of another kind of module, belongs to
    // nobody.
    const std::optional<STUB_DECLARATION> declared = ParseStubDeclaration(line);
    const bool module = declared && declared->model == static_cast<int>(Device::PatternGenerator);
    m_place = module ? Place::Module : Place::Nowhere;
    if (module) m_modules.emplace_back().declaration = *declared;
  } else if (line.front() == '[') {
    ReadFlag(line);
  } else if (m_place != Place::Nowhere) {
    std::optional<STUB_RESPONSE> response = ParseStubResponse(line);
    SCOPE& scope = m_place == Place::Module ? m_modules.back() : m_common;
    if (response) scope.answers.Add(std::move(*response));
  }
}

void CStubFile::ReadFlag(std::string_view flag) {
  flag = Trim(flag);
  if (EqualNoCase(flag, "[TRACE ON]")) m_trace = true;
  if (EqualNoCase(flag, "[TRACE OFF]")) m_trace = false;
  if (EqualNoCase(flag, "[DISPLAY_MESSAGE ON]")) m_displayMessage = true;
  if (EqualNoCase(flag, "[DISPLAY_MESSAGE OFF]")) m_displayMessage = false;
  if (m_place == Place::Nowhere) return;
  for (const TERMINATION_ROW& row : kTerminations) {
    SCOPE& scope = m_place == Place::Module ? m_modules.back() : m_common;
    if (EqualNoCase(flag, row.flag)) scope.termination = row.termination;
  }
}

// --- answering ---

StubTermination CStubFile::Termination(int module) const {
  const std::optional<StubTermination>& own = Scope(module).termination;
  return own ? *own : m_common.termination.value_or(StubTermination::None);
}

Status CStubFile::Query(int module, std::string_view command, std::string& reply) {
  return GuardAllocation([&] {
    const std::optional<STUB_RESPONSE> response = Search(
        m_modules[static_cast<std::size_t>(module)].answers, m_common.answers,
        [&](CStubScope& scope) { return scope.Answer(command); },
        [](CStubScope& scope) { return scope.AnswerDefault(); });
    if (!response) return E_FAIL;
    reply = Text(*response);
    return S_OK;
  });
}

std::optional<std::string> CStubFile::Next(int module, std::string_view command) const {
  const std::optional<STUB_RESPONSE> response = Search(
      Scope(module).answers, m_common.answers,
      [&](const CStubScope& scope) { return scope.Next(command); },
      [](const CStubScope& scope) { return scope.NextDefault(); });
  return response ? std::optional(Text(*response)) : std::nullopt;
}

std::string CStubFile::Text(const STUB_RESPONSE& response) const {
  const bool named = !response.captured && response.response.starts_with('@');
  return named ? ReadResponseFile(std::string_view(response.response).substr(1))
               : response.response;
}

// The contents are the reply as they are: nothing in them is looked up again.
std::string CStubFile::ReadResponseFile(std::string_view name) const {
  std::error_code error;
  const fs::path path = m_path.parent_path() / name;
  if (m_path.empty() || name.empty() || !fs::is_regular_file(path, error)) return {};
  if (fs::equivalent(path, m_path, error) || error) return {};
  std::ifstream stream(path, std::ios::binary);
  std::string text(MOST_RESPONSE_BYTES + 1, '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(stream.gcount()));
  return text.size() <= MOST_RESPONSE_BYTES ? text : std::string();
}

fs::path FindStubFile() {
  CHostServices& host = CHostServices::Get();
  std::string folder;
  host.GetExecutableDirectory(folder);
  fs::path found = FindIn(folder);
  if (!found.empty()) return found;
  folder.clear();
  host.GetSystemDirectory(folder);
  return FindIn(folder);
}

}  // namespace quillpg
