// The interpreter.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <vornscript/clock.hpp>
#include <vornscript/export.hpp>
#include <vornscript/filesys.hpp>
#include <vornscript/log.hpp>
#include <vornscript/native.hpp>
#include <vornscript/report.hpp>
#include <vornscript/std_function.hpp>
#include <vornscript/thread_state.hpp>

namespace vorn {

struct vrnscript_state;

struct vrnscript_config {
  std::shared_ptr<vrn_filesys> filesys = {};  // empty: one without files
  std::shared_ptr<vrn_log_base> logger = {};  // empty: the silent one
  bool add_std_functions = true;              // whether scripts have the built-in functions
  std::string thread_name = {};               // becomes the calling thread's name
  std::shared_ptr<vrn_clock> clock = {};      // empty: the system's

  // Called for every report beside its line in the log, whatever the logger's mask says: framed
  // ones, faults of running scripts, tasks that fail or cannot run. On the interpreter's thread;
  // may do what a native function may. What it throws: in a running script counts as thrown by a
  // native function there; while a script is loaded becomes an error line and ends the load; is
  // dropped in a report of kind `task`.
  vrn_report_callback on_report = {};
};

// Makes an interpreter the thread's own for as long as it lives.
class VRN_API vrn_thread_binding {
 protected:
  vrn_thread_binding() = default;
  vrn_thread_binding(const vrn_thread_binding&) = delete;
  vrn_thread_binding& operator=(const vrn_thread_binding&) = delete;
  ~vrn_thread_binding();

  void bind(vrnscript* script);

 private:
  vrnscript* script_ = nullptr;
};

// Owns everything that a running script needs: tasks, logger, file system, native functions and the
// pools that values come from. One per thread; everything else finds it through the thread, so it
// is built, used and destroyed on the thread that it serves. Programs and tasks are released first;
// a program or value that outlives its interpreter is reported in the log, and from then on can
// only be released.
class VRN_API alignas(64) vrnscript final : private vrn_thread_binding {
 public:
  // Throws std::runtime_error when the thread has an interpreter already.
  explicit vrnscript(vrnscript_config config);
  ~vrnscript();

  // Runs every task that is due, then takes back what other threads have released. A task that
  // throws is reported in the log and ends; the others go on. A tick within a tick, or within the
  // run of a task, does nothing but an error line.
  void tick();

  // When the next of the waiting tasks is due, in milliseconds since 1970-01-01 by the wall clock;
  // empty when none is. An event loop need not tick before then, unless something is woken or
  // started, or other threads release values.
  std::optional<std::uint64_t> next_due_ms() const;

  // Makes a C++ function, or a copyable object with one operator(), known to scripts that are
  // compiled from now on, in the place of a function that had the name before.
  //
  // Parameters: arithmetic types, std::string, std::string_view, vrnvar_shared, as values or const
  // references; std::optional of these at the end, empty where the call leaves them out; first a
  // vrn_vm_context&, which does not count. The numbers of arguments follow from these.
  // - Arguments are converted as get_int(), get_float() and to_text() do. A number that does not
  //   fit an integral parameter becomes the nearest that does, a NaN the least; a bool is false
  //   for 0.
  // - A std::string_view lies in the script's string and is valid until that changes; of a value of
  //   another type, as long as the call. A vrnvar_shared is the caller's value, not a copy.
  // Result: arithmetic types (a bool as 0 or 1, what is too large as the largest integer),
  // std::string, std::string_view, vrnvar_shared as it is; std::optional of these, empty: none;
  // void: none. What it throws ends the task.
  template <class Callable>
  void register_function(std::string_view name, Callable callable) {
    using signature = decltype(detail::native_signature_of<Callable>());
    if constexpr (signature::valid) {
      register_std_function(name, signature::wrap(std::move(callable)), signature::min_arguments,
                            signature::max_arguments);
    }
  }

  // The same for a function that takes the arguments as they come, any number from the fewest to
  // the most.
  void register_std_function(std::string_view name, vrn_native callable,
                             std::uint32_t min_arguments, std::uint32_t max_arguments);

  vrn_log_base& logger() const;
  vrn_filesys& filesys() const;
  const vrn_clock& clock() const;
  const vrn_report_callback& on_report() const;

  vrnscript_state& state() const { return *state_; }

 private:
  void add_std_functions();

  std::unique_ptr<vrnscript_state> owned_;
  // Stays readable while the state is being released: what that has to say finds its logger.
  vrnscript_state* state_;
};

}  // namespace vorn
