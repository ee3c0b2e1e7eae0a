#include "hardware/setting_rule.h"

#include <string>

namespace quillpg {

Status AskHardwarePresent() {
  CHardwareManager* manager = nullptr;
  if (CHardwareManager::GetHardwareManager(&manager) != S_OK || !manager) return E_FAIL;
  int present = 0;
  if (manager->IsHardwarePresent(present) != S_OK) return E_FAIL;
  return present != 0 ? S_OK : PG_E_NO_HARDWARE;
}

bool ReportsError(CSorrelModule& module) {
  std::string text;
  int error = 0;
  return Failed(module.GetLastError(text, error)) || error != 0;
}

}  // namespace quillpg
