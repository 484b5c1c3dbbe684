// The tasks that wait for their time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include <vornscript/ref.hpp>
#include <vornscript/task.hpp>

namespace vorn {

// A binary min-heap by due time. The time stands beside the reference, so that ordering a hundred
// thousand sleepers does not touch the tasks themselves.
class vrn_task_heap {
 public:
  bool empty() const { return entries_.empty(); }
  std::uint64_t next_due() const { return entries_.front().due_ms; }

  void push(vrn_ref<vrn_task> task) {
    const std::uint64_t due = task->due_ms;
    entries_.push_back({due, std::move(task)});
    std::push_heap(entries_.begin(), entries_.end());
  }

  // Among many sleepers, a task has left the processor's caches long before its time comes. So what
  // it holds is called for while the heap is put in order, and the task behind it while this one
  // runs.
  vrn_ref<vrn_task> pop() {
    const vrn_task& next = *entries_.front().task;
    __builtin_prefetch(next.call_stack.data());
    __builtin_prefetch(next.value_stack.data());
    __builtin_prefetch(next.argument_frames.data());
    std::pop_heap(entries_.begin(), entries_.end());
    const vrn_task& behind = *entries_.front().task;
    __builtin_prefetch(&behind);
    __builtin_prefetch(&behind.argument_frames);
    vrn_ref<vrn_task> task = std::move(entries_.back().task);
    entries_.pop_back();
    return task;
  }

 private:
  struct entry {
    std::uint64_t due_ms;
    vrn_ref<vrn_task> task;

    // The standard heap keeps the greatest in front: that is the entry due first.
    friend bool operator<(const entry& a, const entry& b) { return a.due_ms > b.due_ms; }
  };

  std::vector<entry> entries_;
};

}  // namespace vorn
