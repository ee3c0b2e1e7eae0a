#include "app/setup_stream.h"
#include "base/setup_file_format.h"
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
  for (const CModule* module : m_modules) bytes += module ? module->GetSize() : 0;
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

Status CInstrument::Read(std::istream& stream, int programDataSaved) {
  return ReadFromStream(stream, *this, programDataSaved);
}

Status CInstrument::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CInstrument::Read(CSetupFileReader& reader, int programDataSaved) {
  m_programDataSaved = programDataSaved;
  const Status status = GuardAllocation(
      [&] {
        ReadSettings(reader);
        int count = 0;
        // More than the largest instrument cannot be loaded: deliberate.
        const auto countInto = ReadInto<int>([&](int value) {
          count = value;
          return m_modules.size() <= MAX_INSTRUMENT_MODULES;
        });
        LayOutModules(reader, countInto, count, [&](int index) {
          CModule* module = ModuleAt(index);
          if (!module || module->Read(reader) != S_OK) reader.RefuseNext("module");
        });
        return reader.GetStatus();
      },
      PG_E_INSTRUMENT_RECORD);
  (void)UpdateInhibitControlList();  // the probes' inhibit settings are new
  return status;
}

// Each setting takes effect through its setter as soon as it is read; the first one that is refused
// leaves the rest of the record unread.
void CInstrument::ReadSettings(CSetupFileReader& reader) {
  const auto plain = [this]<typename T>(Status (CInstrument::*setter)(T)) {
    return ReadInto<T>([this, setter](T value) { return (this->*setter)(value) == S_OK; });
  };
  const auto upTo = [this]<typename T>(Status (CInstrument::*setter)(T), T last) {
    return ReadInto<T>([this, setter, last](T value) {
      return value >= T{} && value <= last && (this->*setter)(value) == S_OK;
    });
  };
  // Without the program there is no event to inhibit by.
  const auto inhibitEvent = ReadInto<int>(
      [this](int event) { return SetInhibitEvent(m_programDataSaved != 0 ? event : 0) == S_OK; });
  LayOutSettings(reader, m_name, m_enabled, upTo(&CInstrument::SetChannelMode, ChannelMode::Full),
                 upTo(&CInstrument::SetClockSource, ClockSource::External),
                 plain(&CInstrument::SetClockPeriod), plain(&CInstrument::SetClockThreshold),
                 upTo(&CInstrument::SetClockPolarity, Polarity::Negative),
                 upTo(&CInstrument::SetRunMode, RunMode::Step), plain(&CInstrument::SetHiZOnStop),
                 plain(&CInstrument::SetEventFilter), inhibitEvent,
                 upTo(&CInstrument::SetAdvEventMode, EventMode::Level),
                 upTo(&CInstrument::SetJumpEventMode, EventMode::Level),
                 upTo(&CInstrument::SetInputSignalSource, SignalType::Clk10MHz),
                 upTo(&CInstrument::SetOutputSignalDest, SignalType::Clk10MHz));
}

Status CInstrument::Write(CByteWriter& writer) const {
  const SETTINGS& held = m_settings;
  LayOutSettings(writer, m_name, m_enabled, held.channelMode, held.clockSource, held.clockPeriod,
                 held.clockThreshold, held.clockPolarity, held.runMode, held.hiZOnStop,
                 held.eventFilter, held.inhibitEvent, held.advEventMode, held.jumpEventMode,
                 held.inputSignalSource, held.outputSignalDest);
  // Checked before the first module record, so that the cut lies behind the count.
  const bool complete = std::ranges::find(m_modules, nullptr) == m_modules.end();
  const int count = static_cast<int>(m_modules.size());
  LayOutModules(writer, count, count, [&](int index) {
    if (complete) (void)m_modules[static_cast<std::size_t>(index)]->Write(writer);
  });
  return complete ? writer.GetStatus() : PG_E_MODULE_MISSING;
}

}  // namespace quillpg
