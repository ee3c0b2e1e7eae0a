#include "exchange/vcd_definitions.h"

#include "base/text.h"
#include "exchange/vcd_reader.h"
#include "exchange/vcd_text.h"
#include "instrument/mode_limits.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <utility>

namespace quillpg {
namespace {

constexpr std::string_view kSkippedTypes[] = {"real", "realtime", "string", "event"};
// Far beyond any instrument, far below where sums overflow.
constexpr std::int64_t kBitsCeiling = std::int64_t{1} << 60;

// Takes the range off the name of a vector; a single bit's index belongs to its name.
void SplitName(const std::vector<std::string>& words, CAPTURE_SIGNAL& signal) {
  std::string range;
  VCD_RANGE spanned;
  for (const std::string& word : words) {
    const bool isLast = &word == &words.back();
    if (isLast && ParseVcdRange(word, spanned)) {
      range = word;
    } else {
      signal.name += (signal.name.empty() ? "" : " ") + word;
    }
  }
  if (range.empty() && signal.width > 1) {
    const std::size_t bracket = signal.name.rfind('[');
    if (bracket != std::string::npos && bracket > 0 &&
        ParseVcdRange(std::string_view(signal.name).substr(bracket), spanned)) {
      range = signal.name.substr(bracket);
      signal.name.resize(bracket);
    }
  }
  if (signal.width == 1) {
    signal.name += range;
  } else if (!range.empty() && spanned.Width() == signal.width) {
    signal.range = range;
  }
}

}  // namespace

Status CVcdDefinitions::Read(CVcdScanner& scanner, CAPTURE& capture) {
  for (;;) {
    const std::string_view word = scanner.Next();
    Status status = S_OK;
    if (word.empty()) {
      return Fail(scanner.IsOverlong() ? "a word is longer than any value change dump has"
                                       : "the file ends before $enddefinitions");
    }
    if (word == "$enddefinitions") {
      status = SkipToEnd(scanner, "$enddefinitions");
      return Failed(status) ? status : CheckWidth(capture);
    }
    if (word == "$var") {
      status = ReadVariable(scanner, capture);
    } else if (word == "$timescale") {
      status = ReadTimescale(scanner, capture);
    } else if (word == "$comment") {
      status = ReadComment(scanner, capture);
    } else if (word.front() == '$' && word != "$end") {
      status = SkipToEnd(scanner, std::string(word));
    } else {
      return Fail("no value change dump: a keyword is missing where " + QuoteVcdWord(word) +
                  " stands");
    }
    if (Failed(status)) return status;
  }
}

Status CVcdDefinitions::ReadVariable(CVcdScanner& scanner, CAPTURE& capture) {
  const std::string type(scanner.Next());
  std::int64_t width = 0;
  const std::string size(scanner.Next());
  const std::string id(scanner.Next());
  if (id.empty()) return EndsWithin("$var");
  const bool isSkipped = std::find(std::begin(kSkippedTypes), std::end(kSkippedTypes), type) !=
                         std::end(kSkippedTypes);
  std::vector<std::string> words;
  for (;;) {
    const std::string_view word = scanner.Next();
    if (word.empty()) return EndsWithin("$var");
    if (word == "$end") break;
    words.emplace_back(word);
  }
  if (!isSkipped && (!ParseNumber(size, width) || width < 1)) {
    return Fail("a variable is " + QuoteVcdWord(size) + " bits wide");
  }
  CAPTURE_SIGNAL signal;
  // Wider ones are refused at the end of the definitions, when the whole need is known.
  signal.width = static_cast<int>(std::min<std::int64_t>(width, CVcdReader::MAX_BITS + 1));
  SplitName(words, signal);
  if (isSkipped) {
    capture.notices.push_back("signal " + QuoteVcdWord(signal.name) + " is of type " + type +
                              " and is left out");
    int& slot = Slot(id);
    if (slot == 0) {
      m_nets.push_back(VCD_NET{.isSkipped = true});
      slot = static_cast<int>(m_nets.size());
    }
    return S_OK;
  }
  if (width > CVcdReader::MAX_BITS) m_bits = std::min(m_bits + width, kBitsCeiling);
  AddSignal(capture, id, std::move(signal));
  return S_OK;
}

// A second variable of an identifier shows the first one's net; with another width (or beside one
// that is left out) it gets a net of its own.
void CVcdDefinitions::AddSignal(CAPTURE& capture, const std::string& id, CAPTURE_SIGNAL signal) {
  int& slot = Slot(id);
  int last = slot - 1;
  for (int at = last; at >= 0; at = m_nets[IndexOf(at)].next) {
    last = at;
    const VCD_NET& net = m_nets[IndexOf(at)];
    if (net.isSkipped || net.width != signal.width) continue;
    signal.firstBit = net.firstBit;
    capture.signals.push_back(std::move(signal));
    return;
  }
  VCD_NET net;
  net.width = signal.width;
  net.signal = static_cast<int>(capture.signals.size());
  if (m_bits <= CVcdReader::MAX_BITS) net.firstBit = static_cast<int>(m_bits);
  if (net.width <= CVcdReader::MAX_BITS) m_bits = std::min(m_bits + net.width, kBitsCeiling);
  signal.firstBit = net.firstBit;
  m_nets.push_back(net);
  const int position = static_cast<int>(m_nets.size()) - 1;
  if (last >= 0) {
    m_nets[IndexOf(last)].next = position;
  } else {
    slot = position + 1;
  }
  capture.signals.push_back(std::move(signal));
}

Status CVcdDefinitions::ReadTimescale(CVcdScanner& scanner, CAPTURE& capture) {
  std::string text;
  for (;;) {
    const std::string_view word = scanner.Next();
    if (word.empty()) return EndsWithin("$timescale");
    if (word == "$end") break;
    if (text.size() < 32) text += word;
  }
  for (int exponent = VCD_FINEST_TICK; exponent <= VCD_COARSEST_TICK; ++exponent) {
    std::string known = FormatTimescale(exponent);
    known.erase(known.find(' '), 1);
    if (text != known) continue;
    capture.tickExponent = exponent;
    m_hasTimescale = true;
    return S_OK;
  }
  return Fail("unknown timescale " + QuoteVcdWord(text));
}

// Looks for "... at 24 MHz": where stamps are rounded, the rate stands nowhere else.
Status CVcdDefinitions::ReadComment(CVcdScanner& scanner, CAPTURE& capture) {
  std::string before;
  std::string number;  // follows "at"
  for (;;) {
    const std::string word(scanner.Next());
    if (word.empty()) return EndsWithin("$comment");
    if (word == "$end") return S_OK;
    RATIO period;
    const std::string rate = number.empty() ? word : number + word;
    if ((before == "at" || !number.empty()) && rate.ends_with("Hz") &&
        !Failed(ParsePeriod(rate, period)) && !capture.statedRate.IsSet()) {
      capture.statedRate = Invert(period);
    }
    number = before == "at" ? word : "";
    before = word;
  }
}

Status CVcdDefinitions::CheckWidth(CAPTURE& capture) {
  if (m_bits > CVcdReader::MAX_BITS) {
    std::string text = "the signals need ";
    AppendNumber(text, m_bits);
    text += " channels, ";
    constexpr int kModuleBits = FULL_LIMITS.ChannelsPerModule();
    AppendNumber(text, (m_bits + kModuleBits - 1) / kModuleBits);
    text += " modules; an instrument has at most ";
    AppendNumber(text, MAX_INSTRUMENT_MODULES);
    text += " modules with ";
    AppendNumber(text, CVcdReader::MAX_BITS);
    text += " channels";
    return Fail(text, PG_E_LIMIT);
  }
  if (m_bits == 0) return Fail("the file declares no signal that can be played");
  capture.bits = static_cast<int>(m_bits);
  capture.wordsPerRow = (capture.bits + 63) / 64;
  if (!m_hasTimescale) {
    capture.tickExponent = -9;
    capture.notices.emplace_back("the file states no timescale: 1 ns is taken");
  }
  return S_OK;
}

Status CVcdDefinitions::SkipToEnd(CVcdScanner& scanner, std::string_view keyword) {
  for (;;) {
    const std::string_view word = scanner.Next();
    if (word.empty()) return EndsWithin(keyword);
    if (word == "$end") return S_OK;
  }
}

Status CVcdDefinitions::Fail(const std::string& text, Status status) {
  m_errorText = text;
  return status;
}

Status CVcdDefinitions::EndsWithin(std::string_view keyword) {
  return Fail("the file ends within " + QuoteVcdWord(keyword));
}

std::size_t CVcdDefinitions::ShortIndex(std::string_view id) {
  constexpr std::size_t kNone = kCount * (kCount + 1);
  if (id.empty() || id.size() > 2) return kNone;
  std::size_t index = 0;
  for (const char c : id) {
    if (c < '!' || c > '~') return kNone;
    index = index * kCount + (static_cast<std::size_t>(c) - kFirst);
  }
  return id.size() == 1 ? index : kCount + index;
}

int& CVcdDefinitions::Slot(std::string_view id) {
  const std::size_t index = ShortIndex(id);
  return index < m_shortIds.size() ? m_shortIds[index] : m_longIds[std::string(id)];
}

VCD_NET* CVcdDefinitions::Find(std::string_view id) {
  const std::size_t index = ShortIndex(id);
  int position = 0;
  if (index < m_shortIds.size()) {
    position = m_shortIds[index];
  } else if (const auto found = m_longIds.find(std::string(id)); found != m_longIds.end()) {
    position = found->second;
  }
  return position == 0 ? nullptr : &m_nets[IndexOf(position - 1)];
}

}  // namespace quillpg
