// The execution loop.
#pragma once

#include <cstdint>
#include <optional>

namespace vorn {

struct vrn_task;
class vrn_program_block_routine;

// How a run ended. Any other value makes the task wait, as `waiting` does.
namespace run_status {
inline constexpr std::uint32_t go_on = 0;
inline constexpr std::uint32_t reserved = 1;
inline constexpr std::uint32_t called = 2;    // a routine was entered and is to be run next
inline constexpr std::uint32_t returned = 4;  // set by nothing yet
inline constexpr std::uint32_t waiting = 8;
inline constexpr std::uint32_t ended = 16;  // the code ran to its end
}  // namespace run_status

// Runs the routine for the task, from the saved program counter until the code ends or an
// instruction sets the stop flag. Returns run_status::ended or the stop flag. What a handler throws
// comes through; the routine is over then.
//
// `now` is when the run before this one ended, where nothing was done since: reading the clock
// costs as much as a dozen instructions, and most routines are no longer. It is set to when this
// one ends.
std::uint32_t run(vrn_program_block_routine& routine, vrn_task& task,
                  std::optional<std::uint64_t>& now);
inline std::uint32_t run(vrn_program_block_routine& routine, vrn_task& task) {
  std::optional<std::uint64_t> now;
  return run(routine, task, now);
}

}  // namespace vorn
