// Tasks: scripts being run. An interpreter's tasks run on its thread, inside vrnscript::tick(), and
// take turns: each goes on until it ends or waits. All calls here are for that thread, and may also
// be made by native functions within a run; a task's handle may not be used on another.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <vornscript/export.hpp>
#include <vornscript/program_block.hpp>
#include <vornscript/ref.hpp>
#include <vornscript/value.hpp>
#include <vornscript/vrnptr.hpp>

namespace vorn {

struct vrn_vm_context;

enum class vrn_task_outcome : std::uint8_t {
  none,       // not started, or not ended
  finished,   // its code has run to its end
  failed,     // something threw while it ran
  cancelled,  // by task_cancel
  refused,    // there was nothing that it could run, or go on with
};

// One thread of a script. Held by vrn_ref handles: the host's, the interpreter's while the task is
// due, waiting or parked, and the running tick's. Release a host's handles before the interpreter.
//
// A task is not active until task_run starts it, and active until it ends; then its outcome says
// how. In between it is due or waiting (scheduled), parked, running, or none of these: stuck, after
// a run that stopped with the reserved status 4, or that threw into a host which had called
// task_continue itself.
struct vrn_task {
  bool scheduled = false;    // it has a due time, at which the interpreter runs it
  std::uint64_t due_ms = 0;  // wall clock, milliseconds since 1970-01-01
  std::uint32_t reference_count = 0;
  bool active = false;  // from task_run until the task ends
  vrn_task_outcome outcome = vrn_task_outcome::none;
  bool parked = false;                                        // from task_park until it runs again
  bool cancelling = false;                                    // ends where the present run stops
  std::vector<vrnptr<vrn_program_block_routine>> call_stack;  // outermost first
  std::vector<vrnvar_shared> value_stack;
  std::uint32_t pending_calls = 0;
  std::uint32_t place = 0xFFFFFFFF;  // among the tasks that the interpreter holds
  std::vector<std::vector<vrnvar_shared>> argument_frames;  // those above the depth are spare
  std::uint32_t frame_depth = 0;
  bool calls = false;       // made to call a function with arguments
  bool entering = false;    // and started, but not in that function yet
  std::uint64_t start = 0;  // the number of its last start, which no other of the interpreter has
  std::vector<vrnvar_shared> arguments;  // of the call
};
VRN_API void release_last(vrn_task* task) noexcept;

// A task that will execute the given routine, which leaves the handle empty.
VRN_API vrn_ref<vrn_task> task_create(vrnptr<vrn_program_block_routine>&& routine);

// A task for a program's top-level code; one that cannot be run when the program is empty.
VRN_API vrn_ref<vrn_task> task_create(const vrn_program& program);

// A task that will run a function of a program's main routine, the one that the variable of that
// name holds now. The arguments are copied now, and stored in the parameters right before the
// function's first instruction; missing ones are `none`, empty handles too. An unknown name, or
// more arguments than parameters, gives an empty handle and an error line.
//
// Code runs once, here too: when the function has run already, the task finishes at once without a
// result, unless program_rewind has been called since. If another task is in the function when this
// one becomes due, it is refused with the line "Parallelism not implemented yet!".
VRN_API vrn_ref<vrn_task> task_create(const vrn_program& program, std::string_view function,
                                      const std::vector<vrnvar_shared>& arguments = {});

// Starts the task: it becomes due `delay_ms` from now. One that is active already, or that has no
// live routine, is refused with a line in the log; the former goes on as if nothing had been asked.
// A routine that another task is in the middle of is gone on with where it stands, if this task's
// stacks are as deep as the code there needs them; else the task ends with the same line when it is
// due. A task that has ended may be started again, unless its call stack has become empty.
VRN_API void task_run(vrn_task& task, std::int64_t delay_ms);

// Makes the task due `delay_ms` from now, unless it is scheduled already.
VRN_API void schedule(vrn_task& task, std::int64_t delay_ms);

// Makes a task that waits or is parked due `delay_ms` from now, earlier or later than it was.
// False, and nothing done, for any other. Throws only what the clock throws.
VRN_API bool task_wake(vrn_task& task, std::int64_t delay_ms = 0);

// For native functions, with the context that they are given: the run stops after the call, and the
// task waits until task_wake or schedule gives it a due time, or task_cancel ends it. It counts as
// waiting from here on: a wake that comes before the native function returns is not lost, and a due
// time that it has been given stands. Until then, or the interpreter's end, the interpreter holds
// the task, whoever else does.
VRN_API void task_park(const vrn_vm_context& context);

// Ends an active task, without a line in the log: lets its values go, cuts its call stack to the
// outermost routine and puts the routines that it is in at their end. One that is running goes on
// to where its present run stops; if that throws before, the task has failed instead. Nothing
// happens to a task that is not active, except that it is no longer scheduled. The interpreter's
// handle is let go, so hold one of your own.
VRN_API void task_cancel(vrn_task& task) noexcept;

// A copy of the value that the task's code left last; empty unless the task has finished, or if no
// code has run. Of a task that calls a function it is the value at the function's end; of others,
// whose code ended in a variable, what that variable holds now.
VRN_API vrnvar_shared task_result(const vrn_task& task);

// The task that is running on this thread, null while there is none. Also in what its run calls:
// native functions, loggers, clocks.
VRN_API vrn_task* current_task() noexcept;

// Runs the task until it waits, ends or fails; true when it wants to run again. Called by tick().
// Within a run it does nothing but an error line. The caller holds the task.
VRN_API bool task_continue(vrn_task& task);

}  // namespace vorn
