#include <vornscript/vrnscript.hpp>

#include <stdexcept>
#include <utility>

#include "runtime/thread_check.hpp"
#include "stdlib/add_std_functions.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/scheduler.hpp"

namespace vorn {
namespace {

// Left out when there is no memory for it.
void tell_of_blocks(std::size_t blocks) noexcept try {
  log_line(vrn_log_level::error, "The interpreter ends before its programs: ", blocks,
           " program blocks are still held.");
} catch (...) {
}

}  // namespace

void vrn_thread_binding::bind(vrnscript* script) {
  if (current_script) {
    throw std::runtime_error("There can only be one script interpreter per thread!");
  }
  current_script = script_ = script;
}

vrn_thread_binding::~vrn_thread_binding() {
  if (script_ && current_script == script_) current_script = nullptr;
}

vrnscript::vrnscript(vrnscript_config config)
    : owned_(std::make_unique<vrnscript_state>()), state_(owned_.get()) {
  state_->logger = std::move(config.logger);
  state_->filesys = std::move(config.filesys);
  state_->clock = std::move(config.clock);
  state_->on_report = std::move(config.on_report);
  if (!state_->filesys) state_->filesys = std::make_shared<vrn_filesys>();
  if (!state_->logger) state_->logger = std::make_shared<vrn_log_base>(vrn_log_all);
  if (!state_->clock) state_->clock = std::make_shared<vrn_clock>();
  bind(this);
  set_thread_name(config.thread_name);
  if (config.add_std_functions) add_std_functions();
}

// On another thread than its own everything is released all the same, as if that were its own: the
// tasks, the values, what native functions hold. What cannot be mended from there is the own
// thread's `current_script`, which keeps pointing here.
vrnscript::~vrnscript() {
  check_thread(*this, "~vrnscript()");
  vrnscript* const of_thread = std::exchange(current_script, this);
  {
    const vrn_interpreter_lock lock(state_->mutex);
    state_->tasks = {};
    state_->pools.drain();
    if (const std::size_t blocks = state_->registry->size(); blocks > 0) tell_of_blocks(blocks);
  }
  owned_.reset();
  current_script = of_thread == this ? nullptr : of_thread;
}

void vrnscript::tick() {
  if (!check_thread(*this, "tick()")) return;
  const vrn_interpreter_lock lock(state_->mutex);
  if (run_due_tasks(*state_)) state_->pools.drain();
}

std::optional<std::uint64_t> vrnscript::next_due_ms() const {
  if (!check_thread(*this, "next_due_ms()") || state_->tasks.empty()) return {};
  return state_->tasks.next_due();
}

void vrnscript::register_std_function(std::string_view name, vrn_native callable,
                                      std::uint32_t min_arguments, std::uint32_t max_arguments) {
  state_->functions.insert_or_assign(
      std::string(name),
      make_std_function(name, std::move(callable), min_arguments, max_arguments));
}

void vrnscript::add_std_functions() { vorn::add_std_functions(*this); }

vrn_log_base& vrnscript::logger() const { return *state_->logger; }
vrn_filesys& vrnscript::filesys() const { return *state_->filesys; }
const vrn_clock& vrnscript::clock() const { return *state_->clock; }
const vrn_report_callback& vrnscript::on_report() const { return state_->on_report; }

}  // namespace vorn
