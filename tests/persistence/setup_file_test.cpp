#include "app/setup_stream.h"
#include "base/setup_file_format.h"
#include "hardware/simulation/simulation_control.h"
#include "persistence/setup_file_walker.h"
#include "support/instrument_fixture.h"
#include "support/model_json.h"
#include "support/reference_file.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

// Reading and writing whole files against those that an independent program wrote.

namespace quillpg {
namespace {

using Bytes = std::vector<std::uint8_t>;

std::string_view PodKeyword(int type) {
  const auto pod = static_cast<PodType>(type);
  return pod == PodType::V3Cmos ? "V3_CMOS" : GetDisplayText(pod);
}

// Instruments over simulated modules that have the pods of the file's, filled record by record.
class CFileReading : public CEngineFixture {
 public:
  explicit CFileReading(const CReferenceFile& file)
      : CEngineFixture(static_cast<int>(file.json["header"]["depths"].size())) {
    int next = 0;
    for (const Json& described : file.json["instruments"]) {
      auto& instrument = instruments.emplace_back(std::make_unique<CInstrument>());
      (void)instrument->Initialize();
      for (const Json& module : described["modules"]) {
        PlugPods(next, module["probes"]);
        (void)instrument->AddModule(&Module(next++));
      }
    }
  }
  ~CFileReading() { instruments.clear(); }

  Status Read(CSetupFileReader& reader) {
    (void)section.Read(reader, PRODUCT_NAME);
    reader.SetForm(FormOfVersion(section.softwareVersion, PRODUCT_VERSION));
    for (const auto& instrument : instruments) {
      (void)instrument->Read(reader, section.programDataSaved);
      (void)Manager(*instrument, &CInstrument::GetGroupManager).Read(reader);
      if (section.programDataSaved != 0) {
        ForProgram(*instrument, [&reader](auto& manager) { (void)manager.Read(reader); });
      }
    }
    return reader.GetStatus();
  }

  void Write(CByteWriter& writer) {
    (void)section.Write(writer);
    for (const auto& instrument : instruments) {
      EXPECT_EQ(S_OK, instrument->Write(writer));
      EXPECT_EQ(S_OK, Manager(*instrument, &CInstrument::GetGroupManager).Write(writer));
      if (section.programDataSaved != 0) {
        ForProgram(*instrument,
                   [&writer](auto& manager) { EXPECT_EQ(S_OK, manager.Write(writer)); });
      }
    }
  }

  void EmptyPrograms() {
    for (const auto& instrument : instruments) {
      ForProgram(*instrument, [](auto& manager) { (void)manager.DeleteAll(); });
    }
  }

  FIXED_SECTION section;
  std::vector<std::unique_ptr<CInstrument>> instruments;

 private:
  template <typename Visit>
  static void ForProgram(CInstrument& instrument, Visit&& visit) {
    visit(Manager(instrument, &CInstrument::GetBlockManager));
    visit(Manager(instrument, &CInstrument::GetSequenceManager));
    visit(Manager(instrument, &CInstrument::GetSubSequenceManager));
    visit(Manager(instrument, &CInstrument::GetEventManager));
  }

