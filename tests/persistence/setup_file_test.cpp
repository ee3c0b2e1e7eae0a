#include "app/setup_stream.h"
#include "base/setup_file_format.h"
#include "hardware/module_manager.h"
#include "persistence/setup_file_walker.h"
#include "support/reference_file.h"
#include "support/saved_system.h"

#include <gtest/gtest.h>

// Whole files that an independent program wrote: read, written, walked, broken.

namespace quillpg {
namespace {

using ByteList = std::vector<std::uint8_t>;

// A reference file, loaded by an engine whose simulated modules have the file's pods and memory.
class CReferenceSystem : public CSavedSystem {
 public:
  explicit CReferenceSystem(const std::string& name) : CSavedSystem(0), file(name) {
    (void)Simulation().SetModules(Modules());
    CModuleManager* modules = nullptr;
    (void)Server().GetModuleManager(&modules);
    (void)modules->Initialize();
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
  std::vector<SIMULATED_MODULE> Modules() const {
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
      visit(Manager(*instrument, &CInstrument::GetGroupManager));
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
Json Expected(const CReferenceFile& file) {
  Json instruments = file.json["instruments"];
  for (Json& instrument : instruments) {
    for (Json& module : instrument["modules"]) {
      for (Json& probe : module["probes"]) {
        if (probe["pod_type"] != 4) probe.erase("variable");
      }
    }
    if (file.json["header"]["program"] == 0) instrument["inhibit_event"] = 0;
  }
  return instruments;
}

void EraseWhatOldFilesLack(Json& instruments) {
  for (Json& instrument : instruments) {
    for (Json& group : instrument["groups"]) group.erase("text");
    for (Json& block : instrument["blocks"]) block.erase("rows");
  }
}

// Floats of the file are given in double precision.
void NarrowFloats(Json& value) {
  if (value.is_number_float()) value = static_cast<float>(value.get<double>());
  if (value.is_structured()) {
    for (Json& part : value) NarrowFloats(part);
  }
}

class SetupFile : public testing::TestWithParam<const char*> {};

TEST_P(SetupFile, IsReadAsDescribedAndWrittenByteForByte) {
  const std::string name = GetParam();
  const bool old = name == "old_version";
  CReferenceSystem system(name);
  const Json& described = system.file.json["instruments"];
  EXPECT_EQ(system.file.json["header"], SectionJson(system.section));
  Json expected = Expected(system.file);
  Json found = Json::array();
  for (int i = 0; const CInstrument* instrument = system.Instrument(i); ++i) {
    found.push_back(InstrumentJson(*instrument));
  }
  if (old) {
    const std::string text = found[0]["groups"][0]["text"];
    EXPECT_EQ(described[0]["groups"][0]["channels"].size(),
              static_cast<std::size_t>(std::ranges::count(text, ',')) + 1)
        << "the texts are made anew";
    EXPECT_FALSE(found[0]["blocks"][0]["rows"].empty()) << "the rows are those of the groups";
    EraseWhatOldFilesLack(expected);
    EraseWhatOldFilesLack(found);
  }
  NarrowFloats(expected);
  NarrowFloats(found);
  EXPECT_EQ(expected, found) << Json::diff(expected, found).dump(1);

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
  const bool same = !old && name != "odd_views" && name != "without_program";
  EXPECT_EQ(same, system.Bytes("original") == system.Bytes("first"));
  EXPECT_TRUE(system.Bytes("first") == system.Bytes("second"));

  if (old) return;  // nobody writes that form
  system.Load("original");
  for (int i = 0; CInstrument* instrument = system.Instrument(i); ++i) {
    (void)instrument->SetInhibitEvent(described[static_cast<std::size_t>(i)]["inhibit_event"]);
  }
  EXPECT_TRUE(system.file.bytes == system.Written());
}

TEST_P(SetupFile, IsWalkedWithoutAModel) {
  const CReferenceFile file(GetParam());
  SETUP_FILE_CONTENTS contents;
  std::uint64_t next = 0;
  const auto follows = [&next](const SETUP_FIELD& field) {
    EXPECT_EQ(next, field.offset) << field.record << " / " << field.name;
    next = field.offset + field.size;
  };
  ASSERT_EQ(S_OK, WalkSetupFile(file.bytes, follows, contents)) << contents.failedField;
  EXPECT_EQ(file.bytes.size(), contents.bytesRead);
  EXPECT_EQ(file.bytes.size(), next);
  Json expected = Json::array();
  for (const Json& instrument : file.json["instruments"]) {
    expected.push_back({instrument["name"], instrument["blocks"].size(),
                        instrument["events"].size(), instrument["modules"].size()});
  }
  Json found = Json::array();
  for (const SETUP_FILE_INSTRUMENT& instrument : contents.instruments) {
    found.push_back(
        {instrument.name, instrument.blocks, instrument.events, instrument.pods.size()});
  }
  EXPECT_EQ(expected, found);
}

TEST_P(SetupFile, BrokenAtAnyByteIsRefusedByTheWalk) {
  const CReferenceFile file(GetParam());
  const std::size_t step = 1 + file.bytes.size() / 5000;
  for (std::size_t length = 0; length < file.bytes.size(); length += step) {
    SETUP_FILE_CONTENTS contents;
    const std::span whole(file.bytes);
    EXPECT_NE(S_OK, WalkSetupFile(whole.first(length), {}, contents)) << length;
    EXPECT_LE(contents.failedOffset, length);
  }
}

INSTANTIATE_TEST_SUITE_P(Reference, SetupFile,
                         testing::Values("minimal", "simple", "two_modules_half", "random_a",
                                         "random_b", "other_pods", "odd_views", "without_program",
                                         "old_version"),
                         [](const auto& row) { return std::string(row.param); });

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
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    const std::string file = system.Folder().Write("cut", whole.substr(0, length));
    const Status status = system.Server().LoadSystem(file);
    // What follows the blocks may fail unseen.
    EXPECT_TRUE(status != S_OK || length > whole.size() / 2);
    EXPECT_EQ(status == S_OK ? file : "", system.SystemFile());
  }
}

// Negative counts, counts beyond the file, in every place that holds one.
TEST(BadSetupFile, LyingCountsEndInAStatus) {
  for (const char* name : {"simple", "random_a"}) {
    CReferenceSystem system(name);
    std::vector<std::uint64_t> places;
    SETUP_FILE_CONTENTS contents;
    const auto collect = [&](const SETUP_FIELD& field) {
      const bool counts = field.name.ends_with("count") && field.name != "module count" &&
                          field.name != "repeat count";  // no lists
      if (counts) places.push_back(field.offset);
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
      }
    }
  }
}

TEST(BadSetupFile, AnyByteChangedEndsInSomeStatus) {
  CReferenceSystem system("simple");
  for (std::size_t i = 0; i < system.file.bytes.size(); ++i) {
    for (const std::uint8_t value : {std::uint8_t{0xFF}, std::uint8_t{0x80}}) {
      ByteList bad = system.file.bytes;
      bad[i] ^= value;
      CSetupFileReader reader(bad);
      (void)system.Read(reader);
    }
  }
}

TEST(FixedSection, RefusesWhatIsNoSetupFile) {
  const std::string product = PRODUCT_NAME;
  const auto bytes = [&](const std::string& identifier) {
    CByteWriter writer;
    FIXED_SECTION section;
    section.productName = identifier;
    section.instruments.resize(1);
    (void)section.Write(writer);
    return ByteList(writer.Written().begin(), writer.Written().end());
  };
  std::string other = product;
  other.back() = 'X';
  ByteList huge = bytes(product);
  huge[product.size() + 1 + 3 * 5 + 8 + 1] = 0x20;  // the instrument count
  const struct Row {
    const char* what;
    ByteList bytes;
    Status status;
    std::string kept;  // of the product name
  } rows[] = {
      {"another letter case", bytes(FoldCase(std::string_view(product))), S_OK,
       FoldCase(std::string_view(product))},
      {"another product", bytes(other), PG_E_NOT_SETUP_FILE, other},
      {"a longer name", bytes(product + "s"), PG_E_NOT_SETUP_FILE, product + "s"},
      {"a shorter name", bytes(product.substr(1)), PG_E_NOT_SETUP_FILE, product.substr(1)},
      {"nothing", {}, PG_E_NOT_SETUP_FILE, ""},
      {"more instruments than any system", huge, E_UNEXPECTED, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    FIXED_SECTION section;
    section.comment = "held";
    CSetupFileReader reader(row.bytes);
    EXPECT_EQ(row.status, section.Read(reader, product));
    EXPECT_EQ(row.kept, section.productName);
    EXPECT_EQ("", section.comment);
  }
}

TEST(FixedSection, TheVersionDecidesTheForm) {
  CEngineFixture engine;  // software 1.1.008
  const struct Row {
    const char* version;
    bool hasNamesAndRows;
    bool rebuildsNames;
  } rows[] = {
      {"1.0.012", false, true}, {"1.0.", false, true},   {"1.0", true, false},
      {"1.1.008", true, false}, {"1.10.1", true, false}, {"", true, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.version);
    const SETUP_FILE_FORM form = FormOfVersion(row.version, PRODUCT_VERSION);
    EXPECT_EQ(row.hasNamesAndRows, form.hasNamesAndRows);
    EXPECT_EQ(row.rebuildsNames, form.rebuildsNames);
  }
  EXPECT_FALSE(FormOfVersion(PRODUCT_VERSION, PRODUCT_VERSION).rebuildsNames)
      << "no file of ours may look old";
}

}  // namespace
}  // namespace quillpg
