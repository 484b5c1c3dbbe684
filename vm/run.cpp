#include "vm/run.hpp"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <limits>
#include <span>
#include <string_view>

#include <vornscript/clock.hpp>
#include <vornscript/log.hpp>
#include <vornscript/program_block.hpp>
#include <vornscript/std_function.hpp>
#include <vornscript/task.hpp>

#include "compiler/instruction.hpp"
#include "vm/handlers.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

// Of the whole process, and not locked: with interpreters on several threads the average is
// approximate, deliberately.
std::atomic<int> sample_count{0};
std::atomic<double> average_rate{0.0};

constexpr int sample_count_max = 100;

// A moving average that gives the newest run a weight of 1/100 once a hundred runs have been seen.
double add_sample(double rate) {
  const int count = std::min(sample_count.load(std::memory_order_relaxed) + 1, sample_count_max);
  const double average =
      ((count - 1) * average_rate.load(std::memory_order_relaxed) + rate) / count;
  sample_count.store(count, std::memory_order_relaxed);
  average_rate.store(average, std::memory_order_relaxed);
  return average;
}

std::int32_t whole(double rate) {
  constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
  return rate < largest ? static_cast<std::int32_t>(rate) : largest;
}

// Six significant digits, as a stream shows a number by default.
struct short_number {
  explicit short_number(double number)
      : end(std::to_chars(text, text + sizeof text, number, std::chars_format::general, 6).ptr) {}
  operator std::string_view() const { return {text, static_cast<std::size_t>(end - text)}; }

  char text[32];
  const char* end;
};

// True when it wrote a line.
bool log_speed(std::uint32_t count, std::uint64_t nanoseconds) {
  const double seconds = static_cast<double>(nanoseconds) / 1'000'000'000.0;
  const double rate = seconds > 0.0 ? count / seconds : 0.0;
  const double average = add_sample(rate);
  if (!get_log().enabled(vrn_log_level::debug)) return false;
  log_line(vrn_log_level::debug, "Executed ", count,
           " instructions in: ", std::string_view(short_number(seconds)),
           " seconds (IPS: ", whole(rate), " avg IPS: ", whole(average), ")");
  return true;
}

// Where the loop stands; puts it down in the routine, however the run ends.
class run_position {
 public:
  run_position(vrn_program_block_routine& routine, const vrn_task& task)
      : routine_(routine),
        task_(task),
        code_(routine.instructions()),
        at_(code_.data() + routine.saved_pc) {
    routine_.active = true;
    routine_.entered_by = task.start;
  }
  // An exception leaves the routine at its end: what the task has on its stacks no longer fits the
  // code in between.
  ~run_position() {
    if (!left_) at_ = end();
    routine_.saved_pc = static_cast<std::uint32_t>(at_ - code_.data());
    routine_.active = at_ < end();
    routine_.stopped_values = task_.value_stack.size();
    routine_.stopped_frames = task_.frame_depth;
  }
  run_position(const run_position&) = delete;
  run_position& operator=(const run_position&) = delete;

  std::byte* at() const { return at_; }
  std::byte* end() const { return code_.data() + code_.size(); }
  void leave(std::byte* at) {
    at_ = at;
    left_ = true;
  }

 private:
  vrn_program_block_routine& routine_;
  const vrn_task& task_;
  std::span<std::byte> code_;
  std::byte* at_;
  bool left_ = false;
};

}  // namespace

std::uint32_t run(vrn_program_block_routine& routine, vrn_task& task,
                  std::optional<std::uint64_t>& now) {
  std::uint32_t stop = run_status::go_on;
  std::uint32_t count = 0;
  run_position position(routine, task);
  vrn_run_context context{{&task, &routine, &stop}, position.end()};
  const vrn_clock& clock = current_clock();
  const std::uint64_t start = now ? *now : clock.monotonic_ns();

  std::byte* at = position.at();
  std::byte* const end = position.end();
  try {
    while (at < end) {
      if (stop != run_status::go_on) break;
      at += vrn_handlers::of_opcode[read_field<std::uint32_t>(at, 0)](context, at);
      ++count;
    }
  } catch (...) {
    vrnscript_state& state = current_script->state();
    state.thrown_in = routine.handle();
    const std::byte* const thrower = context.thrower ? context.thrower : at;
    state.thrown_at = static_cast<std::uint32_t>(thrower - routine.instructions().data());
    throw;
  }

  now = count > 0 ? clock.monotonic_ns() : start;
  if (count > 0 && log_speed(count + context.stretched, *now - start)) now.reset();
  position.leave(at);
  return at >= end && stop == run_status::go_on ? run_status::ended : stop;
}

}  // namespace vorn
