#include "vm/scheduler.hpp"

#include <exception>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <vornscript/log.hpp>
#include <vornscript/std_function.hpp>
#include <vornscript/task.hpp>

#include "compiler/run_report.hpp"
#include "memory/shown_address.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/run.hpp"
#include "vm/running_task.hpp"
#include "vm/runtime_error.hpp"

namespace vorn {
namespace {

// A line about a task, which is shown by its address.
template <class... Parts>
void log_task(const vrn_task& task, const Parts&... parts) {
  log_line(vrn_log_level::verbose, "TASK ", vrn_shown_address{&task}, parts...);
}

// The routine that the task goes on with; null when it has gone.
vrn_program_block_routine* top_routine(const vrn_task& task) {
  return task.call_stack.empty() ? nullptr : task.call_stack.back().get();
}

// A routine that was stopped in the middle needs what it left on the stacks, and as much as it
// left: values of another task may serve, an open argument frame has to be the very one.
bool can_go_on(const vrn_program_block_routine& routine, const vrn_task& task) {
  const bool in_the_middle = routine.saved_pc > 0 && routine.saved_pc < routine.code->size();
  if (!in_the_middle) return true;
  return routine.stopped_values == task.value_stack.size() &&
         routine.stopped_frames == task.frame_depth &&
         (task.frame_depth == 0 || routine.entered_by == task.start);
}

// The task no longer waits; what held it while it did.
vrn_ref<vrn_task> stop_waiting(vrn_task& task) noexcept {
  task.scheduled = task.parked = false;
  return current_script ? current_script->state().tasks.remove(task) : vrn_ref<vrn_task>();
}

// The task ends. Routines that it leaves in the middle are over, since nobody has what they had on
// the stacks; those that it has not begun, or that another task is in, stay as they are. What
// throws at a task's last line lets it fail when it has ended already.
void end(vrn_task& task, vrn_task_outcome outcome) noexcept {
  task.outcome = outcome;
  task.cancelling = false;
  if (!std::exchange(task.active, false)) return;
  if (task.parked) stop_waiting(task);
  for (const auto& handle : task.call_stack) {
    vrn_program_block_routine* const routine = handle.get();
    if (!routine) continue;
    --routine->uses;
    if (!routine->active || routine->entered_by != task.start) continue;
    if (routine->saved_pc > 0) {
      routine->saved_pc = static_cast<std::uint32_t>(routine->instructions().size());
    }
    routine->active = false;
  }
}

// What the callback throws is dropped: there is no run that it could end.
void report_task(vrn_task& task, std::string_view message,
                 const vrn_program_block_routine* routine = nullptr, std::size_t at = 0) try {
  report_run(vrn_report_kind::task, task, routine, at, message);
} catch (...) {
}

void refuse(vrn_task& task) {
  constexpr std::string_view message = "Cannot run task!";
  log_line(vrn_log_level::error, message);
  report_task(task, message);
}

// Leaves the outermost routine alone on the call stack.
void cut(vrn_task& task) noexcept {
  if (task.call_stack.size() > 1) {
    task.call_stack.erase(task.call_stack.begin() + 1, task.call_stack.end());
  }
  task.pending_calls = 0;
}

vrnvar_shared copy_of(const vrnvar_shared& value) {
  vrnvar_shared copy = var_none();
  copy->copy_from(value.get());
  return copy;
}

// What the code has left last, empty if it has left nothing.
vrnvar_shared last_value(const vrn_task& task) {
  if (task.value_stack.empty() || !task.value_stack.back()) return {};
  return copy_of(task.value_stack.back().deref());
}

bool cannot_run(vrn_task& task) {
  end(task, vrn_task_outcome::refused);
  refuse(task);
  return false;
}

bool finished(vrn_task& task) {
  // The next call may change the variable that is the result.
  if (task.calls) task.value_stack.assign(1, last_value(task));
  end(task, vrn_task_outcome::finished);
  log_task(task, " finished.");
  return false;
}

void fail(vrn_task& task, const char* reason) {
  end(task, vrn_task_outcome::failed);
  log_line(vrn_log_level::error, "Task failed: ", reason);
  const vrnscript_state& state = current_script->state();
  report_task(task, reason, state.thrown_in.get(), state.thrown_at);
}

std::uint32_t parameters_of(const vrn_program_block_routine& routine) {
  return routine.parameter_count == 0xFFFFFFFF ? 0 : routine.parameter_count;
}

// A task that calls a function comes to it for the first time.
bool enter(vrn_task& task, const vrn_program_block_routine& function) {
  task.entering = false;
  if (function.active) {
    end(task, vrn_task_outcome::refused);
    runtime_error_parallel(task);
    return false;
  }
  if (function.saved_pc > 0) return true;
  for (std::uint32_t k = 0; k < parameters_of(function); ++k) {
    vrnvar& parameter = *function.variables[k];
    parameter.set_type(vrn_type::none);
    if (k < task.arguments.size()) parameter.copy_from(task.arguments[k].get());
  }
  return true;
}

bool go_on(vrn_task& task) {
  if (!task.active) {
    log_line(vrn_log_level::error, "task_continue called while the task was not active!");
    return false;
  }
  if (task.parked) stop_waiting(task);
  std::optional<std::uint64_t> now;
  for (;;) {
    vrn_program_block_routine* const routine = top_routine(task);
    if (!routine) return cannot_run(task);
    if (task.entering && !enter(task, *routine)) return false;
    if (!can_go_on(*routine, task)) return cannot_run(task);
    const std::uint32_t status = run(*routine, task, now);
    if (task.cancelling) return false;
    switch (status) {
      case run_status::go_on:
      case run_status::reserved:
      case run_status::called:
        break;
      case run_status::ended:
        if (task.pending_calls == 0) return finished(task);
        --task.pending_calls;
        --routine->uses;
        task.call_stack.pop_back();
        // A call that was refused counts as pending all the same, so the outermost routine can be
        // taken off here.
        if (task.call_stack.empty()) return finished(task);
        break;
      case run_status::returned:
        // Nothing sets this status yet. The task stays active and is never run again.
        log_line(vrn_log_level::error, "TODO: HANDLE RETURN!");
        return false;
      default:
        return !task.parked;
    }
  }
}

void run_due_task(vrn_task& task) {
  const vrn_running_task running(task);
  current_script->state().thrown_in.clear();
  try {
    if (go_on(task)) schedule(task, 0);
  } catch (const std::exception& exception) {
    fail(task, exception.what());
  } catch (...) {
    fail(task, "unknown exception");
  }
}

// Due times never wrap: they stop at 0, and no delay reaches the other end.
std::uint64_t due_time(std::uint64_t now, std::int64_t delay) {
  const std::uint64_t due = now + static_cast<std::uint64_t>(delay);
  return delay < 0 && due > now ? 0 : due;
}

void make_due(vrn_task& task, std::int64_t delay) {
  vrnscript_state& state = current_script->state();
  task.due_ms = due_time(state.clock->wall_ms(), delay);
  state.tasks.push(task);
  task.scheduled = true;
}

// Sets a flag for as long as it lives.
class raised {
 public:
  explicit raised(bool& flag) : flag_(flag) { flag_ = true; }
  ~raised() { flag_ = false; }
  raised(const raised&) = delete;
  raised& operator=(const raised&) = delete;

