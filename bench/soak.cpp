// Ticks an interpreter ten million times, while a million tasks sleep, finish, fail and are started
// once more. Fails when it takes more memory at the end than when it had warmed up, or when a task
// got lost.
#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include <vornscript/vornscript.hpp>

#include "vm/interpreter_state.hpp"

namespace {

using vorn::vrn_program;
using vorn::vrn_ref;
using vorn::vrn_task;

class manual_clock final : public vorn::vrn_clock {
 public:
  std::uint64_t wall_ticks() const override { return milliseconds * 10'000; }
  std::uint64_t monotonic_ns() const override { return milliseconds * 1'000'000; }
  std::uint64_t milliseconds = 0;
};

// Counts what is told of the tasks, and forgets it.
class counting_log final : public vorn::vrn_log_base {
 public:
  void error(const std::string& text) override { failed += text.starts_with("Task failed: "); }
  void verbose(const std::string& text) override { finished += text.ends_with(" finished."); }

  std::uint64_t finished = 0;
  std::uint64_t failed = 0;
};

// What the tasks do in turn. None takes longer than 280 ms.
constexpr std::array scripts = {
    "print(\"sum: \" + (1 + 2.5));",
    "sleep(7); text = \"a text that is longer than what fits into its value\"; print(text + text);",
    "nap(time) { sleep(time); time * 2 } print(nap(80)); sleep(200); print(\"awake\");",
    "wrong = \"text\" - 1; print(wrong); fail(wrong);",
    "deep(a) { fail(a) } print(deep(\"a text that is longer than what fits into its value\"));",
    "#define WAIT 40\nouter(a) { sleep(WAIT); inner(b) { b + 1 } print(inner(a)); a } outer(1);",
};

// A million tasks, one every ten ticks of a millisecond. What is compared is 600 ticks apart or a
// multiple of that, when the same scripts are under way.
constexpr std::uint64_t ticks_between = 10;
constexpr std::size_t tasks_held = 10 * scripts.size();
constexpr std::uint64_t period = ticks_between * tasks_held;
constexpr std::uint64_t tick_count = (10'000'000 / period + 1) * period;
constexpr std::uint64_t warm_up = tick_count / period / 10 * period;

struct figures {
  std::uint64_t resident_kib;
  std::uint64_t heap_kib;
  std::uint64_t live;
  std::uint64_t chunks;
};

class soak {
 public:
  soak() {
    script_.register_std_function(
        "fail", [](auto&, auto&) -> vorn::vrnvar_shared { throw std::runtime_error("fails"); }, 1,
        1);
  }

  void tick() {
    if (clock_->milliseconds++ % ticks_between == 0) start_next();
    script_.tick();
  }

  std::uint64_t started() const { return started_; }
  std::uint64_t restarted() const { return restarted_; }
  std::uint64_t ended() const { return log_->finished + log_->failed; }
  std::uint64_t failed() const { return log_->failed; }

  figures measure() const {
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    const struct mallinfo2 heap = mallinfo2();
    const auto& pools = script_.state().pools;
    return {
        pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) / 1024,
        (heap.uordblks + heap.hblkhd) / 1024,
        pools.functions.live_count() + pools.values.live_count() + pools.strings.live_count(),
        pools.functions.chunk_count() + pools.values.chunk_count() + pools.strings.chunk_count()};
  }

 private:
  struct started_task {
    vrn_program program;
    vrn_ref<vrn_task> task;
  };

  void start_next() {
    started_task& next = tasks_[started_ % tasks_held];
    next.program = loader_.create_program(scripts[started_ % scripts.size()], "soak.vrs");
    next.task = vorn::task_create(next.program);
    vorn::task_run(*next.task, 0);
    ++started_;
    // The one that was started half as many tasks ago has ended; once more.
    if (const auto& ended = tasks_[(started_ + tasks_held / 2) % tasks_held].task) {
      vorn::task_run(*ended, 5);
      ++restarted_;
    }
  }

  std::shared_ptr<counting_log> log_ = std::make_shared<counting_log>();
  std::shared_ptr<manual_clock> clock_ = std::make_shared<manual_clock>();
  vorn::vrnscript script_{{nullptr, log_, true, "SOAK", clock_}};
  vorn::vrn_program_loader loader_{script_};
  std::array<started_task, tasks_held> tasks_;
  std::uint64_t started_ = 0;
  std::uint64_t restarted_ = 0;
};

bool compare(const char* what, std::uint64_t before, std::uint64_t after, std::uint64_t slack) {
  const bool flat = after <= before + slack;
  std::printf("%-16s%12llu%12llu%s\n", what, static_cast<unsigned long long>(before),
              static_cast<unsigned long long>(after), flat ? "" : "  GREW");
  return flat;
}

}  // namespace

int main() {
  soak run;
  std::uint64_t tick = 0;
  for (; tick < warm_up; ++tick) run.tick();
  const figures before = run.measure();
  const std::uint64_t under_way = run.started() + run.restarted() - run.ended();
  for (; tick < tick_count; ++tick) run.tick();
  const figures after = run.measure();

  std::printf("%llu ticks, %llu tasks, %llu of them started once more, %llu failures\n\n",
              static_cast<unsigned long long>(tick), static_cast<unsigned long long>(run.started()),
              static_cast<unsigned long long>(run.restarted()),
              static_cast<unsigned long long>(run.failed()));
  std::printf("%-16s%12s%12s\n", "", "warmed up", "at the end");
  bool flat =
      compare("tasks under way", under_way, run.started() + run.restarted() - run.ended(), 0);
  // The system counts pages in batches, and the heap may be cut up differently.
  flat &= compare("resident KiB", before.resident_kib, after.resident_kib, 512);
  flat &= compare("heap KiB", before.heap_kib, after.heap_kib, 16);
  flat &= compare("pooled objects", before.live, after.live, 0);
  flat &= compare("pool chunks", before.chunks, after.chunks, 0);
  return flat ? EXIT_SUCCESS : EXIT_FAILURE;
}
