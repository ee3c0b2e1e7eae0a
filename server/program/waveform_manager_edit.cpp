#include "program/waveform_manager.h"

// Editing rows and the pattern data behind them.

namespace quillpg {

// Not built yet.
Status CWaveformManager::AddWaveformData(const std::string& /*name*/, SelectWfmType /*type*/,
                                         int /*value*/) {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::DeleteGroup(const std::string& /*name*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::DeleteChannel(const std::string& /*name*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::IsWaveformExists(const std::string& /*name*/, WaveType /*type*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::Cut(int /*row*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::CanPaste() const { return E_FAIL; }
// Not built yet.
Status CWaveformManager::Paste(int /*row*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::Swap(int /*a*/, int /*b*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::Move(int /*first*/, int /*to*/, int /*count*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::MoveUp(int /*row*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::MoveDown(int /*row*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::SetGroupName(const std::string& /*oldName*/,
                                      const std::string& /*newName*/) {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::SetChannelName(const std::string& /*name*/, int /*channel*/) {
  return E_FAIL;
}
// Not built yet.
int CWaveformManager::CanEnableAddWaveform() const { return 0; }
// Not built yet.
Status CWaveformManager::GetWaveformName(int /*row*/, std::string& /*name*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::GetGroupId(int /*row*/, int& /*group*/) const { return E_FAIL; }
// Not built yet.
Status CWaveformManager::GetGroupName(int /*row*/, std::string& /*name*/) const { return E_FAIL; }
// Not built yet.
Status CWaveformManager::GetChannelId(int /*row*/, int& /*channel*/) const { return E_FAIL; }
// Not built yet.
Status CWaveformManager::GetChannelName(int /*row*/, std::string& /*name*/) const { return E_FAIL; }
// Not built yet.
Status CWaveformManager::GetRowFromChannel(int /*channel*/, int& /*row*/) const { return E_FAIL; }
// Not built yet.
Status CWaveformManager::GetRowFromChannel(const std::string& /*name*/, int& /*row*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::GetRowFromGroup(const std::string& /*name*/, int& /*row*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::GetGroupData(int /*block*/, int /*groupIndex*/, int /*vector*/,
                                      Radix /*radix*/, std::string& /*text*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::SetGroupData(int /*block*/, int /*groupIndex*/, int /*vector*/,
                                      Radix /*radix*/, const std::string& /*text*/, int /*count*/) {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::GetGroupTextLength(int /*groupIndex*/, Radix /*radix*/,
                                            int& /*length*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::GetChannelData(int /*block*/, int /*channel*/, int /*vector*/,
                                        int& /*value*/) const {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::SetChannelData(int /*block*/, int /*channel*/, int /*vector*/,
                                        int /*value*/) {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::SetChannelInhibitMask(int /*block*/, int /*channel*/, int /*vector*/,
                                               int /*mask*/) {
  return E_FAIL;
}
// Not built yet.
Status CWaveformManager::Read(std::istream& /*stream*/) { return E_FAIL; }
// Not built yet.
Status CWaveformManager::Write(std::ostream& /*stream*/) const { return E_FAIL; }

}  // namespace quillpg
