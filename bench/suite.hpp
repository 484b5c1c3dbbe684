// The suite's benchmarks, by their subjects, and what they have in common.
//
// A benchmark is called subject/what/who, so that those who do the same stand on one line of the
// table. The counter "items" says into how many pieces the time of an iteration is divided there;
// the label names the piece.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace vorn::bench {

void add_stages();
void add_loads();
void add_runs();
void add_growth();
void add_opcodes();
void add_pools();
void add_scheduler();
void add_processes();

// Registers a benchmark under the name that the parts make.
template <class Body>
benchmark::internal::Benchmark* add(std::initializer_list<std::string_view> parts, Body body) {
  std::string name;
  for (const std::string_view part : parts) name.append(name.empty() ? "" : "/").append(part);
  return benchmark::RegisterBenchmark(name.c_str(), std::move(body));
}

inline void set_items(benchmark::State& state, std::string_view unit, std::size_t items) {
  state.SetLabel(std::string(unit));
  state.counters["items"] = static_cast<double>(items);
}

// Times `body` alone: neither `prepare`, whose result it is given anew each time, nor the release
// of what both return.
template <class Prepare, class Body>
void time_prepared(benchmark::State& state, Prepare prepare, Body body) {
  for (auto _ : state) {
    state.PauseTiming();
    {
      auto prepared = prepare();
      state.ResumeTiming();
      const auto result = body(prepared);
      benchmark::DoNotOptimize(result);
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

}  // namespace vorn::bench
