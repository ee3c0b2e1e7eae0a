#include "persistence/file_manager.h"

#include "persistence/fixed_section.h"
#include "support/failing_allocation.h"
#include "support/saved_system.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace quillpg {
namespace {

using testing::ElementsAre;

// --- round trips ---

TEST(FileManager, SystemComesBackAsItWas) {
  CSavedSystem system(3);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "a comment", 1));
  EXPECT_EQ(system.File(), system.SystemFile());
  EXPECT_THAT(system.Router().percents,
              ElementsAre(0, 25, 50, 75, 100, 0, 25, 50, 75, 100, 0, 25, 50, 75, 100));
  EXPECT_THAT(system.Router().status, ElementsAre("Saving File. Please wait...", ""));
  const std::string saved = system.Bytes();

  (void)system.Server().DefaultSystem();
  ASSERT_EQ("11111111", system.Data(2));
  ASSERT_EQ(S_OK, system.Server().LoadSystem(system.File()));
  EXPECT_EQ(30U, system.Router().percents.size());
  EXPECT_EQ("s" + std::string(15, '%') + "s" + std::string(15, '%'), system.Router().order);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(CSavedSystem::DataOf(i), system.Data(i)) << i;
  EXPECT_EQ(0, Ask(system.Instruments(), &CInstrumentManager::GetCurrentInst));
  ASSERT_EQ(S_OK, system.Server().SaveSystem(1));  // by the name and comment that were loaded
  EXPECT_EQ(saved, system.Bytes());
  EXPECT_THAT(system.Folder().Names(), ElementsAre("system.pgs"));
  EXPECT_EQ(0, system.Host().cursorDepth);
}

TEST(FileManager, WithoutProgramsSettingsAndGroupsAlone) {
  CSavedSystem system;
  const std::string comment(200'000, 'c');  // the head may be long
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), comment, 0));
  EXPECT_THAT(system.Router().percents, ElementsAre(0));
  EXPECT_EQ(0, system.Files().IsProgramDataSaved());
  const std::string groups = system.Counts(0).substr(0, 2);
  ASSERT_EQ(S_OK, system.Server().LoadSystem(system.File()));
  EXPECT_THAT(system.Router().percents, ElementsAre(0, 0, 25, 50, 75, 100));
  EXPECT_EQ(groups + "0/0/0/0", system.Counts(0));
  PREVIEW_INFO info;
  (void)system.Files().Preview(system.File(), info);
  EXPECT_EQ(comment, info.comment);
}

TEST(FileManager, ModuleFileHoldsOneInstrument) {
  CSavedSystem system(3);
  std::string file = system.File("module.pgs");
  (void)system.Instruments().SetCurrentInst(1);
  std::string comment = "of one";
  ASSERT_EQ(S_OK, system.Server().SaveModule(file, comment, 1));
  EXPECT_EQ("", system.SystemFile());
  EXPECT_EQ(file, Ask(*system.Instrument(1), &CInstrument::GetFileName));
  unsigned long size = 0;
  EXPECT_EQ(S_OK, system.Files().GetCurrentInstSize(size, 1));
  EXPECT_EQ(system.Folder().Text("module.pgs").size(), size);
  EXPECT_EQ(1U, system.Files().FixedSection().memoryDepths.size());

  // Into the third instrument, which keeps its name and takes the file's.
  (void)system.Instruments().SetCurrentInst(2);
  ASSERT_EQ(S_OK, system.Server().LoadModule(file, "pg 2"));
  EXPECT_EQ("PG 3", system.Name(2));
  EXPECT_EQ(CSavedSystem::DataOf(1), system.Data(2));
  EXPECT_EQ(file, Ask(*system.Instrument(2), &CInstrument::GetFileName));
  EXPECT_THAT(system.Router().status,
              ElementsAre("Reading the file " + file + ". Please wait...", ""));
  EXPECT_EQ("%%%%%s%%%%%s", system.Router().order);
  EXPECT_EQ(0, system.Host().cursorDepth);
}

