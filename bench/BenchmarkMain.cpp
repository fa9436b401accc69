// Runs the benchmarks for a short time each, unless --benchmark_min_time says otherwise.

#include <benchmark/benchmark.h>

#include <vector>

#include "host/CoreSupport/QUENRALocale.h"

int main(int argc, char** argv) {
  // Files of the benchmarks are read the same way everywhere.
  if (!quenra::QUENRALocale::SetLocale(u"en-US")) return 1;
  char shortTime[] = "--benchmark_min_time=0.2";
  std::vector<char*> arguments(argv, argv + argc);
  // In front, so that the caller's own value comes later and wins.
  arguments.insert(arguments.begin() + 1, shortTime);
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
