// Times every part of the runtime, and its peers beside it.
#include <benchmark/benchmark.h>

#include "bench/child.hpp"
#include "bench/suite.hpp"

int main(int argc, char** argv) {
  if (vorn::bench::is_child(argc, argv)) return vorn::bench::child_main(argv);
  vorn::bench::add_stages();
  vorn::bench::add_loads();
  vorn::bench::add_runs();
  vorn::bench::add_opcodes();
  vorn::bench::add_pools();
  vorn::bench::add_scheduler();
  vorn::bench::add_processes();
  vorn::bench::add_growth();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
