#include "compiler/registry.hpp"

#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

using routine = vrn_program_block_routine;

TEST(registry_test, what_handles_mean) {
  const test::script_host host;
  auto program = std::make_shared<vrn_program_block_root>();
  const auto root = program->handle();
  const auto main = program->main->handle();
  EXPECT_EQ(root.get(), program.get());
  EXPECT_EQ(main.get(), program->main.get());
  EXPECT_EQ(vrnptr<routine>().get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index, vrnptr_base::none).get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index + 1, main.generation).get(), nullptr);
  // Registered as another type.
  EXPECT_EQ(vrnptr<routine>(root).get(), nullptr);
  // A thread without an interpreter has no registry.
  std::thread([&main] { EXPECT_EQ(main.get(), nullptr); }).join();
  // Indexes are used again under new generations.
  program.reset();
  EXPECT_EQ(host.script.state().registry->size(), 0U);
  program = std::make_shared<vrn_program_block_root>();
  EXPECT_LT(program->main->handle().index, 2U);
  EXPECT_EQ(root.get(), nullptr);
  EXPECT_EQ(main.get(), nullptr);
  EXPECT_EQ(program->main->handle().get(), program->main.get());
}

}  // namespace
}  // namespace vorn
