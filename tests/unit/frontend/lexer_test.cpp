#include "frontend/lexer.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <vornscript/thread_state.hpp>

#include "tests/support/collecting_log.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

struct lexed {
  explicit lexed(std::string text) {
    view.text = std::move(text);
    log_override = &log;
    lines = tokenize(view);
    log_override = nullptr;
  }

  // The tokens with a blank between them, line ends as "$".
  std::string spelled() const {
    std::string result;
    for (const vrn_token& token : view.tokens) {
      if (!result.empty()) result += ' ';
      result += token->kind == vrn_token_kind::end_of_line ? "$" : std::string(token->text);
    }
    return result;
  }

  collecting_log log;
  vrn_src_token_view view;
  std::uint32_t lines;
};

TEST(lexer, cuts_the_text) {
  const std::pair<const char*, const char*> cases[] = {
      {"\n \n a // x\n\n/* y */ \nb", "a $ b"},
      {"x-=1 a<<=b a->b::c", "x -= 1 a << = b a -> b :: c"},
      {"!===&&&|||", "!= == && & || |"},
      {"1.2.3 1..2 1e5f 1ff", "1.2 .3 1. .2 1e5 f 1f f"},
      {"1E+5 1e-5.2 00x1 0xfG 0b102 0o178", "1E+5 1e-5 .2 00 x1 0xf G 0b10 2 0o17 8"},
      // Bytes after a lead byte are not checked: here an "a", a line end, a quote, a ";" in a word.
      {"\xC1\xA1;a\xC0\nb \xC0\xA2x\" y\xC3;", "\xC1\xA1 ; a $ b x y\xC3;"},
  };
  for (const auto& [text, tokens] : cases) EXPECT_EQ(lexed(text).spelled(), tokens) << text;
}

TEST(lexer, keeps_every_line) {
  const lexed result("a\n/*\n b\n*/ c '''\nd\n''' e\n");
  EXPECT_EQ(result.lines, 7u);
  strings lines;
  for (std::int32_t line = 0; line <= 8; ++line) lines.emplace_back(result.view.line_text(line));
  EXPECT_EQ(lines, (strings{"", "a", "/*", " b", "*/ c '''", "d", "''' e", "", ""}));
  EXPECT_EQ(lexed("").lines + lexed(" \n// a\n/* b */").lines, 0u);
  EXPECT_EQ(lexed("a").lines, 1u);
}

}  // namespace
}  // namespace vorn::test
