// The interpreter.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <vornscript/clock.hpp>
#include <vornscript/filesys.hpp>
#include <vornscript/log.hpp>
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
};

// Makes an interpreter the thread's own for as long as it lives.
class vrn_thread_binding {
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
class alignas(64) vrnscript final : private vrn_thread_binding {
 public:
  // Throws std::runtime_error when the thread has an interpreter already.
  explicit vrnscript(vrnscript_config config);
  ~vrnscript();

  // Runs every task that is due, then takes back what other threads have released. A task that
  // throws is reported in the log and ends; the others go on.
  void tick();

  // Makes `callable` known to scripts that are compiled from now on, in the place of a function
  // that had the name before.
  void register_std_function(std::string_view name, vrn_native callable,
                             std::uint32_t min_arguments, std::uint32_t max_arguments);

  vrn_log_base& logger() const;
  vrn_filesys& filesys() const;
  const vrn_clock& clock() const;

  vrnscript_state& state() const { return *state_; }

 private:
  void add_std_functions();

  std::unique_ptr<vrnscript_state> owned_;
  // Stays readable while the state is being released: what that has to say finds its logger.
  vrnscript_state* state_;
};

}  // namespace vorn
