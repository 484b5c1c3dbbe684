// Tasks, with a clock that stands still and native functions that do what scripts cannot.
#include "vm/scheduler.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <stdexcept>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

std::string line_of(const vrn_ref<vrn_task>& task, const std::string& text) {
  std::ostringstream line;
  line << "TASK " << static_cast<const void*>(task.get()) << text;
  return line.str();
}

class scheduler_test : public testing::Test {
 protected:
  scheduler_test() {
    // Ends the run with a status, and lets a millisecond pass.
    add("status", [this](vrn_vm_context& context, auto& given) {
      *context.stop_flag = static_cast<std::uint32_t>(given[0]->get_int());
      ++host_.clock->ms;
      return given[0];
    });
    add("fail", [](auto&, auto& given) -> vrnvar_shared {
      if (given[0]->type == vrn_type::integer) throw given[0]->get_int();
      throw std::runtime_error(given[0]->to_text());
    });
    add("nothing", {});
  }

  void add(std::string_view name, vrn_native callable) {
    host_.script.register_std_function(name, std::move(callable), 0, vrn_arguments_max);
  }

  // A task of a program of its own; the programs live as long as the test.
  vrn_ref<vrn_task> task_of(std::string text) {
    programs_.push_back(host_.load(std::move(text)));
    return task_create(programs_.back());
  }
  vrn_ref<vrn_task> started(std::string text, std::int64_t delay = 0) {
    const auto task = task_of(std::move(text));
    task_run(*task, delay);
    return task;
  }

  // What is printed by a tick that comes so many milliseconds later.
  strings tick(std::uint64_t later = 0) {
    host_.clock->ms += later;
    host_.script.tick();
    EXPECT_FALSE(host_.script.state().mutex.held_by_caller());
    return taken(vrn_log_level::out);
  }
  strings errors() { return taken(vrn_log_level::error); }
  strings taken(vrn_log_level level) {
    const strings texts = host_.log->texts(level);
    std::erase_if(host_.log->records, [=](const auto& each) { return each.level == level; });
    return texts;
  }

  bool refused(const vrn_ref<vrn_task>& task) {
    task_run(*task, 0);
    return errors() == strings{"Cannot run task!"};
  }

  script_host host_;
  std::vector<vrn_program> programs_;
};

TEST_F(scheduler_test, the_life_of_a_task) {
  const auto task = task_of("print(1); two() { print(2) } two(); print(3);");
  auto routine = programs_[0]->main->handle();
  EXPECT_EQ(task_create(std::move(routine))->call_stack[0].get(), programs_[0]->main.get());
  EXPECT_EQ(routine.index & routine.generation, vrnptr_base::none);

  task->value_stack.resize(3);
  task->pending_calls = 2;
  task_run(*task, 5);
  EXPECT_EQ(errors(), strings{"TODO: Cleanup old routine data here!"});
  EXPECT_EQ(task->value_stack.size(), 1U);
  EXPECT_EQ(task->reference_count, 2U);
  schedule(*task, 2);  // the first call stands
  EXPECT_EQ(tick(4), strings());
  EXPECT_TRUE(task->active && task->scheduled);
  EXPECT_EQ(tick(1), (strings{"1", "2", "3"}));  // due exactly now
  EXPECT_FALSE(task->active || task->scheduled);
  EXPECT_EQ(task->reference_count, 1U);
  // Its code is at its end; it is started and finished all the same.
  task_run(*task, -7);
  EXPECT_EQ(tick(), strings());
  EXPECT_EQ(taken(vrn_log_level::verbose),
            (strings{line_of(task, " scheduled (eta: 5)."), line_of(task, " finished."),
                     line_of(task, " scheduled (eta: -7)."), line_of(task, " finished.")}));
  started("print(4);");
  EXPECT_EQ(tick(), strings{"4"});  // held by the scheduler alone
}

TEST_F(scheduler_test, starts_that_are_refused) {
  EXPECT_TRUE(refused(task_create(nullptr)));
  const auto gone = task_create(host_.load("print(1);"));
  EXPECT_TRUE(refused(gone));
  EXPECT_FALSE(gone->active || gone->scheduled);

  const auto task = started("wait() { sleep(9); 1 } x = 1 + wait(); print(x);");
  EXPECT_TRUE(refused(task));
  EXPECT_TRUE(refused(task_create(programs_[0])));
  tick();
  // In the middle of an expression, for which another task has no values.
  EXPECT_TRUE(refused(task_create(programs_[0])));
  EXPECT_EQ(tick(9), strings{"2"});
  EXPECT_FALSE(refused(task_create(programs_[0])));
  EXPECT_EQ(tick(), strings());
}

