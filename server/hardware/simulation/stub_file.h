#pragma once

#include "hardware/simulation/stub_scope.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

/// How an instrument ends its replies on the bus.
enum class StubTermination { None, Cr, Lf, CrLf, LfCr };

/// The line that declares a virtual instrument.
struct STUB_DECLARATION {
  int manufacturer = 0;
  int model = 0;
  int slot = 0;
  int logicalAddress = 0;
};

/// Reads "manufacturer model slot address [V|G]"; nothing for anything else.
QUILLPG_API std::optional<STUB_DECLARATION> ParseStubDeclaration(std::string_view line);

/// A simulation configuration file: which modules it declares and what each answers. Lines that
/// violate the syntax are passed over. Its own header (see CVisaStubGen) tells the syntax.
class QUILLPG_API CStubFile {
 public:
  static constexpr std::size_t MOST_LINE_BYTES = std::size_t{64} << 10;     ///< the rest is cut
  static constexpr std::size_t MOST_FILE_BYTES = std::size_t{16} << 20;     ///< the rest is unread
  static constexpr std::size_t MOST_RESPONSE_BYTES = std::size_t{1} << 20;  ///< of an '@' file

  /// PG_E_FILE_NOT_OPENED for what is no readable file.
  Status Open(const std::filesystem::path& path);
  /// Without a file of its own: every '@' response is then empty.
  Status Read(std::istream& stream);

  // --- pattern generator modules, in the order of their declarations; other kinds are ignored ---

  int ModuleCount() const { return static_cast<int>(m_modules.size()); }
  /// `module` is below ModuleCount here and below.
  const STUB_DECLARATION& Declaration(int module) const { return Scope(module).declaration; }
  StubTermination Termination(int module) const;
  /// Answers as the module would; the reply comes without termination. E_FAIL, with `reply`
  /// untouched, for a command that has no answer.
  Status Query(int module, std::string_view command, std::string& reply);
  /// The reply that Query would give, with nothing changed; nothing when there is none.
  std::optional<std::string> Next(int module, std::string_view command) const;

  // --- what holds for the whole file: kept, of no effect here ---

  bool Trace() const { return m_trace; }
  bool DisplayMessage() const { return m_displayMessage; }

 private:
  struct SCOPE {
    STUB_DECLARATION declaration;
    std::optional<StubTermination> termination;
    CStubScope answers;
  };

  const SCOPE& Scope(int module) const { return m_modules[static_cast<std::size_t>(module)]; }
  void ReadLine(std::string_view line);
  void ReadFlag(std::string_view flag);
  std::string Text(const STUB_RESPONSE& response) const;
  std::string ReadResponseFile(std::string_view name) const;

  std::filesystem::path m_path;
  SCOPE m_common;  // before any declaration
  std::vector<SCOPE> m_modules;
  enum class Place { Common, Module, Nowhere } m_place = Place::Common;  // where lines belong now
  bool m_trace = false;
  bool m_displayMessage = true;
};

/// The configuration file that the simulated library takes: "VISASTUB.INI", in any case, in the
/// folder of the program that runs, else in the host's system folder. Empty when there is none.
QUILLPG_API std::filesystem::path FindStubFile();

}  // namespace quillpg
