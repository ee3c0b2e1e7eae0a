#include "base/setup_file_reader.h"
#include "bench_instrument.h"
#include "plain/plain_setup_file.h"
#include "quillpg/limits.h"
#include "ratio.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <unistd.h>
#include <vector>

// Setup files, written to and read from a file of the temporary directory, without the flush to
// disk on either side.

namespace quillpg::bench {

namespace {

class CFileSink : public CByteSink {
 public:
  explicit CFileSink(const std::string& path)
      : m_file(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600)) {}
  ~CFileSink() override { (void)close(m_file); }
  bool Put(std::span<const std::uint8_t> bytes) override {
    return write(m_file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
  }

 private:
  int m_file;
};

struct FILE_BYTES {
  std::unique_ptr<std::uint8_t[]> data;
  std::size_t size = 0;
};

FILE_BYTES ReadWhole(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY);
  FILE_BYTES bytes;
  bytes.size = static_cast<std::size_t>(lseek(file, 0, SEEK_END));
  bytes.data = std::make_unique_for_overwrite<std::uint8_t[]>(bytes.size);
  if (pread(file, bytes.data.get(), bytes.size, 0) != static_cast<ssize_t>(bytes.size))
    std::abort();
  (void)close(file);
  return bytes;
}

// The blocks of one instrument over one module, and a file of them.
class CSetupFileBench {
 public:
  CSetupFileBench(const char* name, int blocks, int size)
      : m_path(std::string("/tmp/quillpg_bench_") + name + std::to_string(getpid())) {
    (void)m_instrument.GetBlockManager(&m_blocks);
    (void)m_target.GetBlockManager(&m_loaded);
    (void)m_blocks->DeleteAll();
    for (int i = 0; i < blocks; ++i) {
      (void)m_blocks->AddBlock("Block" + std::to_string(i), size);
    }
    Save();
    const FILE_BYTES bytes = ReadWhole(m_path);
    m_bytes.assign(bytes.data.get(), bytes.data.get() + bytes.size);
    Load();
    CByteWriter again;
    if (Failed(m_loaded->Write(again)) || !std::ranges::equal(again.Written(), m_bytes))
      std::abort();
  }
  ~CSetupFileBench() { (void)unlink(m_path.c_str()); }

  void Save() {
    CFileSink sink(m_path);
    CByteWriter writer(sink);
    if (Failed(m_blocks->Write(writer))) std::abort();
    writer.Flush();
  }
  void Load() {
    (void)m_loaded->DeleteAll();
    const FILE_BYTES bytes = ReadWhole(m_path);
    CSetupFileReader reader({bytes.data.get(), bytes.size});
    if (Failed(m_loaded->Read(reader))) std::abort();
  }
  void SavePlain() {
    std::ofstream stream(m_path, std::ios::binary | std::ios::trunc);
    CPlainSetupFile::Write(stream, *m_blocks);
  }
  void LoadPlain() {
    std::ifstream stream(m_path, std::ios::binary);
    CPlainSetupFile::Read(stream, *m_loaded);
  }
  void WriteBytes() { (void)CFileSink(m_path).Put(m_bytes); }
  void ReadBytes() { (void)ReadWhole(m_path); }

 private:
  std::string m_path;
  CBenchInstrument m_instrument;
  CBenchInstrument m_target;
  CBlockManager* m_blocks = nullptr;
  CBlockManager* m_loaded = nullptr;
  std::vector<std::uint8_t> m_bytes;
};

template <typename Bench>
Work Run(Bench& bench, void (Bench::*work)()) {
  return [&bench, work] { (bench.*work)(); };
}

}  // namespace

void RegisterSetupFileBenches() {
  using B = CSetupFileBench;
  static B many("many", MAX_BLOCKS, 80);
  static B big("big", 1, static_cast<int>(DEFAULT_MEMORY_DEPTH));
  RegisterRatio("save_4000_vs_plain", 4, Run(many, &B::SavePlain), Run(many, &B::Save));
  RegisterRatio("load_4000_vs_plain", 8, Run(many, &B::LoadPlain), Run(many, &B::Load));
  RegisterRatio("save_4000_vs_write", 0.6, Run(many, &B::WriteBytes), Run(many, &B::Save));
  RegisterRatio("save_big_vs_write", 0.85, Run(big, &B::WriteBytes), Run(big, &B::Save));
  RegisterRatio("load_big_vs_read", 0.25, Run(big, &B::ReadBytes), Run(big, &B::Load));
}

}  // namespace quillpg::bench
