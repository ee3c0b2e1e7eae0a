#include "terminal_router.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace quillpg::tool {
namespace {

constexpr int kBarWidth = 24;
constexpr std::chrono::milliseconds kRedrawInterval{50};

std::size_t TerminalWidth() {
  winsize size = {};
  const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return known ? size.ws_col : 80;
}

}  // namespace

CTerminalRouter::CTerminalRouter(bool showProgress) : m_showProgress(showProgress) {}

CTerminalRouter::~CTerminalRouter() { EraseBar(); }

bool CTerminalRouter::OnTerminal() { return isatty(STDERR_FILENO) == 1; }

void CTerminalRouter::SetMessage(const std::string& text, int flag) {
  if (text.empty() && flag == 0) {
    m_outputLines.clear();
  } else {
    m_outputLines.push_back(text);
  }
}

void CTerminalRouter::SetProgressTitle(const std::string& text) {
  m_title = text;
  m_message.clear();
  m_percent = 0;
  Draw(true);
}

void CTerminalRouter::SetProgressMessage(const std::string& text) {
  m_message = text;
  Draw(false);
}

void CTerminalRouter::SetProgressStatus(int percent) {
  const int shown = std::clamp(percent, 0, 100);
  if (shown == m_percent && m_drawn) return;
  m_percent = shown;
  Draw(false);
}

void CTerminalRouter::EraseBar() {
  if (!m_drawn) return;
  std::fputs("\r\033[K", stderr);
  std::fflush(stderr);
  m_drawn = false;
}

void CTerminalRouter::Draw(bool now) {
  if (!m_showProgress) return;
  const auto time = std::chrono::steady_clock::now();
  if (!now && time - m_lastDraw < kRedrawInterval) return;
  m_lastDraw = time;

  const int filled = m_percent * kBarWidth / 100;
  std::string line = "[" + std::string(static_cast<std::size_t>(filled), '#') +
                     std::string(static_cast<std::size_t>(kBarWidth - filled), ' ') + "] ";
  const std::string percent = std::to_string(m_percent);
  line += std::string(3 - percent.size(), ' ') + percent + " %  " + m_title;
  if (!m_message.empty()) line += "  " + m_message;
  // A line as wide as the terminal would wrap, and the next redraw would start below it.
  line.resize(std::min(line.size(), TerminalWidth() - 1));
  std::replace_if(
      line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  std::fputs(("\r" + line + "\033[K").c_str(), stderr);
  std::fflush(stderr);
  m_drawn = true;
}

}  // namespace quillpg::tool
