// The task that is running on a thread.
#pragma once

#include <list>
#include <memory>

#include <vornscript/program_block.hpp>

namespace vorn {

struct vrn_task;

// Makes a task the running one of the calling thread for as long as this lives. At the end, a task
// that was cancelled meanwhile ends too.
class vrn_running_task {
 public:
  explicit vrn_running_task(vrn_task& task) : task_(task) { on_this_thread = this; }
  ~vrn_running_task();
  vrn_running_task(const vrn_running_task&) = delete;
  vrn_running_task& operator=(const vrn_running_task&) = delete;

  // Null while no task is running.
  static constinit thread_local vrn_running_task* on_this_thread;

  vrn_task& task() const { return task_; }

  // The program is being released. If the task is in one of its routines, takes the main routine,
  // and with it all others, and holds them until the task has stopped.
  void keep(vrn_program_block_root& program) noexcept;

 private:
  vrn_task& task_;
  std::list<std::shared_ptr<vrn_program_block_routine>> kept_;
};

}  // namespace vorn
