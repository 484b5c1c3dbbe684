// Random scripts leave the same, whether their instructions are executed in stretches or singly.
#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "tests/support/spaced_code.hpp"

namespace vorn::test {
namespace {

class script_writer {
 public:
  explicit script_writer(unsigned seed) : random_(seed) {}

  std::string script() {
    std::string text = "a = b = 3; c = 't'; d = x = z = 0.5; long = '" + std::string(200, 'x') +
                       "';\nsum(x, y) { x + y * a; z = x }\njoin(x) { sum(x, b); x + 'g' }\n";
    for (unsigned count = below(40); count > 0; --count) {
      text += (below(4) > 0 ? variable() + " = " : "") + expression(below(5)) + ";\n";
    }
    return text;
  }

 private:
  unsigned below(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }
  std::string any(const auto& list) { return list[below(std::size(list))]; }
  std::string variable() { return {"abcdxz"[below(6)]}; }

  std::string expression(unsigned depth) {
    const char* const constants[] = {"0", "7", "9223372036854775807", "2.5", "'12'", "''", "long"};
    const char* const functions[] = {"abs", "vtype", "print", "max", "sleep", "join"};
    if (depth == 0) return below(2) > 0 ? variable() : any(constants);
    const std::string operand = expression(depth - 1);
    const std::string calls[] = {any(functions) + "(" + operand + ")",
                                 "(" + variable() + " = " + operand + ")",
                                 "sum(" + operand + ", " + variable() + ")", "(-" + operand + ")"};
    if (below(2) == 0) return any(calls);
    return "(" + operand + " " + "+-*/+"[below(5)] + " " + expression(depth - 1) + ")";
  }

  std::mt19937 random_;
};

// Nothing of a script that does not load.
std::vector<std::string> left_by(const std::string& text, bool spaced) {
  remains left;
  // Random numbers begin anew on a thread.
  std::thread([&] {
    script_host host;
    const vrn_program program = host.load(text);
    if (!program) return;
    if (spaced) space_out(*program->main);
    const auto task = task_create(program);
    task_run(*task, 0);
    for (int ticks = 0; ticks < 1000 && task->active; ++ticks) {
      host.clock->ms = std::max(host.clock->ms, task->due_ms);
      host.script.tick();
    }
    left.add(host, spaced ? 2 : 1);
    left.add(*program->main);
    left.add(*task);
  }).join();
  return left.lines;
}

TEST(stretch_test, leaves_what_single_instructions_leave) {
  int loaded = 0;
  for (unsigned seed = 0; seed < 500; ++seed) {
    const std::string text = script_writer(seed).script();
    const auto left = left_by(text, false);
    ASSERT_EQ(left, left_by(text, true)) << text;
    loaded += !left.empty();
  }
  EXPECT_GT(loaded, 400);
}

}  // namespace
}  // namespace vorn::test
