#include "persistence/file_manager.h"

namespace quillpg {

Status CFileManager::GenerateVisaStub() {
  return E_FAIL;  // Not built yet.
}

}  // namespace quillpg
