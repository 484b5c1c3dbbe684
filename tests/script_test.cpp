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
#include <algorithm>
#include <bit>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <memory>
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

std::string with_bytes(std::string text) {
  for (std::size_t at = 0; (at = text.find("\\x", at)) != std::string::npos; ++at) {
    const char* const end = text.data() + std::min(at + 4, text.size());
    unsigned byte = 0;
    if (std::from_chars(text.data() + at + 2, end, byte, 16).ptr == text.data() + at + 4) {
      text.replace(at, 4, 1, static_cast<char>(byte));
    }
  }
  return text;
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

class case_reader {
 public:
  explicit case_reader(std::string path) : path_(std::move(path)) {
    std::ifstream stream(path_);
    for (std::string line; std::getline(stream, line);) {
      ++number_;
      if (line.starts_with("//--- ")) {
        read_title(line.substr(6));
      } else {
        read_line(line);
      }
    }
    // Blank lines between cases are no part of them.
    for (script_case& each : cases) {
      for (auto& [name, text] : each.files) {
        while (text.ends_with('\n')) text.pop_back();
      }
    }
  }

  std::vector<script_case> cases;

 private:
  void begin_case(const std::string& name, const std::string& text) {
    cases.push_back(
        {path_ + ":" + std::to_string(number_) + " " + name, {{"main.vrs", text}}, {}, {}});
  }

  void read_title(const std::string& title) {
    const std::string name = title.substr(std::min(title.size(), std::size_t{5}));
    table_.clear();
    if (title.starts_with("table ")) {
      table_ = title;
    } else if (title.starts_with("file ") || title.starts_with("task ")) {
      cases.back().files.emplace_back(name, "");
      if (title.starts_with("task ")) cases.back().tasks.push_back(name);
    } else {
      begin_case(title, "");
    }
  }

  void read_line(std::string line) {
    if (line.empty() && !table_.empty()) return;
    lines expected;
    split_expectations(line, expected);
    if (!table_.empty()) {
      begin_case(table_, with_bytes(line));
    } else if (expected.empty() || !line.empty()) {
      cases.back().files.back().second += with_bytes(line) + "\n";
    }
    cases.back().expected.insert(cases.back().expected.end(), expected.begin(), expected.end());
  }

  std::string path_;
  std::string table_;  // the table's title, empty outside
  int number_ = 0;
};

// By the position of the level's bit; no level is the clock.
char marker_of(vrn_log_level level) {
  return "@*?!~:>"[std::bit_width(static_cast<std::uint32_t>(level))];
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

// Puts "#" in the place of the word behind a label.
void mask(std::string& text, std::string_view label) {
  const std::size_t at = text.find(label);
  if (at == std::string::npos) return;
  const std::size_t first = at + label.size();
  text.replace(first, text.find_first_of(" )", first) - first, "#");
}

void append_record(lines& result, const log_record& record, bool frames) {
  const char marker = marker_of(record.level);
  if (marker == '!' && frames && record.text.find("Error ***\n") != std::string::npos) {
    std::istringstream stream(record.text);
    for (std::string line; std::getline(stream, line);) result.push_back("=" + line);
  } else if (marker == '!') {
    result.push_back(marker + error_text(record.text));
  } else {
    result.push_back(marker + record.text);
    if (marker == '~') mask(result.back(), "TASK ");
    if (marker == ':') mask(result.back(), "avg IPS: ");
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
  const case_reader file(GetParam());
  ASSERT_FALSE(file.cases.empty());
  for (const script_case& each : file.cases) {
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
