// Runs the cases of scripts/<topic>/*.vrs through the whole pipeline and compares what they write.
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

#include <gtest/gtest.h>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using namespace std::string_literals;
using lines = std::vector<std::string>;

struct script_case {
  std::string name;
  std::vector<std::pair<std::string, std::string>> files;  // the first is the main program
  lines tasks;
  lines expected;  // each led by its marker
};

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string with_bytes(const std::string& text) {
  static const std::regex escape("\\\\x([0-9A-F]{2})");
  std::string result;
  auto rest = text.begin();
  for (std::sregex_iterator match(text.begin(), text.end(), escape), end; match != end; ++match) {
    result.append(rest, (*match)[0].first);
    result += static_cast<char>(std::stoi((*match)[1], nullptr, 16));
    rest = (*match)[0].second;
  }
  return result.append(rest, text.end());
}

std::size_t find_marker(const std::string& line, std::size_t from) {
  for (std::size_t at = line.find("//", from); at != std::string::npos;
       at = line.find("//", at + 1)) {
    const bool apart = at == 0 || line[at - 1] == ' ';
    if (apart && at + 2 < line.size() && "=>!?*~:@"s.find(line[at + 2]) != std::string::npos) {
      return at;
    }
  }
  return line.size();
}

// Moves the expectations at the end of a line out of it.
void split_expectations(std::string& line, lines& expected) {
  const std::size_t first = find_marker(line, 0);
  for (std::size_t at = first, next = 0; at < line.size(); at = next) {
    const bool verbatim = line[at + 2] == '=';
    next = verbatim ? line.size() : find_marker(line, at + 3);
    const std::string text = line.substr(at + 3, next - at - 3);
    expected.push_back(with_bytes(line[at + 2] + (verbatim ? text : trimmed(text))));
  }
  if (first < line.size()) line = trimmed("|" + line.substr(0, first)).substr(1);
}

std::vector<script_case> read_cases(const std::string& path) {
  std::ifstream stream(path);
  std::vector<script_case> cases;
  std::string table;
  int number = 0;
  for (std::string line; std::getline(stream, line);) {
    ++number;
    const auto begin_case = [&](const std::string& name, const std::string& text) {
      cases.push_back(
          {path + ":" + std::to_string(number) + " " + name, {{"main.vrs", text}}, {}, {}});
    };
    if (line.starts_with("//--- ")) {
      const std::string title = line.substr(6);
      table.clear();
      if (title.starts_with("table ")) {
        table = title.substr(6);
      } else if (title.starts_with("file ") || title.starts_with("task ")) {
        cases.back().files.emplace_back(title.substr(5), "");
        if (title.starts_with("task ")) cases.back().tasks.push_back(title.substr(5));
      } else {
        begin_case(title, "");
      }
      continue;
    }
    lines expected;
    const bool blank = line.empty();
    split_expectations(line, expected);
    if (!table.empty()) {
      if (blank) continue;
      begin_case(table, with_bytes(line));
    } else if (!cases.empty() && (expected.empty() || !line.empty())) {
      cases.back().files.back().second += with_bytes(line) + "\n";
    }
    if (!cases.empty()) {
      cases.back().expected.insert(cases.back().expected.end(), expected.begin(), expected.end());
    }
  }
  for (script_case& each : cases) {
    for (auto& [name, text] : each.files) {
      while (text.ends_with('\n')) text.pop_back();
    }
  }
  return cases;
}

char marker_of(vrn_log_level level) {
  switch (level) {
    case vrn_log_level::log:
      return '*';
    case vrn_log_level::warning:
      return '?';
    case vrn_log_level::error:
      return '!';
    case vrn_log_level::verbose:
      return '~';
    case vrn_log_level::debug:
      return ':';
    case vrn_log_level::out:
      return '>';
  }
  return '@';
}

// What stands between the first `before` and the last `after`.
std::string between(const std::string& text, std::string_view before, std::string_view after) {
  const std::size_t first = text.find(before) + before.size();
  return text.substr(first, text.rfind(after) - first);
}

