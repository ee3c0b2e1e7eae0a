#include "app/setup_stream.h"
#include "app/version_info.h"
#include "base/setup_file_format.h"
#include "persistence/setup_file_walker.h"
#include "support/model_values.h"
#include "support/saved_system.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>

// Whole files that an independent program wrote: read, written, walked, broken.

namespace quillpg {
namespace {

using ByteList = std::vector<std::uint8_t>;
using Leaves = std::vector<std::pair<std::string, Json>>;  // each with its place

void AddLeaves(const Json& json, const std::string& place, Leaves& leaves) {
  if (!json.is_structured()) return (void)leaves.emplace_back(place, json);
  for (const auto& [key, part] : json.items()) AddLeaves(part, place + "/" + key, leaves);
}

// A file of tests/data/setup and what it holds.
struct CReferenceFile {
  explicit CReferenceFile(const std::string& name) {
    const std::string path = std::string(QUILLPG_TEST_DATA) + "/setup/" + name;
    std::ifstream file(path + ".pgs", std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    json = Json::parse(std::ifstream(path + ".json"));
  }
  ByteList bytes;
  Json json;
};

// A reference file, loaded by an engine whose simulated modules have the file's pods and memory.
class CReferenceSystem : public CSavedSystem {
 public:
  explicit CReferenceSystem(const std::string& name) : CSavedSystem(0), file(name) {
    (void)Simulation().SetModules(Described());
    (void)Modules().Initialize();
    (void)Folder().Write("original", {file.bytes.begin(), file.bytes.end()});
    Load("original");
    section = Files().FixedSection();
  }

  void Load(const std::string& name) {
    EXPECT_EQ(S_OK, Files().CanLoadSystemFile(File(name)));
    EXPECT_EQ(S_OK, Server().LoadSystem(File(name)));
  }
  // Reads into the instruments record by record; empty their programs first.
  Status Read(CSetupFileReader& reader) {
    for (int i = 0; CInstrument* instrument = Instrument(i); ++i) CProgramBuilder{*instrument};
    (void)section.Read(reader, PRODUCT_NAME);
    reader.SetForm(FormOfVersion(section.softwareVersion, PRODUCT_VERSION));
    ForRecords([&](auto& part) {
      if constexpr (requires { part.Read(reader, 1); }) {
        (void)part.Read(reader, section.programDataSaved);
      } else {
        (void)part.Read(reader);
      }
    });
    return reader.GetStatus();
  }
  ByteList Written() {
    CByteWriter writer;
    (void)section.Write(writer);
    ForRecords([&writer](const auto& part) { EXPECT_EQ(S_OK, part.Write(writer)); });
    return {writer.Written().begin(), writer.Written().end()};
  }

  CReferenceFile file;
  FIXED_SECTION section;

