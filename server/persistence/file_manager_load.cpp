// Loading: instruments are made from the head of the file and filled from its records.

#include "app/setup_stream.h"
#include "base/atomic_file.h"
#include "base/guard.h"
#include "base/text.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "persistence/file_manager.h"
#include "persistence/fixed_section.h"
#include "persistence/input_file.h"
#include "persistence/work_mark.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/program_view.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace quillpg {

namespace {

int CountOf(const CInstrumentManager& instruments) {
  int count = 0;
  (void)instruments.GetNoOfInstruments(count);  // a stored value, never fails
  return count;
}

CInstrument* At(const CInstrumentManager& instruments, int position) {
  CInstrument* instrument = nullptr;
  (void)instruments.GetInstrumentAt(position, &instrument);  // null tells it
  return instrument;
}

// Adding stops at the first refusal: the instrument's own record will say that it lacks modules.
void AddModules(CInstrument& instrument, const CModuleManager& modules, std::int64_t first,
                int count) {
  for (std::int64_t i = first; i < first + count && i <= std::numeric_limits<int>::max(); ++i) {
    CModule* module = nullptr;
    (void)modules.GetModuleAt(static_cast<int>(i), &module);  // null behind the last one
    if (!module || instrument.AddModule(module) != S_OK) return;
  }
}

}  // namespace

// --- making the instruments ---

Status CFileManager::CreateInstruments(CModuleManager* modules, CInstrumentManager* instruments) {
  const CWorkMark work(m_working);
  return work.Taken() && modules && instruments ? MakeInstruments(*modules, *instruments) : E_FAIL;
}

Status CFileManager::MakeInstruments(CModuleManager& modules,
                                     CInstrumentManager& instruments) const {
  (void)instruments.DeleteAll();
  (void)modules.InitializeModules();  // an unwilling module does not keep an instrument out
  return GuardAllocation([&] {
    std::int64_t next = 0;
    for (const INSTRUMENT_ENTRY& entry : m_fixedSection->instruments) {
      auto instrument = std::make_unique<CInstrument>();
      (void)instrument->Initialize();  // wires the managers
      (void)instrument->SetInstrumentName(entry.name);
      const int count = std::max(entry.modules, 0);
      AddModules(*instrument, modules, next, count);
      next += count;  // the full count, however many there were to add
      const Status status = instruments.AddInstrument(instrument.get());
      if (status != S_OK) return status;
      (void)instrument.release();
    }
    return S_OK;
  });
}

// --- one instrument ---

Status CFileManager::LoadInstrument(CInstrument* instrument) {
  const CWorkMark work(m_inInstrument);
  if (!work.Taken() || !instrument || !m_reader) return E_FAIL;
  return GuardAllocation(
      [&] {
        std::string software;
        if (m_server) (void)m_server->GetSoftwareVersion(software);
        SETUP_FILE_FORM form = FormOfVersion(m_fixedSection->softwareVersion, software);
        form.stepsOver = m_loadModule != 0;
        form.replacesBlocks = true;
        m_reader->SetForm(form);
        Status status = instrument->Read(*m_reader, m_fixedSection->programDataSaved);
        if (status != S_OK) return status;
        status = CProgramView(*instrument).Groups()->Read(*m_reader);
        if (status != S_OK) return status;
        (void)SetProgressBarMessage(0);
        return ReadProgram(*instrument);
      },
      PG_E_INSTRUMENT_RECORD);
}

// A file without programs leaves all lists empty. Failures behind the blocks are not reported
// (deliberate); the reader gives nothing to what follows them.
Status CFileManager::ReadProgram(CInstrument& instrument) {
  const CProgramView program(instrument);
  const bool programs = m_fixedSection->programDataSaved != 0;
  const auto read = [&](auto& manager) {
    (void)manager.DeleteAll();
    return programs ? manager.Read(*m_reader) : S_OK;
  };
  const Status status = read(*program.Blocks());
  if (status != S_OK) return status;
  (void)SetProgressBarMessage(25);
  (void)read(*program.Sequence());
  (void)SetProgressBarMessage(50);
  (void)read(*program.SubSequences());
  (void)SetProgressBarMessage(75);
  (void)read(*program.Events());
  return SetProgressBarMessage(100);
}

// --- the system ---

