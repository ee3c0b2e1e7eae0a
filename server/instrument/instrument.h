#pragma once

#include "base/modified_flag.h"
#include "base/notifier.h"
#include "instrument/mode_limits.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/limits.h"
#include "quillpg/result_codes.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quillpg {

class CBlockManager;
class CByteWriter;
class CEventHandler;
class CEventManager;
class CGroupManager;
class CModule;
class CSequenceManager;
class CSetupFileReader;
class CShiftRegisterGenerator;
class CSorrelModule;
class CSubSequenceManager;
struct BLOCK;
struct GROUP;

/// One pattern generator as the user sees it: one module, or up to five merged ones of which the
/// first is the master. Owns its program (groups, blocks, sequence, subsequences, events); refers
/// to its modules and to the front end's event handler.
///
/// Settings are sent to every module, read back and stored only when all modules took them; modules
/// without a hardware object are skipped. A failure at the second module leaves the first changed.
/// Getters of stored values answer S_OK. The engine sets the instrument's own modified flag in
/// Default alone: the front end marks edits.
class QUILLPG_API CInstrument {
 public:
  /// All settings have their defaults; there is neither a module nor any program.
  CInstrument();
  CInstrument(const CInstrument&) = delete;
  CInstrument& operator=(const CInstrument&) = delete;
  /// Touches neither modules nor hardware, which may be gone already.
  virtual ~CInstrument();

  // --- life cycle ---

  /// Forgets modules, name, comment and file name and wires the managers. Call before AddModule;
  /// settings stay as they are.
  Status Initialize();
  /// Everything but the name back to defaults: settings, modules' settings, program (four groups
  /// and one block are made). Raises OnInstrumentReset first. S_OK whatever the hardware says;
  /// E_FAIL when the handler destroyed the instrument.
  Status Default();
  /// Sends every stored setting again, so that the hardware holds what the model holds. Neither
  /// deletes data nor touches the flags. Raises OnInstrumentReset first; E_FAIL when the handler
  /// destroyed the instrument.
  Status ResetInstrument();
  /// Stores the handler (the caller's; null tells nobody) and hands it to the managers.
  Status SetEventHandler(CEventHandler* handler);
  Status GetEventHandler(CEventHandler** handler) const;
  /// The front end's object that shows the instrument: the installed handler.
  Status GetInstView(CEventHandler** view) const;
  /// For what the engine does to the instrument from outside, as CNotifier::Tell: with E_FAIL the
  /// instrument is gone.
  template <typename Notify>
  Status Tell(Notify&& notify) const {
    return m_frontEnd.Tell(std::forward<Notify>(notify));
  }
  /// Expires with the instrument: for callers that let the front end in.
  std::weak_ptr<const void> Lifetime() const { return m_frontEnd.Lifetime(); }

  // --- modules: referenced, master first ---

  /// E_FAIL for null and, with MSG_INTERNAL_ERROR, for a sixth module.
  Status AddModule(CModule* module);
  /// Takes the module out without destroying it.
  Status RemoveModuleAt(int position);
  Status GetModuleAt(int position, CModule** module) const;
  /// Null with S_OK for a module without hardware, null with E_FAIL for no module.
  Status GetSorrelModuleAt(int position, CSorrelModule** module) const;
  Status GetNoOfModules(int& count) const;
  /// Frame of the master: 0 mainframe, n expansion frame n. E_FAIL without master hardware.
  Status GetFrameNo(int& frame) const;

  // --- program: what is handed out stays the instrument's ---

  Status GetGroupManager(CGroupManager** manager) const;
  Status GetBlockManager(CBlockManager** manager) const;
  Status GetSequenceManager(CSequenceManager** manager) const;
  Status GetSubSequenceManager(CSubSequenceManager** manager) const;
  Status GetEventManager(CEventManager** manager) const;

  // --- identity and flags ---

