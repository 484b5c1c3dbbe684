// The tasks that an interpreter holds: those that wait for their time, and those that are parked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <vornscript/ref.hpp>
#include <vornscript/task.hpp>

namespace vorn {

// A binary min-heap by due time. Every task held has a place, whose number stands in the task and
// in the task's entry of the heap; the place knows where in the heap the entry is. The due time
// stands in the entry, so that ordering a hundred thousand sleepers touches entries and places, but
// not the tasks themselves.
//
// Tasks with equal due times are taken out in the order of the standard library's heap: whoever
// relies on who runs first, as long as nothing is woken or cancelled, would see another.
class vrn_task_heap {
 public:
  // Whether any task has a due time.
  bool empty() const { return entries_.empty(); }
  std::uint64_t next_due() const { return entries_.front().due_ms; }

  bool holds(const vrn_task& task) const {
    return task.place < places_.size() && places_[task.place].task.get() == &task;
  }

  // Holds the task without a due time.
  void park(vrn_task& task) {
    if (holds(task)) return;
    if (free_ == none) {
      places_.emplace_back();
      free_ = static_cast<std::uint32_t>(places_.size() - 1);
    }
    entries_.reserve(places_.capacity());  // a task that is held gets its due time without memory
    place& taken = places_[free_];
    task.place = std::exchange(free_, taken.position);
    taken = {vrn_ref<vrn_task>(&task), none};
  }

  // Holds the task for task.due_ms, whether it was held before or not.
  void push(vrn_task& task) {
    park(task);
    if (places_[task.place].position != none) take_out(places_[task.place].position);
    entries_.emplace_back();
    rise(entries_.size() - 1, {task.due_ms, task.place});
  }

  // Lets go of the task; gives back what was held.
  vrn_ref<vrn_task> remove(const vrn_task& task) noexcept {
    if (!holds(task)) return {};
    if (places_[task.place].position != none) take_out(places_[task.place].position);
    return leave(task.place);
  }

  // Among many sleepers, a task has left the processor's caches long before its time comes. So what
  // it holds is called for while the heap is put in order, and the task behind it while this one
  // runs.
  vrn_ref<vrn_task> pop() {
    const std::uint32_t first = entries_.front().place;
    const vrn_task& next = *places_[first].task;
    __builtin_prefetch(next.call_stack.data());
    __builtin_prefetch(next.value_stack.data());
    __builtin_prefetch(next.argument_frames.data());
    take_out(0);
    if (!entries_.empty()) {
      const vrn_task& behind = *places_[entries_.front().place].task;
      __builtin_prefetch(&behind);
      __builtin_prefetch(&behind.argument_frames);
    }
    return leave(first);
  }

 private:
  static constexpr std::uint32_t none = 0xFFFFFFFF;

  struct entry {
    std::uint64_t due_ms;
    std::uint32_t place;
  };
  struct place {
    vrn_ref<vrn_task> task = {};
    std::uint32_t position = none;  // in the heap; of a free place: the next free one
  };

  void put(std::size_t position, const entry& moved) {
    entries_[position] = moved;
    places_[moved.place].position = static_cast<std::uint32_t>(position);
  }

  // Moves what is due later than the entry down from above the hole, then fills the hole with it.
  void rise(std::size_t hole, const entry& filling) {
    while (hole > 0 && entries_[(hole - 1) / 2].due_ms > filling.due_ms) {
      put(hole, entries_[(hole - 1) / 2]);
      hole = (hole - 1) / 2;
    }
    put(hole, filling);
  }

  // Takes an entry out: what is due earlier moves up into the hole until that is at the bottom,
  // where the last entry rises from. Of two children that are due together the right one moves up.
  void take_out(std::size_t hole) {
    const entry last = entries_.back();
    entries_.pop_back();
    const std::size_t size = entries_.size();
    if (hole == size) return;
    for (std::size_t child = 2 * hole + 2; child <= size; child = 2 * hole + 2) {
      if (child == size || entries_[child].due_ms > entries_[child - 1].due_ms) --child;
      put(hole, entries_[child]);
      hole = child;
    }
    rise(hole, last);
  }

  vrn_ref<vrn_task> leave(std::uint32_t number) {
    place& left = places_[number];
    left.position = std::exchange(free_, number);
    return std::move(left.task);
  }

  std::vector<entry> entries_;
  std::vector<place> places_;
  std::uint32_t free_ = none;  // the first free place
};

}  // namespace vorn
