#include "ratio.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr std::string_view kNumerator = "/over";
constexpr std::string_view kDenominator = "/under";

struct COMPARISON {
  std::string name;
  double least;
};

std::vector<COMPARISON>& Comparisons() {
  static std::vector<COMPARISON> comparisons;
  return comparisons;
}

void RegisterPair(const std::string& name, double least, Work over, Work under) {
  Comparisons().push_back({name, least});
  const auto add = [](const std::string& fullName, Work work) {
    benchmark::RegisterBenchmark(fullName.c_str(),
                                 [work = std::move(work)](benchmark::State& state) {
                                   for (auto _ : state) {
                                     work();
                                     benchmark::ClobberMemory();
                                   }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime();
  };
  add(name + std::string(kNumerator), std::move(over));
  add(name + std::string(kDenominator), std::move(under));
}

// Shows Google Benchmark's own table and keeps the medians.
class CRatioReporter : public benchmark::ConsoleReporter {
 public:
  CRatioReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        m_medians[run.run_name.function_name] = run.GetAdjustedCPUTime();
      }
    }
  }

  // 0 when every comparison reached its least value, else 1.
  int PrintRatios() const {
    int result = 0;
    for (const COMPARISON& comparison : Comparisons()) {
      const auto over = m_medians.find(comparison.name + std::string(kNumerator));
      const auto under = m_medians.find(comparison.name + std::string(kDenominator));
      if (over == m_medians.end() || under == m_medians.end()) continue;  // left out by a filter
      const double ratio = over->second / under->second;
      std::printf("ratio %s %.4g\n", comparison.name.c_str(), ratio);
      if (ratio < comparison.least) {
        std::printf("  below its least value %.4g\n", comparison.least);
        result = 1;
      }
    }
    return result;
  }

 private:
  std::map<std::string, double> m_medians;
};

}  // namespace

void RegisterRatio(const std::string& name, double least, Work plain, Work engine) {
  RegisterPair(name, least, std::move(plain), std::move(engine));
}

void RegisterCost(const std::string& name, Work engine, Work reference) {
  RegisterPair(name, 0.0, std::move(engine), std::move(reference));
}

int RunAndPrintRatios() {
  CRatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return reporter.PrintRatios();
}

}  // namespace quillpg::bench
