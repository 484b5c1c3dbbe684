// Scripts at and beyond the limits of size and depth: generated, since they are long.

#include <tuple>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

constexpr const char* too_deep = "*** Nesting is too deep.";

std::string repeated(std::string_view text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

// The pattern once for each number: "@" stands for the number, "$" for the next one.
std::string numbered(std::string_view pattern, int last) {
  std::string result;
  for (int i = 1; i <= last; ++i) {
    for (const char each : pattern) {
      const bool stands_for_itself = each != '@' && each != '$';
      result += stands_for_itself ? std::string(1, each) : std::to_string(each == '@' ? i : i + 1);
    }
  }
  return result;
}

class limits_test : public testing::Test {
 protected:
  // The lines that a script prints; instead of them the first error, of a report the message.
  std::string outcome(std::string text) {
    std::string result;
    for (const std::string& line : host_.output_of(std::move(text))) result += line + "\n";
    const auto errors = host_.log->texts(vrn_log_level::error);
    if (errors.empty()) return result;
    const std::size_t message = errors[0].find("\n*** ") + 1;
    return errors[0].substr(message, errors[0].find('\n', message) - message);
  }

  // What the first report shows of the offending line, and the caret's column in it, or -1.
  std::pair<std::string, int> excerpt(const std::string& text) {
    host_.output_of(text);
    const std::string report = host_.log->texts(vrn_log_level::error).at(0);
    const std::size_t line = report.find(" | ") + 3;
    const std::size_t end = report.find('\n', line);
    const std::size_t caret = report.find("^~~~~\n", end);
    return {report.substr(line, end - line),
            caret == std::string::npos ? -1 : static_cast<int>(caret - end) - 6};
  }

  script_host host_;
};

TEST_F(limits_test, nesting_is_bounded) {
  const std::pair<const char*, const char*> nests[] = {
      {"(", ")"},          {"- ", ""},       {"(1 * ", ")"},  {"abs(", ")"}, {"", "(1)"},
      {"deep() { ", " }"}, {"{ ", " }"},     {"[", "]"},      {"", "[1]"},   {"if (1) { ", " }"},
      {"if (1) ", ""},     {"for (1) ", ""}, {"return ", ""},
  };
  for (const auto& [open, close] : nests) {
    for (const int depth : {900, 1100, 20'000}) {
      const std::string text = repeated(open, depth) + "a" + repeated(close, depth) + ";";
      EXPECT_EQ(outcome(text) == too_deep, depth > 1000) << open << close << depth;
    }
  }
  EXPECT_EQ(outcome("print(" + repeated("(1 * ", 900) + "7" + repeated(")", 901)), "7\n");
  EXPECT_EQ(outcome(repeated("{ #define A ", 20'000) + repeated("}", 20'000)), too_deep);
  EXPECT_EQ(outcome(repeated("([{", 100'000)), "*** Cannot find closing bracket.");
}

TEST_F(limits_test, includes_nest_as_deep_as_brackets) {
  for (int i = 1; i <= 1100; ++i) {
    const std::string next = std::to_string(i + 1);
    host_.files->add("file" + std::to_string(i) + ".vrs", "#include 'file" + next + "'\n x;");
  }
  EXPECT_EQ(outcome("#include \"file200\""), "*** File not found: file1101.vrs");
  EXPECT_EQ(outcome("#include \"file1\""), too_deep);
}

TEST_F(limits_test, defines_nest_and_multiply_within_bounds) {
  const auto defined = [this](std::string_view pattern, int count) {
    return outcome(numbered(pattern, count) + "#define D" + std::to_string(count + 1) +
                   " 1\nprint(D1);");
  };
  EXPECT_EQ(defined("#define D@ D$\n", 400), "1\n");
  EXPECT_EQ(defined("#define D@ D$\n", 3000), too_deep);
  EXPECT_EQ(defined("#define D@ D$ + D$\n", 12), "4096\n");
  EXPECT_EQ(defined("#define D@ D$ + D$\n", 40), "*** Define expands to too much.");
  // What stands in a group counts each time that it is put in, a define there too, which costs
  // nothing else. A long program may put in more.
  EXPECT_EQ(outcome("#define D1 (1; #define X" + repeated(" 1", 1000) + ")\n" +
                    numbered("#define D$ D@ + D@\n", 14) + "D15;"),
            "*** Define expands to too much.");
  EXPECT_EQ(outcome("#define ADD x = x" + repeated(" + 1", 14) + "\nx = 0;" +
                    repeated("ADD;\n", 140'000) + "print(x);"),
            "1960000\n");
}

TEST_F(limits_test, long_lines_are_shown_in_part) {
  const auto a = [](int bytes) { return repeated("a;", bytes / 2); };
  const auto blanks = [](int count) { return repeated(" ", count); };
  const std::string wrong = "x y;";
  const std::string e = "\u00e9";
  const std::string euro = "\u20ac";
  const std::tuple<std::string, std::string, int> rows[] = {
      {a(1020) + wrong, a(1020) + wrong, 1020},
      {a(900) + "\nc" + a(513) + wrong + a(9000), a(512) + wrong + a(508), 512},
      {a(9000) + wrong + a(200), a(512) + wrong + a(200), 512},
      {a(600) + blanks(500) + wrong + a(900), a(12) + blanks(500) + wrong + a(508), 512},
      {blanks(600) + wrong + a(900), wrong + a(508), 0},
      // The ends of the piece cut no character.
      {repeated(e + ";", 300) + wrong + repeated(";" + euro + ";", 300),
       ";" + repeated(e + ";", 170) + wrong + repeated(";" + euro + ";", 101) + ";", 341},
      {"x y" + repeated("\x80", 2000), "x ", 0},
      // A string is shown in its last line, what follows a line end inside of one before that.
      {a(10) + "\"\"\"\n" + a(1200) + "\"\"\"(1)", a(1024), 10},
      {a(600) + "\"" + a(600) + "\\\n" + a(600) + "\"; x y", ";" + a(510) + "\\", -1},
      // The lexer shows what follows the place; its caret keeps the column.
      {a(1000) + "1e" + a(1050), "1e" + a(1022), 1000},
      {a(1024) + "\"" + repeated(e, 600), "\"" + repeated(e, 511), -1},
  };
  for (const auto& [text, shown, caret] : rows) {
    EXPECT_EQ(excerpt(text), std::pair(shown, caret)) << text;
  }
  host_.files->add("part.vrs", a(9000) + wrong + a(9000));
  host_.output_of("#include \"part\"");
  const std::string report = host_.log->texts(vrn_log_level::error).at(0);
  EXPECT_NE(report.find("\n>>> " + a(512) + wrong + a(508) + "\n"), std::string::npos);
}

TEST_F(limits_test, many_of_everything) {
  constexpr int count = 100'000;
  EXPECT_EQ(outcome("print(1" + repeated(" * 1 - 0", count / 2) + ");"), "1\n");
  EXPECT_EQ(outcome(numbered("x@ = ", count) + "5; print(x1 + x100000);"), "10\n");
  EXPECT_EQ(outcome(repeated("a ", count)), "*** Cannot parse whatever this is.");
  EXPECT_EQ(outcome("if (1) { } " + repeated("else if (1) { } ", count)),
            "*** Invalid command type: 1");
  EXPECT_EQ(outcome(numbered("s = 'text@'; ", count) + "print(s);"), "text100000\n");
  EXPECT_EQ(outcome(numbered("fn@(a) { a + @ } ", 20'000) + "print(fn20000(2));"), "20002\n");
  EXPECT_EQ(outcome(numbered("#define D@ @\n", count) + "print(D100000);"), "100000\n");
  EXPECT_EQ(outcome(repeated("print(1) /* \n */ ;\n", 20'000)), repeated("1\n", 20'000));
  for (const std::string name : {"print", "min", "max"}) {
    const std::string too_many = "*** Too many arguments for function " + name;
    EXPECT_NE(outcome(name + "(1" + repeated(", 1", 998) + ");"), too_many);
    EXPECT_EQ(outcome(name + "(1" + repeated(", 1", 999) + ");"), too_many);
  }
}

TEST_F(limits_test, strings_that_are_too_long) {
  const vrn_native half = [](vrn_vm_context&, std::vector<vrnvar_shared>&) {
    return var_string(std::string(std::size_t{1} << 27, 'x'));
  };
  host_.script.register_std_function("half", half, 0, 0);
  EXPECT_EQ(outcome("print(vtype(half() + half()));"), "string\n");
  outcome("half() + ('+' + half());");
  const std::string report = host_.log->texts(vrn_log_level::error).at(0);
  EXPECT_NE(report.find("\nString is too long.\n"), std::string::npos);
}

}  // namespace
}  // namespace vorn::test
