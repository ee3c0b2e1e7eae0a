#include "persistence/visa_stub_gen.h"

#include "base/guard.h"
#include "hardware/simulation/stub_section.h"
#include "persistence/visa_stub_text.h"

#include <fstream>

namespace quillpg {
namespace {

constexpr int kPatternGenerator = 0;
constexpr int kExpansion = 1;

}  // namespace

Status CVisaStubGen::Initialize(const std::string& path) {
  return GuardAllocation([&] {
    m_path = path;
    m_modules.clear();
    return S_OK;
  });
}

Status CVisaStubGen::AddModule(const VISA_STUB_MODULE& module) {
  return GuardAllocation([&] {
    m_modules.push_back(module);
    return S_OK;
  });
}

Status CVisaStubGen::WriteFile() const {
  return GuardAllocation([&] {
    std::ofstream file(m_path, std::ios::out | std::ios::trunc);
    if (!file) return E_FAIL;
    file << Text();
    file.close();
    return file ? S_OK : E_FAIL;
  });
}

std::string CVisaStubGen::Text() const {
  std::string text;
  for (const std::string_view line : VisaStubHeader()) text.append(line) += '\n';
  int logicalAddress = 0;
  for (const VISA_STUB_MODULE& module : m_modules) {
    ++logicalAddress;
    if (module.kind == kExpansion) {
      AppendExpansionSection(module.slot, text);
    } else if (module.kind == kPatternGenerator) {
      AppendPatternGeneratorSection({module.slot, logicalAddress, module.option != 0, module.pods},
                                    text);
    }
  }
  return text;
}

}  // namespace quillpg
