#include <vornscript/vrnscript.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

using strings = std::vector<std::string>;
using test::script_host;

TEST(vrnscript_test, one_for_each_thread) {
  script_host host;
  try {
    const vrnscript second({nullptr, nullptr, true, "SECOND", nullptr});
    ADD_FAILURE() << "made a second one";
  } catch (const std::runtime_error& refusal) {
    EXPECT_STREQ(refusal.what(), "There can only be one script interpreter per thread!");
  }
  EXPECT_EQ(current_script, &host.script);
}

// Tasks are let go before the pools, native functions after them. What outlives the interpreter is
// told of, and may then be released, also under another one.
TEST(vrnscript_test, ends_before_its_programs) {
  std::optional<script_host> host(std::in_place);
  const auto log = host->log;
  host->script.register_std_function(
      "kept", [value = var_string("kept")](auto&, auto&) { return value; }, 0, 0);
  vrn_program program = host->load("x = kept(); same(a) { a } print(same(x)); sleep(1000)");
  vrn_ref<vrn_task> task = task_create(program);
  task_run(*task, 0);
  host->script.tick();
  vrnvar_shared value = program->main->variable("x");
  host.reset();
  strings expected(4, "There are still pool chunks allocated!");
  expected[0] = "The interpreter ends before its programs: 3 program blocks are still held.";
  EXPECT_EQ(log->texts(vrn_log_level::error), expected);
  EXPECT_EQ(task->reference_count, 1U);
  host.emplace();
  program.reset();
  value = {};
  task = {};
  EXPECT_EQ(host->log->texts(vrn_log_level::error), strings());
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

}  // namespace
}  // namespace vorn
