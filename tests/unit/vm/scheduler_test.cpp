// Tasks, with a clock that stands still and native functions that do what scripts cannot.
#include "vm/scheduler.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

class scheduler_test : public testing::Test {
 protected:
  scheduler_test() {
    // Ends the run with a status, and lets a millisecond pass.
    const vrn_native status = [this](vrn_vm_context& context, auto& given) {
      *context.stop_flag = static_cast<std::uint32_t>(given[0]->get_int());
      ++host_.clock->ms;
      return given[0];
    };
    const vrn_native fail = [](auto&, auto& given) -> vrnvar_shared {
      if (given[0]->type == vrn_type::integer) throw given[0]->get_int();
      throw std::runtime_error(given[0]->to_text());
    };
    host_.script.register_std_function("status", status, 1, 1);
    host_.script.register_std_function("fail", fail, 1, 1);
    host_.script.register_function("park", task_park);
  }

  // A started task of a program of its own; the programs live as long as the test.
  vrn_ref<vrn_task> started(std::string text, std::int64_t delay = 0) {
    programs_.push_back(host_.load(std::move(text)));
    auto task = task_create(programs_.back());
    task_run(*task, delay);
    return task;
  }

  // What is printed by a tick that comes so many milliseconds later.
  strings tick(std::uint64_t later = 0) {
    host_.clock->ms += later;
    host_.log->records.clear();
    host_.script.tick();
    return host_.log->texts(vrn_log_level::out);
  }

  // The errors since the last tick began.
  strings errors() const { return host_.log->texts(vrn_log_level::error); }

  bool refused(const vrn_ref<vrn_task>& task) {
    host_.log->records.clear();
    task_run(*task, 0);
    return errors() == strings{"Cannot run task!"};
  }

  script_host host_;
  std::vector<vrn_program> programs_;
};

TEST_F(scheduler_test, due_times) {
  for (const int delay : {30, 0, 20, 5, 25, 10, 15, 1}) {
    started("print(" + std::to_string(delay) + ");", delay);
  }
  EXPECT_EQ(tick(), strings{"0"});
  EXPECT_EQ(tick(17), (strings{"1", "5", "10", "15"}));
  EXPECT_EQ(tick(13), (strings{"20", "25", "30"}));
}

TEST_F(scheduler_test, starts_that_are_refused) {
  const auto task = started("print(1);");
  EXPECT_TRUE(refused(task));
  EXPECT_EQ(task->outcome, vrn_task_outcome::none);
  EXPECT_EQ(tick(), strings{"1"});
  // Its code is at its end; it is started all the same.
  EXPECT_FALSE(refused(task));
  const auto nothing = task_create(vrn_program());
  EXPECT_TRUE(refused(nothing));
  EXPECT_EQ(nothing->outcome, vrn_task_outcome::refused);
}

// A task on a routine that another one has stopped in.
TEST_F(scheduler_test, tasks_that_share_a_routine) {
  const struct {
    const char* text;
    strings at_once, errors, later;
  } rows[] = {
      // The second goes on between two statements, where the stacks are as deep as its own.
      {"print(1); sleep(9); print(2);", {"1", "2"}, {}, {}},
      // In the middle of an expression its stack is not deep enough.
      {"x = 1 + sleep(9); print(2);", {}, {"Cannot run task!"}, {"2"}},
      {"wait() { sleep(9); 1 } x = 1 + wait(); print(x);", {}, {"Cannot run task!"}, {"2"}},
      // An argument frame has to be the one that was open.
      {"wait() { sleep(9); 1 } print(wait());", {}, {"Cannot run task!"}, {"1"}},
  };
  for (const auto& row : rows) {
    const auto first = started(row.text);
    const auto second = task_create(programs_.back());
    task_run(*second, 0);
    EXPECT_EQ(tick(), row.at_once) << row.text;
    EXPECT_EQ(errors(), row.errors) << row.text;
    EXPECT_FALSE(second->active) << row.text;
    EXPECT_EQ(tick(9), row.later) << row.text;
    EXPECT_FALSE(first->active) << row.text;
  }
}

