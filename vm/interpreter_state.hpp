// What an interpreter owns.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include <vornscript/vrnscript.hpp>

#include "compiler/registry.hpp"
#include "memory/interpreter_lock.hpp"
#include "vm/task_heap.hpp"
#include "vm/value_pools.hpp"

namespace vorn {

using vrn_function_table =
    std::unordered_map<std::string, vrn_ref<vrn_std_function>, vrn_hasher, vrn_transparent_equal>;

// Released in the reverse of this order: the pools' last messages still reach the logger.
struct vrnscript_state {
  vrn_task_heap tasks;
  std::shared_ptr<vrn_log_base> logger;
  std::shared_ptr<vrn_filesys> filesys;
  std::shared_ptr<vrn_clock> clock;
  vrn_interpreter_mutex mutex;
  vrn_function_table functions;
  vrn_value_pools pools{mutex};
  std::shared_ptr<vrn_registry> registry = std::make_shared<vrn_registry>(mutex);
};

// A pool of the calling thread's interpreter, or null when the thread has none.
template <auto pool>
auto* own_pool() {
  return current_script ? &(current_script->state().pools.*pool) : nullptr;
}

}  // namespace vorn