Status CFileManager::LoadSystem(const std::string& fileName, int loadFlag) {
  const CWorkMark work(m_working);
  CModuleManager* modules = LiveModules();
  if (!work.Taken() || !m_instruments || !modules) return E_FAIL;
  // Whoever is told of the progress must not replace what is being loaded.
  CBusyMark busy(*m_instruments);
  if (!busy.Taken()) return E_FAIL;
  Status status = OpenForReading(fileName);
  if (status != S_OK) return status;
  m_loadFlag = loadFlag;
  m_loadModule = 0;  // a search that found nothing leaves it set
  status = GuardAllocation([&] { return LoadAll(*modules, busy); }, PG_E_INSTRUMENT_RECORD);
  if (status == S_OK) {
    (void)m_instruments->SetFileName(fileName);
    (void)m_instruments->SetComment(m_comment);
  }
  CloseInput();
  return status;
}

Status CFileManager::LoadAll(CModuleManager& modules, CBusyMark& busy) {
  FetchRecords();
  // What a failed load leaves must not be saved over the file that the system had.
  (void)m_instruments->SetFileName({});
  (void)m_instruments->SetComment({});
  Status status = MakeInstruments(modules, *m_instruments);
  busy.Keep();
  const int count = CountOf(*m_instruments);
  for (int i = 0; i < count && status == S_OK; ++i) {
    status = LoadInstrument(At(*m_instruments, i));
  }
  if (status == S_OK && count > 0) (void)m_instruments->SetCurrentInst(0);
  return status;
}

Status CFileManager::LoadDataWindow(const std::string& fileName,
                                    const std::string& instrumentName) {
  const CWorkMark work(m_working);
  CModuleManager* modules = LiveModules();
  if (!work.Taken() || !m_instruments || !modules) return E_FAIL;
  CBusyMark busy(*m_instruments);
  if (!busy.Taken()) return E_FAIL;
  ShowReadingMessage(fileName);
  const Status status = OpenForReading(fileName);
  if (status == S_OK) {
    m_loadModule = 1;
    (void)GuardAllocation([&] {
      FetchRecords();
      (void)m_instruments->SetFileName({});  // the old one goes, whether or not there is a new one
      (void)MakeInstruments(*modules, *m_instruments);
      busy.Keep();
      bool found = false;
      for (int i = 0; i < CountOf(*m_instruments) && !found; ++i) {
        found = EqualNoCase(m_fixedSection->instruments[static_cast<std::size_t>(i)].name,
                            instrumentName);
        if (found) m_loadModule = 0;
        (void)LoadInstrument(At(*m_instruments, i));  // what could be read is shown
      }
      return m_instruments->SetFileName(fileName);
    });
  }
  SetStatusMessage("");
  CloseInput();
  return status;
}

// --- one instrument of a file ---

Status CFileManager::LoadModule(const std::string& fileName, const std::string& instrumentName,
                                CInstrument* target) {
  const CWorkMark work(m_working);
  if (!work.Taken() || !m_instruments || !target) return E_FAIL;
  CBusyMark busy(*m_instruments);
  if (!busy.Taken()) return E_FAIL;
  busy.Keep();
  const CWaitCursor cursor;
  ShowReadingMessage(fileName);
  Status status = OpenForReading(fileName);
  if (status == S_OK) {
    m_loadModule = 1;
    status = GuardAllocation([&] { return LoadNamed(fileName, instrumentName, *target); },
                             PG_E_INSTRUMENT_RECORD);
  }
  SetStatusMessage("");
  CloseInput();
  return status;
}

Status CFileManager::LoadNamed(const std::string& fileName, const std::string& instrumentName,
                               CInstrument& target) {
  FetchRecords();
  bool found = false;
  Status status = StepTo(instrumentName, found);
  if (!found) return status;
  m_loadModule = 0;
  std::string name;
  status = target.GetInstrumentName(name);
  if (status != S_OK) return status;
  status = LoadInstrument(&target);
  (void)target.RestoreInstrumentName(name);
  std::string systemFile;
  (void)m_instruments->GetFileName(systemFile);
  if (!EqualNoCase(systemFile, fileName) && m_fixedSection->instruments.size() == 1) {
    (void)target.SetFileName(fileName);
  }
  return status;
}

// Records have no length: what stands before the wanted ones is read into instruments that go with
// this call, made of modules without hardware.
Status CFileManager::StepTo(const std::string& instrumentName, bool& found) {
  CModuleManager modules;
  CInstrumentManager instruments;
  (void)modules.Initialize(static_cast<int>(m_fixedSection->memoryDepths.size()));
  (void)instruments.Initialize(&modules);
  Status status = MakeInstruments(modules, instruments);
  int position = 0;
  for (const INSTRUMENT_ENTRY& entry : m_fixedSection->instruments) {
    found = EqualNoCase(entry.name, instrumentName);
    if (found || status != S_OK) break;
    status = LoadInstrument(At(instruments, position++));
  }
  return status;
}

}  // namespace quillpg