std::string error_text(const std::string& text) {
  if (text.starts_with("Runtime Error ***\n")) {
    return "runtime: " + between(text, "-\n", "\n---");
  }
  if (!text.starts_with("Syntax Error ***\n")) return text;
  const std::size_t start = text.rfind("\n*** ");
  std::string message = between(text.substr(start), "\n*** ", "\n---");
  message.erase(std::min(message.find("\n|-- "), message.size()));  // the way to an included file
  std::string place =
      between(text.substr(0, text.find('\n', text.find("--> "))) + "\n", "--> ", "\n");
  if (place.starts_with("main.vrs:")) place.erase(0, 9);
  return place + " " + message;
}

void append_record(lines& result, const log_record& record, bool frames) {
  static const std::regex varying("(TASK|avg IPS:) [0-9a-fx-]+");
  const char marker = marker_of(record.level);
  if (marker == '!' && frames && record.text.find("Error ***\n") != std::string::npos) {
    std::istringstream stream(record.text);
    for (std::string line; std::getline(stream, line);) result.push_back("=" + line);
  } else if (marker == '!') {
    result.push_back(marker + error_text(record.text));
  } else if (marker == '~' || marker == ':') {
    result.push_back(marker + std::regex_replace(record.text, varying, "$1 #"));
  } else {
    result.push_back(marker + record.text);
  }
}

// What decides whether a line counts: nothing for those that always do.
std::string subject_of(const std::string& line) {
  if (line[0] == '@') return "@";
  return "*~:"s.find(line[0]) == std::string::npos ? ""s : line.substr(0, line.find(' '));
}

lines run_case(const script_case& each) {
  std::set<std::string> subjects = {""};
  bool frames = false;
  for (const std::string& line : each.expected) {
    subjects.insert(subject_of(line));
    frames |= line[0] == '=';
  }

  std::shared_ptr<collecting_log> log;
  bool ended = true;
  // A thread has one interpreter, and random numbers that begin anew.
  std::thread([&] {
    script_host host;
    log = host.log;
    for (const auto& [name, text] : each.files) host.files->add(name, text);
    std::vector<vrn_program> programs = {host.loader.create_program("main.vrs")};
    for (const std::string& task : each.tasks) programs.push_back(host.loader.create_program(task));
    std::erase(programs, nullptr);
    ended = host.run(programs);
  }).join();

  lines result;
  for (const log_record& record : log->records) append_record(result, record, frames);
  if (!ended) result.push_back("@never");
  std::erase_if(result,
                [&](const std::string& line) { return !subjects.contains(subject_of(line)); });
  return result;
}

std::string joined(const lines& all) {
  std::string text;
  for (const std::string& line : all)
    text += "  //" + line.substr(0, 1) + " " + line.substr(1) + "\n";
  return text;
}

class script_test : public testing::TestWithParam<std::string> {};

TEST_P(script_test, writes_what_it_expects) {
  const std::vector<script_case> cases = read_cases(GetParam());
  ASSERT_FALSE(cases.empty());
  for (const script_case& each : cases) {
    const lines written = run_case(each);
    EXPECT_TRUE(written == each.expected) << each.name << "\n"
                                          << each.files.front().second << "\nexpected\n"
                                          << joined(each.expected) << "written\n"
                                          << joined(written);
  }
}

std::vector<std::string> script_files() {
  std::vector<std::string> paths;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(VRN_TESTS_DIR "/scripts")) {
    if (entry.path().extension() == ".vrs") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

INSTANTIATE_TEST_SUITE_P(scripts, script_test, testing::ValuesIn(script_files()),
                         [](const testing::TestParamInfo<std::string>& file) {
                           const std::filesystem::path path(file.param);
                           return path.parent_path().filename().string() + "_" +
                                  path.stem().string();
                         });

}  // namespace
}  // namespace vorn::test
