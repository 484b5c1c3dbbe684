#include "frontend/lexer.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <vornscript/thread_state.hpp>

#include "frontend/operator_set.hpp"
#include "tests/support/collecting_log.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;
using namespace std::literals;

struct lexed {
  explicit lexed(std::string text) {
    view.name = "a.vrs";
    view.text = std::move(text);
    log_override = &log;
    lines = tokenize(view);
    log_override = nullptr;
  }

  // The tokens: words as they are, <symbols>, "strings", line ends as "$".
  std::string spelled() const {
    std::string result;
    for (const vrn_token& token : view.tokens) {
      if (!result.empty()) result += ' ';
      const std::string text(token->text);
      switch (token->kind) {
        case vrn_token_kind::symbol:
          result += '<' + text + '>';
          break;
        case vrn_token_kind::string:
          result += '"' + text + '"';
          break;
        case vrn_token_kind::end_of_line:
          result += '$';
          break;
        default:
          result += text;
      }
    }
    return result;
  }

  // Where the tokens are: "line:column@index", led by "_" after a blank.
  std::string places() const {
    std::string result;
    for (const vrn_token& token : view.tokens) {
      if (!result.empty()) result += ' ';
      if (token->space_before) result += '_';
      result += std::to_string(token->line) + ':' + std::to_string(token->column) + '@' +
                std::to_string(token->index);
    }
    return result;
  }

  collecting_log log;
  vrn_src_token_view view;
  std::uint32_t lines;
};

struct spelling_case {
  std::string text;
  std::string_view tokens;
};

TEST(lexer, cuts_the_text) {
  const std::vector<spelling_case> cases = {
      {"a\n\n\nb", "a $ b"},
      {"\n \n a // x\n\t/* y */ \n", "a $"},
      {"x-=1 a<<=b a->b::c", "x <-=> 1 a <<<> <=> b a <->> b <::> c"},
      {"!===&&&|||", "<!=> <==> <&&> <&> <||> <|>"},
      {"(a,b);{}[]#\\@", "<(> a <,> b <)> <;> <{> <}> <[> <]> <#> <\\> <@>"},
      {"a...b a.5 .5.3", "a <.> <.> <.> b a .5 .5.3"},
      {"1.2.3 1..2 1.5f 1f 1e5f 1ff", "1.2 .3 1. .2 1.5f 1f 1e5 f 1f f"},
      {"1e5 1E+5 1e-5.2 12abc 00x1", "1e5 1E+5 1e-5 .2 12 abc 00 x1"},
      {"0x 0xfG 0XAf9 0b102 0B 0o178 0", "0x 0xf G 0XAf9 0b10 2 0B 0o17 8 0"},
      {"_a1 größe a\u00A0b \u2003c\uFEFFd", "_a1 größe a\u00A0b c\uFEFFd"},
      {R"("a" 'b"' '' "\"\\" 'a'b)", R"("a" "b"" "" "\"\\" "a" b)"},
      {R"('''a''b\''''c """""")", R"("a''b\'" c "")"},
      {"'''a\n''' 'b\\\nc'", "\"a\n\" \"b\\\nc\""},
      {"a /* * / // '\n*/ b /**/ /*/*/ c", "a b c"},
      {"\xFF\x80 a\xE2\x82", "\xFF\x80 a\xE2\x82"},
      {"a\0b"s, "a <\0> b"sv},
      // Bytes after a lead byte are not checked: here an "a", a line end, a quote, a ";" in a word.
      {"\xC1\xA1;a\xC0\nb \xC0\xA2x\" y\xC3;", "\xC1\xA1 <;> a $ b \"x\" y\xC3;"},
      {"\xC0\xAF/ c\xC0", "<\xC0\xAF> </> c <\xC0>"},
      {"a // \xE2\n/* \xF0*/ b", "a $ b"},
  };
  for (const auto& [text, tokens] : cases) {
    const lexed result(text);
    EXPECT_EQ(result.spelled(), tokens) << text;
    EXPECT_EQ(result.log.records.size(), 0u) << text;
  }
}

TEST(lexer, knows_exactly_the_operators) {
  const std::set<std::string_view> known(operator_spellings.begin(), operator_spellings.end());
  EXPECT_EQ(known.size(), 20u);
  for (int pair = 0; pair < 128 * 128; ++pair) {
    const std::string text = {static_cast<char>(pair / 128), static_cast<char>(pair % 128), '='};
    EXPECT_EQ(operators.match(text), known.contains(text.substr(0, 2)) ? 2u : 0u) << text;
  }
}

TEST(lexer, places_tokens) {
  const std::vector<spelling_case> cases = {
      {"a b\n  c(d)", "_1:0@0 _1:2@2 1:3@3 _2:2@6 2:3@7 2:4@8 2:5@9"},
      {"ä 'ö'ü+=1", "_1:0@0 1:2@3 1:5@7 1:6@9 1:8@11"},
      {" 1 'a' \"b\"/**/c /**/ d", "1:1@1 1:3@3 1:7@7 1:14@14 _1:21@21"},
      // A symbol is as wide as its bytes; a string's line is that of its end.
      {"\xC0\xAB x", "_1:0@0 _1:3@3"},
      {"'''a\n\nb''' c", "3:0@0 _3:5@11"},
      // A line end behind a backslash is not counted.
      {"'a\\\nb' c\nd", "1:0@0 _1:7@7 1:8@8 _2:0@9"},
      {"/*ä\xFF\n ä\xFF*/ x // ä\xFF\ny", "_2:6@13 2:13@21 _3:0@22"},
  };
  for (const auto& [text, places] : cases) EXPECT_EQ(lexed(text).places(), places) << text;
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