  void PlugPods(int module, const Json& probes) {
    std::string pods;
    for (const Json& probe : probes) {
      if (!pods.empty()) pods += ',';
      pods += PodKeyword(probe["pod_type"]);
    }
    Simulation().Module(module)->pods = pods;
    (void)Module(module).Initialize();
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
  const CReferenceFile file(GetParam());
  CFileReading reading(file);
  CSetupFileReader reader(file.bytes);
  ASSERT_EQ(S_OK, reading.Read(reader)) << reader.FailedField() << " at " << reader.FailedOffset();
  EXPECT_EQ(0U, reader.Remaining());
  EXPECT_EQ(file.json["header"], SectionJson(reading.section));

  const bool old = std::string(GetParam()) == "old_version";
  Json expected = Expected(file);
  Json found = Json::array();
  for (const auto& instrument : reading.instruments) found.push_back(InstrumentJson(*instrument));
  if (old) {
    const std::string text = found[0]["groups"][0]["text"];
    EXPECT_EQ(file.json["instruments"][0]["groups"][0]["channels"].size(),
              static_cast<std::size_t>(std::ranges::count(text, ',')) + 1)
        << "the texts are made anew";
    EXPECT_FALSE(found[0]["blocks"][0]["rows"].empty()) << "the rows are those of the groups";
    EraseWhatOldFilesLack(expected);
    EraseWhatOldFilesLack(found);
  }
  NarrowFloats(expected);
  NarrowFloats(found);
  EXPECT_EQ(expected, found) << Json::diff(expected, found).dump(1);
  if (old) return;  // nobody writes that form

  for (std::size_t i = 0; i < reading.instruments.size(); ++i) {
    EXPECT_EQ(S_OK, reading.instruments[i]->SetInhibitEvent(
                        file.json["instruments"][i]["inhibit_event"]));
  }
  CByteWriter writer;
  reading.Write(writer);
  const Bytes written(writer.Written().begin(), writer.Written().end());
  EXPECT_TRUE(file.bytes == written);

  std::uint64_t size = reading.section.GetSize();
  for (const auto& instrument : reading.instruments) {
    unsigned long part = 0;
    (void)instrument->GetSize(part, reading.section.programDataSaved);
    size += part;
  }
  EXPECT_EQ(file.bytes.size(), size);
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
  ASSERT_EQ(file.json["instruments"].size(), contents.instruments.size());
  for (std::size_t i = 0; i < contents.instruments.size(); ++i) {
    const Json& described = file.json["instruments"][i];
    const SETUP_FILE_INSTRUMENT& found = contents.instruments[i];
    EXPECT_EQ(described["name"], found.name);
    EXPECT_EQ(described["blocks"].size(), static_cast<std::size_t>(found.blocks));
    EXPECT_EQ(described["events"].size(), static_cast<std::size_t>(found.events));
    ASSERT_EQ(described["modules"].size(), found.pods.size());
    for (std::size_t m = 0; m < found.pods.size(); ++m) {
      for (std::size_t pod = 0; pod < NUM_PODS; ++pod) {
        EXPECT_EQ(described["modules"][m]["probes"][pod]["pod_type"],
                  static_cast<int>(found.pods[m][pod]));
      }
    }
  }
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
  const CReferenceFile file("simple");
  CFileReading reading(file);
  for (std::size_t length = 0; length < file.bytes.size(); ++length) {
    CSetupFileReader reader(std::span(file.bytes).first(length));
    EXPECT_EQ(PG_E_INSTRUMENT_RECORD, reading.Read(reader)) << length;
    EXPECT_LE(reader.FailedOffset(), length);
    reading.EmptyPrograms();
  }
}

// Negative counts, counts beyond the file and counts off by one, in every place that holds one.
TEST(BadSetupFile, LyingCountsEndInAStatus) {
  for (const char* name : {"simple", "random_a"}) {
    const CReferenceFile file(name);
    struct PLACE {
      std::uint64_t offset;
      std::string name;
    };
    std::vector<PLACE> places;
    SETUP_FILE_CONTENTS contents;
    (void)WalkSetupFile(
        file.bytes,
        [&](const SETUP_FIELD& field) {
          const bool counts = field.name.ends_with("count") && field.name != "module count" &&
                              field.name != "repeat count";  // no lists
          if (counts) places.push_back({field.offset, std::string(field.name)});
        },
        contents);
    ASSERT_GE(places.size(), 10U);
    CFileReading reading(file);
    for (const PLACE& count : places) {
      for (const std::uint32_t lie : {0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 0x00FFFFFFU}) {
        SCOPED_TRACE(count.name + " at " + std::to_string(count.offset));
        Bytes bad = file.bytes;
        for (std::size_t i = 0; i < 4; ++i) {
          bad[count.offset + i] = static_cast<std::uint8_t>(lie >> (8 * i));
        }
        CSetupFileReader reader(bad);
        EXPECT_EQ(PG_E_INSTRUMENT_RECORD, reading.Read(reader));
        reading.EmptyPrograms();
        EXPECT_NE(S_OK, WalkSetupFile(bad, {}, contents));
      }
    }
  }
}

TEST(BadSetupFile, AnyByteChangedEndsInSomeStatus) {
  const CReferenceFile file("simple");
  CFileReading reading(file);
  for (std::size_t i = 0; i < file.bytes.size(); ++i) {
    for (const std::uint8_t value : {std::uint8_t{0xFF}, std::uint8_t{0x80}}) {
      Bytes bad = file.bytes;
      bad[i] ^= value;
      CSetupFileReader reader(bad);
      (void)reading.Read(reader);
      reading.EmptyPrograms();
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
    return Bytes(writer.Written().begin(), writer.Written().end());
  };
  std::string upper = product;
  for (char& c : upper) c = static_cast<char>(std::toupper(c));
  std::string other = product;
  other.back() = 'X';
  Bytes huge = bytes(product);
  huge[product.size() + 1 + 3 * 5 + 8 + 1] = 0x20;  // the instrument count
  const struct Row {
    const char* what;
    Bytes bytes;
    Status status;
    std::string kept;  // of the product name
  } rows[] = {
      {"another letter case", bytes(upper), S_OK, upper},
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
