// Runs the benchmarks of a program, then prints for each peer how many times its time this library's is
// shorter.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

class Comparison : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      const std::string name = run.benchmark_name();
      const std::size_t slash = name.rfind('/');
      if (slash == name.npos || run.error_occurred) continue;
      auto& best = times_[name.substr(0, slash)][name.substr(slash + 1)];
      const double time = run.GetAdjustedCPUTime();
      if (best == 0 || time < best) best = time;
    }
  }

  void Finalize() override {
    for (const auto& [what, byWhom] : times_) {
      const auto own = byWhom.find("Base");
      if (own == byWhom.end()) continue;
      for (const auto& [who, time] : byWhom)
        if (who != "Base")
          std::printf("%-40s %8.2f times as fast as %s\n", what.c_str(), time / own->second, who.c_str());
    }
  }

private:
  std::map<std::string, std::map<std::string, double>> times_;
};

} // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  Comparison comparison;
  benchmark::RunSpecifiedBenchmarks(&comparison);
  return 0;
}
