#include <vornscript/vrnscript.hpp>

#include <atomic>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

using strings = std::vector<std::string>;
using test::script_host;

const std::string still_allocated = "There are still pool chunks allocated!";

TEST(vrnscript_test, one_for_each_thread) {
  script_host host;
  EXPECT_EQ(current_script, &host.script);
  EXPECT_EQ(thread_name(), "TEST");
  const auto logger = std::make_shared<test::collecting_log>();
  try {
    const vrnscript second({nullptr, logger, true, "SECOND", nullptr});
    ADD_FAILURE() << "made a second one";
  } catch (const std::runtime_error& refusal) {
    EXPECT_STREQ(refusal.what(), "There can only be one script interpreter per thread!");
  }
  EXPECT_EQ(logger.use_count(), 1);
  EXPECT_EQ(current_script, &host.script);
  EXPECT_EQ(thread_name(), "TEST");
  EXPECT_EQ(host.output_of("print(1 + 2)"), strings{"3"});
}

TEST(vrnscript_test, defaults) {
  const auto log = std::make_shared<test::collecting_log>();
  log_override = log.get();
  {
    const vrnscript script({nullptr, nullptr, true, "", nullptr});
    EXPECT_EQ(script.logger().level_mask, 63U);
    EXPECT_EQ(&current_clock(), &script.clock());
    EXPECT_FALSE(script.filesys().exists("anything"));
    EXPECT_EQ(script.state().functions.size(), 29U);
  }
  log_override = nullptr;
  EXPECT_EQ(current_script, nullptr);
  EXPECT_TRUE(log->records.empty());
  EXPECT_TRUE(vrnscript({nullptr, log, false, "", nullptr}).state().functions.empty());
}

// Tasks are let go before the pools, native functions after them. What outlives the interpreter is
// told of, and may then be released with or without another one.
TEST(vrnscript_test, ends_before_its_programs) {
  for (const bool has_successor : {false, true}) {
    std::optional<script_host> host(std::in_place);
    const auto log = host->log;
    host->script.register_std_function(
        "kept", [value = var_string("kept")](auto&, auto&) { return value; }, 0, 0);
    vrn_program program = host->load("x = kept(); same(a) { a } print(same(x)); sleep(1000)");
    ASSERT_TRUE(program);
    vrn_ref<vrn_task> task = task_create(program);
    task_run(*task, 0);
    host->script.tick();
    EXPECT_EQ(task->reference_count, 2U);
    vrnvar_shared value = program->main->variable("x");
    host.reset();
    EXPECT_EQ(log->texts(vrn_log_level::error),
              (strings{"The interpreter ends before its programs: 3 program blocks are still held.",
                       still_allocated, still_allocated, still_allocated}));
    EXPECT_EQ(task->reference_count, 1U);
    if (has_successor) host.emplace();
    EXPECT_EQ(value->to_text(), "kept");
    program.reset();
    value = {};
    task = {};
    if (has_successor) {
      EXPECT_EQ(host->output_of("print(\"fine\")"), strings{"fine"});
      EXPECT_EQ(host->log->texts(vrn_log_level::error), strings());
    }
  }
}

TEST(vrnscript_test, programs_keep_the_native_functions_that_they_call) {
  script_host host;
  std::vector<vrn_program> programs;
  for (const char* text : {"first", "second"}) {
    host.script.register_std_function(
        "mine", [text](auto&, auto&) { return var_string(text); }, 0, 0);
    programs.push_back(host.load("print(mine())"));
  }
  ASSERT_TRUE(host.run(programs));
  EXPECT_EQ(host.log->texts(vrn_log_level::out), (strings{"first", "second"}));
}

TEST(vrnscript_test, takes_back_in_its_tick_what_other_threads_drop) {
  script_host host;
  const vrn_value_pools& pools = host.script.state().pools;
  std::atomic<int> running = 3;
  std::vector<std::thread> threads(3);
  for (std::thread& thread : threads) {
    std::vector<vrnvar_shared> dropped(2500);
    for (auto& value : dropped) value = var_string("theirs");
    const bool has_interpreter = &thread == threads.data();
    thread = std::thread([&running, has_interpreter, dropped = std::move(dropped)]() mutable {
      std::optional<script_host> own;
      if (has_interpreter) own.emplace();
      dropped.clear();
      --running;
    });
  }
  EXPECT_EQ(pools.strings.live_count(), 7500U);
  while (running > 0) {
    host.script.tick();
    EXPECT_EQ(var_string("mine")->to_text(), "mine");
  }
  for (std::thread& thread : threads) thread.join();
  host.script.tick();
  EXPECT_EQ(pools.values.live_count() + pools.strings.live_count(), 0U);
  EXPECT_EQ(host.log->texts(vrn_log_level::error), strings());
}

}  // namespace
}  // namespace vorn
