// A program at the limits, compiled with one index a list, over a walk through the list for every
// name; once without findings and once with a fault in one field of eight.

#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "plain/compiler.h"
#include "plain/random_program.h"
#include "quillpg/app_server.h"
#include "quillpg/limits.h"
#include "ratio.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>

namespace quillpg::bench {

namespace {

constexpr int kOneFaultIn = 8;  // fields of the faulty program

// A system of two instruments: the first with the sound program, the second with the faulty one.
class CCompileBench {
 public:
  CCompileBench() {
    (void)CAppServer::GetServer(&m_server);
    CInstrumentManager* instruments = nullptr;
    (void)m_server->GetInstrumentManager(&instruments);
    (void)m_server->DefaultSystem();
    for (int i = 0; i < 2; ++i) {
      (void)instruments->GetInstrumentAt(i, &m_instruments[static_cast<std::size_t>(i)]);
    }
    int count = 0;
    while (instruments->GetNoOfInstruments(count) == S_OK && count > 2) {
      (void)instruments->DeleteInstrumentAt(2);
    }
    Build(kSound, 0);
    Build(kFaulty, kOneFaultIn);
  }

  Work Compile(std::size_t program) {
    return [this, program] {
      for (CInstrument* instrument : m_instruments) (void)instrument->EnableInstrument(0);
      (void)m_instruments[program]->EnableInstrument(1);
      benchmark::DoNotOptimize(m_server->Compile());
    };
  }
  Work CheckPlainly(std::size_t program) {
    return [this, program] {
      benchmark::DoNotOptimize(CPlainCompiler(*m_instruments[program]).Check());
    };
  }

  static constexpr std::size_t kSound = 0;
  static constexpr std::size_t kFaulty = 1;

 private:
  void Build(std::size_t program, int oneFaultIn) {
    const PROGRAM_SHAPE shape{MAX_BLOCKS,       MAX_SEQUENCE_LINES,
                              MAX_SUBSEQUENCES, MAX_SUBSEQUENCE_LINES,
                              MAX_EVENTS,       oneFaultIn};
    CRandomProgram(shape, 1).Build(*m_instruments[program]);
  }

  CAppServer* m_server = nullptr;
  std::array<CInstrument*, 2> m_instruments{};
};

}  // namespace

void RegisterCompileBenches() {
  static CCompileBench bench;
  RegisterRatio("compile_vs_plain", 350, bench.CheckPlainly(CCompileBench::kSound),
                bench.Compile(CCompileBench::kSound));
  RegisterRatio("compile_faulty_vs_plain", 90, bench.CheckPlainly(CCompileBench::kFaulty),
                bench.Compile(CCompileBench::kFaulty));
}

}  // namespace quillpg::bench
