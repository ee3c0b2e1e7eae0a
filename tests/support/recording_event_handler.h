#pragma once

#include "base/text.h"
#include "quillpg/event_handler.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quillpg {

/// Keeps the notifications as texts such as "OnGroupRenamed(Data,Bus)".
class CRecordingEventHandler : public CEventHandler {
 public:
  void OnEventChanged(int index) override { Add("OnEventChanged(%d)", {index}); }
  void OnEventDeleted(const std::string& name, int one) override {
    Add("OnEventDeleted(%s,%d)", {name, one});
  }
  void OnEventListChanged() override { Add("OnEventListChanged()", {}); }
  void OnInstrumentRenamed() override { Add("OnInstrumentRenamed()", {}); }
  void OnGroupDeleted(const std::string& name) override { Add("OnGroupDeleted(%s)", {name}); }
  void OnGroupRenamed(const std::string& oldName, const std::string& newName) override {
    Add("OnGroupRenamed(%s,%s)", {oldName, newName});
  }
  void OnChannelRenamed(const std::string& name, int channel) override {
    Add("OnChannelRenamed(%s,%d)", {name, channel});
  }
  void OnInstrumentReset() override { Add("OnInstrumentReset()", {}); }
  void OnBlocksSwapped(const std::string& name, int position, const std::string& neighbour,
                       int neighbourPosition) override {
    Add("OnBlocksSwapped(%s,%d,%s,%d)", {name, position, neighbour, neighbourPosition});
  }
  void OnBlockListChanged(const std::string& name, int position, int change) override {
    Add("OnBlockListChanged(%s,%d,%d)", {name, position, change});
  }
  void OnBlockResized(const std::string& name, int index) override {
    Add("OnBlockResized(%s,%d)", {name, index});
  }
  void OnBlockRenamed(const std::string& oldName, const std::string& newName, int index) override {
    Add("OnBlockRenamed(%s,%s,%d)", {oldName, newName, index});
  }
  void OnInstrumentIdle(int idle) override { Add("OnInstrumentIdle(%d)", {idle}); }
  void OnPatternDataChanged(int block) override { Add("OnPatternDataChanged(%d)", {block}); }

  /// The notifications so far, oldest first; forgets them.
  std::vector<std::string> Take() { return std::exchange(events, {}); }

  std::vector<std::string> events;
  std::function<void()> onAny;  ///< runs inside each notification, to call back into the engine

 private:
  void Add(std::string_view format, std::initializer_list<CFormatArg> args) {
    events.push_back(FormatText(format, args));
    if (onAny) onAny();
  }
};

}  // namespace quillpg
