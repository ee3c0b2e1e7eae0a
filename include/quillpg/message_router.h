#pragma once

#include "quillpg/api.h"

#include <string>

namespace quillpg {

/// The front end's message sink: derive from it, override what the front end shows, install it with
/// CAppServer::SetMessageRouter. The engine refers to it and never deletes it. The order of the
/// operations is fixed; new ones are appended.
///
/// They are called in the middle of the engine's work: show what they bring, abort the work or ask
/// for what it found, and change the model in YieldToMessageLoop or later.
class QUILLPG_API CMessageRouter {
 public:
  virtual ~CMessageRouter() = default;

  /// A line for the output window. An empty text with flag 0 clears the window instead.
  virtual void SetMessage(const std::string& /*text*/, int /*flag*/) {}

  /// Text of the status line; an empty text clears it.
  virtual void SetStatusMessage(const std::string& /*text*/) {}

  /// Title of the progress display, for example "Compiling PG 1...".
  virtual void SetProgressTitle(const std::string& /*text*/) {}

  /// What is being done right now.
  virtual void SetProgressMessage(const std::string& /*text*/) {}

  /// How far it is, 0 to 100.
  virtual void SetProgressStatus(int /*percent*/) {}
};

}  // namespace quillpg