// A task that ends in the middle of routines puts them at their end; others may enter them again.
TEST_F(scheduler_test, routines_of_a_task_that_has_failed) {
  const auto failed = started(
      "deep() { fail('now') } inner() { print(1, deep()) } entered(a) { print(a) }"
      "entered(inner()); print('not reached');");
  tick();
  EXPECT_EQ(errors(), strings{"Task failed: now"});
  const auto* const main = programs_.back()->main.get();
  for (const auto& routine : *main->children) {
    EXPECT_FALSE(routine->active);
    EXPECT_EQ(routine->saved_pc > 0, routine != main->children->back());
  }
  EXPECT_EQ(main->saved_pc, main->code->size());
  const auto again = task_create(programs_.back());
  task_run(*again, 0);
  EXPECT_EQ(tick(), strings());
  EXPECT_EQ(errors(), strings());
}

TEST_F(scheduler_test, a_start_drops_what_the_task_has_left) {
  programs_.push_back(host_.load("sleep(1);"));
  const auto task = task_create(programs_[0]);
  task->value_stack = {var_int(1), var_int(2)};
  task->pending_calls = 2;
  task_run(*task, 0);
  EXPECT_EQ(errors(), strings{"TODO: Cleanup old routine data here!"});
  EXPECT_EQ(task->pending_calls, 0U);
  EXPECT_TRUE(task->value_stack.size() == 1 && !task->value_stack[0]);
}

TEST_F(scheduler_test, statuses) {
  // Those up to 2 go on at once; after the others the task is due again, but later than the tick
  // began.
  for (const unsigned status : {1U, 2U, 3U, 8U, ~0U}) {
    started("x = 1 + status(" + std::to_string(status) + "); print(x);");
    EXPECT_EQ(tick().size(), status < 3 ? 1U : 0U) << status;
    EXPECT_EQ(tick().size(), status < 3 ? 0U : 1U) << status;
  }
  const auto stuck = started("status(4); print(1);");
  EXPECT_EQ(tick(), strings());
  EXPECT_EQ(errors(), strings{"TODO: HANDLE RETURN!"});
  EXPECT_TRUE(stuck->active && !stuck->scheduled);
}

TEST_F(scheduler_test, a_task_that_throws_ends_alone) {
  const std::pair<const char*, std::string> rows[] = {
      {"fail(1);", "unknown exception"},
      {"run(a) { print(a, fail('deep')) } x = 1 + run(2); print(x);", "deep"},
  };
  for (const auto& [text, reason] : rows) {
    const auto task = started(text);
    started("print('other'); sleep(1); print('too');");
    EXPECT_EQ(tick(), strings{"other"});
    EXPECT_EQ(errors(), strings{"Task failed: " + reason});
    EXPECT_EQ(tick(1), strings{"too"});
    EXPECT_FALSE(task->active);
  }
}

TEST_F(scheduler_test, tasks_whose_program_has_gone) {
  const auto waiting = started("wait() { sleep(5); print(1) } print(wait());");
  started("sleep(5); print(3);");
  tick();
  programs_.erase(programs_.begin());
  EXPECT_EQ(tick(5), strings{"3"});
  EXPECT_EQ(errors(), strings{"Cannot run task!"});
  EXPECT_FALSE(waiting->active || waiting->scheduled);
}

