#pragma once

#include "base/text.h"
#include "persistence/file_manager.h"
#include "support/instrument_fixture.h"
#include "support/program_builder.h"
#include "support/temporary_folder.h"

#include <regex>

namespace quillpg {

/// An engine with one instrument per module, each with a program and a group of its own, and a
/// folder for its setup files.
class CSavedSystem : public CEngineFixture {
 public:
  explicit CSavedSystem(int modules = 1, bool option = false) : CEngineFixture(modules, option) {
    (void)Server().DefaultSystem();
    for (int i = 0; i < modules; ++i) Fill(i);
  }
  ~CSavedSystem() { (void)Instruments().DeleteAll(); }
  CSavedSystem(const CSavedSystem&) = delete;
  CSavedSystem& operator=(const CSavedSystem&) = delete;

  CTemporaryFolder& Folder() { return m_folder; }
  std::string File(const std::string& name = "system.pgs") const { return m_folder.File(name); }

  CFileManager& Files() { return *Find(Server(), &CAppServer::GetFileManager); }
  std::string Name(int position) {
    return Ask(*Instrument(position), &CInstrument::GetInstrumentName);
  }
  std::string SystemFile() { return Ask(Instruments(), &CInstrumentManager::GetFileName); }

  /// "groups/blocks/lines/subsequences/events" of an instrument.
  std::string Counts(int position) {
    const CProgramView program(*Instrument(position));
    return FormatText("%d/%d/%d/%d/%d",
                      {program.GroupCount(), program.BlockCount(), program.LineCount(),
                       program.SubSequenceCount(), program.EventCount()});
  }
  /// Channel 0, vectors 0 to 7 of the instrument's first block, which Fill makes its number.
  std::string Data(int position) {
    std::string bits;
    for (int vector = 0; vector < 8; ++vector) {
      const int bit = Bit(*Instrument(position), 0, 0, vector);
      bits += bit < 0 ? '?' : static_cast<char>('0' + bit);
    }
    return bits;
  }
  static std::string DataOf(int number) {
    std::string bits;
    for (int vector = 0; vector < 8; ++vector) bits += ((number + 1) >> vector) & 1 ? '1' : '0';
    return bits;
  }

  /// Bytes of a setup file, the date it was saved blanked out.
  std::string Bytes(const std::string& name = "system.pgs") const {
    static const std::regex date("\\d\\d/\\d\\d/\\d\\d \\d\\d:\\d\\d [AP]M");
    const std::string text = m_folder.Text(name);
    return std::regex_replace(text, date, "DATE", std::regex_constants::format_first_only);
  }

 private:
  void Fill(int number) {
    CInstrument& instrument = *Instrument(number);
    CProgramBuilder builder(instrument);
    for (int i = 0; i <= number; ++i) builder.Block("Block" + std::to_string(i), 80 + 8 * i);
    builder.Line({.output = "Block0", .repeat = 3, .waitFor = "Event"}).Line({.output = "Sub"});
    builder.Sub("Sub", {{"Block0", 2}}).Event("Event", {"1XXXXXXX0"});
    const std::string bits = DataOf(number);
    for (int vector = 0; vector < 8; ++vector) {
      (void)instrument.SetChannelData(0, 0, vector, bits[static_cast<std::size_t>(vector)] - '0');
    }
    (void)instrument.SetInhibitEvent(1);
    (void)instrument.SetChannelName(3, "Channel of " + std::to_string(number));
  }

  CTemporaryFolder m_folder;
};

}  // namespace quillpg
