#include "frontend/report.hpp"

#include <gtest/gtest.h>

#include <string>

#include <vornscript/thread_state.hpp>

#include "tests/support/collecting_log.hpp"

namespace vorn::test {
namespace {

// The block's lines between the header and the closing rule.
std::string block_of(const auto& report) {
  collecting_log log;
  log_override = &log;
  report();
  log_override = nullptr;
  const std::string rule(60, '-');
  const std::string header = "Syntax Error ***\n" + rule + '\n';
  const std::string block = log.texts(vrn_log_level::error).at(0);
  if (!block.starts_with(header) || !block.ends_with('\n' + rule)) return "no frame: " + block;
  return block.substr(header.size(), block.size() - header.size() - rule.size() - 1);
}

TEST(report, shows_a_place) {
  const auto shown = [](const vrn_src_place& place) {
    return block_of([&] { report_function_exists(place, "f"); });
  };
  const std::string message = "   |\n\n*** Function f already exists in this scope.";
  EXPECT_EQ(shown({"a b", 7, 3, "  x = 1\n  y"}),
            " --> a b:7:3\n   |\n 7 | x = 1\n   |  ^~~~~\n" + message);
  // A line is kept whole when the place is in front of it, or it is all blank.
  EXPECT_EQ(shown({"", 7, 1, "  x"}), " --> :7:1\n   |\n 7 |   x\n   |  ^~~~~\n" + message);
  EXPECT_EQ(shown({"", 7, 2, "   "}), " --> :7:2\n   |\n 7 |    \n   |   ^~~~~\n" + message);
  EXPECT_EQ(shown({"", 7, 3, "  x\n    y"}), " --> :7:3\n   |\n 7 | x\n" + message);
  EXPECT_EQ(shown({"", 7, 0, ""}), " --> :7:0\n   |\n 7 | \n" + message);
}

TEST(report, shows_a_token_without_a_file) {
  const vrn_src_token token{vrn_token_kind::word, 100, 2, 0, "x", nullptr};
  EXPECT_EQ(block_of([&] { report_no_closer(token); }),
            "   --> :100:2\n     |\n 100 | \n     |\n\n*** Cannot find closing bracket.");
}

TEST(report, needs_the_error_level) {
  collecting_log quiet;
  quiet.level_mask = vrn_log_all & ~static_cast<std::uint32_t>(vrn_log_level::error);
  log_override = &quiet;
  report_no_closer(vrn_src_place{"b", 1, 0, ""});
  log_override = nullptr;
  EXPECT_TRUE(quiet.records.empty());
}

}  // namespace
}  // namespace vorn::test