TEST_F(scheduler_test, due_times) {
  for (const int delay : {30, 0, 20, 5, 25, 10, 15, 1}) {
    started("print(" + std::to_string(delay) + ");", delay);
  }
  EXPECT_EQ(tick(), strings{"0"});
  EXPECT_EQ(tick(17), (strings{"1", "5", "10", "15"}));
  EXPECT_EQ(tick(13), (strings{"20", "25", "30"}));

  using limits = std::numeric_limits<std::int64_t>;
  const auto now = static_cast<std::int64_t>(host_.clock->ms);
  const auto due = [this](std::int64_t delay) { return started("1;", delay)->due_ms; };
  EXPECT_EQ(due(1 - now), 1U);
  for (const std::int64_t delay : {-now, -now - 1, limits::min()}) EXPECT_EQ(due(delay), 0U);
  EXPECT_EQ(due(limits::max()), host_.clock->ms + static_cast<std::uint64_t>(limits::max()));
}

TEST_F(scheduler_test, statuses) {
  const auto adding = [this](std::string status) {
    return started("x = 1 + status(" + status + "); print(x);");
  };
  for (const char* at_once : {"0", "1", "2"}) {
    adding(at_once);
    EXPECT_EQ(tick().size(), 1U) << at_once;
  }
  for (const char* waiting : {"3", "5", "8", "17", "4294967295"}) {
    const auto task = adding(waiting);
    EXPECT_EQ(tick(), strings()) << waiting;  // due again, but later than the tick began
    EXPECT_TRUE(task->scheduled);
    EXPECT_EQ(tick().size(), 1U) << waiting;
  }
  EXPECT_EQ(errors(), strings());
  const auto stuck = adding("4");
  for (int k = 0; k < 3; ++k) EXPECT_EQ(tick(9), strings());
  EXPECT_EQ(errors(), strings{"TODO: HANDLE RETURN!"});
  EXPECT_TRUE(stuck->active && !stuck->scheduled);
}

TEST_F(scheduler_test, a_task_that_throws_ends_alone) {
  const std::pair<const char*, std::string> rows[] = {
      {"print(1, 2 + fail(\"oh no\"));", "oh no"},
      {"fail(1);", "unknown exception"},
      {"print(1, abs(nothing(2)));", "bad_function_call"},
      {"run(a) { print(a, fail(\"deep\")) } x = 1 + run(2); print(x);", "deep"},
      {"run(a) { print(\"gone\") } print(1 + run(2));", "vector"},
  };
  for (const auto& [text, reason] : rows) {
    SCOPED_TRACE(text);
    const auto task = started(text);
    const vrn_program program = programs_.back();
    if (reason == "vector") program->main->children->front()->strings->clear();
    started("print(\"other\"); sleep(1); print(\"too\");");
    EXPECT_EQ(tick(), strings{"other"});
    EXPECT_TRUE(errors().at(0).starts_with("Task failed: " + reason));
    EXPECT_FALSE(task->active || task->scheduled);
    EXPECT_EQ(task->reference_count, 1U);
    EXPECT_EQ(task->frame_depth, 0U);
    // Another start finds nothing that is left to be run.
    task_run(*task, 0);
    task_run(*task_create(program), 0);
    EXPECT_EQ(tick(1), strings{"too"});
    EXPECT_FALSE(task->active);
    errors();
  }
}

TEST_F(scheduler_test, tasks_whose_program_has_gone) {
  const auto waiting = started("wait() { sleep(5); print(1) } print(wait());");
  const auto fresh = started("print(2);", 5);
  started("sleep(5); print(3);");
  tick();
  programs_.erase(programs_.begin(), programs_.begin() + 2);
  EXPECT_EQ(tick(5), strings{"3"});
  EXPECT_EQ(errors(), (strings{"Cannot run task!", "Cannot run task!"}));
  for (const auto& task : {waiting, fresh}) EXPECT_FALSE(task->active || task->scheduled);
}

TEST_F(scheduler_test, calls_that_end_the_task) {
  // The refused call counts as pending, so the main routine itself is taken off.
  const auto none_left = started("x = 5; x(1);");
  // The inner call's yield runs both functions, and then nothing is pending any more.
  const auto left = started("one(a) { print(1) } two() { print(2) } x = 1 + one(two());");
  EXPECT_EQ(tick(), (strings{"2", "1"}));
  EXPECT_EQ(errors(), strings{"Runtime error not a function!"});
  EXPECT_TRUE(refused(none_left));
  EXPECT_FALSE(refused(left));
  EXPECT_EQ(tick(), strings());
  EXPECT_TRUE(refused(task_create(programs_[1])));  // it stays in the middle of the sum
}

TEST_F(scheduler_test, a_task_that_ends_while_it_is_scheduled) {
  add("schedule", [](vrn_vm_context& context, auto&) {
    schedule(*context.task, 5);
    return var_none();
  });
  const auto task = started("schedule(); print(1);");
  EXPECT_EQ(tick(), strings{"1"});
  EXPECT_EQ(errors(), strings());
  tick(5);
  EXPECT_EQ(errors(), strings{"task_continue called while the task was not active!"});
  EXPECT_FALSE(task->scheduled);
}

}  // namespace
}  // namespace vorn::test