  Status GetInstrumentName(std::string& name) const;
  /// Raises OnInstrumentRenamed when the name differs, case included.
  Status SetInstrumentName(const std::string& name);
  /// Stores a name that, for the front end, the instrument never lost: raises nothing.
  Status RestoreInstrumentName(const std::string& name);
  Status GetComment(std::string& comment) const;
  Status SetComment(const std::string& comment);
  Status GetFileName(std::string& name) const;
  Status SetFileName(const std::string& name);
  Status SetModified(int flag);
  Status IsModified(int& modified) const;
  Status EnableInstrument(int enable);
  Status IsInstrumentEnabled(int& enabled) const;

  // --- limits, derived from channel mode and modules ---

  /// Channels of all modules; 0 without modules.
  Status GetMaxChannels(int& channels) const;
  /// Bits of one vector: the same as GetMaxChannels.
  Status GetBlockWidth(int& width) const;
  Status GetMaxChannelsPerPod(int& channels) const;
  Status GetMaxChannelsPerModule(int& channels) const;
  /// Vectors; the smallest of the modules, doubled in HALF mode.
  Status GetMemoryDepth(long& vectors) const;
  /// The same as GetMemoryDepth.
  Status GetMaxBlocksize(long& vectors) const;
  Status GetMinBlocksize(int& vectors) const;
  /// MHz.
  Status GetMaxClockSpeed(int& megahertz) const;
  /// Seconds.
  Status GetMinClockPeriod(double& seconds) const;
  Status GetMaxClockPeriod(double& seconds) const;
  /// "description,SPEED MHz,BLOCKSIZE" of the module at `position` of this instrument.
  /// PG_E_SLOT_EMPTY for a missing module, E_FAIL for one without hardware.
  Status GetModuleProperties(int position, std::string& text) const;

  // --- settings of all modules ---

  /// A change of the mode re-lays the program: bits 0 to 7 of every pod keep their data and groups,
  /// bits 8 to 15 appear with the default channel value or are dropped for good. Blocks below the
  /// new minimum size grow to it. Raises nothing. E_FAIL for a value that is no ChannelMode.
  Status SetChannelMode(ChannelMode mode);
  Status GetChannelMode(ChannelMode& mode) const;
  /// Non-zero: outputs go to high impedance when stopped. Sent at once while idle.
  Status SetHiZOnStop(int flag);
  Status GetHiZOnStop(int& flag) const;
  Status SetClockSource(ClockSource source);
  Status GetClockSource(ClockSource& source) const;
  /// Seconds. Where the hardware takes another value, that one is stored and E_FAIL returned.
  /// A hardware error leaves the master's clock switched off.
  Status SetClockPeriod(double seconds);
  Status GetClockPeriod(double& seconds) const;
  /// Volts. Where the hardware takes another value, that one is stored and E_FAIL returned.
  Status SetClockThreshold(float volts);
  Status GetClockThreshold(float& volts) const;
  Status SetClockPolarity(Polarity polarity);
  Status GetClockPolarity(Polarity& polarity) const;
  Status SetEventFilter(int filter);
  Status GetEventFilter(int& filter) const;
  /// Event that inhibits the outputs, from 1; 0 none.
  Status SetInhibitEvent(int event);
  Status GetInhibitEvent(int& event) const;
  Status SetJumpEventMode(EventMode mode);
  Status GetJumpEventMode(EventMode& mode) const;
  Status SetAdvEventMode(EventMode mode);
  Status GetAdvEventMode(EventMode& mode) const;
  Status SetRunMode(RunMode mode);
  Status GetRunMode(RunMode& mode) const;
  /// Also sets the input polarity: positive for signals 1 and 2, negative for 3 and 4.
  Status SetInputSignalSource(SignalType type);
  Status GetInputSignalSource(SignalType& type) const;
  /// Only the master drives an output; the polarity follows as for the input.
  Status SetOutputSignalDest(SignalType type);
  Status GetOutputSignalDest(SignalType& type) const;
  /// PG_E_SIGNAL_DRIVEN, with MSG_SIGNAL_DRIVEN, when another instrument of the system drives
  /// `type`. None, Signal3 and Signal4 may be shared.
  Status CanSetSignalOut(SignalType type) const;

