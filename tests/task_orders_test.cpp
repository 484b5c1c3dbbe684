// Random orders of what can happen to tasks that share routines, between runs and within them, in
// programs whose calls, sleeps and failures stand inside the arguments of others. Under the
// sanitizers, and with the library's checks, no order may reach past a stack or a frame; afterwards
// nothing is left.
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

class random_orders {
  unsigned below(std::size_t count) { return static_cast<unsigned>(random_() % count); }
  auto& any(auto& list) { return list[below(list.size())]; }
  void drop(auto& list) {
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(below(list.size())));
  }

 public:
  explicit random_orders(unsigned seed) : random_(seed) {
    host_.log->level_mask = static_cast<std::uint32_t>(vrn_log_level::error);
    host_.script.register_function("fail", [] { throw std::runtime_error("failed"); });
    host_.script.register_function("park", [](vrn_vm_context& context) { task_park(context); });
    host_.script.register_function("act", [this] { return act(), 1; });
  }

  void act() {
    switch (below(programs_.empty() ? 1 : tasks_.empty() ? 5 : 18)) {
      case 0:
        programs_.push_back(host_.load(program()));
        ASSERT_TRUE(programs_.back());
        break;
      case 1:
        if (below(4) == 0) drop(programs_);
        break;
      case 2:
        program_rewind(any(programs_));
        break;
      case 3:
        add(task_create(any(programs_), "call0", {var_string("argument")}));
        break;
      case 4:
        add(task_create(any_routine(*any(programs_)->main).handle()));
        break;
      case 5:
        drop(tasks_);
        break;
      case 6:
        task_cancel(*any(tasks_));
        break;
      case 7:
        task_wake(*any(tasks_), below(3));
        break;
      case 8:
        task_run(*any(tasks_), below(3));
        break;
      case 9:
        if (below(3) == 0) continue_one();
        break;
      default:
        host_.clock->ms += below(3);
        host_.script.tick();
    }
    for (const auto& task : tasks_) {
      ASSERT_EQ(host_.script.state().tasks.holds(*task), task->scheduled || task->parked);
      ASSERT_TRUE(task->outcome == vrn_task_outcome::none || !(task->active || task->parked));
      ASSERT_EQ(task_result(*task) && task->outcome != vrn_task_outcome::finished, false);
    }
  }

  // What is left when all has been let go.
  std::uint64_t end() {
    tasks_.clear();
    host_.script.state().tasks = {};
    for (const vrn_program& program : programs_) expect_unused(*program->main);
    programs_.clear();
    host_.script.tick();
    return live_objects(host_.script);
  }

 private:
  vrn_program_block_routine& any_routine(vrn_program_block_routine& routine) {
    if (!routine.children || below(2) == 0) return routine;
    return any_routine(*any(*routine.children));
  }
  static void expect_unused(const vrn_program_block_routine& routine) {
    EXPECT_FALSE(routine.active || routine.uses > 0);
    if (!routine.children) return;
    for (const auto& child : *routine.children) expect_unused(*child);
  }

  void add(vrn_ref<vrn_task> task) {
    if (!task) return;
    task_run(*task, below(3));
    tasks_.push_back(std::move(task));
  }
  void continue_one() try {
    const vrn_ref<vrn_task> task = any(tasks_);
    task_continue(*task);
  } catch (const std::runtime_error&) {
    // What fails in a task that a host runs by itself comes to the host.
  }

  // Functions that call each other by their variables, the later ones the earlier ones.
  std::string program() {
    std::string text;
    const unsigned count = 1 + below(4);
    for (unsigned k = 0; k < count; ++k) text += name(k) + "(a) { " + body(k) + "} ";
    return text + body(count);
  }
  std::string body(unsigned known) {
    std::string text;
    for (unsigned k = 1 + below(3); k > 0; --k) text += expression(known, 3) + "; ";
    return text;
  }
  std::string expression(unsigned known, int depth) {
    const auto inner = [&] { return expression(known, depth - 1); };
    switch (depth == 0 ? 0 : below(known > 0 ? 10 : 8)) {
      case 0:
        return "1";
      case 1:
        return inner() + " + " + inner();
      case 2:
        return "(x = " + inner() + ")";
      case 3:
        return "max(" + inner() + ", 2, " + inner() + ")";
      case 4:
        return "sleep(" + std::to_string(below(3)) + ")";
      case 5:
        return below(4) == 0 ? "fail()" : "1";
      case 6:
        return "park()";
      case 7:
        return "act()";
      default:
        return name(below(known)) + "(" + inner() + ")";
    }
  }
  static std::string name(unsigned function) { return "call" + std::to_string(function); }

  std::mt19937 random_;
  script_host host_;
  std::vector<vrn_program> programs_;
  std::vector<vrn_ref<vrn_task>> tasks_;
};

TEST(task_orders_test, none_reaches_past_a_stack) {
  for (unsigned seed = 0; seed < 10'000; ++seed) {
    SCOPED_TRACE(seed);
    random_orders orders(seed);
    for (int step = 0; step < 100; ++step) orders.act();
    ASSERT_EQ(orders.end(), 0U);
  }
}

}  // namespace
}  // namespace vorn::test
