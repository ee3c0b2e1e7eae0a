#include "exchange/vcd_description.h"

#include "base/guard.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "program/group.h"
#include "program/group_manager.h"
#include "quillpg/app_server.h"

#include <utility>

namespace quillpg {
namespace {

Status FindMaster(const CInstrument& instrument, int& position) {
  CModule* master = nullptr;
  Status status = instrument.GetModuleAt(0, &master);
  if (Failed(status)) return status;
  CAppServer* server = nullptr;
  status = CAppServer::GetServer(&server);
  if (Failed(status)) return status;
  CModuleManager* modules = nullptr;
  status = server->GetModuleManager(&modules);
  if (Failed(status) || !modules) return E_FAIL;
  return modules->GetModulePos(master, position);
}

Status DescribeGroups(const CInstrument& instrument, std::vector<VCD_SIGNAL>& signals) {
  CGroupManager* groups = nullptr;
  Status status = instrument.GetGroupManager(&groups);
  int count = 0;
  if (!Failed(status)) status = groups->GetNoOfGroups(count);
  for (int i = 0; i < count && !Failed(status); ++i) {
    GROUP* group = nullptr;
    // Empty slots and groups without channels have no pins.
    if (Failed(groups->GetGroup(i, &group)) || group->Channels().empty()) continue;
    signals.push_back({group->GetGroupName(), "", group->Channels()});
  }
  return status;
}

}  // namespace

Status DescribeInstrument(CInstrument& instrument, VCD_INSTRUMENT& description) {
  return GuardAllocation([&] {
    VCD_INSTRUMENT own;
    double seconds = 0;
    Status status = FindMaster(instrument, own.module);
    if (!Failed(status)) status = instrument.GetInstrumentName(own.name);
    if (!Failed(status)) status = instrument.GetMaxChannelsPerModule(own.channelsPerModule);
    if (!Failed(status)) status = instrument.GetClockPeriod(seconds);
    if (!Failed(status)) status = DescribeGroups(instrument, own.signals);
    if (Failed(status)) return status;
    own.period = PeriodFromSeconds(seconds);
    description = std::move(own);
    return S_OK;
  });
}

}  // namespace quillpg
