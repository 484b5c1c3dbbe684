// Random orders of what can happen to tasks that share routines, in programs whose calls, sleeps
// and failures stand inside the arguments of others. Under the sanitizers, and with the library's
// checks, no order may reach past a stack or a frame; afterwards nothing is left.
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
  void drop(auto& list) { list.erase(list.begin() + below(list.size())); }

 public:
  explicit random_orders(unsigned seed) : random_(seed) {
    host_.log->level_mask = static_cast<std::uint32_t>(vrn_log_level::error);
    host_.script.register_std_function(
        "fail", [](auto&, auto&) -> vrnvar_shared { throw std::runtime_error("failed"); }, 0, 0);
  }

  void act() {
    switch (below(programs_.empty() ? 1 : 8)) {
      case 0:
        programs_.push_back(host_.load(program()));
        ASSERT_TRUE(programs_.back());
        break;
      case 1:
      case 2:
        tasks_.push_back(task_create(any_routine(*any(programs_)->main).handle()));
        [[fallthrough]];
      case 3:
        if (!tasks_.empty()) task_run(*any(tasks_), below(3));
        break;
      case 4:
        if (!tasks_.empty()) drop(tasks_);
        break;
      case 5:
        if (below(4) == 0) drop(programs_);
        break;
      default:
        host_.clock->ms += below(3);
        host_.script.tick();
    }
  }

  // What is left when all has been let go.
  std::uint64_t end() {
    tasks_.clear();
    programs_.clear();
    for (int k = 0; k < 100; ++k, ++host_.clock->ms) host_.script.tick();
    return live_objects(host_.script);
  }

 private:
  vrn_program_block_routine& any_routine(vrn_program_block_routine& routine) {
    if (!routine.children || below(2) == 0) return routine;
    return any_routine(*any(*routine.children));
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
    switch (depth == 0 ? 0 : below(known > 0 ? 8 : 6)) {
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
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    random_orders orders(seed);
    for (int step = 0; step < 100; ++step) orders.act();
    ASSERT_EQ(orders.end(), 0U);
  }
}

}  // namespace
}  // namespace vorn::test