  // --- settings of one pod (0 to 3) of the module at `module`; E_FAIL without that module ---

  Status GetPodType(int module, int pod, PodType& type) const;
  /// Nanoseconds; of the whole module.
  Status SetClockDeskew(int module, float nanoseconds);
  Status GetClockDeskew(int module, float& nanoseconds) const;
  /// Volts.
  Status SetOutputLevel(int module, int pod, double volts);
  Status GetOutputLevel(int module, int pod, double& volts) const;
  Status GetMinOutputLevel(int module, int pod, double& volts) const;
  Status GetMaxOutputLevel(int module, int pod, double& volts) const;
  Status GetOutputLevelResolution(int module, int pod, double& volts) const;
  Status SetStrobeInhibit(int module, int pod, int flag);
  Status GetStrobeInhibit(int module, int pod, int& flag) const;
  /// Rebuilds the inhibit controls after success.
  Status SetInhibitByPodD(int module, int pod, int flag);
  Status GetInhibitByPodD(int module, int pod, int& flag) const;
  Status SetInhibitByEvent(int module, int pod, int flag);
  Status GetInhibitByEvent(int module, int pod, int& flag) const;
  Status SetStrobeTiming(int module, int pod, StrobeDelay delay);
  Status GetStrobeTiming(int module, int pod, StrobeDelay& delay) const;
  Status SetStrobeEnable(int module, int pod, int flag);
  Status GetStrobeEnable(int module, int pod, int& flag) const;

  // --- channels, numbered over the modules from 0 ---

  /// The user's name, empty for an unnamed channel. E_FAIL outside the instrument's channels.
  Status GetChannelName(int channel, std::string& name) const;
  /// A name in use by another channel, default names included, is refused with E_FAIL; a channel's
  /// own name changes nothing. Raises OnChannelRenamed; an empty name clears.
  Status SetChannelName(int channel, const std::string& name);
  /// "A1(1)", of merged instruments "2A1(1)": module, pod, section, bit.
  Status GetChannelDefaultName(int channel, std::string& name) const;
  /// First channel of that user name, else of that default name, without regard to case; -1 and
  /// E_FAIL when there is none.
  Status GetChannelId(const std::string& name, int& channel) const;

  // --- channels of groups ---

  /// `position` 0 is the most significant place; any value that is no place of the list appends.
  /// E_FAIL for an unknown group, a bad channel and one that the group already holds. The four
  /// operations write the group's channel-names text anew.
  Status AddChannelToGroup(const std::string& group, int channel, int position);
  Status DeleteChannelFromGroup(const std::string& group, int channel);
  /// Section s is the channels 8s+7 down to 8s; those that the group holds already are skipped.
  Status AddSectionToGroup(const std::string& group, int section, int position);
  /// E_FAIL when the group holds no channel of the section.
  Status DeleteSectionFromGroup(const std::string& group, int section);
  /// Writes the channel-names text of the group anew from its channels. Throws length_error when it
  /// would be longer than `mostBytes`: a file may list one channel of a long name many times.
  void RebuildChannelNames(GROUP& group, std::size_t mostBytes = std::string::npos) const;

  // --- pattern data ---
  // Writing marks the block and the block manager as changed. Group operations read 0 and write
  // nothing where a channel or a vector lies outside the block, and answer S_OK.

