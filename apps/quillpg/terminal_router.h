#pragma once

#include "quillpg/message_router.h"

#include <chrono>
#include <string>
#include <vector>

namespace quillpg::tool {

/// What the engine reports, for a person at a terminal: keeps the lines of the output window and
/// draws one progress bar on standard error.
class CTerminalRouter : public CMessageRouter {
 public:
  /// Without `showProgress` nothing is ever drawn.
  explicit CTerminalRouter(bool showProgress);
  CTerminalRouter(const CTerminalRouter&) = delete;
  CTerminalRouter& operator=(const CTerminalRouter&) = delete;
  ~CTerminalRouter() override;

  void SetMessage(const std::string& text, int flag) override;
  void SetProgressTitle(const std::string& text) override;
  void SetProgressMessage(const std::string& text) override;
  void SetProgressStatus(int percent) override;

  /// Lines of the output window since it was last cleared.
  const std::vector<std::string>& OutputLines() const { return m_outputLines; }

  /// Takes the bar off the screen. Call before anything else is printed.
  void EraseBar();

  /// True when standard error is a terminal.
  static bool OnTerminal();

 private:
  void Draw(bool now);

  const bool m_showProgress;
  bool m_drawn = false;
  std::chrono::steady_clock::time_point m_lastDraw;
  std::string m_title;
  std::string m_message;
  int m_percent = 0;
  std::vector<std::string> m_outputLines;
};

}  // namespace quillpg::tool
