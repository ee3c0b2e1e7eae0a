// Whether a setup file fits the modules that are present.

#include "base/text.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "persistence/file_manager.h"
#include "persistence/fixed_section.h"
#include "quillpg/app_server.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace quillpg {

namespace {

constexpr std::int64_t kNoDepth = std::numeric_limits<std::int64_t>::max();

// Consecutive modules of the system, as an instrument of the file takes them.
struct RUN {
  std::int64_t first;
  std::int64_t end;
};

CModule* ModuleAt(const CModuleManager& modules, std::int64_t position) {
  CModule* module = nullptr;
  if (position <= std::numeric_limits<int>::max()) {
    (void)modules.GetModuleAt(static_cast<int>(position), &module);  // null tells it
  }
  return module;
}

// The smallest depth that the file lists in the run; the limit when it lists none.
template <typename Counts>
std::int64_t LeastFileDepth(const FIXED_SECTION& file, const RUN& run, Counts&& counts) {
  std::int64_t least = kNoDepth;
  const auto listed = static_cast<std::int64_t>(file.memoryDepths.size());
  for (std::int64_t i = run.first; i < std::min(run.end, listed); ++i) {
    if (counts(i)) {
      least = std::min<std::int64_t>(least, file.memoryDepths[static_cast<std::size_t>(i)]);
    }
  }
  return least;
}

std::int64_t LeastModuleDepth(const CModuleManager& modules, const RUN& run) {
  std::int64_t least = kNoDepth;
  for (std::int64_t i = run.first; i < run.end; ++i) {
    const CModule* module = ModuleAt(modules, i);
    if (!module) break;
    long depth = 0;
    (void)module->GetMemoryDepth(depth);  // a module that cannot tell offers none
    least = std::min<std::int64_t>(least, depth);
  }
  return least;
}

std::int64_t ModulesOf(const INSTRUMENT_ENTRY& entry) { return std::max(entry.modules, 0); }

Status FitsSystem(const FIXED_SECTION& file, const CModuleManager& modules) {
  int present = 0;
  (void)modules.GetNoOfModules(present);
  if (present == 0) return E_FAIL;
  if (file.fileType == FileType::Module) return PG_E_NOT_SETUP_FILE;
  if (file.ModuleCount() != present) return PG_E_MODULE_COUNT;
  RUN run{0, 0};
  for (const INSTRUMENT_ENTRY& entry : file.instruments) {
    run = {run.end, run.end + ModulesOf(entry)};
    const std::int64_t needed = LeastFileDepth(file, run, [](std::int64_t) { return true; });
    if (needed != kNoDepth && needed > LeastModuleDepth(modules, run)) return PG_E_MEMORY_DEPTH;
  }
  return S_OK;
}

Status FitsInstrument(const FIXED_SECTION& file, const std::string& name,
                      const CInstrument& instrument, const CModuleManager& modules) {
  RUN run{0, 0};
  for (const INSTRUMENT_ENTRY& entry : file.instruments) {
    run = {run.end, run.end + ModulesOf(entry)};
    if (!EqualNoCase(entry.name, name)) continue;
    int count = 0;
    (void)instrument.GetNoOfModules(count);
    if (entry.modules != count) return PG_E_INSTRUMENT_MODULES;
    // The instrument's depth as it is: doubled in HALF mode.
    long depth = 0;
    (void)instrument.GetMemoryDepth(depth);
    const std::int64_t needed =
        LeastFileDepth(file, run, [&](std::int64_t i) { return ModuleAt(modules, i) != nullptr; });
    return needed != kNoDepth && needed > depth ? PG_E_MEMORY_DEPTH : S_OK;
  }
  return E_FAIL;
}

}  // namespace

Status CFileManager::CanLoadSystemFile(const std::string& fileName) {
  if (m_loadFlag != 0) return S_OK;
  const Status status = LookAt(fileName);
  if (status != S_OK) return status;
  const CModuleManager* modules = LiveModules();
  return modules ? FitsSystem(*m_fixedSection, *modules) : E_FAIL;
}

// A system file serves as well as a module file.
Status CFileManager::CanLoadModuleFile(const std::string& fileName,
                                       const std::string& instrumentName, CInstrument* instrument) {
  if (m_loadFlag == 1) return S_OK;
  const Status status = LookAt(fileName);
  if (status != S_OK) return status;
  const CModuleManager* modules = LiveModules();
  if (!modules || !instrument) return E_FAIL;
  return FitsInstrument(*m_fixedSection, instrumentName, *instrument, *modules);
}

}  // namespace quillpg