TEST(FileManager, LoadModuleStepsOverTheOthers) {
  CSavedSystem system(3);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "", 1));
  (void)system.Instruments().SetFileName("other.pgs");
  ASSERT_EQ(S_OK, system.Files().LoadModule(system.File(), "PG 3", system.Instrument(0)));
  EXPECT_EQ(CSavedSystem::DataOf(2), system.Data(0));
  EXPECT_EQ(CSavedSystem::DataOf(1), system.Data(1));
  EXPECT_EQ("PG 1", system.Name(0));
  EXPECT_EQ("", Ask(*system.Instrument(0), &CInstrument::GetFileName))
      << "a file of several instruments names none";
  EXPECT_EQ(0, CFileManager::IsLoadModuleEnabled());

  // A search that fails leaves its mark, which must not keep a later load from the data.
  EXPECT_EQ(S_OK, system.Files().LoadModule(system.File(), "PG 4", system.Instrument(1)));
  EXPECT_EQ(1, CFileManager::IsLoadModuleEnabled());
  EXPECT_EQ(CSavedSystem::DataOf(1), system.Data(1));
  EXPECT_EQ(S_OK, system.Server().LoadSystem(system.File()));
  EXPECT_EQ(CSavedSystem::DataOf(0), system.Data(0));
  EXPECT_EQ(0, CFileManager::IsLoadModuleEnabled());
}

TEST(FileManager, DataWindowLoadsTheNamedInstrumentWhole) {
  CSavedSystem system(3);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "kept", 1));
  (void)system.Instruments().SetComment("held");
  ASSERT_EQ(S_OK, system.Files().LoadDataWindow(system.File(), "pg 2"));
  EXPECT_EQ("4/1/2/1/1", system.Counts(0));
  EXPECT_EQ("????????", system.Data(0)) << "stepped over";
  EXPECT_EQ(CSavedSystem::DataOf(1), system.Data(1));
  EXPECT_EQ("0/0/0/0/0", system.Counts(2)) << "never read";
  EXPECT_EQ(-1, Ask(system.Instruments(), &CInstrumentManager::GetCurrentInst));
  EXPECT_EQ("held", Ask(system.Instruments(), &CInstrumentManager::GetComment));
  EXPECT_EQ("", system.Router().status.back());
}

// --- looking at files ---

TEST(FileManager, TellsWhatItCannotOpen) {
  CSavedSystem system;
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "  told \t", 1));
  const std::string whole = system.Folder().Text("system.pgs");
  const struct {
    const char* name;
    std::string text;
    Status status;
  } rows[] = {
      {"whole", whole, S_OK},
      {"another letter case", "q" + whole.substr(1), S_OK},
      {"empty", "", PG_E_NOT_SETUP_FILE},
      {"short", whole.substr(0, 10), PG_E_NOT_SETUP_FILE},
      {"other product", "X" + whole.substr(1), PG_E_NOT_SETUP_FILE},
      {"a longer name", whole.substr(0, 27) + "s" + whole.substr(27), PG_E_NOT_SETUP_FILE},
      {"large and strange", std::string(1'000'000, 'x'), PG_E_NOT_SETUP_FILE},
      {"head cut", whole.substr(0, 50), E_UNEXPECTED},
      {"head cut, large", whole.substr(0, 28) + std::string(1'000'000, '\x7f'), E_UNEXPECTED},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string file = system.Folder().Write("looked at", row.text);
    system.Host().boxes.clear();
    EXPECT_EQ(row.status, system.Files().IsPGFile(file));
    EXPECT_EQ(row.status == E_UNEXPECTED ? 1U : 0U, system.Host().boxes.size());
    PREVIEW_INFO info{"before"};
    EXPECT_EQ(S_OK, system.Files().Preview(file, info));
    EXPECT_EQ(row.status == S_OK ? "told" : "", info.comment);
    std::vector<std::string> names{"before"};
    int modules = -1;
    EXPECT_EQ(row.status, system.Files().GetModuleList(file, names, modules));
    EXPECT_EQ(row.status == S_OK, modules == 1 && names == std::vector<std::string>{"PG 1"});
    EXPECT_TRUE(row.status == S_OK || (modules == 0 && names.empty()));
    EXPECT_EQ(row.status, system.Server().LoadSystem(file));
    EXPECT_EQ(CSavedSystem::DataOf(0), system.Data(0)) << "loaded, or not replaced";
  }
  EXPECT_EQ(PG_E_FILE_MISSING, system.Files().IsPGFile(system.File("none")));
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, system.Files().IsPGFile(system.Folder().Path().string()));
  ASSERT_EQ(0, mkfifo(system.File("pipe").c_str(), 0600));
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, system.Files().IsPGFile(system.File("pipe"))) << "nobody writes";
}

