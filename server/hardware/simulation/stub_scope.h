#pragma once

#include "quillpg/api.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillpg {

/// One command/response line of a simulation configuration file.
struct STUB_RESPONSE {
  std::string command;  ///< what a received text must begin with; case does not matter
  bool isDefault = false;
  bool whole = false;  ///< the received text must end behind the command, or go on unprintably
  char mode = 'N';     ///< 'N' each time, 'O' once, 'C' keeps what is received behind the command
  std::string response;
  bool captured = false;  ///< `response` was received and is never the name of a file
};

/// Reads ">cmd<>rsp>mode"; nothing for a line that violates the syntax.
QUILLPG_API std::optional<STUB_RESPONSE> ParseStubResponse(std::string_view line);

/// The answers of one virtual instrument. Commands are tried in the order of the file; responses to
/// the same command take turns.
class QUILLPG_API CStubScope {
 public:
  void Add(STUB_RESPONSE&& response);

  /// The next answer to `received`, which may change what is answered later; nothing when no
  /// command fits.
  std::optional<STUB_RESPONSE> Answer(std::string_view received);
  /// The same from the lines that answer when nothing else does.
  std::optional<STUB_RESPONSE> AnswerDefault();
  /// What Answer and AnswerDefault would give, with nothing changed.
  std::optional<STUB_RESPONSE> Next(std::string_view received) const;
  std::optional<STUB_RESPONSE> NextDefault() const;

 private:
  // The responses to one command.
  struct RING {
    std::string command;  // lower case
    std::vector<STUB_RESPONSE> responses;
    std::size_t next = 0;
  };
  struct PLACE {
    std::size_t ring;
    std::size_t response;
  };

  std::optional<PLACE> Find(std::string_view folded) const;
  static STUB_RESPONSE Peek(const STUB_RESPONSE& response, std::string_view rest);
  static STUB_RESPONSE Take(RING& ring, std::size_t response, std::string_view rest);

  std::vector<RING> m_rings;
  std::unordered_map<std::string, std::size_t> m_ringOf;  // by command, lower case
  std::set<std::size_t> m_lengths;                        // of the commands
  RING m_default;
};

}  // namespace quillpg
