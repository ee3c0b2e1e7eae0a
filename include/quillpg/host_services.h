#pragma once

#include "quillpg/api.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace quillpg {

// Box styles, combined with |.
inline constexpr int BOX_OK = 0;
inline constexpr int BOX_YESNO = 4;
inline constexpr int BOX_ICON_STOP = 0x10;
inline constexpr int BOX_ICON_INFORMATION = 0x40;
inline constexpr int BOX_SYSTEM_MODAL = 0x1000;

// Answers of a box.
inline constexpr int ANSWER_OK = 1;
inline constexpr int ANSWER_YES = 6;
inline constexpr int ANSWER_NO = 7;

/// The library's own version resource, as far as the platform offers one.
struct VERSION_RESOURCE {
  bool present = false;            ///< there is a resource at all
  bool fixedBlockPresent = false;  ///< `fixedBlock` could be queried
  /// Signature, structure version, file version (most, least significant), product version (most,
  /// least significant), flags mask, flags, operating system, file type, file subtype, file date
  /// (most, least significant).
  std::array<std::uint32_t, 13> fixedBlock{};
  std::map<std::string, std::string> values;  ///< field name to text
};

/// What the engine asks of the platform it runs on. Every operation has a headless default that
/// never blocks, so that the library works in a server, a script or a test; a front end overrides
/// what its platform offers and installs the object before the first CAppServer::GetServer. While
/// that call makes the server, LoadText, GetLibraryPath, GetVersionResource, GetFileModifiedTime
/// and ShowBox may be called: they must not call GetServer.
class QUILLPG_API CHostServices {
 public:
  virtual ~CHostServices() = default;

  /// The installed services; never null.
  static CHostServices& Get();

  /// Installs `services`, which stays the caller's and must outlive the engine's use of it; null
  /// brings the headless default back.
  static void Set(CHostServices* services);

  /// Shows a modal box and gives the button pressed.
  /// Default: prints the text to standard error and gives `defaultAnswer`.
  virtual int ShowBox(const std::string& text, int style, int helpContext, int defaultAnswer);

  /// Wait cursor on and off; calls nest. Default: nothing.
  virtual void BeginWaitCursor();
  virtual void EndWaitCursor();

  /// Lets the message loop run once. The front end may call back into the engine from here: abort
  /// an operation, change or delete objects. Default: nothing.
  virtual void YieldToMessageLoop();

  /// Gives the localised text of catalogue entry `number`; false: the built-in text is taken.
  virtual bool LoadText(int number, std::string& text);

  /// Path of the engine's library file; empty when the platform cannot tell.
  virtual void GetLibraryPath(std::string& path);

  /// The library's version resource. Default: the built-in one. False: there is none.
  virtual bool GetVersionResource(VERSION_RESOURCE& resource);

  /// Modification time of a file, local time as "%m/%d/%y %I:%M %p"; empty when unknown.
  virtual void GetFileModifiedTime(const std::string& path, std::string& text);

  virtual bool FileExists(const std::string& path);

  /// Folders in which the simulated library looks for its configuration file; empty for none.
  virtual void GetExecutableDirectory(std::string& path);
  virtual void GetSystemDirectory(std::string& path);
};

/// Shows the wait cursor for as long as it lives.
class CWaitCursor {
 public:
  CWaitCursor() { CHostServices::Get().BeginWaitCursor(); }
  ~CWaitCursor() { CHostServices::Get().EndWaitCursor(); }
  CWaitCursor(const CWaitCursor&) = delete;
  CWaitCursor& operator=(const CWaitCursor&) = delete;
};

}  // namespace quillpg
