#include "hardware/simulation/module_list.h"

#include "hardware/simulation/simulated_module.h"
#include "hardware/simulation/stub_file.h"

#include <algorithm>
#include <utility>

namespace quillpg {

CModuleList::CModuleList(std::vector<SIMULATED_MODULE> descriptions, CCallMonitor& calls,
                         CVirtualClock& clock) {
  for (SIMULATED_MODULE& description : descriptions) {
    const int index = Count();
    m_modules.push_back(
        std::make_unique<CSimulatedModule>(index, std::move(description), calls, clock, *this));
  }
}

CModuleList::~CModuleList() = default;

CSimulatedModule* CModuleList::At(int index) const {
  return index >= 0 && index < Count() ? m_modules[static_cast<std::size_t>(index)].get() : nullptr;
}

CSimulatedModule* CModuleList::InSlot(int slot) const {
  const auto found = std::ranges::find_if(
      m_modules, [slot](const auto& candidate) { return candidate->Description().slot == slot; });
  return found == m_modules.end() ? nullptr : found->get();
}

std::vector<CSimulatedModule*> CModuleList::All() const {
  std::vector<CSimulatedModule*> all;
  for (const auto& module : m_modules) all.push_back(module.get());
  return all;
}

void CModuleList::ExpectFile(const std::filesystem::path& path) {
  m_path = path;
  m_expected = true;
}

void CModuleList::ReadFile() {
  m_expected = false;
  auto file = std::make_unique<CStubFile>();
  const std::filesystem::path path = m_path.empty() ? FindStubFile() : m_path;
  if (path.empty() || file->Open(path) != S_OK) return;
  // A file that was written several times over lists the modules of now last.
  const int sections = file->ModuleCount();
  TakeFile(std::move(file), std::max(sections - Count(), 0));
}

void CModuleList::TakeFile(std::unique_ptr<CStubFile> file, int section) {
  m_file = std::move(file);
  for (const auto& module : m_modules) {
    if (section >= m_file->ModuleCount()) return;
    module->AnswerFrom(*m_file, section++);
  }
}

}  // namespace quillpg
