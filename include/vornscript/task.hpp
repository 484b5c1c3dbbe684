// Tasks: scripts being run. An interpreter's tasks run on its thread, inside vrnscript::tick(), and
// take turns: each goes on until it ends or waits.
#pragma once

#include <cstdint>
#include <vector>

#include <vornscript/program_block.hpp>
#include <vornscript/ref.hpp>
#include <vornscript/value.hpp>
#include <vornscript/vrnptr.hpp>

namespace vorn {

// One thread of a script. Held by vrn_ref handles: the host's, the scheduler's while the task is
// due or waiting, and the running tick's. Release a host's handles before the interpreter.
struct vrn_task {
  bool scheduled = false;
  std::uint64_t due_ms = 0;  // wall clock, milliseconds since 1970-01-01
  std::uint32_t reference_count = 0;
  bool active = false;                                        // from task_run until the task ends
  std::vector<vrnptr<vrn_program_block_routine>> call_stack;  // outermost first
  std::vector<vrnvar_shared> value_stack;
  std::uint32_t pending_calls = 0;
  std::uint32_t place = 0xFFFFFFFF;  // among the tasks that the interpreter holds
  std::vector<std::vector<vrnvar_shared>> argument_frames;  // those above the depth are spare
  std::uint32_t frame_depth = 0;
  std::uint64_t start = 0;  // the number of its last start, which no other of the interpreter has
};
void release_last(vrn_task* task) noexcept;

// A task that will execute the given routine, which leaves the handle empty.
vrn_ref<vrn_task> task_create(vrnptr<vrn_program_block_routine>&& routine);

// A task for a program's top-level code; one that cannot be run when the program is empty.
vrn_ref<vrn_task> task_create(const vrn_program& program);

// Starts the task: it becomes due `delay_ms` from now. One that is active already, or that has no
// live routine, is refused with a line in the log. A routine that another task is in the middle of
// is gone on with where it stands, if this task's stacks are as deep as the code there needs them;
// else the task ends with the same line when it is due.
void task_run(vrn_task& task, std::int64_t delay_ms);

// Makes the task due `delay_ms` from now, unless it is scheduled already.
void schedule(vrn_task& task, std::int64_t delay_ms);

// Runs the task until it waits, ends or fails; true when it wants to run again. Called by tick().
bool task_continue(vrn_task& task);

}  // namespace vorn
