// Waking sleepers, and ticks that find nothing to do.
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "bench/suite.hpp"
#include "compiler/instruction.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/run.hpp"

namespace vorn::bench {
namespace {

constexpr std::size_t sleeper_count = 100'000;
constexpr std::size_t wakings = 300'000;
constexpr std::size_t naps = 16;  // of each of them, more than it takes
constexpr std::int64_t far_away = 1'000'000'000'000;

// Delays of 1 to `spread`, the same for both sides.
class delays {
 public:
  explicit delays(std::uint64_t spread) : spread_(spread) {}
  std::int64_t next() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::int64_t>((state_ >> 33) % spread_) + 1;
  }

 private:
  std::uint64_t spread_;
  std::uint64_t state_ = 1;
};

class moved_clock final : public vrn_clock {
 public:
  std::uint64_t wall_ticks() const override { return ms * 10'000; }
  std::uint64_t ms = 0;
};

// Tasks that only sleep, in an interpreter that says nothing.
class sleepers {
 public:
  explicit sleepers(std::uint64_t spread) : delays_(spread) {
    script_.register_std_function(
        "nap",
        [this](vrn_vm_context& context, auto&) {
          schedule(*context.task, delays_.next());
          *context.stop_flag = run_status::waiting;
          return vrnvar_shared();
        },
        0, 0);
    nap_ = script_.state().functions.find(std::string_view("nap"))->second.get();
  }

  void make(std::size_t nap_count) {
    auto& routine =
        routines_.emplace_back(std::make_shared<vrn_program_block_routine>(root_.get()));
    routine->emit(op_push, 1U);
    for (; nap_count > 0; --nap_count) {
      routine->emit(op_args_begin, 0U);
      routine->emit(op_call_native, std::uint64_t{reinterpret_cast<std::uintptr_t>(nap_)});
    }
  }
  void start(std::size_t index, std::int64_t delay) {
    task_run(*task_create(routines_[index]->handle()), delay);
  }
  void add(std::size_t nap_count, std::int64_t delay) {
    make(nap_count);
    start(routines_.size() - 1, delay);
  }
  std::int64_t next_delay() { return delays_.next(); }

  void tick_at(std::uint64_t milliseconds) {
    clock_->ms = milliseconds;
    script_.tick();
  }
  void tick_at_next_due() { tick_at(script_.state().tasks.next_due()); }

 private:
  delays delays_;
  std::shared_ptr<moved_clock> clock_ = std::make_shared<moved_clock>();
  vrnscript script_{{.logger = std::make_shared<vrn_log_base>(0U), .clock = clock_}};
  const vrn_std_function* nap_ = nullptr;
  vrn_program root_ = std::make_shared<vrn_program_block_root>();
  std::vector<std::shared_ptr<vrn_program_block_routine>> routines_;
};

// The records that the heap of tasks holds, in a bare heap.
class bare_heap {
 public:
  explicit bare_heap(std::uint64_t spread) : delays_(spread) {}
  void add(std::size_t, std::int64_t due) {
    records_.push_back({due, this});
    std::push_heap(records_.begin(), records_.end());
  }
  std::int64_t next_delay() { return delays_.next(); }
  void tick_at_next_due() {
    const std::int64_t now = records_.front().due;
    while (records_.front().due == now) {
      std::pop_heap(records_.begin(), records_.end());
      records_.pop_back();
      add(0, now + next_delay());
    }
  }

 private:
  struct record {
    std::int64_t due;
    void* task;
    friend bool operator<(const record& a, const record& b) { return a.due > b.due; }
  };
  delays delays_;
  std::vector<record> records_;
};

template <class Sleepers>
void wake_any(benchmark::State& state) {
  Sleepers all(2 * sleeper_count);
  for (std::size_t k = 0; k < sleeper_count; ++k) all.add(naps, all.next_delay());
  for (auto _ : state) all.tick_at_next_due();
  set_items(state, "waking", 1);
}

// Always the same one.
template <class Sleepers>
void wake_one(benchmark::State& state) {
  Sleepers all(1);
  all.add(wakings + 1, 1);
  for (std::size_t k = 1; k < sleeper_count; ++k) all.add(1, far_away);
  for (auto _ : state) all.tick_at_next_due();
  set_items(state, "waking", 1);
}

void tick_with_nothing_due(benchmark::State& state) {
  sleepers all(1);
  for (std::size_t k = 0; k < sleeper_count; ++k) all.add(1, far_away);
  for (auto _ : state) all.tick_at(0);
  set_items(state, "tick", 1);
}

void scan_five_rings(benchmark::State& state) {
  std::array<std::array<std::atomic<void*>, 1024>, 5> rings{};
  for (auto _ : state) {
    for (auto& ring : rings) {
      for (std::atomic<void*>& slot : ring) {
        if (slot.load(std::memory_order_relaxed)) slot.exchange(nullptr);
      }
    }
    benchmark::ClobberMemory();
  }
  set_items(state, "tick", 1);
}

// Tasks that are made and started one after the other, and run to their end in one tick.
void grow_tasks(benchmark::State& state, std::size_t count) {
  time_prepared(
      state,
      [count] {
        auto all = std::make_unique<sleepers>(1);
        for (std::size_t k = 0; k < count; ++k) all->make(0);
        return all;
      },
      [count](const std::unique_ptr<sleepers>& all) {
        for (std::size_t k = 0; k < count; ++k) all->start(k, static_cast<std::int64_t>(k));
        all->tick_at(count);
        return 0;
      });
  set_items(state, "task", count);
}

}  // namespace

void add_scheduler() {
  add({"scheduler", "one_of_10^5_sleepers", "ours"}, wake_one<sleepers>)->Iterations(wakings);
  add({"scheduler", "one_of_10^5_sleepers", "bare_heap"}, wake_one<bare_heap>)->Iterations(wakings);
  add({"scheduler", "any_of_10^5_sleepers", "ours"}, wake_any<sleepers>)->Iterations(wakings);
  add({"scheduler", "any_of_10^5_sleepers", "bare_heap"}, wake_any<bare_heap>)->Iterations(wakings);
  add({"scheduler", "nothing_due", "ours"}, tick_with_nothing_due);
  add({"scheduler", "nothing_due", "five_ring_scans"}, scan_five_rings);
  for (int k = 0; k < 4; ++k) {
    const auto size = static_cast<std::size_t>(std::lround(10'000 * std::pow(10.0, k / 3.0)));
    add({"growth_of_run", "tasks", std::to_string(size)}, [size](benchmark::State& state) {
      grow_tasks(state, size);
    })->Unit(benchmark::kMicrosecond);
  }
}

}  // namespace vorn::bench
