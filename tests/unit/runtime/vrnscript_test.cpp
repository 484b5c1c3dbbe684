#include <vornscript/vrnscript.hpp>

#include <optional>
#include <stdexcept>
#include <thread>

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
  try {
    const vrnscript second({});
    ADD_FAILURE();
  } catch (const std::runtime_error& refusal) {
    EXPECT_STREQ(refusal.what(), "There can only be one script interpreter per thread!");
  }
  EXPECT_EQ(current_script, &host.script);
}

// What outlives the interpreter is told of, and may then be released, also under another one.
TEST(vrnscript_test, ends_before_its_programs) {
  std::optional<script_host> host(std::in_place);
  const auto log = host->log;
  host->script.register_function("kept", [value = var_string("kept")] { return value; });
  vrn_program program = host->load("x = kept(); same(a) { a } print(same(x)); sleep(1000)");
  vrn_ref<vrn_task> task = task_create(program);
  task_run(*task, 0);
  host->script.tick();
  vrnvar_shared value = program->main->variable("x");
  host.reset();
  strings expected(4, "There are still pool chunks allocated!");
  expected[0] = "The interpreter ends before its programs: 3 program blocks are still held.";
  EXPECT_EQ(log->texts(vrn_log_level::error), expected);
  EXPECT_EQ(program->main->handle().get(), nullptr);
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
  for (const std::string_view text : {"first", "second"}) {
    host.script.register_function("mine", [text] { return text; });
    programs.push_back(host.load("print(mine())"));
  }
  ASSERT_TRUE(host.run(programs));
  EXPECT_EQ(host.log->texts(vrn_log_level::out), (strings{"first", "second"}));
}

// It gives back its argument only where nobody else holds it.
TEST(vrnscript_test, print_gives_a_text_of_its_own) {
  script_host host;
  host.script.register_function("change",
                                [](const vrnvar_shared& text) { text->set_string("changed"); });
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
  EXPECT_TRUE(!root.get() && !main.get());
}

}  // namespace
}  // namespace vorn
