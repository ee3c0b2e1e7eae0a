#include "hardware/simulation/stub_identity.h"

#include "base/text.h"
#include "hardware/simulation/simulated_mainframe.h"
#include "hardware/simulation/stub_file.h"

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace quillpg {
namespace {

enum class Asked { Module, Pod, Indexed };

struct SETTING_QUERY {
  Setting setting;
  std::string_view command;
  Asked asked;
  double most;  // of an enumeration: its last value; 0 for any number
};

constexpr double kAny = 0;

constexpr SETTING_QUERY kQueries[] = {
    // setting, command, asked for, last value of an enumeration
    {Setting::ChannelMode, "SYSTEM:CONFIG:CHAN:MOD?", Asked::Module, 1},
    {Setting::ClockSource, "SOURCE:CLOCK:MODE?", Asked::Module, 1},
    {Setting::ClockPeriod, "SOURCE:CLOCK:PERIOD?", Asked::Module, kAny},
    {Setting::ClockPolarity, "SOURCE:CLOCK:POLARITY?", Asked::Module, 1},
    {Setting::ClockInputThreshold, "INPUT:CLOCK:THRESHOLD?", Asked::Module, kAny},
    {Setting::ClockDeskew, "SOURCE:CLOCK:DESKEW?", Asked::Module, kAny},
    {Setting::RunMode, "SYSTEM:CONFIG:RMOD?", Asked::Module, 1},
    {Setting::SignalInputSource, "SIGNAL:IN:SOURCE?", Asked::Module, 5},
    {Setting::SignalOutDest, "SIGNAL:OUT:DESTINATION?", Asked::Module, 5},
    {Setting::EventFilter, "EVENT:FILTER?", Asked::Module, kAny},
    {Setting::EventForInhibit, "EVENT:INHIBIT?", Asked::Module, kAny},
    {Setting::EventModeForAdvance, "EVENT:MODE:ADVANCE?", Asked::Module, 1},
    {Setting::EventModeForJump, "EVENT:MODE:JUMP?", Asked::Module, 1},
    {Setting::ClockState, "SOURCE:CLOCK:STATE?", Asked::Module, 1},
    {Setting::SignalInputPolarity, "SIGNAL:IN:POLARITY?", Asked::Module, 1},
    {Setting::SignalOutPolarity, "SIGNAL:OUT:POLARITY?", Asked::Module, 1},
    {Setting::OutputLevel, "OUTPUT:LEVEL?", Asked::Pod, kAny},
    {Setting::StrobeInhibit, "OUTPUT:STROBE:INHIBIT?", Asked::Pod, 1},
    {Setting::InhibitByData, "OUTPUT:INHIBIT:DATA?", Asked::Pod, 1},
    {Setting::InhibitByEvent, "OUTPUT:INHIBIT:EVENT?", Asked::Pod, 1},
    {Setting::StrobeFormat, "OUTPUT:STROBE:FORMAT?", Asked::Pod, 3},
    {Setting::StrobeEnable, "OUTPUT:STROBE:STATE?", Asked::Pod, 1},
    {Setting::OutputPolarity, "OUTPUT:CLOCK:POLARITY?", Asked::Pod, 1},
    {Setting::CH6OutputMode, "OUTPUT:DATA:MIX?", Asked::Pod, 4},
    {Setting::InputThreshold, "INPUT:POD:THRESHOLD?", Asked::Indexed, kAny},
    {Setting::HighLevel, "OUTPUT:LEVEL:HIGH?", Asked::Indexed, kAny},
    {Setting::LowLevel, "OUTPUT:LEVEL:LOW?", Asked::Indexed, kAny},
    {Setting::SlewRate, "OUTPUT:SLEW?", Asked::Indexed, kAny},
    {Setting::InhibitMask, "OUTPUT:DATA:INHIBIT?", Asked::Indexed, 1},
    {Setting::DataFormat, "OUTPUT:DATA:FORMAT?", Asked::Indexed, 2},
    {Setting::DelayRange, "OUTPUT:DELAY:RANGE?", Asked::Indexed, 3},
    {Setting::Delay, "OUTPUT:DELAY?", Asked::Indexed, kAny},
};

struct WORD {
  std::string_view text;
  double value;
};

constexpr WORD kWords[] = {
    {"OFF", 0},  {"ON", 1},   {"NORM", 0}, {"INV", 1},  {"INT", 0},
    {"EXT", 1},  {"EDGE", 0}, {"LEV", 1},  {"HALF", 0}, {"FULL", 1},
    {"STEP", 1}, {"RZF", 0},  {"NRZ", 0},  {"RZ", 1},   {"R1", 2},
};

std::optional<double> ReadNumber(std::string_view text) {
  double number = 0;
  const bool read =
      ParseNumber(text, number) && std::fabs(number) <= double{std::numeric_limits<float>::max()};
  return read ? std::optional(number) : std::nullopt;
}

std::optional<double> ReadValue(std::string_view text, double most) {
  std::optional<double> value = ReadNumber(text);
  if (most == kAny) return value;
  for (const WORD& word : kWords) {
    if (EqualNoCase(text, word.text)) value = word.value;
  }
  const bool fits = value && *value >= 0 && *value <= most && *value == std::trunc(*value);
  return fits ? value : std::nullopt;
}

// Nothing where the file says nothing.
std::optional<std::string> Ask(const CStubFile& file, int module, std::string_view command) {
  const std::string reply = file.Next(module, command).value_or("");
  const std::string_view text = Trim(reply);
  return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

std::string_view Unquoted(std::string_view text) {
  const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
  return quoted ? text.substr(1, text.size() - 2) : text;
}

void ApplySetting(const CStubFile& file, int module, const SETTING_QUERY& query, char pod,
                  int index, CModuleSettings& settings) {
  const int place = CModuleSettings::Place(query.setting, pod, index);
  if (place < 0) return;
  std::string command(query.command);
  if (query.asked != Asked::Module) command += {' ', pod};
  if (query.asked == Asked::Indexed) command += {',', static_cast<char>('0' + index)};
  const std::optional<std::string> reply = Ask(file, module, command);
  const std::optional<double> value =
      reply ? ReadValue(Unquoted(*reply), query.most) : std::nullopt;
  if (value) settings.Store(query.setting, place, *value);
}

// "MAKER,MODEL,SERIAL,... FVER:n.nn S"
void ApplyIdentification(std::string_view reply, SIMULATED_MODULE& target) {
  constexpr std::string_view kVersion = "FVER:";
  const std::size_t comma = reply.find(',');
  if (comma != std::string_view::npos) {
    const std::string_view model = reply.substr(comma + 1);
    target.model = Trim(model.substr(0, model.find(',')));
  }
  if (const std::size_t version = reply.find(kVersion); version != std::string_view::npos) {
    const std::string_view firmware = reply.substr(version + kVersion.size());
    target.firmware = firmware.substr(0, firmware.find(' '));
  }
}

}  // namespace

void ApplyStubAnswers(const CStubFile& file, int module, SIMULATED_MODULE& target) {
  if (const auto reply = Ask(file, module, "*IDN?")) ApplyIdentification(*reply, target);
  if (const auto reply = Ask(file, module, "SYSTEM:SNUM?")) target.serial = Unquoted(*reply);
  if (const auto reply = Ask(file, module, "SYSTEM:CONFIG:OPT?")) {
    target.option = FoldCase(*reply).find(FoldCase(SIMULATED_OPTION)) != std::string::npos;
  }
  if (const auto reply = Ask(file, module, "SYSTEM:CONFIG:POD?")) target.pods = Unquoted(*reply);
  for (const SETTING_QUERY& query : kQueries) {
    const int pods = query.asked == Asked::Module ? 1 : NUM_PODS;
    const int indexes = query.asked == Asked::Indexed ? NUM_VARIABLE_CHANNELS : 1;
    for (int i = 0; i < pods * indexes; ++i) {
      ApplySetting(file, module, query, static_cast<char>('A' + i / indexes), i % indexes,
                   target.settings);
    }
  }
}

}  // namespace quillpg
