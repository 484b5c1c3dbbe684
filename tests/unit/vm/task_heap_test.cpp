#include "vm/task_heap.hpp"

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

// While nothing is moved or taken out, the order is that of the standard heap, also of equal times.
TEST(task_heap_test, orders) {
  std::mt19937 random(1);
  const auto below = [&random](unsigned count) { return static_cast<unsigned>(random() % count); };
  const auto later = [](const vrn_task* a, const vrn_task* b) { return a->due_ms > b->due_ms; };
  vrn_task_heap heap;
  std::vector<vrn_ref<vrn_task>> tasks;
  std::vector<vrn_task*> standard;
  for (unsigned step = 0; step < 5000; ++step) {
    if (standard.empty() || below(100) < (step < 3000 ? 60U : 40U)) {
      tasks.push_back(task_create(vrn_program()));
      tasks.back()->due_ms = below(20);
      heap.push(*tasks.back());
      standard.push_back(tasks.back().get());
      std::push_heap(standard.begin(), standard.end(), later);
    } else {
      std::pop_heap(standard.begin(), standard.end(), later);
      ASSERT_EQ(heap.next_due(), standard.back()->due_ms);
      ASSERT_EQ(heap.pop().get(), standard.back());
      standard.pop_back();
    }
  }
  std::size_t count = 0;
  for (const auto& task : tasks) {
    const unsigned kind = below(4);
    if (kind < 2) heap.remove(*task);
    if (kind == 0) heap.park(*task);
    if (kind == 3) heap.push((task->due_ms = below(20), *task));
    count += kind >= 2 && heap.holds(*task);
  }
  for (std::uint64_t last = 0; !heap.empty(); --count) {
    ASSERT_LE(std::exchange(last, heap.next_due()), heap.next_due());
    ASSERT_EQ(heap.pop()->due_ms, last);
  }
  EXPECT_EQ(count, 0U);
}

}  // namespace
}  // namespace vorn
