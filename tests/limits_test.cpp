// Scripts at and beyond the limits of size and depth: generated, since they are long.

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using lines = std::vector<std::string>;

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
      if (each == '@' || each == '$') {
        result += std::to_string(each == '@' ? i : i + 1);
      } else {
        result += each;
      }
    }
  }
  return result;
}

class limits_test : public testing::Test {
 protected:
  lines errors_of(std::string text) {
    host_.output_of(std::move(text));
    return host_.log->texts(vrn_log_level::error);
  }

  // The one report of a load that has to fail; empty when there is another number of reports.
  std::string report_of(std::string text) {
    std::string found;
    int reports = 0;
    for (const std::string& error : errors_of(std::move(text))) {
      if (!error.starts_with("Syntax Error ***\n")) continue;
      ++reports;
      found = error;
    }
    return reports == 1 ? found : std::to_string(reports) + " reports";
  }

  // The other levels would only cost time.
  void SetUp() override {
    host_.log->level_mask = static_cast<std::uint32_t>(vrn_log_level::error) |
                            static_cast<std::uint32_t>(vrn_log_level::out);
  }

  script_host host_;
};

// A nest is `depth` times what opens it, the core and as often what closes it.
struct nest {
  const char* name;
  const char* before;
  const char* open;
  const char* core;
  const char* close;
  const char* after;
  lines printed;
};

const nest nests[] = {
    {"parentheses", "print(", "(", "7", ")", ");", {"7"}},
    {"prefix operators", "print(", "- ", "7", "", ");", {"7"}},
    {"factors", "print(", "(1 * ", "7", ")", ");", {"7"}},
    {"calls", "x = ", "abs(", "7", ")", "; print(x);", {"7"}},
    {"called calls", "", "", "print", "(1)", ";", {}},
    {"definitions", "", "deep() { ", "1", " }", " print(7);", {"7"}},
    {"blocks", "", "{ ", "1", " }", ";", {}},
    {"lists", "", "[", "1", "]", ";", {}},
    {"indices", "", "", "a", "[1]", ";", {}},
    {"conditions", "", "if (1) { ", "1", " }", ";", {}},
    {"returns", "", "return ", "1", "", ";", {}},
};

