#pragma once

#include "quillpg/api.h"

#include <cstdint>
#include <string_view>

// Every enumeration of the engine. Values are stored in setup files as 32-bit integers and handed
// to the hardware as they are: any 32-bit value can arrive, so code that switches on one has a
// default and never indexes a table with it unchecked.

namespace quillpg {

// --- instrument settings
// --------------------------------------------------------------------------
/// Channels of a module: 32 (half) or 64 (full). Note the order: Full is 1 and the default.
enum class ChannelMode : std::int32_t { Half = 0, Full = 1 };
enum class ClockSource : std::int32_t { Internal = 0, External = 1 };
enum class Polarity : std::int32_t { Positive = 0, Negative = 1 };
enum class EventMode : std::int32_t { Edge = 0, Level = 1 };
enum class RunMode : std::int32_t { Continuous = 0, Step = 1 };
enum class SignalType : std::int32_t {
  None = 0,
  Signal1 = 1,
  Signal2 = 2,
  Signal3 = 3,
  Signal4 = 4,
  Clk10MHz = 5
};
/// Level that a sequence line drives on the signal output.
enum class SignalValue : std::int32_t { Low = 0, High = 1, DontCare = 2 };
enum class Radix : std::int32_t { Hex = 0, Decimal = 1, Octal = 2, Binary = 3 };
/// Sequencer state of an instrument.
enum class ModuleState : std::int32_t { Idle = 0, Initialising = 1, Waiting = 2, Running = 3 };
/// State of the whole system; only Idle and Active are given by the engine.
enum class SystemState : std::int32_t {
  Idle = 0,
  Initialising = 1,
  Waiting = 2,
  Running = 3,
  Active = 4
};

// --- module settings
// ------------------------------------------------------------------------------
enum class PodType : std::int32_t {
  Unknown = -1,
  None = 0,
  TtlCmos = 1,
  V3Cmos = 2,
  Ecl = 3,
  Variable = 4,
  LvCmos = 5,
  Lvds = 6,
  Pecl = 7,
  LvPecl = 8
};
enum class StrobeDelay : std::int32_t {
  Delay0to20 = 0,
  Delay15to30 = 1,
  Delay25to40 = 2,
  Delay35to50 = 3
};
/// None marks a variable channel that has no such setting (channels 0 and 3).
enum class DataFormat : std::int32_t { None = -1, Nrz = 0, Rz = 1, R1 = 2 };
enum class InhibitMask : std::int32_t { None = -1, Off = 0, On = 1 };
enum class DelayRange : std::int32_t { None = -1, Range0 = 0, Range1 = 1, Range2 = 2, Range3 = 3 };
enum class CH6OutputMode : std::int32_t {
  Normal = 0,
  Ch6OrCh7 = 1,
  Ch6AndCh7 = 2,
  Ch6AndNotCh7 = 3,
  Ch6OrNotCh7 = 4
};
enum class VariableChannel : std::int32_t {
  Channel0 = 0,
  Channel1 = 1,
  Channel2 = 2,
  Channel3 = 3
};

// --- mainframe
// ------------------------------------------------------------------------------------
enum class Mainframe : std::int32_t { Unknown = 0, Slots13 = 1, BenchTop = 2 };
/// Model codes as they stand in a module's information line.
enum class Device : std::int32_t { Unknown = 0, Expansion = 1001, PatternGenerator = 1064 };
/// Manufacturer identifiers as they stand in a module's information line.
enum class Manufacturer : std::int32_t { Unknown = 0, Quillmark = 2748 };
enum class TestResult : std::int32_t { Pass = 0, Fail = 1, Mixed = 2, NotRun = 3 };

// --- editing
// --------------------------------------------------------------------------------------
/// What the clipboard holds; also what GetUniqueName makes a name for.
enum class ContentType : std::int32_t {
  Instrument = 0,
  Channel = 1,
  Group = 2,
  Block = 3,
  Event = 4,
  EventDef = 5,
  SequenceLine = 6,
  SubSequence = 7,
  SubSequenceDef = 8,
  Rows = 9,
  GroupColumn = 10,
  ChannelColumn = 11,
  GroupWave = 12,
  ChannelWave = 13,
  None = 14
};
/// A channel seen from one group.
enum class ChannelSelection : std::int32_t { InNoGroup = 0, InOtherGroup = 1, InThisGroup = 2 };
enum class WaveType : std::int32_t { Group = 0, Channel = 1, Inhibit = 2, NoRow = 3 };
enum class SelectWfmType : std::int32_t { Group = 0, Channel = 1, Inhibit = 2 };

// --- compiler
// -------------------------------------------------------------------------------------
enum class ErrorType : std::int32_t { Error = 0, Warning = 1, None = 2 };
enum class CompileError : std::int32_t {
  ListEmpty = 0,
  NameEmpty = 1,
  IllegalValue = 2,
  Invalid = 3,
  Undefined = 4,
  AlreadyDefined = 5,
  NotReferenced = 6,
  NoDefinition = 7,
  OutOfLimits = 8,
  InvalidRange = 9,
  BlockAndSubSequence = 10,
  MemoryExceeded = 11,
  Keyword = 12,
  JumpToMissing = 13,
  TooManyLines = 14
};
/// The list in which a finding lies. EventDefinition is never set by a check; its name exists.
enum class Section : std::int32_t {
  BlockList = 0,
  SequenceList = 1,
  SubSequenceList = 2,
  SubSequenceDefinition = 3,
  EventList = 4,
  EventDefinition = 5
};

// --- test data, versions, files
// -------------------------------------------------------------------
enum class TestDataType : std::int32_t {
  WalkingOnes = 0,
  Cell = 1,
  MaxBlockSize = 2,
  MaxBlocks = 3,
  MaxSubSequences = 4,
  MaxEvents = 5,
  MaxSequenceLines = 6,
  DownloadOptimization = 7
};
enum class VersionString : std::int32_t {
  CompanyName = 0,
  FileDescription = 1,
  InternalName = 2,
  LegalCopyright = 3,
  LegalTrademarks = 4,
  OriginalFilename = 5,
  ProductName = 6,
  ProductVersion = 7
};
enum class FileType : std::int32_t { System = 0, Module = 1 };

// Upper-case keywords of the radixes.
inline constexpr std::string_view RADIX_KEYWORD_HEX = "HEX";
inline constexpr std::string_view RADIX_KEYWORD_OCTAL = "OCTAL";
inline constexpr std::string_view RADIX_KEYWORD_BINARY = "BINARY";
inline constexpr std::string_view RADIX_KEYWORD_COUNT = "NUM_RADICES";

/// Display texts; empty for a value that is not in the enumeration.
QUILLPG_API std::string_view GetDisplayText(ChannelMode value);
QUILLPG_API std::string_view GetDisplayText(ClockSource value);
QUILLPG_API std::string_view GetDisplayText(Polarity value);
QUILLPG_API std::string_view GetDisplayText(EventMode value);
QUILLPG_API std::string_view GetDisplayText(RunMode value);
QUILLPG_API std::string_view GetDisplayText(SignalType value);
QUILLPG_API std::string_view GetDisplayText(SignalValue value);
QUILLPG_API std::string_view GetDisplayText(Radix value);
/// The printed keyword. It is not always the parsed one: see ParsePodType.
QUILLPG_API std::string_view GetDisplayText(PodType value);
QUILLPG_API std::string_view GetDisplayText(StrobeDelay value);
QUILLPG_API std::string_view GetDisplayText(DataFormat value);
QUILLPG_API std::string_view GetDisplayText(CH6OutputMode value);
QUILLPG_API std::string_view GetDisplayText(Mainframe value);
QUILLPG_API std::string_view GetDisplayText(TestDataType value);

/// The pod type that the hardware names with `keyword` (case ignored, blanks count);
/// PodType::Unknown for any other text. Value 2 is parsed from "V3_CMOS" but printed as "3VCMOS":
/// deliberate, do not make the two agree.
QUILLPG_API PodType ParsePodType(std::string_view keyword);

}  // namespace quillpg
