#include "frontend/command_map.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <vornscript/thread_state.hpp>

#include "frontend/lexer.hpp"
#include "frontend/nesting.hpp"
#include "tests/support/collecting_log.hpp"

namespace vorn::test {
namespace {

void append_list(std::string& dump, const vrn_command_list& list);

// A command: its tokens with blanks between them, groups as "( ... )" by their kinds, the commands
// in them closed by ";", and "D", "C" or "L" in front of a define, conditional or loop.
void append_command(std::string& dump, const vrn_src_command& command) {
  dump += std::array{"", "D ", "C ", "L "}.at(static_cast<std::size_t>(command.kind) - 1);
  std::size_t groups = 0;
  for (const vrn_token& token : command.tokens) {
    const auto shape = static_cast<std::size_t>(token->kind) -
                       static_cast<std::size_t>(vrn_token_kind::group_paren);
    if (shape > 2) {
      dump += std::string(token->text) + ' ';
      continue;
    }
    EXPECT_EQ(token->command, groups++);
    EXPECT_FALSE(token->space_before);
    dump += std::string(1, "([{"[shape]) + ' ';
    append_list(dump, command.group(*token));
    dump += std::string(1, ")]}"[shape]) + ' ';
  }
  EXPECT_EQ(command.groups.size(), groups);
}

void append_list(std::string& dump, const vrn_command_list& list) {
  for (const vrn_command& command : list) {
    append_command(dump, *command);
    dump += "; ";
  }
}

struct mapped {
  explicit mapped(std::string text) {
    auto view = std::make_shared<vrn_src_token_view>();
    view->text = std::move(text);
    log_override = &log;
    tokenize(*view);
    map = create_command_map(std::move(view));
    log_override = nullptr;
    if (map) append_list(dump, map->commands);
    if (!dump.empty()) dump.pop_back();
  }

  // The one report, as "line:column message".
  std::string error() const {
    const auto reports = log.texts(vrn_log_level::error);
    if (reports.size() != 1 || map) return "no single error";
    const std::string& text = reports[0];
    const std::size_t place = text.find("--> :") + 5;
    const std::size_t message = text.find("\n*** ") + 5;
    return text.substr(place, text.find('\n', place) - place) + ' ' +
           text.substr(message, text.find('\n', message) - message);
  }

