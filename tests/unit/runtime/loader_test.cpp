// What loading a program writes to the log, stage by stage.
#include <gtest/gtest.h>

#include <thread>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

// Errors are led by "! "; of a report the message is left.
strings taken(collecting_log& log) {
  strings result;
  for (const log_record& record : log.records) {
    std::string text = record.text;
    if (text.starts_with("Syntax Error ***\n")) {
      text.erase(0, text.rfind("\n*** ") + 1);
      text.erase(text.find('\n'));
    }
    result.push_back((record.level == vrn_log_level::error ? "! " : "") + text);
  }
  log.records.clear();
  return result;
}

TEST(loader_test, lines_of_the_stages) {
  const std::string loading = "Loading main.vrs";
  const std::string read = "Read 1 lines in 0 ms.";
  const std::string parsed = "AST creation took 0 ms.";
  const std::string no_map = "! token_map creation failed in 0 ms.";
  const std::pair<const char*, strings> rows[] = {
      {"", {"! Source file main.vrs is empty.", no_map}},
      {" \n\t", {loading, "! stage_1 failed.", no_map}},
      {"print(1);\n/* x", {loading, "! *** unterminated comment", "! stage_1 failed.", no_map}},
      {"print(1",
       {loading, read, "! *** Cannot find closing bracket.",
        "! command_map creation failed in 0 ms."}},
      {"x = ;", {loading, read, "! *** No value to assign to.", "! AST creation failed in 0 ms."}},
      {"x = 1; y();", {loading, read, parsed, "! *** Cannot resolve function call."}},
      {"#include \"lib\"\nx = 1;",
       {loading, "Include file: lib.vrs", "Read 5 lines in 0 ms.", parsed,
        "Bytecode creation took 0 ms (8 instructions)."}},
      {";", {loading, read, parsed, "Bytecode creation took 0 ms (0 instructions)."}},
  };
  script_host host;
  host.files->add("lib.vrs", "y =\n2;\n");
  for (const auto& [text, lines] : rows) {
    const bool loaded = host.load(text) != nullptr;
    EXPECT_EQ(taken(*host.log), lines);
    EXPECT_EQ(loaded, lines.back().starts_with("Bytecode"));
  }
  EXPECT_EQ(host.loader.instruction_count(), 0U);
}

TEST(loader_test, names) {
  script_host host;
  EXPECT_FALSE(host.loader.create_program("no/such\\file.vrs"));
  EXPECT_EQ(taken(*host.log), strings{"! Cannot find script file no/such\\file.vrs"});
  EXPECT_FALSE(host.loader.create_program("", ""));
  EXPECT_EQ(taken(*host.log)[0], "! Source file <memory> is empty.");
  EXPECT_FALSE(host.loader.create_program(")", ""));
  EXPECT_NE(host.log->records[2].text.find(" --> <memory>:1:0\n"), std::string::npos);
  EXPECT_EQ(taken(*host.log)[0], "Loading <memory>");
  EXPECT_TRUE(host.loader.create_program("1;", "given"));
  EXPECT_EQ(taken(*host.log)[0], "Loading given");
  // Files come from the interpreter of the calling thread.
  host.files->add("main.vrs", "1;");
  std::thread([&host] {
    log_override = host.log.get();
    EXPECT_FALSE(host.loader.create_program("main.vrs"));
  }).join();
  EXPECT_EQ(taken(*host.log), strings{"! Cannot find script file main.vrs"});
}

// Every reading is a millisecond after the one before.
class ticking_clock final : public vrn_clock {
 public:
  std::uint64_t wall_ticks() const override { return now_ += 10'000; }

 private:
  mutable std::uint64_t now_ = 9'999;
};

TEST(loader_test, times_run_from_the_first_stage) {
  const auto log = std::make_shared<collecting_log>();
  vrnscript script({nullptr, log, true, "", std::make_shared<ticking_clock>()});
  vrn_program_loader loader(script);
  EXPECT_TRUE(loader.create_program("1;", "a"));
  EXPECT_EQ(taken(*log), (strings{"Loading a", "Read 1 lines in 1 ms.", "AST creation took 3 ms.",
                                  "Bytecode creation took 1 ms (1 instructions)."}));
  EXPECT_FALSE(loader.create_program(")", "a"));
  EXPECT_EQ(taken(*log).back(), "! command_map creation failed in 3 ms.");
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
