// Reports as the interpreter's callback gets them.
#include <vornscript/report.hpp>

#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

const std::map<std::string, std::string> files = {
    {"inner.vrs", "deep(a) {\n\ta = 1;\t(a)\t- 'x';\n}\n"},
    {"outer.vrs", "\n #include\t'inner'"},
    {"broken.vrs", "\n\t'"},
};

std::string shown(const vrn_report_place& place) {
  return std::string(place.file) + ':' + std::to_string(place.line) + ':' +
         std::to_string(place.column);
}

// Where the report is made, the bytes that it is about, and what it says.
std::string shown(const vrn_report& report, const std::string& main) {
  constexpr const char* kinds[] = {"syntax ", "runtime ", "task "};
  std::string line = kinds[static_cast<std::size_t>(report.kind)];
  for (const vrn_report_place& place : report.included_from) line += shown(place) + " > ";
  const auto file = files.find(std::string(report.place.file));
  const std::string& bytes = file == files.end() ? main : file->second;
  line += shown(report.place) + " `" + bytes.substr(report.offset, report.length) + "` ";
  return line.append(report.message);
}

struct reporting_host {
  explicit reporting_host(std::string script) : text(std::move(script)) {
    for (const auto& [name, bytes] : files) host.files->add(name, bytes);
    host.script.register_function(
        "fail", [](const std::string& why) -> void { throw std::runtime_error(why); });
  }

  std::string text;
  strings reports;
  bool throws = false;
  script_host host{[this](const vrn_report& report) {
    reports.push_back(shown(report, text));
    EXPECT_EQ(report.task != nullptr, report.kind != vrn_report_kind::syntax);
    EXPECT_TRUE(!report.task || report.task->start == 1);
    if (throws) throw std::runtime_error("told");
  }};
};

TEST(report_test, places) {
  const struct {
    const char* text;
    strings reports;
  } rows[] = {
      {"x =\t);", {"syntax main.vrs:1:4 `)` Cannot parse token: )"}},
      {"x = 1; y\t*\t% 'b';", {"syntax main.vrs:1:16 `%` Operator without operands."}},
      {"\tx =\t'abc\nprint(1)", {"syntax main.vrs:1:8 `'abc` unterminated string"}},
      {"x = '''abc\n\tb", {"syntax main.vrs:1:4 `'''abc\n\tb` unterminated string"}},
      {"\t /*\tabc\n", {"syntax main.vrs:1:5 `/*\tabc\n` unterminated comment"}},
      {"x\t= 1e+ ;", {"syntax main.vrs:1:6 `1e+` Malformed exponent in numeric literal"}},
      {"\n#include 'broken'", {"syntax main.vrs:2:9 > broken.vrs:2:4 `'` unterminated string"}},
      {"#include\t'none.vrs'", {"syntax main.vrs:1:12 `'none.vrs'` File not found: none.vrs"}},
      // The statement that runs, whatever part of it fails.
      {"x = 1;\t\tx = 2 + ('a'\t- 1);", {"runtime main.vrs:1:12 `x` Sub invalid type: \x05"}},
      {"\t'''a\n\tb''' - 1;", {"runtime main.vrs:2:4 `'''a\n\tb'''` Sub invalid type: \x05"}},
      {"#define INC x = x - 'a'\n\tINC", {"runtime main.vrs:2:4 `INC` Sub invalid type: \x05"}},
      {"wait() { sleep(1);\n\t nil + nil; }\nprint(wait(), -'b');",
       {"runtime main.vrs:2:5 `nil` Add invalid type: \x01",
        "runtime main.vrs:3:0 `print` Cannot negate type \x05"}},
      {"\n#include 'outer'\ndeep(1);",
       {"runtime main.vrs:2:9 > outer.vrs:2:12 > inner.vrs:2:12 `(` Sub invalid type: \x05"}},
      {"x = 1; x();", {"runtime main.vrs:1:7 `x` Runtime error not a function!"}},
      {"again() { again(); } again();",
       {"runtime main.vrs:1:10 `again` Parallelism not implemented yet!"}},
      {"inner() {\n\tx = 1;\tx = fail('why'); }\nprint(inner());", {"task main.vrs:2:12 `x` why"}},
  };
  for (const auto& [text, reports] : rows) {
    for (const std::uint32_t mask : {vrn_log_all, 0U}) {
      reporting_host tested(text);
      tested.host.log->level_mask = mask;
      tested.host.output_of(text);
      EXPECT_EQ(tested.reports, reports) << text;
      EXPECT_EQ(live_objects(tested.host.script), 0U) << text;
    }
  }
}

TEST(report_test, tasks_that_cannot_run) {
  reporting_host tested("sleep(1); print(2);");
  vrn_program program = tested.host.load(tested.text);
  const auto task = task_create(program);
  task_run(*task, 0);
  tested.host.script.tick();
  task_run(*task, 0);
  program.reset();
  ++tested.host.clock->ms;
  tested.host.script.tick();
  EXPECT_EQ(tested.reports, strings(2, "task :0:0 `` Cannot run task!"));
}

TEST(report_test, callbacks_that_throw) {
  const struct {
    const char* text;
    std::size_t reports;
    const char* errors;  // their first lines
  } rows[] = {
      {"x = 1e; y = 1e;", 1, "Syntax,told,stage_1 failed.,token_map creation failed in 0 ms.,"},
      {"#include 'none'", 1, "Syntax,told,stage_1 failed.,token_map creation failed in 0 ms.,"},
      {"x = );", 1, "Syntax,told,command_map creation failed in 0 ms.,"},
      {"x = (1 2);", 1, "Syntax,told,AST creation failed in 0 ms.,"},
      {"x = 1; y = 2 % 3;", 1, "Syntax,told,"},
      // A fault and the end of the task.
      {"x = 1; print(1, 'a' - 1); x();", 2, "Runtime,Task failed: told,"},
      {"fail('why');", 1, "Task failed: why,"},
  };
  for (const auto& [text, reports, errors] : rows) {
    reporting_host tested(text);
    tested.throws = true;
    tested.host.output_of(text);
    std::string first_lines;
    for (const std::string& line : tested.host.log->texts(vrn_log_level::error)) {
      first_lines += line.substr(0, line.find(" Error ***\n")) + ',';
    }
    EXPECT_EQ(tested.reports.size(), reports) << text;
    EXPECT_EQ(first_lines, errors) << text;
    EXPECT_EQ(live_objects(tested.host.script), 0U) << text;
    EXPECT_EQ(tested.host.output_of("print('on')"), strings{"on"}) << text;
  }
}

}  // namespace
}  // namespace vorn::test
