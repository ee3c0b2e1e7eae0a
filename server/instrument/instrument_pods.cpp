#include "hardware/module.h"
#include "instrument/instrument.h"

#include <utility>

// Settings of one pod: the module holds them, the instrument only finds the module.

namespace quillpg {

template <typename Operation, typename... Args>
Status CInstrument::Forward(int module, Operation operation, Args&&... args) const {
  CModule* holder = ModuleAt(module);
  return holder ? (holder->*operation)(std::forward<Args>(args)...) : E_FAIL;
}

Status CInstrument::GetPodType(int module, int pod, PodType& type) const {
  return Forward(module, &CModule::GetPodType, pod, type);
}

Status CInstrument::SetClockDeskew(int module, float nanoseconds) {
  return Forward(module, &CModule::SetClockDeskew, nanoseconds);
}

Status CInstrument::GetClockDeskew(int module, float& nanoseconds) const {
  return Forward(module, &CModule::GetClockDeskew, nanoseconds);
}

Status CInstrument::SetOutputLevel(int module, int pod, double volts) {
  return Forward(module, &CModule::SetOutputLevel, pod, volts);
}

Status CInstrument::GetOutputLevel(int module, int pod, double& volts) const {
  return Forward(module, &CModule::GetOutputLevel, pod, volts);
}

Status CInstrument::GetMinOutputLevel(int module, int pod, double& volts) const {
  return Forward(module, &CModule::GetMinOutputLevel, pod, volts);
}

Status CInstrument::GetMaxOutputLevel(int module, int pod, double& volts) const {
  return Forward(module, &CModule::GetMaxOutputLevel, pod, volts);
}

Status CInstrument::GetOutputLevelResolution(int module, int pod, double& volts) const {
  return Forward(module, &CModule::GetOutputLevelResolution, pod, volts);
}

Status CInstrument::SetStrobeInhibit(int module, int pod, int flag) {
  return Forward(module, &CModule::SetStrobeInhibit, pod, flag);
}

Status CInstrument::GetStrobeInhibit(int module, int pod, int& flag) const {
  return Forward(module, &CModule::GetStrobeInhibit, pod, flag);
}

Status CInstrument::SetInhibitByPodD(int module, int pod, int flag) {
  const Status status = Forward(module, &CModule::SetInhibitByPodD, pod, flag);
  if (status == S_OK) (void)UpdateInhibitControlList();  // the answer stays the module's
  return status;
}

Status CInstrument::GetInhibitByPodD(int module, int pod, int& flag) const {
  return Forward(module, &CModule::GetInhibitByPodD, pod, flag);
}

Status CInstrument::SetInhibitByEvent(int module, int pod, int flag) {
  return Forward(module, &CModule::SetInhibitByEvent, pod, flag);
}

Status CInstrument::GetInhibitByEvent(int module, int pod, int& flag) const {
  return Forward(module, &CModule::GetInhibitByEvent, pod, flag);
}

Status CInstrument::SetStrobeTiming(int module, int pod, StrobeDelay delay) {
  return Forward(module, &CModule::SetStrobeTiming, pod, delay);
}

Status CInstrument::GetStrobeTiming(int module, int pod, StrobeDelay& delay) const {
  return Forward(module, &CModule::GetStrobeTiming, pod, delay);
}

Status CInstrument::SetStrobeEnable(int module, int pod, int flag) {
  return Forward(module, &CModule::SetStrobeEnable, pod, flag);
}

Status CInstrument::GetStrobeEnable(int module, int pod, int& flag) const {
  return Forward(module, &CModule::GetStrobeEnable, pod, flag);
}

}  // namespace quillpg
