#include "vm/running_task.hpp"

#include <utility>

#include <vornscript/task.hpp>

namespace vorn {

constinit thread_local vrn_running_task* vrn_running_task::on_this_thread = nullptr;

vrn_running_task::~vrn_running_task() {
  on_this_thread = nullptr;
  if (task_.cancelling) task_cancel(task_);
}

void vrn_running_task::keep(vrn_program_block_root& program) noexcept {
  for (const auto& handle : task_.call_stack) {
    const vrn_program_block_base* block = handle.get();
    while (block && block != &program) block = block->parent;
    if (!block) continue;
    program.main->parent = nullptr;
    program.keeper_.front() = std::move(program.main);
    return kept_.splice(kept_.end(), program.keeper_);
  }
}

vrn_task* current_task() noexcept {
  const vrn_running_task* const running = vrn_running_task::on_this_thread;
  return running ? &running->task() : nullptr;
}

}  // namespace vorn
