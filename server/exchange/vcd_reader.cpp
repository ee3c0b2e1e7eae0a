#include "exchange/vcd_reader.h"

#include "base/guard.h"
#include "base/text.h"
#include "exchange/vcd_definitions.h"
#include "exchange/vcd_scanner.h"
#include "exchange/vcd_text.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>
#include <vector>

namespace quillpg {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{256} << 20;  // of change points
constexpr std::int64_t kReportEvery = 1 << 20;             // bytes between two progress reports

// Level of a scalar or of a digit: 0, 1, 2 for what is played as 0 (x, z and their kin), -1 for no
// level at all.
int LevelOf(char c) {
  switch (c) {
    case '0':
    case 'l':
    case 'L':
      return 0;
    case '1':
    case 'h':
    case 'H':
      return 1;
    case 'x':
    case 'X':
    case 'z':
    case 'Z':
    case 'u':
    case 'U':
    case 'w':
    case 'W':
    case '-':
      return 2;
    default:
      return -1;
  }
}

/// One run through a file.
class CVcdParser {
 public:
  CVcdParser(std::istream& stream, std::int64_t length, const CVcdReader::Progress& progress)
      : m_scanner(stream), m_length(length), m_progress(progress) {}

  Status Parse(CAPTURE& capture);

  std::int64_t Line() const { return m_scanner.Line(); }
  const std::string& GetErrorText() const { return m_errorText; }

 private:
  Status ParseChanges();
  Status ParseWord(std::string_view word);
  Status ParseKeyword(std::string_view word);
  Status ParseStamp(std::string_view digits);
  Status ParseScalar(std::string_view word, int level);
  Status ParseVector(std::string_view word);
  Status ParseSkipped(std::string_view word);
  Status FindNets(std::string_view id, VCD_NET*& net);
  void Store(VCD_NET& net, std::string_view digits);
  void StoreScalar(VCD_NET& net, int level);
  Status TakePoint();
  void AddLevelNotices();
  bool Report();
  Status Fail(std::string text, Status status = E_FAIL) {
    m_errorText = std::move(text);
    return status;
  }
  Status EndsWithin(const char* what) {
    return Fail(m_scanner.IsOverlong() ? "a word is longer than any value change dump has"
                                       : std::string("the file ends within ") + what);
  }