  /// `bit` is 0 or 1; 0 and E_FAIL for a place outside the block.
  Status GetChannelData(int channel, int block, int vector, int& bit) const;
  Status SetChannelData(int channel, int block, int vector, int bit);
  /// 1 when pod D's data holds the channel's pod in high impedance in that vector. E_FAIL for a pod
  /// without a probe.
  Status GetChannelInhibitMask(int channel, int block, int vector, int& mask) const;
  /// Writes the pod's control channel. E_FAIL for a pod without a probe and for a mask where the
  /// pod is not inhibited by pod D.
  Status SetChannelInhibitMask(int channel, int block, int vector, int mask);
  /// The group's value as digits, most significant first: a fixed number of them but for decimal,
  /// which has no leading zeros. E_FAIL for a missing group or block (text untouched) and for an
  /// unknown radix (text emptied).
  Status GetGroupData(const std::string& group, int block, int vector, Radix radix,
                      std::string& text) const;
  /// Missing digits are zeros, surplus leading ones are ignored, bad ones never fail. E_FAIL for a
  /// missing group, a missing block and an unknown radix.
  Status SetGroupData(const std::string& group, int block, int vector, Radix radix,
                      const std::string& text);
  /// The same for `count` vectors from `vector` on, cut at the block's ends; below 1 counts as 1.
  Status SetGroupData(const std::string& group, int block, int vector, Radix radix,
                      const std::string& text, int count);
  /// As GetGroupData, of the inhibit masks; a channel without a probe counts as 0.
  Status GetGroupInhibitMask(const std::string& group, int block, int vector, Radix radix,
                             std::string& text) const;
  /// Decimal digits that the group's largest value needs.
  Status GetMaxDecStrLen(const std::string& group, int& length) const;
  /// Fills the channel with the generator's next bits, one for each vector from `first` to `last`,
  /// both included; what lies outside the block takes no bit. The generator runs on from call to
  /// call. E_FAIL for a missing block and a channel outside it.
  Status FillChannelData(int channel, int block, int first, int last,
                         CShiftRegisterGenerator& generator);
  /// The same for one channel after the other, much faster than channel by channel; with E_FAIL
  /// nothing is written.
  Status FillChannelData(std::span<const int> channels, int block, int first, int last,
                         CShiftRegisterGenerator& generator);
  /// Replaces the program, or the lists of it that `type` is about, by a generated one that goes to
  /// the limits of the hardware; see GenerateTestData. Other values do nothing, S_OK.
  Status CreateTestData(TestDataType type);

  // --- listing, inhibit controls, names ---

  /// Gives every block one state per group: missing ones are appended, stale ones removed, the
  /// order of the others stays.
  Status UpdateListingState();
  Status UpdateListingState(BLOCK& block);
  Status MakeAllGroupsVisible();
  /// Rebuilds the list of channels that inhibit a pod, and the blocks' rows for them.
  Status UpdateInhibitControlList();
  Status GetNoOfInhibitControls(int& count) const;
  /// -1 and E_FAIL for a bad position.
  Status GetInhibitControlAt(int position, int& channel) const;
  /// Empty and E_FAIL for a bad position.
  Status GetInhibitControlName(int position, std::string& name) const;
  /// A free name for a new group, block, event, sequence label or subsequence: the catalogue's word
  /// and the smallest number from 1. E_FAIL, name untouched, for other types.
  Status GetUniqueName(ContentType type, std::string& name) const;

  // --- run control ---

  /// Starts all modules, slaves following the master. Does nothing, S_OK, while disabled or busy;
  /// E_FAIL without master hardware.
  Status Run();
  Status Stop();
  /// Calls of the master; E_FAIL without its hardware.
  Status Advance();
  Status Jump();
  Status Step(int steps);
  /// Takes the master's progress in: raises OnInstrumentIdle first, then ends a run that is over
  /// and stores the state. E_FAIL without modules.
  Status UpdateInstrumentState();
  Status GetInstrumentState(ModuleState& state) const;

  // --- setup file ---