 private:
  bool& flag_;
};

}  // namespace

void release_last(vrn_task* task) noexcept {
  const std::unique_ptr<vrn_task> owned(task);
  task->parked = false;  // the interpreter does not hold it
  end(*task, vrn_task_outcome::none);
}

vrn_ref<vrn_task> task_create(vrnptr<vrn_program_block_routine>&& routine) {
  auto task = std::make_unique<vrn_task>();
  task->call_stack.push_back(routine);
  routine.clear();
  return vrn_ref<vrn_task>(task.release());
}

vrn_ref<vrn_task> task_create(const vrn_program& program) {
  return task_create(program && program->main ? program->main->handle()
                                              : vrnptr<vrn_program_block_routine>());
}

vrn_ref<vrn_task> task_create(const vrn_program& program, std::string_view function,
                              const std::vector<vrnvar_shared>& arguments) {
  vrnptr<vrn_program_block_routine> handle;
  if (program && program->main) handle = program->main->function(function);
  const vrn_program_block_routine* const routine = handle.get();
  if (!routine) {
    log_line(vrn_log_level::error, "Cannot find function ", function);
    return {};
  }
  if (arguments.size() > parameters_of(*routine)) {
    log_line(vrn_log_level::error, "Too many arguments for function ", function, " (",
             arguments.size(), " given, ", parameters_of(*routine), " taken)");
    return {};
  }
  vrn_ref<vrn_task> task = task_create(std::move(handle));
  task->calls = true;
  task->arguments.reserve(arguments.size());
  for (const vrnvar_shared& argument : arguments) task->arguments.push_back(copy_of(argument));
  return task;
}

void task_run(vrn_task& task, std::int64_t delay_ms) {
  if (task.calls && !task.active) cut(task);
  if (task.active || !top_routine(task)) {
    if (!task.active) task.outcome = vrn_task_outcome::refused;
    return refuse(task);
  }
  if (task.pending_calls != 0) {
    log_line(vrn_log_level::error, "TODO: Cleanup old routine data here!");
  }
  task.pending_calls = 0;
  task.frame_depth = 0;
  task.start = ++current_script->state().starts;
  task.value_stack.clear();
  task.value_stack.resize(1);
  log_task(task, " scheduled (eta: ", delay_ms, ").");
  schedule(task, delay_ms);
  // Last, so that a start that runs out of memory can be repeated.
  for (const auto& handle : task.call_stack) {
    if (vrn_program_block_routine* const routine = handle.get()) ++routine->uses;
  }
  task.outcome = vrn_task_outcome::none;
  task.entering = task.calls;
  task.active = true;
}

void schedule(vrn_task& task, std::int64_t delay_ms) {
  if (!task.scheduled && current_script) make_due(task, delay_ms);
}

bool task_wake(vrn_task& task, std::int64_t delay_ms) {
  if (!task.active || !current_script || !current_script->state().tasks.holds(task)) return false;
  make_due(task, delay_ms);
  return true;
}

void task_park(const vrn_vm_context& context) {
  vrn_task& task = *context.task;
  current_script->state().tasks.park(task);
  task.parked = true;
  *context.stop_flag = run_status::waiting;
}

void task_cancel(vrn_task& task) noexcept {
  if (task.active && current_task() == &task) {
    task.cancelling = true;
    return;
  }
  const vrn_ref<vrn_task> held = stop_waiting(task);
  if (!task.active) return;
  end(task, vrn_task_outcome::cancelled);
  task.value_stack.clear();
  task.argument_frames.clear();
  task.frame_depth = 0;
  cut(task);
}

vrnvar_shared task_result(const vrn_task& task) {
  return task.outcome == vrn_task_outcome::finished ? last_value(task) : vrnvar_shared();
}

bool task_continue(vrn_task& task) {
  if (current_task()) {
    log_line(vrn_log_level::error, "task_continue called inside a run!");
    return false;
  }
  const vrn_running_task running(task);
  return go_on(task);
}

bool run_due_tasks(vrnscript_state& state) {
  if (state.ticking || current_task()) {
    log_line(vrn_log_level::error, "tick() called inside a ", state.ticking ? "tick!" : "run!");
    return false;
  }
  if (state.tasks.empty()) return true;
  const raised ticking(state.ticking);
  const std::uint64_t now = state.clock->wall_ms();
  while (!state.tasks.empty() && state.tasks.next_due() <= now) {
    const vrn_ref<vrn_task> task = state.tasks.pop();
    task->scheduled = false;
    run_due_task(*task);
  }
  return true;
}

}  // namespace vorn
