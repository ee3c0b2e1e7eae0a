#include "persistence/visa_stub_gen.h"

#include "base/guard.h"

namespace quillpg {

Status CVisaStubGen::Initialize(const std::string& path) {
  return GuardAllocation([&] {
    m_path = path;
    m_modules.clear();
    return S_OK;
  });
}

Status CVisaStubGen::AddModule(const VISA_STUB_MODULE& /*module*/) {
  return E_FAIL;  // Not built yet.
}

Status CVisaStubGen::WriteFile() const {
  return E_FAIL;  // Not built yet.
}

}  // namespace quillpg
