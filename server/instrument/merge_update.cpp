#include "base/guard.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "instrument/merge_manager.h"
#include "quillpg/host_services.h"

#include <algorithm>
#include <memory>

// Makes the live instruments what the working copy says.

namespace quillpg {

namespace {

int LengthOf(const CInstrumentManager& instruments) {
  int count = 0;
  (void)instruments.GetNoOfInstruments(count);
  return count;
}

// Null for an empty entry.
CInstrument* InstrumentAt(const CInstrumentManager& instruments, int position) {
  CInstrument* instrument = nullptr;
  (void)instruments.GetInstrumentAt(position, &instrument);
  return instrument;
}

std::vector<CModule*> ModulesOf(const CInstrument& instrument) {
  int count = 0;
  (void)instrument.GetNoOfModules(count);
  std::vector<CModule*> modules(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    (void)instrument.GetModuleAt(i, &modules[static_cast<std::size_t>(i)]);
  }
  return modules;
}

}  // namespace

Status CMergeManager::Update() {
  if (!m_instruments || !m_modules) return E_FAIL;
  const CBusyMark busy(*m_instruments);
  if (!busy.Taken()) return E_FAIL;
  const CWaitCursor cursor;
  return GuardAllocation([&] {
    ApplyDeskew(0, m_moduleInfo.Count());
    // The names let the front end in, which may take up a working copy anew and delete instruments:
    // from there on only what was read before counts.
    const bool edited = m_edited;
    const int current = m_currentInstrument;
    std::vector<PLAN> plan = GetUnchangedInstrumentList();
    DropEmptyEntries();
    if (edited) DeleteChangedInstruments(plan);
    UpdateNewInstrumentNames(plan);
    const Status status = edited ? CreateInstruments(plan) : S_OK;
    MakeCurrent(plan, current);
    return status;
  });
}

// A module that refuses keeps what it had.
void CMergeManager::ApplyDeskew(int firstModule, int count) const {
  for (int i = firstModule; i < firstModule + count; ++i) {
    const MODULE_INFO* info = m_moduleInfo.At(i);
    CModule* module = nullptr;
    if (info) (void)m_modules->GetModuleAt(info->index, &module);
    if (module) (void)module->SetClockDeskew(info->clockDeskew);
  }
}

void CMergeManager::DropEmptyEntries() const {
  for (int i = LengthOf(*m_instruments); i-- > 0;) {
    if (!InstrumentAt(*m_instruments, i)) (void)m_instruments->DeleteInstrumentAt(i);
  }
}

// The modules that the entry stands for; none when a discovery left fewer than it needs.
std::vector<int> CMergeManager::ModulesOf(int instrument) const {
  int first = -1;
  int last = -2;
  (void)GetFirstModuleId(instrument, first);
  (void)GetLastModuleId(instrument, last);
  std::vector<int> modules;
  for (int i = first; i <= last; ++i) {
    const MODULE_INFO* info = m_moduleInfo.At(i);
    modules.push_back(info ? info->index : -1);
  }
  return Find(modules).empty() ? std::vector<int>() : modules;
}

// None when one of them is missing.
std::vector<CModule*> CMergeManager::Find(const std::vector<int>& modules) const {
  std::vector<CModule*> found;
  for (const int position : modules) {
    CModule* module = nullptr;
    (void)m_modules->GetModuleAt(position, &module);
    if (!module) return {};
    found.push_back(module);
  }
  return found;
}

// The live instrument of exactly these modules, or null. Names do not count: a rename must not cost
// the data.
CInstrument* CMergeManager::LiveWith(const std::vector<int>& positions) const {
  const std::vector<CModule*> modules = Find(positions);
  if (modules.empty()) return nullptr;
  for (int i = 0; i < LengthOf(*m_instruments); ++i) {
    CInstrument* live = InstrumentAt(*m_instruments, i);
    if (live && quillpg::ModulesOf(*live) == modules) return live;
  }
  return nullptr;
}

// One entry for each of the working copy. As long as neither list was edited they correspond one to
// one, whatever modules the instruments hold.
std::vector<CMergeManager::PLAN> CMergeManager::GetUnchangedInstrumentList() const {
  const bool untouched = !m_edited && m_instruments->Revision() == m_builtRevision;
  std::vector<PLAN> plan;
  int position = 0;
  for (int i = 0; i < m_instrumentInfo.Count(); ++i) {
    PLAN& entry = plan.emplace_back();
    INSTRUMENT_INFO* info = m_instrumentInfo.At(i);
    if (!info) continue;
    entry.name = info->name;
    entry.firstModule = ModulesBefore(i);
    entry.modules = ModulesOf(i);
    entry.live = LiveWith(entry.modules);
    info->changed = entry.live ? 0 : 1;
    if (!untouched) continue;
    const int count = LengthOf(*m_instruments);
    while (position < count && !InstrumentAt(*m_instruments, position)) ++position;
    entry.live = InstrumentAt(*m_instruments, position++);
  }
  return plan;
}

void CMergeManager::DeleteChangedInstruments(const std::vector<PLAN>& plan) const {
  for (int i = LengthOf(*m_instruments); i-- > 0;) {
    const CInstrument* live = InstrumentAt(*m_instruments, i);
    const bool unchanged = live && std::ranges::find(plan, live, &PLAN::live) != plan.end();
    if (!unchanged) (void)m_instruments->DeleteInstrumentAt(i);
  }
}

// Goes on after a failure; the first one is the answer. What the front end has deleted by now is
// not made again.
Status CMergeManager::CreateInstruments(std::vector<PLAN>& plan) const {
  Status first = S_OK;
  int position = 0;
  for (PLAN& entry : plan) {
    if (entry.modules.empty()) continue;
    if (!entry.live) {
      entry.live = CreateInstrument(entry, position);
      // The defaults have set the deskew to 0.
      ApplyDeskew(entry.firstModule, static_cast<int>(entry.modules.size()));
      if (!entry.live) first = E_FAIL;
    }
    if (m_instruments->Holds(entry.live)) ++position;
  }
  return first;
}

// The new instrument, which is the list's; null when it could not be made.
CInstrument* CMergeManager::CreateInstrument(const PLAN& entry, int position) const {
  auto created = std::make_unique<CInstrument>();
  (void)created->Initialize();  // wires the managers, never fails
  (void)created->SetInstrumentName(entry.name);
  const std::vector<CModule*> modules = Find(entry.modules);
  if (modules.empty()) return nullptr;  // the front end has looked for modules meanwhile
  for (CModule* module : modules) {
    if (Failed(created->AddModule(module))) return nullptr;
  }
  (void)created->Default();  // an unwilling setting does not keep an instrument out
  if (Failed(m_instruments->AddInstrumentAt(position, created.get()))) return nullptr;
  return created.release();
}

void CMergeManager::UpdateNewInstrumentNames(const std::vector<PLAN>& plan) const {
  for (const PLAN& entry : plan) {
    // The front end may have deleted it while it was told of another one's name.
    if (m_instruments->Holds(entry.live)) (void)entry.live->SetInstrumentName(entry.name);
  }
}

void CMergeManager::MakeCurrent(const std::vector<PLAN>& plan, int index) const {
  int position = -1;
  if (index >= 0 && index < static_cast<int>(plan.size())) {
    const CInstrument* current = plan[static_cast<std::size_t>(index)].live;
    (void)m_instruments->GetInstrumentPos(current, position);  // -1 when there is none
  }
  (void)m_instruments->SetCurrentInst(position);
}

}  // namespace quillpg
