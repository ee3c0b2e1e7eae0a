// Saving: the head from the live system, the records of the instruments, and what they take.

#include "app/version_info.h"
#include "base/atomic_file.h"
#include "base/byte_stream.h"
#include "base/guard.h"
#include "base/local_time.h"
#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "persistence/file_manager.h"
#include "persistence/fixed_section.h"
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
#include <ctime>
#include <limits>
#include <ostream>

namespace quillpg {

namespace {

constexpr char kSavingMessage[] = "Saving File. Please wait...";

std::vector<CInstrument*> ListedInstruments(const CInstrumentManager& manager) {
  std::vector<CInstrument*> listed;
  int count = 0;
  (void)manager.GetNoOfInstruments(count);  // a stored value, never fails
  for (int i = 0; i < count; ++i) {
    CInstrument* instrument = nullptr;
    (void)manager.GetInstrumentAt(i, &instrument);  // null for an empty entry
    if (instrument) listed.push_back(instrument);
  }
  return listed;
}

CInstrument* InstrumentAt(const CInstrumentManager* manager, int position) {
  CInstrument* instrument = nullptr;
  if (manager) (void)manager->GetInstrumentAt(position, &instrument);  // null tells it
  return instrument;
}

void AddEntry(FIXED_SECTION& section, const CInstrument& instrument) {
  INSTRUMENT_ENTRY entry;
  int modules = 0;
  (void)instrument.GetNoOfModules(modules);  // stored values, never fail
  (void)instrument.GetInstrumentName(entry.name);
  entry.modules = modules;
  section.instruments.push_back(std::move(entry));
}

void AddDepth(FIXED_SECTION& section, const CModule* module) {
  long depth = DEFAULT_MEMORY_DEPTH;
  if (module) (void)module->GetMemoryDepth(depth);  // the default stays where it cannot tell
  section.memoryDepths.push_back(static_cast<std::int32_t>(
      std::clamp<long>(depth, 0, std::numeric_limits<std::int32_t>::max())));
}

template <typename Source>
void AddDepths(FIXED_SECTION& section, const Source& source) {
  int count = 0;
  (void)source.GetNoOfModules(count);
  for (int i = 0; i < count; ++i) {
    CModule* module = nullptr;
    (void)source.GetModuleAt(i, &module);
    AddDepth(section, module);
  }
}

}  // namespace

// --- the head ---

void CFileManager::UpdateFixedSection(FIXED_SECTION& section, FileType type, int position,
                                      int flag) const {
  section.Clear();
  section.dateSaved = LocalTimeText(std::time(nullptr));
  section.productName = ProductName();
  CVersionInfo* version = nullptr;
  if (m_server) (void)m_server->GetVersionInfo(&version);
  if (version) (void)version->GetSoftwareVersion(section.softwareVersion);
  section.comment = m_comment;
  section.programDataSaved = flag != 0 ? 1 : 0;
  section.fileType = type;
  if (type == FileType::Module) {
    const CInstrument* instrument = InstrumentAt(m_instruments, position);
    if (!instrument) return;
    AddEntry(section, *instrument);
    AddDepths(section, *instrument);
    return;
  }
  if (m_instruments) {
    for (const CInstrument* each : ListedInstruments(*m_instruments)) AddEntry(section, *each);
  }
  if (const CModuleManager* modules = LiveModules()) AddDepths(section, *modules);
}

Status CFileManager::WriteFixedSection(std::ostream& stream, FileType type, int position) {
  if (m_working) return E_FAIL;  // the record belongs to what is going on
  return GuardAllocation([&] {
    UpdateFixedSection(*m_fixedSection, type, position, m_programDataFlag);
    CByteWriter writer;
    const Status status = m_fixedSection->Write(writer);
    if (status != S_OK) return status;
    const auto bytes = writer.Written();
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    return stream.good() ? S_OK : E_FAIL;
  });
}

// --- saving ---

Status CFileManager::SaveSystem(const std::string& fileName, const std::string& comment, int flag) {
  const CWorkMark work(m_working);
  if (!work.Taken() || !m_instruments) return E_FAIL;
  // Whoever is told of the progress must not replace what is being written.
  CBusyMark busy(*m_instruments);
  busy.Keep();
  const CWaitCursor cursor;
  Status status = GuardAllocation([&] {
    m_comment = comment;
    m_programDataFlag = flag;
    SetStatusMessage(kSavingMessage);
    return WriteFile(fileName, FileType::System, -1, ListedInstruments(*m_instruments));
  });
  if (status == S_OK) status = m_instruments->SetFileName(fileName);
  SetStatusMessage("");
  return status;
}

Status CFileManager::SaveModule(const std::string& fileName, const std::string& comment,
                                int position, CInstrument* instrument, int flag) {
  const CWorkMark work(m_working);
  if (!work.Taken() || !m_instruments) return E_FAIL;
  if (!InstrumentAt(m_instruments, position) || !m_instruments->Holds(instrument)) return E_FAIL;
  CBusyMark busy(*m_instruments);
  busy.Keep();
  const CWaitCursor cursor;
  const Status status = GuardAllocation([&] {
    m_comment = comment;
    m_programDataFlag = flag;
    return WriteFile(fileName, FileType::Module, position, {instrument});
  });
  return status == S_OK ? instrument->SetFileName(fileName) : status;
}

Status CFileManager::WriteFile(const std::string& fileName, FileType type, int position,
                               const std::vector<CInstrument*>& instruments) {
  Status status = m_output->Open(fileName);
  if (status != S_OK) return status;
  status = GuardAllocation([&] {
    m_writer = std::make_unique<CByteWriter>(*m_output);
    const Status written = WriteRecords(type, position, instruments);
    m_writer->Flush();
    return written == S_OK ? m_writer->GetStatus() : written;
  });
  m_writer.reset();
  if (status == S_OK) return m_output->Commit();
  m_output->Discard();
  return status;
}

Status CFileManager::WriteRecords(FileType type, int position,
                                  const std::vector<CInstrument*>& instruments) {
  UpdateFixedSection(*m_fixedSection, type, position, m_programDataFlag);
  if (m_fixedSection->Write(*m_writer) != S_OK) return E_FAIL;
  for (CInstrument* instrument : instruments) {
    const Status status = SaveInstrument(instrument);
    if (status != S_OK) return status;
  }
  return S_OK;
}

Status CFileManager::SaveInstrument(CInstrument* instrument) {
  const CWorkMark work(m_inInstrument);
  if (!work.Taken() || !instrument || !m_writer) return E_FAIL;
  return GuardAllocation([&] {
    Status status = instrument->Write(*m_writer);
    if (status != S_OK) return status;
    status = CProgramView(*instrument).Groups()->Write(*m_writer);
    if (status != S_OK) return status;
    (void)SetProgressBarMessage(0);
    return m_programDataFlag != 0 ? WriteProgram(*instrument) : S_OK;
  });
}

Status CFileManager::WriteProgram(const CInstrument& instrument) {
  const CProgramView program(instrument);
  const auto write = [this](const auto& manager, int percent) {
    const Status status = manager.Write(*m_writer);
    if (status == S_OK) (void)SetProgressBarMessage(percent);
    return status;
  };
  Status status = write(*program.Blocks(), 25);
  if (status == S_OK) status = write(*program.Sequence(), 50);
  if (status == S_OK) status = write(*program.SubSequences(), 75);
  if (status == S_OK) status = write(*program.Events(), 100);
  return status;
}

// --- sizes ---

// In a record of its own: the queries about the last file keep their answers.
Status CFileManager::GetSize(unsigned long& size, int flag, int position) const {
  return GuardAllocation([&] {
    FIXED_SECTION section;
    UpdateFixedSection(section, position == -1 ? FileType::System : FileType::Module, position,
                       flag);
    unsigned long records = 0;
    if (m_instruments) (void)m_instruments->GetSize(records, flag, position);  // 0 for a bad one
    const std::uint64_t bytes = section.GetSize() + records;
    size = static_cast<unsigned long>(
        std::min<std::uint64_t>(bytes, std::numeric_limits<std::uint32_t>::max()));
    return S_OK;
  });
}

Status CFileManager::GetSystemSize(unsigned long& size, int flag) const {
  return GetSize(size, flag, -1);
}

Status CFileManager::GetCurrentInstSize(unsigned long& size, int flag) const {
  int position = -1;
  if (m_instruments) (void)m_instruments->GetCurrentInst(position);  // a stored value
  return GetSize(size, flag, position);
}

}  // namespace quillpg
