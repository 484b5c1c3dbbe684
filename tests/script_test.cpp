// Runs the cases of scripts/<topic>/*.vrs and docs/language.md through the whole pipeline and
// compares what they write.
//
// A line "//--- NAME" begins a case, the program "main.vrs"; "//--- file NAME" adds a file to it,
// "//--- task NAME" one that is run as a further task; after "//--- table NAME" each line is a case
// of its own. Behind a marker stands a line that the case has to write, in order:
//   //> out   //! error   //? warning   //* log   //~ verbose   //: debug   //@ clock, in ms
// Syntax errors are written as "line:column message", led by the file's name when it is not
// main.vrs, or, in a case that has "//=" lines, as they stand, a "//=" line for each line. Runtime
// errors are led by "runtime: ". All errors, warnings and out lines count; of the other levels
// those count that share their first word with an expected line. Expectations are no part of the
// program. \xNN is a byte.
//
// In the document each block fenced as vrs is a case, and so is each row of a table whose first
// cell is a script, with <br> between its lines, and whose second cell is what it has to write.

#include <bit>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using lines = std::vector<std::string>;

const fs::path folder = VRN_TESTS_DIR "/scripts";

struct script_case {
  std::string name;
  std::vector<std::pair<std::string, std::string>> files;  // the first is the main program
  lines programs = {"main.vrs"};
  lines expected = {};  // each led by its marker
};

std::string with_bytes(std::string text) {
  static const std::regex escape(R"(\\x([[:xdigit:]]{2}))");
  for (std::smatch at; std::regex_search(text, at, escape);) {
    text = at.prefix().str() + static_cast<char>(std::stoi(at[1], nullptr, 16)) + at.suffix().str();
  }
  return text;
}

// Takes the expectations at the end of a line out of it.
lines take_expectations(std::string& line) {
  static const std::regex expectation(
      "(?:^| +)//(?:(=.*)|([>!?*~:@])(?:| *([^ ].*?))) *(?=$| //[=>!?*~:@])");
  lines expected;
  const std::string whole = line;
  for (std::sregex_iterator at(whole.begin(), whole.end(), expectation), end; at != end; ++at) {
    if (expected.empty()) line.resize(static_cast<std::size_t>(at->position()));
    expected.push_back(with_bytes(at->format("$1$2$3")));
  }
  return expected;
}

// What the scripts in a document are as a file of cases.
std::string cases_in(const std::string& document) {
  static const std::regex script(R"(```vrs\n([^]*?)```\n|\| `(.*)` \| `(//.*?)` \|)");
  std::string cases;
  for (std::sregex_iterator at(document.begin(), document.end(), script), end; at != end; ++at) {
    cases += "//--- \n" + at->format("$1$2 $3\n");
  }
  return std::regex_replace(std::regex_replace(cases, std::regex("`<br>`"), "\n"),
                            std::regex(R"(\\\|)"), "|");
}

std::vector<script_case> read_cases(const std::string& path) {
  static const std::regex title("//--- (table |file |task |)(.*)");
  std::vector<script_case> cases;
  bool table = false;
  const bool document = path.ends_with(".md");
  std::stringstream stream;
  stream << std::ifstream(folder / path).rdbuf();
  if (document) stream.str(cases_in(stream.str()));
  std::string line;
  for (int number = 1; std::getline(stream, line); ++number) {
    const std::string place = document ? path : path + ":" + std::to_string(number);
    if (std::smatch part; std::regex_match(line, part, title)) {
      table = part[1] == "table ";
      if (part[1] == "") cases.push_back({place, {{"main.vrs", ""}}});
      if (part[1] == "file " || part[1] == "task ") cases.back().files.emplace_back(part[2], "");
      if (part[1] == "task ") cases.back().programs.push_back(part[2]);
    } else if (!table || !line.empty()) {
      const lines expected = take_expectations(line);
      if (table) cases.push_back({place, {{"main.vrs", ""}}});
      std::string& text = cases.back().files.back().second;
      if (expected.empty() || !line.empty()) text += with_bytes(line) + "\n";
      cases.back().expected.insert(cases.back().expected.end(), expected.begin(), expected.end());
    }
  }
  return cases;
}

// A report as its place and its message, or, if it is to be shown whole, as its lines.
lines lines_of(const log_record& record, bool whole_reports) {
  static const std::regex syntax_error(
      R"(Syntax Error \*\*\*\n[^]*? --> (?:main\.vrs:)?(.*)\n[^]*\n\*\*\* (.*)\n[^]*)");
  static const std::regex runtime_error(R"(Runtime Error \*\*\*\n-+\n([^]*)\n-+)");
  static const std::regex varying("(TASK |avg IPS: )[^ )]+");
  // By the position of the level's bit; no level is the clock.
  const char marker = "@*?!~:>"[std::bit_width(static_cast<std::uint32_t>(record.level))];
  std::string text = record.text;
  if (whole_reports && text.find("Error ***\n") != std::string::npos) {
    lines result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) result.push_back("=" + line);
    return result;
  }
  text = std::regex_replace(text, syntax_error, "$1 $2");
  text = std::regex_replace(text, runtime_error, "runtime: $1");
  return {marker + std::regex_replace(text, varying, "$1#")};
}

// What decides whether a line counts: nothing for those that always do.
std::string subject_of(const std::string& line) {
  if (line[0] == '@') return "@";
  return "*~:"s.find(line[0]) == std::string::npos ? ""s : line.substr(0, line.find(' '));
}

lines run_case(const script_case& each) {
  std::set<std::string> subjects = {""};
  bool whole_reports = false;
  const bool documented = each.name.ends_with(".md");
  for (const std::string& line : each.expected) {
    subjects.insert(subject_of(line));
    whole_reports |= line[0] == '=';
  }
  lines written;
  // A thread has one interpreter, and random numbers that begin anew.
  std::thread([&] {
    script_host host;
    for (const auto& [name, text] : each.files) {
      // Blank lines between cases are no part of them.
      host.files->add(name, text.substr(0, text.find_last_not_of('\n') + 1));
    }
    std::vector<vrn_program> programs;
    for (const auto& name : each.programs) programs.push_back(host.loader.create_program(name));
    std::erase(programs, nullptr);
    if (!host.run(programs)) host.log->records.push_back({vrn_log_level{}, "never"});
    for (const log_record& record : host.log->records) {
      for (const std::string& line : lines_of(record, whole_reports)) {
        // Documents leave out which stage a report has made fail.
        if (documented && line.find(" failed") != std::string::npos) continue;
        if (subjects.contains(subject_of(line))) written.push_back(line);
      }
    }
  }).join();
  return written;
}

class script_test : public testing::TestWithParam<std::string> {};

TEST_P(script_test, writes_what_it_expects) {
  const std::vector<script_case> cases = read_cases(GetParam());
  ASSERT_FALSE(cases.empty());
  for (const script_case& each : cases) {
    EXPECT_EQ(run_case(each), each.expected) << each.name << "\n" << each.files[0].second;
  }
}

lines script_files() {
  lines paths = {"../../docs/language.md"};
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".vrs") paths.push_back(fs::relative(entry, folder).string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

INSTANTIATE_TEST_SUITE_P(scripts, script_test, testing::ValuesIn(script_files()),
                         [](const auto& file) {
                           return std::regex_replace(file.param, std::regex("\\W+"), "_");
                         });

}  // namespace
}  // namespace vorn::test