  CVcdScanner m_scanner;
  CVcdDefinitions m_definitions;
  std::int64_t m_length;
  const CVcdReader::Progress& m_progress;
  std::int64_t m_reportedAt = 0;
  CAPTURE m_capture;
  std::vector<std::uint64_t> m_row;  // what every channel holds now
  std::string m_vector;              // digits of the vector being read
  std::int64_t m_time = -1;          // -1 before the first stamp
  bool m_changed = false;            // values were read since the last change point
  std::string m_errorText;
};

Status CVcdParser::Parse(CAPTURE& capture) {
  const Status status = m_definitions.Read(m_scanner, m_capture);
  if (Failed(status)) return Fail(m_definitions.GetErrorText(), status);
  m_row.assign(static_cast<std::size_t>(m_capture.wordsPerRow), 0);
  const Status read = ParseChanges();
  if (Failed(read)) return read;
  AddLevelNotices();
  capture = std::move(m_capture);
  return S_OK;
}

Status CVcdParser::ParseChanges() {
  for (;;) {
    const std::string_view word = m_scanner.Next();
    if (word.empty()) break;
    const Status status = ParseWord(word);
    if (Failed(status)) return status;
  }
  if (m_scanner.IsOverlong()) return EndsWithin("a word");
  m_time = std::max<std::int64_t>(m_time, 0);
  if (m_changed) {
    const Status status = TakePoint();
    if (Failed(status)) return status;
  }
  if (m_capture.stamps.empty()) return Fail("the file holds no value of a signal that is played");
  m_capture.end = m_time;
  return S_OK;
}

Status CVcdParser::ParseWord(std::string_view word) {
  const char first = word.front();
  if (const int level = LevelOf(first); level >= 0) return ParseScalar(word, level);
  switch (first) {
    case '#':
      return ParseStamp(word.substr(1));
    case 'b':
    case 'B':
      return ParseVector(word);
    case 'r':
    case 'R':
    case 's':
    case 'S':
      return ParseSkipped(word);
    case '$':
      return ParseKeyword(word);
    default:
      return Fail("neither a time nor a value: " + QuoteVcdWord(word));
  }
}

Status CVcdParser::ParseKeyword(std::string_view word) {
  if (word == "$end" || word.starts_with("$dump")) return S_OK;
  if (word != "$comment") return Fail("unknown keyword " + QuoteVcdWord(word));
  for (;;) {
    const std::string_view text = m_scanner.Next();
    if (text.empty()) return EndsWithin("a $comment");
    if (text == "$end") return S_OK;
  }
}

Status CVcdParser::ParseStamp(std::string_view digits) {
  std::int64_t time = 0;
  if (!ParseNumber(digits, time) || time < 0) {
    return Fail("no time that fits into 63 bits: " + QuoteVcdWord(digits));
  }
  if (time < m_time) return Fail("time runs back to " + QuoteVcdWord(digits));
  // Values ahead of the first stamp belong to it.
  if (time != m_time && m_time >= 0 && m_changed) {
    const Status status = TakePoint();
    if (Failed(status)) return status;
  }
  m_time = time;
  return Report() ? S_OK : PG_E_ABORTED;
}

Status CVcdParser::FindNets(std::string_view id, VCD_NET*& net) {
  if (id.empty()) return EndsWithin("a value");
  net = m_definitions.Find(id);
  return net ? S_OK : Fail("undeclared identifier " + QuoteVcdWord(id));
}

Status CVcdParser::ParseScalar(std::string_view word, int level) {
  VCD_NET* net = nullptr;
  const Status status = FindNets(word.size() > 1 ? word.substr(1) : m_scanner.Next(), net);
  if (Failed(status)) return status;
  for (; net; net = m_definitions.Next(*net)) StoreScalar(*net, level);
  return S_OK;
}

void CVcdParser::StoreScalar(VCD_NET& net, int level) {
  if (net.isSkipped) return;
  if (net.width > 1) {
    Store(net, level == 0 ? "0" : level == 1 ? "1" : "x");
    return;
  }
  const auto bit = static_cast<std::size_t>(net.firstBit);
  std::uint64_t& target = m_row[bit / 64];
  const std::uint64_t mask = std::uint64_t{1} << (bit % 64);
  target = level == 1 ? target | mask : target & ~mask;
  if (level == 2 && net.xLine == 0) net.xLine = Line();
  net.hasValue = true;
  m_changed = true;
}

Status CVcdParser::ParseVector(std::string_view word) {
  m_vector.assign(word.substr(1));
  if (m_vector.empty()) return Fail("a vector without digits");
  const auto bad =
      std::find_if(m_vector.begin(), m_vector.end(), [](char c) { return LevelOf(c) < 0; });
  if (bad != m_vector.end()) return Fail("no binary vector: " + QuoteVcdWord(word));
  VCD_NET* net = nullptr;
  const Status status = FindNets(m_scanner.Next(), net);
  if (Failed(status)) return status;
  const std::size_t leadingZeros = std::min(m_vector.find_first_not_of('0'), m_vector.size());
  for (; net; net = m_definitions.Next(*net)) {
    if (net->isSkipped) continue;
    if (m_vector.size() - leadingZeros > static_cast<std::size_t>(net->width)) {
      std::string text = "a vector of ";
      AppendNumber(text, static_cast<std::int64_t>(m_vector.size()));
      text += " digits for a signal of ";
      AppendNumber(text, net->width);
      return Fail(text + " bits");
    }
    Store(*net, m_vector);
  }
  return S_OK;
}

// Missing digits on the left are 0: a leading x or z, which stands for them too, is played as 0.
void CVcdParser::Store(VCD_NET& net, std::string_view digits) {
  for (int bit = 0; bit < net.width; ++bit) {
    const bool isGiven = static_cast<std::size_t>(bit) < digits.size();
    const int level =
        isGiven ? LevelOf(digits[digits.size() - 1 - static_cast<std::size_t>(bit)]) : 0;
    const std::size_t place =
        static_cast<std::size_t>(net.firstBit) + static_cast<std::size_t>(bit);
    const std::uint64_t mask = std::uint64_t{1} << (place % 64);
    m_row[place / 64] = level == 1 ? m_row[place / 64] | mask : m_row[place / 64] & ~mask;
    if (level == 2 && net.xLine == 0) net.xLine = Line();
  }
  net.hasValue = true;
  m_changed = true;
}

Status CVcdParser::ParseSkipped(std::string_view word) {
  const std::string value(word);
  VCD_NET* net = nullptr;
  const Status status = FindNets(m_scanner.Next(), net);
  if (Failed(status)) return status;
  return net->isSkipped ? S_OK : Fail("no level: " + QuoteVcdWord(value));
}

// The row becomes a change point at the current time.
Status CVcdParser::TakePoint() {
  if (m_capture.stamps.empty()) {
    for (VCD_NET& net : m_definitions.Nets()) {
      if (!net.hasValue && net.xLine == 0) net.xLine = Line();
    }
  }
  const std::size_t pointBytes = (m_row.size() + 1) * sizeof(std::uint64_t);
  if (m_capture.stamps.size() >= kMaxBytes / pointBytes) {
    std::string text = "the file holds more than ";
    AppendNumber(text, static_cast<std::int64_t>(kMaxBytes / pointBytes));
    return Fail(text + " change points", PG_E_LIMIT);
  }
  m_capture.stamps.push_back(m_time);
  m_capture.rows.insert(m_capture.rows.end(), m_row.begin(), m_row.end());
  m_changed = false;
  return S_OK;
}

void CVcdParser::AddLevelNotices() {
  for (const VCD_NET& net : m_definitions.Nets()) {
    if (net.isSkipped || net.xLine == 0) continue;
    std::string text = "signal ";
    text += QuoteVcdWord(m_capture.signals[static_cast<std::size_t>(net.signal)].name);
    text += " has no level from line ";
    AppendNumber(text, net.xLine);
    m_capture.notices.push_back(text + " on: x and z are played as 0");
  }
}

bool CVcdParser::Report() {
  if (!m_progress || m_scanner.BytesRead() - m_reportedAt < kReportEvery) return true;
  m_reportedAt = m_scanner.BytesRead();
  if (m_length <= 0) return m_progress(0);
  const double part = static_cast<double>(m_reportedAt) / static_cast<double>(m_length);
  return m_progress(static_cast<int>(std::min(part, 1.0) * 100));
}

}  // namespace

