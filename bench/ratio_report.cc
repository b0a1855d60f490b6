#include "bench/ratio_report.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "bench/ratios.h"

namespace zel::bench {
namespace {

// Prints as usual and remembers the best time of each benchmark.
class BestTimes final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      double& best = best_.try_emplace(run.run_name.str(), std::numeric_limits<double>::infinity()).first->second;
      best = std::min(best, timeOf(run));
    }
  }

  // The processor's time, which other programs disturb less, unless the benchmark measures a time of its own.
  static double timeOf(const Run& run) {
    const bool ownTime = !run.run_name.time_type.empty();  // "manual_time" or "real_time"
    return ownTime ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
  }

  // Infinity where the benchmark did not run, as when a filter left it out.
  double best(const std::string& name) const {
    const auto found = best_.find(name);
    return found != best_.end() ? found->second : std::numeric_limits<double>::infinity();
  }

 private:
  std::map<std::string, double> best_;
};

}  // namespace

int runAndCompare(int argc, char** argv, const std::vector<Ratio>& ratios) {
  std::vector<char*> arguments(argv, argv + argc);
  char repetitions[] = "--benchmark_repetitions=7";
  char interleaved[] = "--benchmark_enable_random_interleaving=true";
  char duration[] = "--benchmark_min_time=0.05";
  arguments.insert(arguments.begin() + 1, {repetitions, interleaved, duration});
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  BestTimes times;
  benchmark::RunSpecifiedBenchmarks(&times);
  std::printf("\n%-66s %8s %8s\n", "best time as a multiple", "x", "aim");
  for (const Ratio& ratio : ratios) {
    const double multiple = times.best(ratio.measured) / times.best(ratio.against);
    printRatio(ratio.what, multiple, ratio.aim);
  }
  return 0;
}

}  // namespace zel::bench
