#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>
#include <vector>

namespace quillpg {

/// One module of a simulation configuration file.
struct VISA_STUB_MODULE {
  int slot = 0;
  int reserved = 0;  ///< always 0
  int kind = 0;      ///< 0 pattern generator, 1 expansion interface
  int option = 0;    ///< non-zero: memory option
  std::string pods;  ///< pod type keywords, pods A to D, joined by ","
};

/// Writes the text file that declares simulated modules and the answer that each gives to every
/// instrument query. Logical addresses count the modules from 1 on.
class QUILLPG_API CVisaStubGen {
 public:
  CVisaStubGen() = default;
  CVisaStubGen(const CVisaStubGen&) = delete;
  CVisaStubGen& operator=(const CVisaStubGen&) = delete;
  virtual ~CVisaStubGen() = default;

  /// Stores the path of the file to write and forgets the modules so far.
  Status Initialize(const std::string& path);

  /// Appends a copy. The list grows until the next Initialize.
  Status AddModule(const VISA_STUB_MODULE& module);
  /// Replaces the file. E_FAIL when it cannot be written.
  Status WriteFile() const;

 private:
  std::string Text() const;

  std::string m_path;
  std::vector<VISA_STUB_MODULE> m_modules;
};

}  // namespace quillpg
