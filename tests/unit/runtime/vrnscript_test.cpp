#include <vornscript/vrnscript.hpp>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "compiler/registry.hpp"
#include "tests/support/script_host.hpp"

// In a shared library with hidden names; see border/border.cpp.
extern "C" const void* resolve_beyond_border(const vorn::vrnptr_base& handle);

namespace vorn {
namespace {

using strings = std::vector<std::string>;
using test::script_host;

TEST(vrnscript_test, one_for_each_thread) {
  const script_host host;
  std::string refusal;
  try {
    vrnscript({});
  } catch (const std::runtime_error& thrown) {
    refusal = thrown.what();
  }
  EXPECT_EQ(refusal, "There can only be one script interpreter per thread!");
  EXPECT_EQ(current_script, &host.script);
}

// Tasks are let go before the pools, native functions after them. What outlives the interpreter is
// told of, and may then be released, also under another one.
TEST(vrnscript_test, ends_before_its_programs) {
  std::optional<script_host> host(std::in_place);
  const auto log = host->log;
  vrnptr<vrn_program_block_routine> handle;
  const auto at_end = [&handle](void*) {
    EXPECT_EQ(handle.get(), nullptr);
    log_line(vrn_log_level::warning, var_string("a text that stands on the heap")->to_text());
  };
  host->script.register_std_function(
      "f", [capture = std::shared_ptr<void>(nullptr, at_end)](auto&, auto&) { return var_none(); },
      0, 0);
  host->script.register_std_function(
      "kept", [value = var_string("kept")](auto&, auto&) { return value; }, 0, 0);
  vrn_program program = host->load("x = kept(); same(a) { a } print(same(x)); sleep(1000)");
  handle = program->main->handle();
  vrn_ref<vrn_task> task = task_create(program);
  task_run(*task, 0);
  host->script.tick();
  vrnvar_shared value = program->main->variable("x");
  host.reset();
  strings expected(4, "There are still pool chunks allocated!");
  expected[0] = "The interpreter ends before its programs: 3 program blocks are still held.";
  EXPECT_EQ(log->texts(vrn_log_level::error), expected);
  EXPECT_EQ(log->records.back().text, "a text that stands on the heap");
  EXPECT_EQ(task->reference_count, 1U);
  EXPECT_TRUE(!current_script && !log_override);
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

// It gives back its argument only where nobody else holds it.
TEST(vrnscript_test, print_gives_a_text_of_its_own) {
  script_host host;
  const vrn_native change = [](auto&, auto& given) {
    given[0]->set_string("changed");
    return given[0];
  };
  host.script.register_std_function("change", change, 1, 1);
  EXPECT_EQ(host.output_of("x = 'a'; change(print(x)); print(x);"), (strings{"a", "a"}));
}

// A class with virtual functions, whose registered base stands behind another.
struct has_functions {
  virtual ~has_functions() = default;
};
struct registered : has_functions, vrnptr_register<registered, vrnptr_base> {};

TEST(vrnscript_test, what_handles_mean) {
  using routine = vrn_program_block_routine;
  const script_host host;
  auto program = std::make_shared<vrn_program_block_root>();
  const auto root = program->handle();
  const auto main = program->main->handle();
  EXPECT_EQ(root.get(), program.get());
  EXPECT_EQ(main.get(), program->main.get());
  EXPECT_EQ(resolve_beyond_border(main), program->main.get());
  EXPECT_EQ(vrnptr<routine>(main.index, vrnptr_base::none).get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index + 1, main.generation).get(), nullptr);
  // Registered as another type.
  EXPECT_EQ(vrnptr<routine>(root).get(), nullptr);
  const registered object;
  EXPECT_EQ(object.handle().get(), &object);
  // A thread without an interpreter has no registry.
  std::thread([&main] { EXPECT_EQ(main.get(), nullptr); }).join();
  // Indexes are used again under new generations.
  program.reset();
  EXPECT_EQ(host.script.state().registry->size(), 1U);
  program = std::make_shared<vrn_program_block_root>();
  EXPECT_LT(program->main->handle().index, 3U);
  EXPECT_EQ(root.get(), nullptr);
  EXPECT_EQ(main.get(), nullptr);
  EXPECT_EQ(program->main->handle().get(), program->main.get());
}

TEST(vrnscript_test, log_override_wins_over_interpreter_wins_over_silence) {
  vrn_log_base* const silent = &get_log();
  test::collecting_log overriding;
  const script_host host;
  EXPECT_EQ(&get_log(), host.log.get());
  std::thread([silent] { EXPECT_EQ(&get_log(), silent); }).join();
  log_override = &overriding;
  EXPECT_EQ(&get_log(), &overriding);
  log_override = nullptr;
}

}  // namespace
}  // namespace vorn