TEST(FileManager, ChecksWhetherASystemFits) {
  CTemporaryFolder folder;
  for (const bool option : {false, true}) {
    CSavedSystem system(2, option);
    const std::string kind = option ? "deep" : "flat";
    ASSERT_EQ(S_OK, system.Files().SaveSystem(folder.File(kind), "", 0));
    CInstrument* second = system.Instrument(1);
    ASSERT_EQ(S_OK, system.Files().SaveModule(folder.File(kind + " module"), "", 1, second, 0));
  }
  const struct {
    const char* file;
    int modules;
    bool option;
    Status system;
    Status second;  ///< "PG 2" into the first instrument
  } rows[] = {
      {"flat", 2, true, S_OK, S_OK},
      {"deep", 2, false, PG_E_MEMORY_DEPTH, PG_E_MEMORY_DEPTH},
      {"deep", 2, true, S_OK, S_OK},
      {"flat", 1, false, PG_E_MODULE_COUNT, S_OK},
      {"deep", 1, false, PG_E_MODULE_COUNT, S_OK},  // no module at the file's second position
      {"flat module", 1, false, PG_E_NOT_SETUP_FILE, S_OK},
      {"deep module", 1, false, PG_E_NOT_SETUP_FILE, PG_E_MEMORY_DEPTH},
      {"flat", 0, false, E_FAIL, E_FAIL},
      {"none", 1, false, PG_E_FILE_MISSING, PG_E_FILE_MISSING},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.file << ", " << row.modules << " modules");
    CSavedSystem system(row.modules, row.option);
    EXPECT_EQ(row.system, system.Files().CanLoadSystemFile(folder.File(row.file)));
    CInstrument* first = system.Instrument(0);
    EXPECT_EQ(row.second, system.Files().CanLoadModuleFile(folder.File(row.file), "pg 2", first));
  }
  CInstrumentFixture wide(2);
  CFileManager* files = Find(wide.Server(), &CAppServer::GetFileManager);
  EXPECT_EQ(PG_E_INSTRUMENT_MODULES,
            files->CanLoadModuleFile(folder.File("flat"), "PG 2", &wide.Instrument()));
  EXPECT_EQ(E_FAIL, files->CanLoadModuleFile(folder.File("flat"), "PG 9", &wide.Instrument()));
}

TEST(FileManager, LoadFlagTurnsTheChecksOff) {
  CSavedSystem system;
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "", 0));
  const std::string none = system.File("none");
  const struct {
    int flag;
    Status system, module;
  } rows[] = {
      {1, S_OK, S_OK}, {2, S_OK, PG_E_FILE_MISSING}, {0, PG_E_FILE_MISSING, PG_E_FILE_MISSING}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.flag);
    ASSERT_EQ(S_OK, system.Files().LoadSystem(system.File(), row.flag));
    EXPECT_EQ(PG_E_FILE_MISSING, system.Files().LoadSystem(none, 5)) << "stores nothing";
    EXPECT_EQ(row.system, system.Files().CanLoadSystemFile(none));
    EXPECT_EQ(row.module, system.Files().CanLoadModuleFile(none, "", system.Instrument(0)));
  }
}

// --- failures ---

TEST(FileManager, FailedLoadLeavesNoFileToSaveTo) {
  CSavedSystem system(2);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "", 1));
  const std::string whole = system.Folder().Text("system.pgs");
  const std::string cut = system.Folder().Write("cut", whole.substr(0, whole.size() / 2));
  EXPECT_EQ(PG_E_INSTRUMENT_RECORD, system.Server().LoadSystem(cut));
  EXPECT_EQ(2, Ask(system.Instruments(), &CInstrumentManager::GetNoOfInstruments));
  EXPECT_EQ("", system.SystemFile());
  EXPECT_EQ(E_FAIL, system.Server().SaveSystem(1));
  EXPECT_EQ(S_OK, system.Server().LoadSystem(system.File()));

  // Fewer modules than the file has: the instrument that lacks one cannot be read.
  ASSERT_EQ(S_OK, system.Simulation().SetModules(1));
  ASSERT_EQ(S_OK, system.Modules().Initialize());
  EXPECT_EQ(PG_E_INSTRUMENT_RECORD, system.Server().LoadSystem(system.File()));
  EXPECT_EQ(CSavedSystem::DataOf(0), system.Data(0));
}

TEST(FileManager, RefusedSaveLeavesFileAndModelAlone) {
  CSavedSystem system(2);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "", 1));
  const std::string before = system.Folder().Text("system.pgs");
  CInstrument stranger;
  CInstrument* known = system.Instrument(0);
  const std::string file = system.File();
  EXPECT_EQ(E_FAIL, system.Files().SaveModule(file, "", 0, nullptr, 1));
  EXPECT_EQ(E_FAIL, system.Files().SaveModule(file, "", 0, &stranger, 1));
  EXPECT_EQ(E_FAIL, system.Files().SaveModule(file, "", 2, known, 1));
  EXPECT_EQ(E_FAIL, system.Files().SaveInstrument(known)) << "no file is open";
  EXPECT_EQ(E_FAIL, system.Files().LoadInstrument(known));
  EXPECT_EQ(E_FAIL, system.Files().SaveSystem("/dev/full", "", 1));
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, system.Files().SaveSystem(system.File("none/a"), "", 1));
  std::string folder = system.Folder().Path().string();
  std::string comment = "not taken";
  EXPECT_EQ(E_FAIL, system.Server().SaveSystem(folder, comment, 1));
  EXPECT_EQ("", Ask(system.Instruments(), &CInstrumentManager::GetComment));
  EXPECT_EQ(file, system.SystemFile());
  EXPECT_EQ(before, system.Folder().Text("system.pgs"));
  EXPECT_EQ("", system.Router().status.back());
  EXPECT_EQ(0, system.Host().cursorDepth);
}