Status CVcdReader::ReadFile(const std::string& path, CAPTURE& capture) {
  m_errorText.clear();
  return GuardAllocation(
      [&]() -> Status {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
          m_errorText = path + ": the file cannot be opened";
          return PG_E_FILE_NOT_OPENED;
        }
        std::error_code noPlainFile;  // a pipe is read as it comes, its length unknown
        const std::uintmax_t length = std::filesystem::file_size(path, noPlainFile);
        const Status status =
            Read(file, path, noPlainFile ? 0 : static_cast<std::int64_t>(length), capture);
        // A folder, for example.
        if (file.bad()) m_errorText = path + ": the file cannot be read";
        return status;
      },
      E_OUTOFMEMORY);
}

Status CVcdReader::Read(std::istream& stream, const std::string& name, std::int64_t length,
                        CAPTURE& capture) {
  m_errorText.clear();
  return GuardAllocation(
      [&]() -> Status {
        CVcdParser parser(stream, length, m_progress);
        const Status status = parser.Parse(capture);
        if (!Failed(status)) {
          capture.file = name;
        } else if (status != PG_E_ABORTED) {
          m_errorText = name + ":";
          AppendNumber(m_errorText, parser.Line());
          m_errorText += ": " + parser.GetErrorText();
        }
        return status;
      },
      E_OUTOFMEMORY);
}

bool CVcdReader::IsVcd(std::string_view head) {
  constexpr std::string_view kKeywords[] = {"$date",  "$version", "$comment",       "$timescale",
                                            "$scope", "$var",     "$enddefinitions"};
  head = Trim(head);
  return std::any_of(std::begin(kKeywords), std::end(kKeywords),
                     [head](std::string_view keyword) { return head.starts_with(keyword); });
}

}  // namespace quillpg
