// Whole loads, whole runs, and how both grow with the size of a script.
#include <cmath>
#include <memory>
#include <string>
#include <string_view>

#include "bench/contender.hpp"
#include "bench/suite.hpp"
#include "bench/workload.hpp"

namespace vorn::bench {
namespace {

using contender_handle = std::unique_ptr<contender>;

contender_handle loaded(const contender_kind& kind, const std::string& text) {
  contender_handle host = kind.open();
  return host->load(text) ? std::move(host) : nullptr;
}

// Every load is the first of an interpreter, which like the program's release is not timed.
void load(benchmark::State& state, const workload& work, const contender_kind& kind,
          std::size_t size) {
  const std::string text = work.text(kind.language, size);
  if (!loaded(kind, text)) return state.SkipWithError("beyond the peer's limits");
  time_prepared(
      state, [&] { return kind.open(); }, [&](contender_handle& host) { return host->load(text); });
  set_items(state, work.unit, size);
  state.counters["bytes"] = static_cast<double>(text.size());
}

void run(benchmark::State& state, const workload& work, const contender_kind& kind,
         std::size_t size) {
  const std::string text = work.text(kind.language, size);
  contender_handle first = loaded(kind, text);
  if (!first) return state.SkipWithError("beyond the peer's limits");
  set_items(state, work.unit, size);
  state.counters["instructions"] = static_cast<double>(first->instruction_count());
  if (!first->run()) return state.SkipWithError("fails");
  first.reset();
  time_prepared(
      state, [&] { return loaded(kind, text); },
      [](contender_handle& host) { return host->run(); });
}

void unload(benchmark::State& state, const workload& work, const contender_kind& kind,
            std::size_t size) {
  const std::string text = work.text(kind.language, size);
  time_prepared(
      state, [&] { return loaded(kind, text); },
      [](contender_handle& host) {
        host->unload();
        return true;
      });
  set_items(state, work.unit, size);
}

using timing = decltype(load);

benchmark::internal::Benchmark* add_timing(std::string_view subject, timing& time,
                                           const workload& work, const contender_kind& kind,
                                           std::size_t size, std::string_view shown_size,
                                           std::string_view last_part) {
  return add({subject, std::string(work.name).append(shown_size), last_part},
             [&time, &work, &kind, size](benchmark::State& state) {
               time(state, work, kind, size);
             })
      ->Unit(benchmark::kMicrosecond);
}

// What is not timed takes far longer than this.
constexpr benchmark::IterationCount few = 5;

void add_workload(std::string_view subject, timing& time, const workload& work, std::size_t size,
                  std::string_view shown_size = "") {
  for (const contender_kind& kind : contenders()) {
    if (kind.language == dialect::lua && !work.has_peers) continue;
    auto* const added = add_timing(subject, time, work, kind, size, shown_size, kind.name);
    if (&time != &load) added->Iterations(few);
  }
}

// What the peers load too comes in three sizes.
void add_load(const workload& work) {
  if (!work.has_peers) return add_workload("load", load, work, work.size);
  for (const std::size_t size : {1'000U, 10'000U, 100'000U}) {
    add_workload("load", load, work, size, "@" + std::to_string(size));
  }
}

}  // namespace

void add_loads() {
  for (const workload& work : workloads()) add_load(work);
  const workload& mixed = find_workload("mixed");
  add_workload("release", unload, mixed, mixed.size);
}

void add_runs() {
  for (const workload& work : workloads()) {
    if (work.name != "comments") add_workload("run", run, work, work.size);
  }
}

// Four sizes of the same distance, from N to 10 N.
void add_growth() {
  struct row {
    std::string_view workload;
    std::size_t size;
  };
  constexpr row rows[] = {{"mixed", 10'000},    {"names", 10'000},      {"literals", 10'000},
                          {"functions", 2'000}, {"expression", 10'000}, {"depth", 90},
                          {"includes", 50},     {"defines", 1'000}};
  const contender_kind& ours = contenders().front();
  for (const row& each : rows) {
    const workload& work = find_workload(each.workload);
    for (int k = 0; k < 4; ++k) {
      const auto size = static_cast<std::size_t>(
          std::lround(static_cast<double>(each.size) * std::pow(10.0, k / 3.0)));
      const std::string shown = std::to_string(size);
      add_timing("growth_of_load", load, work, ours, size, "", shown);
      add_timing("growth_of_run", run, work, ours, size, "", shown)->Iterations(few);
    }
  }
}

}  // namespace vorn::bench