// What a script can do to its own task and program, rewound at each tick.
TEST_F(scheduler_test, outcomes) {
  using outcome = vrn_task_outcome;
  host_.script.register_function("stop", [] { task_cancel(*current_task()); });
  host_.script.register_function("rewind", [this] { program_rewind(programs_.back()); });
  host_.script.register_function("release", [this] { programs_.clear(); });
  host_.script.register_function("nested", [this] {
    ++host_.clock->ms;
    host_.script.tick();
    EXPECT_FALSE(task_continue(*current_task()));
  });
  const struct {
    const char* text;
    strings printed, errors;
    outcome how;
  } rows[] = {
      {"print(1);", {"1"}, {}, outcome::finished},
      {"stop(); print(1); sleep(1); print(2);", {"1"}, {}, outcome::cancelled},
      {"two() { print(2) } stop(); print(1); two();", {"1"}, {}, outcome::cancelled},
      {"stop(); print(1);", {"1"}, {}, outcome::cancelled},
      {"stop(); fail('now');", {}, {"Task failed: now"}, outcome::failed},
      {"nested(); print(1);",
       {"1"},
       {"tick() called inside a tick!", "task_continue called inside a run!"},
       outcome::finished},
      // What runs stays whole until it stops, though the script itself lets it go.
      {"x = 'kept'; in() { release(); print(x + ' here') } in(); print(x); sleep(0); print(2);",
       {"kept here", "kept"},
       {"Cannot run task!"},
       outcome::refused},
      // Routines in use are not rewound, whatever their position.
      {"wait() { sleep(25); woke = 1; } print('begins'); wait();",
       {"begins"},
       {},
       outcome::finished},
      {"wait() { sleep(25); } print('begins'); wait();", {"begins"}, {}, outcome::finished},
      {"in() { deep() { print(1) } deep(); } in(); rewind(); in(); print(2);",
       {"1", "1", "2"},
       {},
       outcome::finished},
  };
  for (const auto& row : rows) {
    host_.log->records.clear();
    auto task = started(row.text);
    for (int ticks = 0; task->active && ticks < 9; ++ticks, host_.clock->ms += 5) {
      host_.script.tick();
      if (!programs_.empty()) program_rewind(programs_.back());
    }
    EXPECT_EQ(host_.log->texts(vrn_log_level::out), row.printed) << row.text;
    EXPECT_EQ(errors(), row.errors) << row.text;
    EXPECT_EQ(task->outcome, row.how) << row.text;
    EXPECT_EQ(current_task(), nullptr);
    EXPECT_EQ(task->reference_count, 1U) << row.text;
    task = {};
    programs_.clear();
    EXPECT_EQ(live_objects(host_.script), 0U) << row.text;
  }
}

// However a task waits, it can be ended without a trace.
TEST_F(scheduler_test, cancelled) {
  for (const char* text : {"park();", "sleep(9);", "status(8);", "status(4);", "",
                           "in() { park(); 1 } print(max(1, in()));", "print(1, sleep(9));"}) {
    const auto task = started(std::string(text) + "print('not reached')");
    if (*text != 0) tick();
    host_.log->records.clear();
    task_cancel(*task);
    EXPECT_EQ(task->outcome, vrn_task_outcome::cancelled) << text;
    EXPECT_EQ(task->reference_count, 1U) << text;
    EXPECT_TRUE(task->value_stack.empty() && task->argument_frames.empty()) << text;
    EXPECT_EQ(task->call_stack.size(), 1U) << text;
    EXPECT_FALSE(task->active || host_.script.next_due_ms() || task_wake(*task)) << text;
    programs_.clear();
    host_.script.tick();
    EXPECT_TRUE(host_.log->records.empty()) << text;
  }
}

TEST_F(scheduler_test, woken) {
  const auto sleeper = started("sleep(50); print('slept');");
  vrn_task& parked = *started("park(); print('woken'); park();");
  EXPECT_TRUE(task_wake(parked, 7));  // due already, and put off
  tick();
  EXPECT_EQ(host_.script.next_due_ms(), host_.clock->ms + 7);
  tick(7);
  EXPECT_EQ(host_.script.next_due_ms(), sleeper->due_ms);
  EXPECT_TRUE(task_wake(*sleeper, 60) && task_wake(parked));
  schedule(parked, -5);  // the time that it has stands
  EXPECT_EQ(tick(), strings{"woken"});
  EXPECT_EQ(tick(59), strings());
  EXPECT_EQ(tick(1), strings{"slept"});
  schedule(*sleeper, 0);  // though it has ended
  EXPECT_FALSE(task_wake(*sleeper));
  task_cancel(*sleeper);
  EXPECT_TRUE(parked.parked && !host_.script.next_due_ms());

  // Within the native function that parks: woken, given a time before, failed all the same.
  host_.script.register_function("park_for", [](vrn_vm_context& context, int how) {
    EXPECT_FALSE(task_wake(*context.task));
    if (how == 1) schedule(*context.task, 1);
    task_park(context);
    EXPECT_TRUE(task_wake(*context.task, 1));
    if (how == 2) throw std::runtime_error("now");
  });
  for (const char* how : {"0", "1", "2"}) {
    const auto task = started("park_for(" + std::string(how) + "); print('goes on');");
    EXPECT_EQ(tick(), strings());
    EXPECT_EQ(task->reference_count, *how == '2' ? 1U : 2U);
    EXPECT_EQ(tick(1).size(), *how == '2' ? 0U : 1U);
  }
}

