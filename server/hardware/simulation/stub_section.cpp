#include "hardware/simulation/stub_section.h"

#include "base/text.h"
#include "hardware/simulation/simulated_identity.h"
#include "quillpg/engine_types.h"

#include <array>

namespace quillpg {
namespace {

constexpr std::string_view kPods = "ABCD";
constexpr int kExpansionAddress = 255;

// Not the serial number that SYSTEM:SNUM? answers, as it is with the modules themselves.
constexpr std::string_view kIdentityTail = ",AA123455,SCPI:94.0 FVER:0.17 S";

// --- the module as a whole: one reply, or one for each pod ---

struct MODULE_REPLY {
  std::string_view command;
  std::array<std::string_view, 4> replies;
};

constexpr MODULE_REPLY kModuleReplies[] = {
    {"*OPC?", {"1"}},
    {"EVENT:FILTER?", {"0"}},
    {"EVENT:INHIBIT?", {"0"}},
    {"EVENT:MODE:ADVANCE?", {"LEV"}},
    {"EVENT:MODE:JUMP?", {"LEV"}},
    {"INPUT:CLOCK:THRESHOLD?", {"0.0"}},
    {"OUTPUT:ZONS?", {"0"}},
    {"OUTPUT:INHIBIT:DATA?", {"0", "0", "0", "0"}},
    {"OUTPUT:INHIBIT:EVENT?", {"0", "0", "0", "0"}},
    {"OUTPUT:LEVEL?", {"5.0", "5.0", "5.0", "5.0"}},
    {"OUTPUT:STROBE:FORMAT?", {"RZF", "RZF", "RZF", "RZF"}},
    {"OUTPUT:STROBE:INHIBIT?", {"0", "0", "0", "0"}},
    {"OUTPUT:STROBE:STATE?", {"ON", "ON", "OFF", "OFF"}},
    {"SIGNAL:IN:SOURCE?", {"OFF"}},
    {"SIGNAL:IN:POLARITY?", {"NORM"}},
    {"SIGNAL:OUT:DESTINATION?", {"OFF"}},
    {"SIGNAL:OUT:POLARITY?", {"NORM"}},
    {"SOURCE:CLOCK:MODE?", {"INT"}},
    {"SOURCE:CLOCK:DESKEW?", {"0"}},
    {"SOURCE:CLOCK:PERIOD?", {"1.0000E-04"}},
    {"SOURCE:CLOCK:POLARITY?", {"NORM"}},
    {"SOURCE:CLOCK:STATE?", {"ON"}},
    {"SYSTEM:ERR?", {"\"0, No Error\""}},
    {"SYSTEM:CONFIG:CHAN:MOD?", {"FULL"}},
    {"SYSTEM:CONFIG:RMOD?", {"NORM"}},
    {"SYSTEM:CONFIG:WELD:MODE?", {"MAST"}},
    {"SYSTEM:SNUM?", {SIMULATED_SERIAL}},
    {"STATUS:SEQ?", {"IDL"}},
    {"STATUS:VXIS:MODE?", {"0"}},
    {"TEST:CONN:VTC", {"1"}},
    {"TEST:CONN:WELD", {"1"}},
    {"TEST:CAT:SELF?",
     {"\"2000,2100,2101,2102,2103,2104,2200,2201,2202,2203,2204,2205,2206,2207,2300,2301,2302,"
      "2303,2305,2400,2500,2600,2700\""}},
    {"TEST:CAT:POST?", {"\"2900,2100,2102,2104,2200,2201,2202,2205,2207,2300,2302,2305\""}},
    {"TEST:RUNNING?", {"0"}},
};

// --- results of the self tests ---

constexpr std::string_view kResultCommand = "TEST:RESULT:NUMB?";

// Some of these tests are in none of the catalogues above.
constexpr int kTests[] = {2000, 2100, 2101, 2102, 2103, 2104, 2200, 2201, 2202,
                          2203, 2204, 2205, 2206, 2207, 2300, 2301, 2302, 2303,
                          2305, 2400, 2401, 2500, 2501, 2502, 2600, 2700, 2900};

// Tests that answer for others; each other one answers that it passed.
struct GROUP_RESULT {
  int test;
  std::string_view result;
};

constexpr GROUP_RESULT kGroupResults[] = {
    {2000,
     "2000 PASS,2100 PASS,2200 PASS,2300 PASS,2400 PASS,2500 PASS,2600 PASS,"
     "2700 PASS"},
    {2100, "2100 PASS,2101 PASS,2102 PASS,2103 PASS,2104 PASS"},
    {2200,
     "2200 PASS,2201 PASS,2202 PASS,2203 PASS,2204 PASS,2205 PASS,2206 PASS,"
     "2207 PASS"},
    {2300, "2300 PASS,2301 PASS,2302 PASS,2303 PASS,2305 PASS"},
    {2900, "2900 MIX, 2101 PASS, 2102 PASS, 2201 PASS, 2501 PASS"},
};

// --- one pod: replies by number from `first` on; -1: one reply without a number ---

struct POD_REPLY {
  std::string_view command;
  int first;
  std::array<std::string_view, 4> replies;
};

constexpr POD_REPLY kPodReplies[] = {
    {"INPUT:POD:THRESHOLD?", 0, {"2.0", "-2.0"}},
    {"OUTPUT:CLOCK:POLARITY?", -1, {"INV"}},
    {"OUTPUT:LEVEL:HIGH?", 0, {"2.0", "2.5", "3.0", "3.5"}},
    {"OUTPUT:LEVEL:LOW?", 0, {"-2.0", "-2.5", "-1.0", "-1.25"}},
    {"OUTPUT:SLEW?", 0, {"1.0", "1.25", "1.5", "1.75"}},
    {"OUTPUT:DATA:INHIBIT?", 1, {"ON", "OFF"}},
    {"OUTPUT:DATA:FORMAT?", 1, {"RZ", "R1"}},
    {"OUTPUT:DATA:MIX?", -1, {"0"}},
    {"OUTPUT:DELAY:RANGE?", 1, {"2", "1"}},
    {"OUTPUT:DELAY?", 1, {"1.0000E-04", "2.0000E-04"}},
};

// --- lines ---

void AppendReply(std::string_view command, std::string_view reply, std::string& text) {
  text.append(">").append(command).append("<>").append(reply).append(">\n");
}

void AppendRule(std::string& text) {
  text += '#';
  text.append(70, '-') += '\n';
}

void AppendTitle(std::string_view model, std::string_view kind, std::string& text) {
  AppendRule(text);
  text.append("# ").append(model).append(kind).append("\n");
  AppendRule(text);
}

void AppendInfoLine(Device device, int slot, int address, std::string& text) {
  for (const int field :
       {static_cast<int>(Manufacturer::Quillmark), static_cast<int>(device), slot, address}) {
    AppendNumber(text, field);
    text += ' ';
  }
  text += "V\n\n";
}

void AppendModuleReplies(std::string& text) {
  for (const MODULE_REPLY& row : kModuleReplies) {
    const bool perPod = !row.replies[1].empty();
    for (std::size_t pod = 0; pod < (perPod ? kPods.size() : 1); ++pod) {
      std::string command(row.command);
      if (perPod) command.append(" ") += kPods[pod];
      AppendReply(command, row.replies[pod], text);
    }
  }
}

void AppendTestResults(std::string& text) {
  for (const int test : kTests) {
    const std::string number = std::to_string(test);
    std::string result = number + " PASS";
    for (const GROUP_RESULT& group : kGroupResults) {
      if (group.test == test) result = group.result;
    }
    AppendReply(std::string(kResultCommand) + " " + number, "\"" + result + "\"", text);
  }
}

void AppendPodReplies(char pod, std::string& text) {
  for (const POD_REPLY& row : kPodReplies) {
    int number = row.first;
    for (const std::string_view reply : row.replies) {
      if (reply.empty()) break;
      std::string command = std::string(row.command) + " " + pod;
      if (number >= 0) command += "," + std::to_string(number++);
      AppendReply(command, reply, text);
    }
  }
}

}  // namespace

void AppendPatternGeneratorSection(const STUB_SECTION& section, std::string& text) {
  AppendTitle(SIMULATED_MODEL_NAME, " Pattern Generator Module", text);
  text += "# manufacturerID modelCode slot logicalAddr\n";
  AppendInfoLine(Device::PatternGenerator, section.slot, section.logicalAddress, text);
  text += "[TERMINATION LF]\n";
  std::string identity = "QUILLMARK,";
  identity.append(SIMULATED_MODEL_NAME).append(kIdentityTail);
  AppendReply("*IDN?", identity, text);
  AppendModuleReplies(text);
  AppendTestResults(text);
  AppendReply("SYSTEM:CONFIG:OPT?", section.option ? SIMULATED_OPTION : "STD", text);
  AppendReply("SYSTEM:CONFIG:POD?", "\"" + std::string(section.pods) + "\"", text);
  text += '\n';
  for (const char pod : kPods) AppendPodReplies(pod, text);
}

void AppendExpansionSection(int slot, std::string& text) {
  AppendTitle(SIMULATED_EXPANSION_NAME, " Expansion Interface Module", text);
  AppendInfoLine(Device::Expansion, slot, kExpansionAddress, text);
}

}  // namespace quillpg