  collecting_log log;
  std::shared_ptr<vrn_src_command_map> map;
  std::string dump;
};

struct map_case {
  std::string text;
  std::string_view expected;
};

TEST(command_map, groups_tokens) {
  const std::vector<map_case> cases = {
      {"", ""},
      {";;\n;", ""},
      {"a = 1\nb = 2", "a = 1 b = 2 ;"},
      {"f(x); g(y);", "f ( x ; ) ; g ( y ; ) ;"},
      {"f(); a[]; {}", "f ( ) ; a [ ] ; { } ;"},
      {"f(a + 1, , b\n, (c, d)[e, f; g])", "f ( a + 1 ; b ; ( c ; d ; ) [ e , f ; g ; ] ; ) ;"},
      {"a, b; {c, d}", "a , b ; { c , d ; } ;"},
      // A block ends its command within braces and at the top only.
      {"{a; b;} {{c} d} e", "{ a ; b ; } ; { { c ; } ; d ; } ; e ;"},
      {"({a} b, [{c} d])", "( { a ; } b ; [ { c ; } d ; ] ; ) ;"},
      {"f(a) {b\n} \n g", "f ( a ; ) { b ; } ; g ;"},
      // Strings and parts of operators are neither brackets nor separators.
      {"')' '(' ';' # 'if'", ") ( ; # if ;"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(mapped(text).dump, expected) << text;
}

TEST(command_map, gathers_conditionals_and_loops) {
  const std::vector<map_case> cases = {
      {"if (a) {b; c;} d", "C if ( a ; ) { b ; c ; } ; d ;"},
      {"if\n(a)\nb\n;\nelse\nc;", "C if ( a ; ) { b ; } else { c ; } ;"},
      {"if(a){} else if(b){c} else if(d) e; else {f} g",
       "C if ( a ; ) { } else if ( b ; ) { c ; } else if ( d ; ) { e ; } else { f ; } ; g ;"},
      {"if (a) if (b) x; else y; z", "C if ( a ; ) { C if ( b ; ) { x ; } else { y ; } ; } ; z ;"},
      {"if (a) for (;b;) if (c) d; else e;",
       "C if ( a ; ) { L for ( b ; ) { C if ( c ; ) { d ; } else { e ; } ; } ; } ;"},
      {"for (i = 0; i < 3; i++) {x} for (a) b",
       "L for ( i = 0 ; i < 3 ; i ++ ; ) { x ; } ; "
       "L for ( a ; ) { b ; } ;"},
      // A missing body has no token.
      {"if (a)", "C if ( a ; ) ;"},
      {"if (a); else; for ();", "C if ( a ; ) else ; L for ( ) ;"},
      {"f(if (a) b, c)", "f ( C if ( a ; ) { b ; } ; c ; ) ;"},
      {"if (a) f(b) {c} d", "C if ( a ; ) { f ( b ; ) { c ; } ; } ; d ;"},
      {"a if (b) {c}", "a if ( b ; ) { c ; } ;"},
      {"iff (a); 'if' (b); 'else'", "iff ( a ; ) ; if ( b ; ) ; else ;"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(mapped(text).dump, expected) << text;
  const mapped result("if (a)\n  b;");
  const vrn_src_token& body = *result.map->commands.at(0)->tokens.at(2);
  EXPECT_EQ(body.line * 100 + static_cast<std::int32_t>(body.column), 202);
  EXPECT_EQ(body.text, "b");
}

struct define_case {
  std::string text;
  std::string_view expected;
  std::string_view line;
};

TEST(command_map, keeps_defines) {
  const std::vector<define_case> cases = {
      {"#define A\nb", "D A ; b ;", "DEF A"},
      {"# define A 1; 'x y', z;\nb", "D A 1 ; x y , z ; ; b ;", "DEF A 1 ; x y , z ;"},
      {"#define A f(1, \\\n 2) \\\n\n; \\\n", "D A f ( 1 ; 2 ; ) ; ;", "DEF A f ( 1 , 2 ) ;"},
      {R"(#define A \ \ \)", R"(D A \ \ \ ;)", R"(DEF A \ \ \)"},
      {"{#define A 1} b", "{ D A 1 ; } ; b ;", "DEF A 1"},
      {"#define A {a} + {#define B {b} c} d\ne", "D A { a ; } + { D B { b ; } c ; } d ; e ;",
       "DEF A { a } + { # define B { b } c } d"},
      {"#define A { if (a) \\\n b; else \\\n c }", "D A { C if ( a ; ) { b ; } else { c ; } ; } ;",
       "DEF A { if ( a ) b ; else c }"},
      {"a #define B 1", "a # define B 1 ;", ""},
      {"if (a) #define B 1\nc", "C if ( a ; ) { D B 1 ; } ; c ;", "DEF B 1"},
  };
  for (const auto& [text, expected, line] : cases) {
    const mapped result(text);
    EXPECT_EQ(result.dump, expected) << text;
    const auto lines = result.log.texts(vrn_log_level::verbose);
    EXPECT_EQ(lines.empty() ? "" : lines.back(), line) << text;
  }
}

TEST(command_map, reports_mistakes) {
  const std::vector<map_case> cases = {
      {"if (a) else b", "1:7 Else statement without leading if statement."},
      {"if (a) {} else b; else c", "1:18 Else statement without leading if statement."},
      {"{a; # b}", "1:4 Invalid directive."},
      {"(#define)", "1:1 Invalid directive."},
      {"#define A 1)\n", "1:11 Cannot parse token: )"},
      {"#define A {a] }\n", "1:12 Invalid closing bracket: ]"},
      {"(#define A [1\n] b)", "1:11 Cannot find closing bracket."},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(mapped(text).error(), expected) << text;
}

std::string error_at(std::size_t column, const std::string& message) {
  return "1:" + std::to_string(column) + ' ' + message;
}

constexpr std::string_view brackets = "([{)]}";

// The rule for closing brackets, as it is put: a search from the opener at `at`, which ends at the
// closer or with an error.
std::optional<std::string> search_closer(std::string_view text, std::size_t& at, std::size_t end) {
  const std::size_t opener = at;
  const std::size_t shape = brackets.find(text[opener]);
  std::array<int, 3> open{};
  for (; at < end; ++at) {
    const std::size_t bracket = brackets.find(text[at]);
    int& count = open[bracket % 3];
    count += bracket < 3 ? 1 : -1;
    if (count < 0) return error_at(at, "Invalid closing bracket: " + std::string(1, text[at]));
    if (open[shape] != 0) continue;
    if (shape > 0 && open[0] > 0) return error_at(opener, "Missing closing bracket for '('");
    if (shape > 1 && open[1] > 0) return error_at(opener, "Missing closing bracket for '['");
    return std::nullopt;
  }
  return error_at(opener, "Cannot find closing bracket.");
}

std::optional<std::string> bracket_error(std::string_view text, std::size_t at, std::size_t end) {
  for (; at < end; ++at) {
    const std::size_t opener = at;
    if (brackets.find(text[at]) > 2) {
      return error_at(at, "Cannot parse token: " + std::string(1, text[at]));
    }
    if (auto error = search_closer(text, at, end)) return error;
    if (auto error = bracket_error(text, opener + 1, at)) return error;
  }
  return std::nullopt;
}

TEST(command_map, matches_brackets_by_the_rule) {
  std::mt19937 random(1);
  for (int round = 0; round < 5'000; ++round) {
    std::string text(2 + random() % 9, ' ');
    for (char& bracket : text) bracket = "([{)]}"[random() % 6];
    const mapped result(text);
    const auto expected = bracket_error(text, 0, text.size());
    ASSERT_EQ(result.map ? "" : result.error(), expected.value_or("")) << text;
  }
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (; count > 0; --count) result += text;
  return result;
}

TEST(command_map, limits_the_depth) {
  for (const std::string_view pair : {"()", "[]", "{}"}) {
    const auto nested = [&](std::size_t depth) {
      return repeated(pair.substr(0, 1), depth) + "x" + repeated(pair.substr(1), depth);
    };
    EXPECT_TRUE(mapped(nested(max_nesting)).map);
    EXPECT_EQ(mapped(nested(max_nesting + 1)).error(), "1:1000 Nesting is too deep.");
    EXPECT_EQ(mapped(nested(10'000)).error(), "1:1000 Nesting is too deep.");
  }
  EXPECT_TRUE(mapped(repeated("if (a) ", max_nesting) + "b").map);
  EXPECT_EQ(mapped(repeated("for(a)", 10'000) + "b").error(), "1:6003 Nesting is too deep.");
  EXPECT_TRUE(mapped(repeated("if (a) b; else ", 10'000) + "c").map);
  EXPECT_EQ(
      mapped(repeated("{#define A ", max_nesting + 1) + repeated("}", max_nesting + 1)).error(),
      "1:11000 Nesting is too deep.");
}

}  // namespace
}  // namespace vorn::test