 private:
  std::vector<SIMULATED_MODULE> Described() const {
    std::vector<SIMULATED_MODULE> modules;
    for (const Json& instrument : file.json["instruments"]) {
      for (const Json& described : instrument["modules"]) {
        SIMULATED_MODULE module;
        module.slot += SIMULATED_MODULE_SLOTS * static_cast<int>(modules.size());
        module.option = file.json["header"]["depths"][modules.size()] > DEFAULT_MEMORY_DEPTH;
        module.pods.clear();
        for (const Json& probe : described["probes"]) {
          const auto type = static_cast<PodType>(probe["pod_type"].get<int>());
          if (!module.pods.empty()) module.pods += ',';
          module.pods += type == PodType::V3Cmos ? "V3_CMOS" : GetDisplayText(type);
        }
        modules.push_back(module);
      }
    }
    return modules;
  }
  template <typename Visit>
  void ForRecords(Visit&& visit) {
    for (int i = 0; CInstrument* instrument = Instrument(i); ++i) {
      const CProgramView program(*instrument);
      visit(*instrument);
      visit(*program.Groups());
      if (section.programDataSaved == 0) continue;
      visit(*program.Blocks());
      visit(*program.Sequence());
      visit(*program.SubSequences());
      visit(*program.Events());
    }
  }
};

// What the reader is to find: settings that only a variable probe has, where there is one; and what
// a file of its kind does not tell.
Leaves Expected(Json json, bool firstRelease) {
  for (Json& instrument : json["instruments"]) {
    for (Json& module : instrument["modules"]) {
      for (Json& probe : module["probes"]) {
        if (probe["pod_type"] != 4) probe.erase("variable");
      }
    }
    if (json["header"]["program"] == 0) instrument["inhibit_event"] = 0;
    for (Json& group : instrument["groups"]) firstRelease&& group.erase("text");
    for (Json& block : instrument["blocks"]) firstRelease&& block.erase("rows");
  }
  Leaves leaves;
  AddLeaves(json, "", leaves);
  return leaves;
}

// Floats of the file are described in double precision.
bool Equal(const Json& a, const Json& b) {
  return a == b || (a.is_number_float() && b.is_number_float() && a.get<float>() == b.get<float>());
}

// "record / field = value" for each field of a file, without those of the names and of the records
// so called; they must follow each other from the first byte to the last.
using NAMES = std::vector<std::string_view>;
std::vector<std::string> Fields(const std::string& text, const NAMES& without) {
  std::vector<std::string> fields;
  std::uint64_t next = 0;
  const auto keep = [&](const SETUP_FIELD& field) {
    EXPECT_EQ(next, field.offset) << field.record << " / " << field.name;
    next = field.offset + field.size;
    if (std::ranges::none_of(without, [&](std::string_view name) {
          return name == field.name || field.record.find(name) != field.record.npos;
        })) {
      fields.push_back(std::string(field.record) + " / " + std::string(field.name) + " = " +
                       field.value);
    }
  };
  SETUP_FILE_CONTENTS contents;
  const ByteList bytes(text.begin(), text.end());
  EXPECT_EQ(S_OK, WalkSetupFile(bytes, keep, contents)) << contents.failedField;
  EXPECT_EQ(bytes.size(), next);
  return fields;
}

struct REFERENCE {
  const char* name;
  NAMES rewritten = {};  // fields that a first save makes anew
};

const REFERENCE kReferences[] = {
    {"minimal"},
    {"simple"},
    {"two_modules_half"},
    {"random_a"},
    {"random_b"},
    {"other_pods"},
    {"odd_views", {"instrument entry"}},
    {"without_program", {"inhibit event"}},
    {"old_version", {"software version", "channel names", "waveform row count", "waveform row"}}};

class SetupFile : public testing::TestWithParam<REFERENCE> {};

TEST_P(SetupFile, IsReadAsDescribedAndWrittenByteForByte) {
  const bool old = std::string_view(GetParam().name) == "old_version";
  CReferenceSystem system(GetParam().name);
  CModelValues found(old);
  found.Add(system.section);
  for (int i = 0; const CInstrument* instrument = system.Instrument(i); ++i) found.Add(*instrument);
  const Leaves expected = Expected(system.file.json, old);
  for (std::size_t i = 0; i < std::min(expected.size(), found.values.size()); ++i) {
    const auto& [place, value] = expected[i];
    ASSERT_TRUE(Equal(value, found.values[i])) << place << ": " << value << found.values[i];
  }
  EXPECT_EQ(expected.size(), found.values.size());

  // Saved again: the same but for the date, or what a second save gives, too.
  const FIXED_SECTION& head = system.section;
  for (const char* next : {"first", "second"}) {
    ASSERT_EQ(S_OK,
              system.Files().SaveSystem(system.File(next), head.comment, head.programDataSaved));
    unsigned long size = 0;
    (void)system.Files().GetSystemSize(size, head.programDataSaved);
    EXPECT_EQ(system.Folder().Text(next).size(), size);
    system.Load(next);
  }
  NAMES rewritten = GetParam().rewritten;
  EXPECT_EQ(rewritten.empty(), system.Bytes("original") == system.Bytes("first"));
  rewritten.push_back("date saved");
  const auto before = Fields(system.Folder().Text("original"), rewritten);
  const auto after = Fields(system.Folder().Text("first"), rewritten);
  const auto [was, is] = std::ranges::mismatch(before, after);
  EXPECT_TRUE(was == before.end() && is == after.end())
      << (was == before.end() ? "" : *was) << " became " << (is == after.end() ? "" : *is);
  EXPECT_TRUE(system.Bytes("first") == system.Bytes("second"));

  if (old) return;  // nobody writes that form
  system.Load("original");
  for (int i = 0; CInstrument* instrument = system.Instrument(i); ++i) {
    (void)instrument->SetInhibitEvent(
        system.file.json["instruments"][static_cast<std::size_t>(i)]["inhibit_event"]);
  }
  EXPECT_TRUE(system.file.bytes == system.Written());
}

TEST_P(SetupFile, BrokenAtAnyByteIsRefusedByTheWalk) {
  const CReferenceFile file(GetParam().name);
  std::set<std::string> fields;
  const auto collect = [&fields](const SETUP_FIELD& field) {
    std::string path(field.record);
    if (!path.empty()) path += " / ";
    fields.insert(path.append(field.name));
  };
  SETUP_FILE_CONTENTS whole;
  ASSERT_EQ(S_OK, WalkSetupFile(file.bytes, collect, whole));
  const std::size_t step = 1 + file.bytes.size() / 5000;
  for (std::size_t length = 0; length < file.bytes.size(); length += step) {
    SETUP_FILE_CONTENTS contents;
    EXPECT_NE(S_OK, WalkSetupFile(std::span(file.bytes).first(length), {}, contents)) << length;
    EXPECT_LE(contents.failedOffset, length);
    EXPECT_EQ(1u, fields.count(contents.failedField)) << contents.failedField;
  }
}

INSTANTIATE_TEST_SUITE_P(Reference, SetupFile, testing::ValuesIn(kReferences),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(BadSetupFile, BrokenAtAnyByteIsRefusedByTheModel) {
  CReferenceSystem system("simple");
  for (std::size_t length = 0; length < system.file.bytes.size(); ++length) {
    CSetupFileReader reader(std::span(system.file.bytes).first(length));
    EXPECT_EQ(PG_E_INSTRUMENT_RECORD, system.Read(reader)) << length;
    EXPECT_LE(reader.FailedOffset(), length);
  }
}

TEST(BadSetupFile, CutAnywhereLoadsOrNamesNoFile) {
  CReferenceSystem system("minimal");
  const std::string whole = system.Folder().Text("original");
  (void)system.Instruments().SetFileName("");
  std::uint64_t blocksEnd = 0;
  const auto find = [&blocksEnd](const SETUP_FIELD& field) {
    if (field.name == "sequence line count") blocksEnd = field.offset;
  };
  SETUP_FILE_CONTENTS contents;
  ASSERT_EQ(S_OK, WalkSetupFile(system.file.bytes, find, contents));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    const std::string file = system.Folder().Write("cut", whole.substr(0, length));
    const Status status = system.Server().LoadSystem(file);
    // What follows the blocks may fail unseen.
    EXPECT_EQ(length >= blocksEnd, status == S_OK);
    EXPECT_EQ(status == S_OK ? file : "", system.SystemFile());
  }
}

// Negative counts, counts beyond the file, in every place that holds one. The walk says where the
// model stopped.
TEST(BadSetupFile, LyingCountsEndInAStatus) {
  for (const char* name : {"simple", "random_a"}) {
    CReferenceSystem system(name);
    std::vector<std::uint64_t> places;
    SETUP_FILE_CONTENTS contents;
    const auto collect = [&](const SETUP_FIELD& field) {
      const bool counts = field.name.ends_with("count") && field.name != "module count" &&
                          field.name != "repeat count";  // no lists
      const bool measures = field.name == "block size" || field.name == "block width";
      if (counts || measures) places.push_back(field.offset);
    };
    (void)WalkSetupFile(system.file.bytes, collect, contents);
    ASSERT_GE(places.size(), 10U);
    for (const std::uint64_t place : places) {
      for (const std::uint32_t lie : {0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 0x00FFFFFFU}) {
        SCOPED_TRACE(std::to_string(lie) + " at " + std::to_string(place));
        ByteList bad = system.file.bytes;
        for (std::size_t i = 0; i < 4; ++i) {
          bad[place + i] = static_cast<std::uint8_t>(lie >> (8 * i));
        }
        CSetupFileReader reader(bad);
        EXPECT_EQ(PG_E_INSTRUMENT_RECORD, system.Read(reader));
        EXPECT_NE(S_OK, WalkSetupFile(bad, {}, contents));
        EXPECT_EQ(place, contents.failedOffset) << contents.failedField;
        EXPECT_EQ(place, reader.FailedOffset());
      }
    }
  }
}

TEST(FixedSection, TheVersionDecidesTheForm) {
  const std::tuple<const char*, bool, bool> rows[] = {
      // Version, has texts and rows, has its texts made anew; the engine's own is 1.1.008.
      {"1.0.012", false, true}, {"1.0.", false, true},   {"1.0", true, false},
      {"1.1.008", true, false}, {"1.10.1", true, false}, {"", true, false}};
  for (const auto& [version, hasNamesAndRows, rebuildsNames] : rows) {
    const SETUP_FILE_FORM form = FormOfVersion(version, PRODUCT_VERSION);
    EXPECT_EQ(hasNamesAndRows, form.hasNamesAndRows) << version;
    EXPECT_EQ(rebuildsNames, form.rebuildsNames) << version;
  }
}

}  // namespace
}  // namespace quillpg
