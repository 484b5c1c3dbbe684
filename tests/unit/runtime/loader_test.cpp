// What loading a program writes to the log, stage by stage.
#include <gtest/gtest.h>

#include "parser/ast.hpp"
#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

strings taken(collecting_log& log) {
  strings result;
  for (const log_record& record : log.records) result.push_back(record.text);
  log.records.clear();
  return result;
}

TEST(loader_test, names) {
  script_host host;
  EXPECT_FALSE(host.loader.create_program("no/such\\file.vrs"));
  EXPECT_EQ(taken(*host.log), strings{"Cannot find script file no/such\\file.vrs"});
  EXPECT_FALSE(host.loader.create_program("", ""));
  EXPECT_EQ(taken(*host.log)[0], "Source file <memory> is empty.");
  EXPECT_TRUE(host.loader.create_program("1;", ""));
  EXPECT_EQ(taken(*host.log)[0], "Loading <memory>");
  EXPECT_TRUE(host.loader.create_program("1;", "given"));
  const strings lines = taken(*host.log);
  EXPECT_EQ(lines[0], "Loading given");
  EXPECT_EQ(lines.back(), "Bytecode creation took 0 ms (1 instructions).");
}

// Whatever is looked for is there, and cannot be read.
class failing_filesys final : public vrn_filesys {
 public:
  failing_filesys() { search_paths_add(""); }
  bool exists(const std::string&) const override { return true; }
  void read(const std::string& path, std::string&) const override { throw path; }
};

TEST(loader_test, what_a_file_system_throws_comes_through) {
  vrnscript script({.filesys = std::make_shared<failing_filesys>()});
  EXPECT_THROW(vrn_program_loader(script).create_program("a"), std::string);
  EXPECT_THROW(vrn_program_loader(script).create_program("#include 'b'", "a"), std::string);
}

TEST(loader_test, the_tree_knows_its_files) {
  script_host host;
  host.files->add("sub/part.vrs", "2;");
  const vrn_program program = host.load("#include \"sub/part\"\n1;");
  ASSERT_TRUE(program);
  for (const auto& [path, name] : program->ast->source->included) {
    ASSERT_TRUE(name) << path;
    EXPECT_EQ(*name, path);
  }
}

TEST(loader_test, times_run_from_the_first_stage) {
  script_host host;
  host.clock->wall_step_ms = 1;
  EXPECT_TRUE(host.loader.create_program("1;", "a"));
  EXPECT_EQ(taken(*host.log),
            (strings{"Loading a", "Read 1 lines in 1 ms.", "AST creation took 3 ms.",
                     "Bytecode creation took 1 ms (1 instructions)."}));
  EXPECT_FALSE(host.loader.create_program(")", "a"));
  EXPECT_EQ(taken(*host.log).back(), "command_map creation failed in 3 ms.");
}

TEST(loader_test, levels_that_are_off_stay_silent) {
  script_host host;
  host.log->level_mask = 0;
  EXPECT_EQ(host.output_of("x = \"a\" - 1; print(x);"), strings());
  EXPECT_FALSE(host.load("print(1"));
  EXPECT_TRUE(host.log->records.empty());
}

}  // namespace
}  // namespace vorn::test
