// What an interpreter owns.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include <vornscript/vrnscript.hpp>

#include "compiler/registry.hpp"
#include "memory/interpreter_lock.hpp"
#include "vm/task_heap.hpp"
#include "vm/value_pools.hpp"

namespace vorn {

using vrn_function_table =
    std::unordered_map<std::string, vrn_ref<vrn_std_function>, vrn_hasher, vrn_transparent_equal>;

// Lets the native functions go. The pools have gone by then, so meanwhile the thread counts as one
// without an interpreter, but with its logger: what functions have captured may log, and may make
// and release values.
struct vrn_functions_end {
  vrn_functions_end(vrn_function_table& table, const std::shared_ptr<vrn_log_base>& log)
      : functions(table), logger(log) {}
  vrn_functions_end(const vrn_functions_end&) = delete;
  vrn_functions_end& operator=(const vrn_functions_end&) = delete;
  ~vrn_functions_end() {
    vrnscript* const script = std::exchange(current_script, nullptr);
    vrn_log_base* const override = log_override;
    if (!override) log_override = logger.get();
    functions.clear();
    log_override = override;
    current_script = script;
  }

  vrn_function_table& functions;
  const std::shared_ptr<vrn_log_base>& logger;
};

// Released in the reverse of this order: the pools' last messages still reach the logger.
struct vrnscript_state {
  vrn_task_heap tasks;
  std::uint64_t starts = 0;  // how many tasks have been started
  bool ticking = false;
  std::shared_ptr<vrn_log_base> logger;
  std::shared_ptr<vrn_filesys> filesys;
  std::shared_ptr<vrn_clock> clock;
  vrn_interpreter_mutex mutex;
  std::shared_ptr<vrn_registry> registry = std::make_shared<vrn_registry>(mutex);
  vrn_function_table functions;
  vrn_functions_end functions_end{functions, logger};
  vrn_value_pools pools{mutex};
  vrn_report_callback on_report;

  // Where the exception that ends a task was thrown; the routine is empty when that was in none.
  vrnptr<vrn_program_block_routine> thrown_in;
  std::uint32_t thrown_at = 0;  // offset into the code
};

// A pool of the calling thread's interpreter, or null when the thread has none.
template <auto pool>
auto* own_pool() {
  return current_script ? &(current_script->state().pools.*pool) : nullptr;
}

}  // namespace vorn
