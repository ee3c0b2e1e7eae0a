#pragma once

#include "quillpg/host_services.h"

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quillpg {

/// Host services of a test: answers boxes from a script, logs every call, never blocks.
class CScriptedHost : public CHostServices {
 public:
  struct BOX {
    std::string text;
    int style;
    int helpContext;
    int defaultAnswer;
  };

  int ShowBox(const std::string& text, int style, int helpContext, int defaultAnswer) override {
    boxes.push_back({text, style, helpContext, defaultAnswer});
    if (onBox) onBox();
    if (answers.empty()) return defaultAnswer;
    const int answer = answers.front();
    answers.erase(answers.begin());
    return answer;
  }
  void BeginWaitCursor() override { ++cursorDepth, ++cursorsShown; }
  void EndWaitCursor() override { --cursorDepth; }
  void YieldToMessageLoop() override {
    ++yields;
    if (onYield) onYield();
  }
  bool LoadText(int number, std::string& text) override {
    const auto found = texts.find(number);
    if (found == texts.end()) return false;
    text = found->second;
    return true;
  }
  bool GetVersionResource(VERSION_RESOURCE& resource) override {
    return versionResource ? versionResource(resource)
                           : CHostServices::GetVersionResource(resource);
  }
  void GetExecutableDirectory(std::string& path) override { path = executableDirectory; }
  void GetSystemDirectory(std::string& path) override { path = systemDirectory; }

  /// Runs `action` in the yield with that number, from 1 on, counted from now.
  void AtYield(int number, std::function<void()> action) {
    yields = 0;
    onYield = [this, number, action = std::move(action)] {
      if (yields == number) action();
    };
  }

  /// Texts of the boxes shown so far, oldest first.
  std::vector<std::string> BoxTexts() const {
    std::vector<std::string> shown;
    for (const BOX& box : boxes) shown.push_back(box.text);
    return shown;
  }

  std::vector<BOX> boxes;
  std::vector<int> answers;  ///< given in order; the default answer when none is left
  std::map<int, std::string> texts;
  std::function<void()> onBox;  ///< runs while a box stands
  std::function<void()> onYield;
  std::function<bool(VERSION_RESOURCE&)> versionResource;
  std::string executableDirectory;
  std::string systemDirectory;
  int yields = 0;
  int cursorDepth = 0;
  int cursorsShown = 0;
};

}  // namespace quillpg
