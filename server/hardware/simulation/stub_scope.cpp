#include "hardware/simulation/stub_scope.h"

#include "base/text.h"

#include <algorithm>
#include <utility>

namespace quillpg {
namespace {

constexpr std::string_view kDefault = "[DEFAULT]<";

bool IsPrintable(char c) { return c >= ' ' && c <= '~'; }

bool Captures(const STUB_RESPONSE& response, std::string_view rest) {
  return response.mode == 'C' && !Trim(rest).empty();
}

bool Fits(const STUB_RESPONSE& response, std::string_view rest) {
  return !response.whole || rest.empty() || !IsPrintable(rest.front());
}

}  // namespace

std::optional<STUB_RESPONSE> ParseStubResponse(std::string_view line) {
  if (line.empty() || line.front() != '>') return std::nullopt;
  line.remove_prefix(1);
  STUB_RESPONSE response;
  response.isDefault = line.starts_with(kDefault);
  const std::size_t end = response.isDefault ? kDefault.size() - 1 : line.find_first_of("<]");
  if (end == 0 || end == std::string_view::npos) return std::nullopt;
  response.command = line.substr(0, end);
  response.whole = line[end] == ']';
  line.remove_prefix(end + 1);
  if (line.empty() || line.front() != '>') return std::nullopt;
  line.remove_prefix(1);
  const std::size_t close = line.find('>');
  if (close == std::string_view::npos) return std::nullopt;
  response.response = line.substr(0, close);
  line.remove_prefix(close + 1);
  if (line.empty()) return response;
  response.mode = line.front();
  const bool known = line == "N" || line == "O" || line == "C";
  return known ? std::optional(std::move(response)) : std::nullopt;
}

void CStubScope::Add(STUB_RESPONSE&& response) {
  if (response.isDefault) {
    m_default.responses.push_back(std::move(response));
    return;
  }
  std::string command = FoldCase(std::string_view(response.command));
  const auto [found, added] = m_ringOf.try_emplace(command, m_rings.size());
  if (added) {
    m_lengths.insert(command.size());
    m_rings.emplace_back().command = std::move(command);
  }
  m_rings[found->second].responses.push_back(std::move(response));
}

// `folded` is the received text in lower case. Looks up its beginnings, so that a file of many
// commands costs no more than one of few.
std::optional<CStubScope::PLACE> CStubScope::Find(std::string_view folded) const {
  std::vector<std::size_t> fitting;
  for (const std::size_t length : m_lengths) {
    if (length > folded.size()) break;
    const auto found = m_ringOf.find(std::string(folded.substr(0, length)));
    if (found != m_ringOf.end()) fitting.push_back(found->second);
  }
  std::ranges::sort(fitting);  // the order of the file
  for (const std::size_t i : fitting) {
    const RING& ring = m_rings[i];
    const std::string_view rest = folded.substr(ring.command.size());
    const std::size_t count = ring.responses.size();
    for (std::size_t step = 0; step < count; ++step) {
      const std::size_t place = (ring.next + step) % count;
      if (Fits(ring.responses[place], rest)) return PLACE{i, place};
    }
  }
  return std::nullopt;
}

STUB_RESPONSE CStubScope::Peek(const STUB_RESPONSE& response, std::string_view rest) {
  STUB_RESPONSE next = response;
  if (Captures(response, rest)) next.response.clear();
  return next;
}

STUB_RESPONSE CStubScope::Take(RING& ring, std::size_t place, std::string_view rest) {
  STUB_RESPONSE& response = ring.responses[place];
  STUB_RESPONSE taken = Peek(response, rest);
  if (Captures(response, rest)) {
    response.response = Trim(rest);
    response.captured = true;
  }
  ring.next = place + 1;
  if (response.mode == 'O') {
    ring.responses.erase(ring.responses.begin() + static_cast<std::ptrdiff_t>(place));
    ring.next = place;
  }
  if (ring.next >= ring.responses.size()) ring.next = 0;
  return taken;
}

std::optional<STUB_RESPONSE> CStubScope::Answer(std::string_view received) {
  const std::optional<PLACE> place = Find(FoldCase(received));
  if (!place) return std::nullopt;
  RING& ring = m_rings[place->ring];
  return Take(ring, place->response, received.substr(ring.command.size()));
}

std::optional<STUB_RESPONSE> CStubScope::AnswerDefault() {
  if (m_default.responses.empty()) return std::nullopt;
  return Take(m_default, m_default.next, {});
}

std::optional<STUB_RESPONSE> CStubScope::Next(std::string_view received) const {
  const std::optional<PLACE> place = Find(FoldCase(received));
  if (!place) return std::nullopt;
  const RING& ring = m_rings[place->ring];
  return Peek(ring.responses[place->response], received.substr(ring.command.size()));
}

std::optional<STUB_RESPONSE> CStubScope::NextDefault() const {
  if (m_default.responses.empty()) return std::nullopt;
  return Peek(m_default.responses[m_default.next], {});
}

}  // namespace quillpg