// Calls of functions by the host.
TEST_F(scheduler_test, functions_called_by_name) {
  programs_.push_back(host_.load(
      "add(a, b) { x = a + b; x } one(a) { print(a); sleep(9); a }"
      "outer() { inner() { fail('now') } print('outer'); inner(); } x = 0; other = add;"));
  const vrn_program& program = programs_.back();
  const auto result = [&](const char* name, const std::vector<vrnvar_shared>& arguments) {
    host_.log->records.clear();
    const auto task = task_create(program, name, arguments);
    if (!task) return errors().back();
    task_run(*task, 0);
    tick();
    const vrnvar_shared value = task_result(*task);
    return value ? value->to_text() : "empty";
  };
  const vrnvar_shared changing = var_int(1);
  EXPECT_EQ(result("other", {}), "Cannot find function other");  // until the program has run
  host_.run({program});
  EXPECT_EQ(result("add", {changing, var_int(2), var_none()}),
            "Too many arguments for function add (3 given, 2 taken)");
  EXPECT_EQ(result("other", {changing, var_float(2)}), "3.000000");
  EXPECT_EQ(result("add", {var_int(9), var_int(2)}), "empty");
  const auto add = program->main->function("add");
  EXPECT_EQ(add.get()->variable("a")->to_text(), "1");
  program_rewind(program);
  EXPECT_EQ(result("add", {var_string("text")}), "text");
  EXPECT_TRUE(program->main->function("outer").get()->function("inner").get());

  // Arguments and results are copies, also where a variable goes on to change.
  const auto first = task_create(program, "one", {changing});
  const auto second = task_create(program, "one", {var_int(7)});
  changing->set_int(5);
  task_run(*first, 0);
  task_run(*second, 1);
  EXPECT_EQ(tick(), strings{"1"});
  EXPECT_EQ(tick(1), strings());
  EXPECT_EQ(errors(), strings{"Parallelism not implemented yet!"});
  EXPECT_EQ(second->outcome, vrn_task_outcome::refused);
  EXPECT_FALSE(task_result(*first));
  tick(9);
  program_rewind(program);
  task_run(*second, 0);
  EXPECT_EQ(tick(), strings{"7"});
  EXPECT_EQ(task_result(*first)->to_text(), "1");

  // One that failed further in begins at its function again.
  tick(9);
  const auto failing = task_create(program, "outer");
  for (int k = 0; k < 2; ++k) {
    task_run(*failing, 0);
    EXPECT_EQ(tick(), strings{"outer"});
    EXPECT_EQ(errors(), strings{"Task failed: now"});
    program_rewind(program);
  }
}

// A logger that throws at the last line of a task lets it end once all the same.
TEST_F(scheduler_test, a_last_line_that_throws) {
  struct throwing_log final : vrn_log_base {
    void verbose(const std::string&) override { throw std::runtime_error("no line"); }
  } log;
  const auto task = started("print(1);");
  log_override = &log;
  tick();
  log_override = nullptr;
  EXPECT_EQ(task->outcome, vrn_task_outcome::failed);
  program_rewind(programs_.back());
  task_run(*task, 0);
  EXPECT_EQ(tick(), strings{"1"});
}

}  // namespace
}  // namespace vorn::test
