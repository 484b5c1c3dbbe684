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

  vrn_ref<vrn_task> pop() {
    std::pop_heap(entries_.begin(), entries_.end());
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
