// Registration and rates, the same for every benchmark.
//
//   const int registered = ForEveryTable("ReadLine", &ReadLine);   // ReadLine/mixed, ...
//
//   void ReadLine(benchmark::State& state, const BenchmarkTable& table) {
//     for (auto _ : state) ...;
//     ReportTable(state, table);
//   }
#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "BenchmarkTables.h"

using TableBenchmark = void (*)(benchmark::State& state, const BenchmarkTable& table);

inline void Register(const std::string& name, TableKind kind, TableBenchmark function) {
  benchmark::RegisterBenchmark(name.c_str(), [kind, function](benchmark::State& state) {
    function(state, Table(kind));
  })->Unit(benchmark::kMillisecond);
}

// The result has no meaning; it lets a namespace register while it is set up.
inline int ForEveryTable(const std::string& name, TableBenchmark function) {
  constexpr const char* kNames[] = {"mixed", "numeric", "text", "wide", "fixed"};
  for (const TableKind kind : kTableKinds)
    Register(name + '/' + kNames[static_cast<std::size_t>(kind)], kind, function);
  return 0;
}

// `bytes` of the file and `cells` went through each iteration.
inline void Report(benchmark::State& state, std::int64_t bytes, std::int64_t cells) {
  const auto iterations = static_cast<std::int64_t>(state.iterations());
  state.SetBytesProcessed(iterations * bytes);
  state.counters["cells/s"] =
      benchmark::Counter(static_cast<double>(iterations * cells), benchmark::Counter::kIsRate);
}

// Each iteration went through the whole table.
inline void ReportTable(benchmark::State& state, const BenchmarkTable& table) {
  Report(state, table.bytes, table.cells());
}