  /// Bytes in a setup file: settings and groups, with a non-zero `flag` the program too (Write
  /// gives the settings alone; the file manager writes the rest).
  Status GetSize(unsigned long& size, int flag) const;
  /// Reads the settings record; without program data there is no inhibit event. Raises nothing. The
  /// first value that is refused ends it with PG_E_INSTRUMENT_RECORD; what was read by then is
  /// kept.
  Status Read(std::istream& stream, int programDataSaved);
  Status Read(CSetupFileReader& reader, int programDataSaved);
  /// PG_E_MODULE_MISSING, behind the count of modules, when one of them is not there.
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  /// The instrument-wide settings, with their defaults.
  struct SETTINGS {
    ChannelMode channelMode = ChannelMode::Full;
    int hiZOnStop = 1;
    ClockSource clockSource = ClockSource::Internal;
    double clockPeriod = 1e-08;
    float clockThreshold = 0;
    Polarity clockPolarity = Polarity::Positive;
    int eventFilter = 0;
    int inhibitEvent = 0;
    EventMode jumpEventMode = EventMode::Level;
    EventMode advEventMode = EventMode::Level;
    RunMode runMode = RunMode::Continuous;
    SignalType inputSignalSource = SignalType::None;
    SignalType outputSignalDest = SignalType::None;
  };

  void ReadSettings(CSetupFileReader& reader);
  CModule* ModuleAt(int position) const;
  CSorrelModule* HardwareAt(int position) const;
  int ChannelsPerPod() const { return LimitsOf(m_settings.channelMode).channelsPerPod; }
  int ChannelsPerModule() const { return LimitsOf(m_settings.channelMode).ChannelsPerModule(); }
  int MaxChannels() const { return ChannelsPerModule() * static_cast<int>(m_modules.size()); }
  bool HoldsChannel(int channel) const { return channel >= 0 && channel < MaxChannels(); }

  /// The hardware of every module in order, null where there is none.
  std::array<CSorrelModule*, MAX_INSTRUMENT_MODULES> Hardware() const;
  template <typename Operation, typename... Args>
  Status Forward(int module, Operation operation, Args&&... args) const;
  // With E_FAIL, with false, the handler has destroyed the instrument.
  Status AnnounceReset();
  bool RefreshState();
  void ApplySettings(const SETTINGS& settings);
  void EnableOutputs(bool enable) const;
  void TakeInIdle() const;
  void StoreState(ModuleState state);

  Status RelayProgram(ChannelMode oldMode);
  Status RelayBlock(BLOCK& block, int oldPodChannels, char fill) const;
  void RelayGroup(GROUP& group, int oldPodChannels) const;
  void RebuildInhibitControls();
  int InhibitControlOf(int module, int pod) const;
  /// Control channel when the channel's pod is inhibited by data, -1 when it is not; E_FAIL for a
  /// bad channel and for a pod without a probe.
  Status FindInhibitControl(int channel, int& control) const;
  BLOCK* BlockAt(int position) const;
  GROUP* FindGroup(const std::string& name) const;
  void MarkChanged(BLOCK& block) const;

  std::string m_name;
  int m_enabled = 1;
  CModifiedFlag m_modified{true};
  std::string m_comment;
  std::string m_fileName;
  SETTINGS m_settings;
  ModuleState m_state = ModuleState::Idle;
  /// Counts the stores of m_state.
  std::uint64_t m_stateChanges = 0;
  std::vector<int> m_inhibitControls;
  std::vector<std::string> m_inhibitControlNames;
  CNotifier m_frontEnd;
  std::unique_ptr<CGroupManager> m_groupManager;
  std::unique_ptr<CBlockManager> m_blockManager;
  std::unique_ptr<CEventManager> m_eventManager;
  std::unique_ptr<CSequenceManager> m_sequenceManager;
  std::unique_ptr<CSubSequenceManager> m_subSequenceManager;
  std::vector<CModule*> m_modules;
  /// The file being read holds program data; used while reading only.
  int m_programDataSaved = 1;
};

}  // namespace quillpg
