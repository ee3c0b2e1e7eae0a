#pragma once

#include "hardware/simulation/simulated_mainframe.h"

#include <filesystem>
#include <memory>
#include <vector>

namespace quillpg {

class CCallMonitor;
class CSimulatedModule;
class CStubFile;
class CVirtualClock;

/// The modules that the mainframe holds at one time, with the configuration file that answers for
/// them. Replaced as a whole, so that a module that the engine still knows keeps its answers.
class CModuleList {
 public:
  /// Monitor and clock must outlive the list.
  CModuleList(std::vector<SIMULATED_MODULE> descriptions, CCallMonitor& calls,
              CVirtualClock& clock);
  ~CModuleList();
  CModuleList(const CModuleList&) = delete;
  CModuleList& operator=(const CModuleList&) = delete;

  int Count() const { return static_cast<int>(m_modules.size()); }
  CSimulatedModule* At(int index) const;  ///< null for a bad index
  CSimulatedModule* InSlot(int slot) const;
  std::vector<CSimulatedModule*> All() const;

  /// From now on the first module that is asked for an answer has the configuration file read:
  /// `path`, or the one that is found when it is empty. The file may be written until then.
  void ExpectFile(const std::filesystem::path& path);
  /// Modules answer from the file's sections from `section` on; those beyond the last one keep the
  /// built-in answers.
  void TakeFile(std::unique_ptr<CStubFile> file, int section);
  /// Before an answer is given.
  void OpenAnswers() {
    if (m_expected) ReadFile();
  }

 private:
  void ReadFile();

  std::vector<std::unique_ptr<CSimulatedModule>> m_modules;
  std::unique_ptr<CStubFile> m_file;  // null: built-in answers
  std::filesystem::path m_path;
  bool m_expected = false;
};

}  // namespace quillpg
