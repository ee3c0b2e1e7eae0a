#include "hardware/module.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"

#include <algorithm>
#include <cstdint>
#include <limits>

// The instrument's records in a setup file.

namespace quillpg {

namespace {

constexpr std::uint64_t kSettingsRecordBytes = 69;  // without name and modules

}  // namespace

Status CInstrument::GetSize(unsigned long& size, int flag) const {
  std::uint64_t bytes = kSettingsRecordBytes + m_name.size();
  for (const CModule* module : m_modules) bytes += module->GetSize();
  const auto add = [&bytes](const auto& manager) {
    std::uint64_t part = 0;
    (void)manager.GetSize(part);
    bytes += part;
  };
  add(*m_groupManager);
  if (flag != 0) {
    add(*m_blockManager);
    add(*m_sequenceManager);
    add(*m_subSequenceManager);
    add(*m_eventManager);
  }
  size = static_cast<unsigned long>(
      std::min<std::uint64_t>(bytes, std::numeric_limits<std::uint32_t>::max()));
  return S_OK;
}

Status CInstrument::Read(std::istream& /*stream*/, int /*programDataSaved*/) {
  return E_FAIL;  // Not built yet.
}

Status CInstrument::Write(std::ostream& /*stream*/) const {
  return E_FAIL;  // Not built yet.
}

}  // namespace quillpg
