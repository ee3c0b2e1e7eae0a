#include "base/enum_text.h"

#include "base/text.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

namespace quillpg {

namespace {

template <typename Enum, std::size_t N>
constexpr std::array<ENUM_TEXT<Enum>, N> Table(const ENUM_TEXT<Enum> (&rows)[N]) {
  return std::to_array(rows);
}

constexpr auto kChannelModes =
    Table<ChannelMode>({{ChannelMode::Half, "HALF"}, {ChannelMode::Full, "FULL"}});

constexpr auto kClockSources =
    Table<ClockSource>({{ClockSource::Internal, "Internal"}, {ClockSource::External, "External"}});

constexpr auto kPolarities =
    Table<Polarity>({{Polarity::Positive, "Positive"}, {Polarity::Negative, "Negative"}});

constexpr auto kEventModes =
    Table<EventMode>({{EventMode::Edge, "Edge"}, {EventMode::Level, "Level"}});

// "Continous" is spelled so in every product that shows it.
constexpr auto kRunModes =
    Table<RunMode>({{RunMode::Continuous, "Continous"}, {RunMode::Step, "Step"}});

constexpr auto kSignalTypes = Table<SignalType>({{SignalType::None, "None"},
                                                 {SignalType::Signal1, "Signal1 - High Speed"},
                                                 {SignalType::Signal2, "Signal2 - High Speed"},
                                                 {SignalType::Signal3, "Signal3"},
                                                 {SignalType::Signal4, "Signal4"},
                                                 {SignalType::Clk10MHz, "10MHz Clk"}});

constexpr auto kSignalValues = Table<SignalValue>(
    {{SignalValue::Low, "0"}, {SignalValue::High, "1"}, {SignalValue::DontCare, "X"}});

constexpr auto kRadixes = Table<Radix>({{Radix::Hex, "Hex"},
                                        {Radix::Decimal, "Decimal"},
                                        {Radix::Octal, "Octal"},
                                        {Radix::Binary, "Binary"}});

constexpr auto kStrobeDelays = Table<StrobeDelay>({{StrobeDelay::Delay0to20, "0 - 20ns"},
                                                   {StrobeDelay::Delay15to30, "15 - 30ns"},
                                                   {StrobeDelay::Delay25to40, "25 - 40ns"},
                                                   {StrobeDelay::Delay35to50, "35 - 50ns"}});

constexpr auto kDataFormats =
    Table<DataFormat>({{DataFormat::Nrz, "NRZ"}, {DataFormat::Rz, "RZ"}, {DataFormat::R1, "R1"}});

constexpr auto kCh6OutputModes =
    Table<CH6OutputMode>({{CH6OutputMode::Normal, "Normal"},
                          {CH6OutputMode::Ch6OrCh7, "Ch6 OR Ch7"},
                          {CH6OutputMode::Ch6AndCh7, "Ch6 AND Ch7"},
                          {CH6OutputMode::Ch6AndNotCh7, "Ch6 AND ( NOT Ch7 )"},
                          {CH6OutputMode::Ch6OrNotCh7, "Ch6 OR ( NOT Ch7 )"}});

constexpr auto kMainframes = Table<Mainframe>({{Mainframe::Unknown, "Unknown"},
                                               {Mainframe::Slots13, "13-Slot Mainframe"},
                                               {Mainframe::BenchTop, "Benchtop"}});

constexpr auto kTestData =
    Table<TestDataType>({{TestDataType::WalkingOnes, "Walking Ones Test"},
                         {TestDataType::Cell, "Cell Test"},
                         {TestDataType::MaxBlockSize, "Max Block Size Test"},
                         {TestDataType::MaxBlocks, "Max no. of Blocks Test"},
                         {TestDataType::MaxSubSequences, "Max SubSequences Test"},
                         {TestDataType::MaxEvents, "Max Events Test"},
                         {TestDataType::MaxSequenceLines, "Max Sequence Lines Test"},
                         {TestDataType::DownloadOptimization, "Download Optimization Test"}});

struct POD_KEYWORD {
  PodType value;
  std::string_view parsed;
  std::string_view printed;
};

// The hardware says "V3_CMOS" where the engine prints "3VCMOS": meant, the two columns differ.
constexpr std::array<POD_KEYWORD, 9> kPodKeywords = {{
    {PodType::None, "None", "None"},
    {PodType::TtlCmos, "TTL/CMOS", "TTL/CMOS"},
    {PodType::V3Cmos, "V3_CMOS", "3VCMOS"},
    {PodType::Ecl, "ECL", "ECL"},
    {PodType::Variable, "VARIABLE", "VARIABLE"},
    {PodType::LvCmos, "LVCMOS", "LVCMOS"},
    {PodType::Lvds, "LVDS", "LVDS"},
    {PodType::Pecl, "PECL", "PECL"},
    {PodType::LvPecl, "LVPECL", "LVPECL"},
}};

struct RESULT_TEXT {
  Status status;
  std::string_view name;
  std::string_view text;
};

constexpr RESULT_TEXT kResults[] = {
    {S_OK, "S_OK", "success"},
    {S_FALSE, "S_FALSE", "success with a negative answer"},
    {E_FAIL, "E_FAIL", "failure"},
    {E_OUTOFMEMORY, "E_OUTOFMEMORY", "not enough memory"},
    {E_UNEXPECTED, "E_UNEXPECTED", "unexpected failure"},
#define QUILLPG_RESULT_CODE(name, value, text) {name, #name, text},
#include "quillpg/result_codes.def"
#undef QUILLPG_RESULT_CODE
};

const RESULT_TEXT* FindResult(Status status) {
  const auto* row = std::ranges::find(kResults, status, &RESULT_TEXT::status);
  return row == std::end(kResults) ? nullptr : row;
}

}  // namespace

std::string_view GetDisplayText(ChannelMode value) { return FindText(kChannelModes, value); }
std::string_view GetDisplayText(ClockSource value) { return FindText(kClockSources, value); }
std::string_view GetDisplayText(Polarity value) { return FindText(kPolarities, value); }
std::string_view GetDisplayText(EventMode value) { return FindText(kEventModes, value); }
std::string_view GetDisplayText(RunMode value) { return FindText(kRunModes, value); }
std::string_view GetDisplayText(SignalType value) { return FindText(kSignalTypes, value); }
std::string_view GetDisplayText(SignalValue value) { return FindText(kSignalValues, value); }
std::string_view GetDisplayText(Radix value) { return FindText(kRadixes, value); }
std::string_view GetDisplayText(StrobeDelay value) { return FindText(kStrobeDelays, value); }
std::string_view GetDisplayText(DataFormat value) { return FindText(kDataFormats, value); }
std::string_view GetDisplayText(CH6OutputMode value) { return FindText(kCh6OutputModes, value); }
std::string_view GetDisplayText(Mainframe value) { return FindText(kMainframes, value); }
std::string_view GetDisplayText(TestDataType value) { return FindText(kTestData, value); }

std::string_view GetDisplayText(PodType value) {
  const auto row = std::ranges::find(kPodKeywords, value, &POD_KEYWORD::value);
  return row == kPodKeywords.end() ? std::string_view() : row->printed;
}

PodType ParsePodType(std::string_view keyword) {
  const auto row = std::ranges::find_if(
      kPodKeywords, [keyword](const POD_KEYWORD& k) { return EqualNoCase(k.parsed, keyword); });
  return row == kPodKeywords.end() ? PodType::Unknown : row->value;
}

std::string_view GetResultName(Status status) {
  const RESULT_TEXT* row = FindResult(status);
  return row ? row->name : std::string_view();
}

std::string_view GetResultText(Status status) {
  const RESULT_TEXT* row = FindResult(status);
  return row ? row->text : std::string_view();
}

}  // namespace quillpg