TEST(FileManager, OutOfMemoryLosesNeitherFileNorName) {
  CSavedSystem system(2);
  CMessageRouter router;  // the recording one allocates
  const std::string file = system.File();
  const std::string comment = "new";
  (void)system.Server().SetMessageRouter(&router);
  CFileManager& files = system.Files();
  ASSERT_EQ(S_OK, files.SaveSystem(system.File("old"), "old", 0));
  ASSERT_EQ(S_OK, files.SaveSystem(system.File("new"), "new", 1));
  ASSERT_EQ(S_OK, files.SaveSystem(file, comment, 1));
  const std::string images[] = {system.Bytes("old"), system.Bytes("new")};
  bool hit = true;
  for (long position = 0; hit; ++position) {
    SCOPED_TRACE(position);
    (void)system.Folder().Write("system.pgs", images[0]);
    Status status = S_OK;
    {
      const CFailingAllocation failing(position);
      status = files.SaveSystem(file, comment, 1);
      hit = failing.Hit();
    }
    EXPECT_TRUE(system.Bytes() == images[status == S_OK ? 1 : 0]);
    EXPECT_EQ(3U, system.Folder().Names().size());
    EXPECT_EQ(E_FAIL, files.SaveInstrument(system.Instrument(0))) << "the file is still open";
  }
  hit = true;
  for (long position = 0; hit; ++position) {
    SCOPED_TRACE(position);
    ASSERT_EQ(S_OK, files.LoadSystem(system.File("new"), 0));
    Status status = S_OK;
    {
      const CFailingAllocation failing(position);
      status = files.LoadSystem(file, 0);
      hit = failing.Hit();
    }
    const std::string name = system.SystemFile();
    EXPECT_TRUE(name.empty() || system.Data(1) == CSavedSystem::DataOf(1));
    EXPECT_TRUE(name.empty() || name == (status == S_OK ? file : system.File("new")));
    EXPECT_EQ(E_FAIL, files.LoadInstrument(system.Instrument(0))) << "the file is still open";
  }
}

// --- callbacks ---

class CMeddlingRouter : public CMessageRouter {
 public:
  explicit CMeddlingRouter(CSavedSystem& system) : m_system(system) {}
  void SetProgressStatus(int) override {
    CInstrumentManager& instruments = m_system.Instruments();
    std::stringstream head;
    statuses.insert({m_system.Files().WriteFixedSection(head, FileType::System, -1),
                     m_system.Files().ReadFixedSection(head),
                     m_system.Files().CreateInstruments(&m_system.Modules(), &instruments),
                     instruments.DeleteAll(), instruments.DeleteInstrumentAt(0),
                     m_system.Server().LoadSystem(m_system.File()),
                     m_system.Files().IsPGFile(m_system.File()),
                     m_system.Files().SaveSystem(m_system.File("second"), "", 1),
                     m_system.Files().SaveInstrument(m_system.Instrument(0)),
                     m_system.Files().LoadInstrument(m_system.Instrument(0)),
                     m_system.Server().DefaultSystem(), m_system.Server().Compile()});
  }
  std::set<Status> statuses;

 private:
  CSavedSystem& m_system;
};

TEST(FileManager, NothingIsReplacedUnderItsHands) {
  CSavedSystem system(2);
  CMeddlingRouter router(system);
  (void)system.Files().SetMessageRouter(&router);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "", 1));
  ASSERT_EQ(S_OK, system.Server().LoadSystem(system.File()));
  EXPECT_EQ(S_OK, system.Files().LoadModule(system.File(), "PG 1", system.Instrument(0)));
  EXPECT_THAT(router.statuses, ElementsAre(E_FAIL));
  EXPECT_EQ(S_OK, system.Instruments().DeleteInstrumentAt(1)) << "only meanwhile";
  EXPECT_EQ(CSavedSystem::DataOf(0), system.Data(0));
  (void)system.Files().SetMessageRouter(nullptr);
}

}  // namespace
}  // namespace quillpg
