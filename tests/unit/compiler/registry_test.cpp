#include "compiler/registry.hpp"

#include <memory>
#include <optional>
#include <set>
#include <thread>
#include <utility>
#include <vector>

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
  EXPECT_EQ(host.script.state().registry->size(), 2U);
  EXPECT_EQ(vrnptr<routine>().get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index, 0).get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index, vrnptr_base::none).get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index, main.generation + 1).get(), nullptr);
  EXPECT_EQ(vrnptr<routine>(main.index + 1, main.generation).get(), nullptr);
  // Registered as another type.
  EXPECT_EQ(vrnptr<routine>(root).get(), nullptr);
  // A thread without an interpreter has no registry.
  std::thread([&main] {
    EXPECT_EQ(main.get(), nullptr);
    EXPECT_TRUE(routine(nullptr).handle().empty());
  }).join();

  program.reset();
  EXPECT_EQ(root.get(), nullptr);
  EXPECT_EQ(main.get(), nullptr);
  EXPECT_EQ(host.script.state().registry->size(), 0U);
}

TEST(registry_test, indexes_are_used_again_under_new_generations) {
  const test::script_host host;
  std::vector<std::optional<routine>> blocks(100);
  std::vector<vrnptr<routine>> given;
  for (std::size_t round = 0; round < 50; ++round) {
    for (std::size_t k = 0; k < blocks.size(); k += round % 3 + 1) {
      given.push_back(blocks[k].emplace(nullptr).handle());
    }
  }
  std::set<std::pair<std::uint32_t, std::uint32_t>> distinct;
  std::size_t alive = 0;
  for (const auto& handle : given) {
    EXPECT_LT(handle.index, blocks.size());
    EXPECT_TRUE(distinct.emplace(handle.index, handle.generation).second);
    if (handle.get()) ++alive;
  }
  EXPECT_EQ(alive, blocks.size());
  for (const auto& block : blocks) EXPECT_EQ(block->handle().get(), &*block);
}

}  // namespace
}  // namespace vorn
