// What loading a program writes to the log, stage by stage.
#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

TEST(loader_test, what_is_written) {
  script_host host;
  host.clock->wall_step_ms = 1;
  EXPECT_FALSE(host.loader.create_program("no/such\\file.vrs"));
  EXPECT_FALSE(host.loader.create_program("", ""));
  EXPECT_TRUE(host.loader.create_program("1;", ""));
  EXPECT_TRUE(host.loader.create_program("1;", "given"));
  host.loader.create_program("= 1", "a");
  const char* const expected[] = {
      "Cannot find script file no/such\\file.vrs",
      "Source file <memory> is empty.",
      "token_map creation failed in 2 ms.",
      "Loading <memory>",
      "Read 1 lines in 1 ms.",
      "AST creation took 3 ms.",
      "Bytecode creation took 1 ms (1 instructions).",
      "Loading given",
  };
  for (std::size_t k = 0; k < std::size(expected); ++k) {
    EXPECT_EQ(host.log->records.at(k).text, expected[k]);
  }
  EXPECT_EQ(host.log->records.back().text, "AST creation failed in 3 ms.");

  host.log->level_mask = 0;
  EXPECT_EQ(host.output_of("x = \"a\" - 1; print(x);"), std::vector<std::string>());
  EXPECT_FALSE(host.load("print(1"));
  EXPECT_TRUE(host.log->records.empty());
}

}  // namespace
}  // namespace vorn::test
