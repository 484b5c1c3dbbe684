#include "frontend/report.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <vornscript/thread_state.hpp>

#include "tests/support/collecting_log.hpp"

namespace vorn::test {
namespace {

const std::string header =
    "Syntax Error ***\n------------------------------------------------------------\n";
const std::string footer = "\n------------------------------------------------------------";

class reports : public testing::Test {
 protected:
  reports() { log_override = &log_; }
  ~reports() override { log_override = nullptr; }

  std::string last() const { return log_.texts(vrn_log_level::error).back(); }

 private:
  collecting_log log_;
};

TEST_F(reports, layout) {
  report_unterminated_comment(vrn_src_place{"a.vrs", 12, 4, "    x = 1e\ny"});
  EXPECT_EQ(last(), header +
                        "  --> a.vrs:12:4\n    |\n 12 | x = 1e\n    | ^~~~~\n    |\n\n"
                        "*** unterminated comment" +
                        footer);
  // Kept whole when the place is in the indentation or there is nothing else.
  report_function_exists(vrn_src_place{"", 7, 1, "  x"}, "f");
  EXPECT_EQ(last(), header +
                        " --> :7:1\n   |\n 7 |   x\n   |  ^~~~~\n   |\n\n"
                        "*** Function f already exists in this scope." +
                        footer);
  report_no_closer(vrn_src_place{"b", 100, 2, "   "});
  EXPECT_EQ(last(), header +
                        "   --> b:100:2\n     |\n 100 |    \n     |   ^~~~~\n     |\n\n"
                        "*** Cannot find closing bracket." +
                        footer);
  // No caret past the end of what is shown.
  report_invalid_closer(vrn_src_place{"b", 1, 3, "  x\n  long"}, "]");
  EXPECT_EQ(last(),
            header + " --> b:1:3\n   |\n 1 | x\n   |\n\n*** Invalid closing bracket: ]" + footer);
  report_no_closer(vrn_src_place{"b", 1, 0, ""});
  EXPECT_EQ(last(),
            header + " --> b:1:0\n   |\n 1 | \n   |\n\n*** Cannot find closing bracket." + footer);
}

TEST_F(reports, of_tokens_show_their_line_and_the_files_around) {
  vrn_src_token_view views[3];
  for (std::uint32_t i = 0; i < 3; ++i) {
    views[i].name = std::string(1, static_cast<char>('a' + i));
    views[i].text = "first\n  second\nthird";
    views[i].lines = {0, 6, 15};
    if (i == 0) continue;
    views[i].parent = &views[i - 1];
    views[i].included_at = views[i - 1].store.make<vrn_src_token>(vrn_src_token{
        vrn_token_kind::string, static_cast<std::int32_t>(i), i, 0, "", &views[i - 1]});
  }
  vrn_src_token token{vrn_token_kind::word, 2, 2, 8, "second", &views[0]};
  report_cannot_parse_token(token, token.text);
  EXPECT_EQ(last(), header +
                        " --> a:2:2\n   |\n 2 | second\n   | ^~~~~\n   |\n\n"
                        "*** Cannot parse token: second" +
                        footer);
  token.source = &views[2];
  report_unknown_symbol(token);
  EXPECT_EQ(last(), header +
                        " --> c:2:2\n   |\n 2 | second\n   | ^~~~~\n   |\n\n"
                        "*** Unknown symbol.\n"
                        "|-- a --> Line 1, Index 1\n"
                        "|-- b --> Line 2, Index 2\n"
                        "`--> c --> Line 2, Index 2\n"
                        ">>> second" +
                        footer);
  token.source = nullptr;
  report_node_without_token(token);
  EXPECT_EQ(last(), header +
                        " --> :2:2\n   |\n 2 | \n   |\n\n"
                        "*** While handling an error, a token without AST was passed." +
                        footer);
}

TEST_F(reports, need_the_error_level) {
  collecting_log quiet;
  quiet.level_mask = vrn_log_all & ~static_cast<std::uint32_t>(vrn_log_level::error);
  log_override = &quiet;
  report_no_closer(vrn_src_place{"b", 1, 0, ""});
  EXPECT_TRUE(quiet.records.empty());
}

}  // namespace
}  // namespace vorn::test
