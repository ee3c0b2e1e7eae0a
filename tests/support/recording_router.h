#pragma once

#include "quillpg/message_router.h"

#include <functional>
#include <string>
#include <vector>

namespace quillpg {

/// Keeps what the engine reports, as a front end would show it.
class CRecordingRouter : public CMessageRouter {
 public:
  void SetMessage(const std::string& text, int flag) override {
    if (text.empty() && flag == 0) {
      output.clear();
      ++clears;
    } else {
      output.push_back(text);
    }
    Call();
  }
  void SetStatusMessage(const std::string& text) override {
    status.push_back(text), order += 's', Call();
  }
  void SetProgressTitle(const std::string& text) override { titles.push_back(text), Call(); }
  void SetProgressMessage(const std::string& text) override { messages.push_back(text), Call(); }
  void SetProgressStatus(int percent) override {
    percents.push_back(percent), order += '%', Call();
  }

  std::vector<std::string> output;  ///< lines of the output window since it was last cleared
  std::vector<std::string> status;
  std::vector<std::string> titles;
  std::vector<std::string> messages;
  std::vector<int> percents;
  std::string order;  ///< s for each status text, % for each percentage
  int clears = 0;
  std::function<void()> onCall;  ///< runs in every call

 private:
  void Call() const {
    if (onCall) onCall();
  }
};

}  // namespace quillpg