TEST_F(limits_test, nesting_is_bounded) {
  for (const nest& each : nests) {
    SCOPED_TRACE(each.name);
    const auto script = [&](int depth) {
      return each.before + repeated(each.open, depth) + each.core + repeated(each.close, depth) +
             each.after;
    };
    if (!each.printed.empty()) {
      EXPECT_EQ(host_.output_of(script(900)), each.printed);
    }
    EXPECT_EQ(report_of(script(900)).find("too deep"), std::string::npos);
    for (const int depth : {1100, 20'000}) {
      const std::string report = report_of(script(depth));
      EXPECT_NE(report.find("\n*** Nesting is too deep.\n"), std::string::npos) << report;
      EXPECT_TRUE(host_.log->texts(vrn_log_level::out).empty());
    }
  }
}

TEST_F(limits_test, brackets_that_are_never_closed) {
  const std::string report = report_of(repeated("([{", 100'000));
  EXPECT_NE(report.find("main.vrs:1:0\n"), std::string::npos);
  EXPECT_NE(report.find("*** Cannot find closing bracket.\n"), std::string::npos);
}

TEST_F(limits_test, includes_nest_as_deep_as_brackets) {
  for (int i = 1; i <= 1100; ++i) {
    const std::string next = std::to_string(i + 1);
    host_.files->add("file" + std::to_string(i) + ".vrs", "#include \"file" + next + "\"\n x;");
  }
  EXPECT_NE(report_of("#include \"file200\"\nprint(1);").find("not found: file1101.vrs"),
            std::string::npos);
  EXPECT_NE(report_of("#include \"file1\"\nprint(1);").find("*** Nesting is too deep."),
            std::string::npos);
  EXPECT_EQ(host_.output_of("#include \"file1\"\nprint(1);"), lines{"1"});
}

TEST_F(limits_test, defines_nest_and_multiply_within_bounds) {
  const auto defines = [](std::string_view pattern, int count) {
    return numbered(pattern, count) + "#define D" + std::to_string(count + 1) + " 1\nprint(D1);";
  };
  EXPECT_EQ(host_.output_of(defines("#define D@ D$\n", 400)), lines{"1"});
  EXPECT_NE(report_of(defines("#define D@ D$\n", 3000)).find("*** Nesting is too deep."),
            std::string::npos);
  EXPECT_EQ(host_.output_of(defines("#define D@ D$ + D$\n", 12)), lines{"4096"});
  EXPECT_NE(report_of(defines("#define D@ D$ + D$\n", 40)).find("*** Define expands to too much."),
            std::string::npos);
}

TEST_F(limits_test, long_chains) {
  constexpr int length = 100'000;
  EXPECT_EQ(host_.output_of("print(1" + repeated(" + 1", length) + ");"), lines{"100001"});
  EXPECT_EQ(host_.output_of("print(1" + repeated(" * 1 - 0", length / 2) + ");"), lines{"1"});
  EXPECT_EQ(host_.output_of("x" + repeated(" = x", length) + " = 5; print(x);"), lines{"5"});
  EXPECT_EQ(host_.output_of(numbered("x@ = ", length) + "5; print(x1 + x100000);"), lines{"10"});
  EXPECT_NE(report_of(repeated("a ", length)).find("Cannot parse whatever"), std::string::npos);
  EXPECT_NE(
      report_of("if (1) { } " + repeated("else if (1) { } ", length)).find("command type: 1\n"),
      std::string::npos);
  EXPECT_NE(report_of("print(1" + repeated(" % 1", length) + ");").find("Invalid binary operator"),
            std::string::npos);
}

TEST_F(limits_test, many_of_everything) {
  constexpr int count = 20'000;
  EXPECT_EQ(host_.output_of(numbered("x@ = @; ", count) + "print(x1 + x20000);"), lines{"20001"});
  EXPECT_EQ(host_.output_of(numbered("s = \"text@\"; ", count) + "print(s);"), lines{"text20000"});
  EXPECT_EQ(host_.output_of(numbered("fn@(a) { a + @ } ", count) + "print(fn7(1), fn20000(2));"),
            (lines{"8", "20002"}));
  EXPECT_EQ(host_.output_of(numbered("#define D@ @\n", count) + "print(D20000);"), lines{"20000"});
  EXPECT_EQ(host_.output_of(repeated("print(1) /* \n */ ;\n", count)).size(), std::size_t{count});
}

TEST_F(limits_test, argument_counts_of_the_built_in_functions) {
  struct bounds {
    int min;
    int max;
    lines names;
  };
  const bounds all[] = {
      {0, 0, {"rand"}},
      {1, 1, {"vtype", "sleep", "sin",   "cos", "tan", "asin", "acos",  "atan", "sqrt",  "abs",
              "floor", "ceil",  "round", "exp", "log", "log2", "log10", "cbrt", "fract", "sign"}},
      {2, 2, {"pow", "atan2"}},
      {3, 3, {"clamp", "lerp", "smoothstep"}},
      {1, 999, {"print", "min", "max"}},
  };
  int functions = 0;
  for (const bounds& each : all) {
    for (const std::string& name : each.names) {
      SCOPED_TRACE(name);
      ++functions;
      const auto call = [&](int arguments) { return name + "(" + repeated("1,", arguments) + ")"; };
      EXPECT_EQ(errors_of(call(each.min)), lines{});
      EXPECT_EQ(errors_of(call(each.max)), lines{});
      EXPECT_NE(report_of(call(each.max + 1)).find("*** Too many arguments for function " + name),
                std::string::npos);
      if (each.min == 0) continue;
      EXPECT_NE(report_of(call(each.min - 1)).find("*** Not enough arguments for function " + name),
                std::string::npos);
    }
  }
  EXPECT_EQ(functions, 29);
}

TEST_F(limits_test, strings_that_are_too_long) {
  host_.script.register_std_function(
      "half",
      [](vrn_vm_context&, std::vector<vrnvar_shared>&) {
        return var_string(std::string((std::size_t{1} << 27), 'x'));
      },
      0, 0);
  EXPECT_EQ(host_.output_of("print(vtype(half() + (\"+\" + half())));"), lines{"string"});
  const std::string rule(60, '-');
  EXPECT_EQ(host_.log->texts(vrn_log_level::error),
            lines{"Runtime Error ***\n" + rule + "\nString is too long.\n" + rule});
}

}  // namespace
}  // namespace vorn::test
