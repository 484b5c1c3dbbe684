#include "vm/task_heap.hpp"

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

class task_heap_test : public testing::Test {
 protected:
  unsigned below(std::size_t count) { return static_cast<unsigned>(random_() % count); }
  vrn_task& pushed() {
    tasks_.push_back(task_create(vrn_program()));
    tasks_.back()->due_ms = below(20);
    heap_.push(*tasks_.back());
    return *tasks_.back();
  }

  std::mt19937 random_{1};
  std::vector<vrn_ref<vrn_task>> tasks_;
  vrn_task_heap heap_;
};

TEST_F(task_heap_test, the_standard_order_of_equal_times) {
  const auto later = [](const vrn_task* a, const vrn_task* b) { return a->due_ms > b->due_ms; };
  std::vector<vrn_task*> standard;
  for (int step = 0; step < 5000; ++step) {
    if (standard.empty() || below(100) < (step < 2500 ? 60U : 40U)) {
      standard.push_back(&pushed());
      std::push_heap(standard.begin(), standard.end(), later);
    } else {
      std::pop_heap(standard.begin(), standard.end(), later);
      ASSERT_EQ(heap_.next_due(), standard.back()->due_ms);
      ASSERT_EQ(heap_.pop().get(), standard.back());
      standard.pop_back();
    }
  }
}

TEST_F(task_heap_test, moved_parked_and_removed) {
  for (int k = 0; k < 300; ++k) pushed();
  std::vector<const vrn_task*> scheduled;
  for (const auto& task : tasks_) {
    const unsigned kind = below(5);
    EXPECT_TRUE(kind >= 3 || heap_.remove(*task) == task);
    EXPECT_EQ(heap_.holds(*task), kind >= 3);
    if (kind == 1 || kind == 2) heap_.park(*task);
    if (kind == 2 || kind == 3) heap_.push((task->due_ms = below(20), *task));
    if (kind >= 2) scheduled.push_back(task.get());
  }
  std::vector<const vrn_task*> popped;
  while (!heap_.empty()) popped.push_back(heap_.pop().get());
  const auto earlier = [](const auto* a, const auto* b) { return a->due_ms < b->due_ms; };
  EXPECT_TRUE(std::is_sorted(popped.begin(), popped.end(), earlier));
  EXPECT_TRUE(
      std::is_permutation(popped.begin(), popped.end(), scheduled.begin(), scheduled.end()));
}

}  // namespace
}  // namespace vorn
