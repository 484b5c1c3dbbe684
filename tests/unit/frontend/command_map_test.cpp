#include <array>
#include <optional>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

constexpr std::string_view brackets = "([{)]}";

using complaint = std::optional<std::string>;

complaint at_column(std::size_t column, std::string_view message) {
  return " --> main.vrs:1:" + std::to_string(column) + " *** " + std::string(message);
}

// The rule for closing brackets, as it is put: a search from the opener at `at`, which ends at the
// closer or with an error.
complaint search_closer(std::string_view text, std::size_t& at, std::size_t end) {
  const std::size_t opener = at;
  const std::size_t shape = brackets.find(text[opener]);
  std::array<int, 3> open{};
  for (; at < end; ++at) {
    const std::size_t bracket = brackets.find(text[at]);
    int& count = open[bracket % 3];
    count += bracket < 3 ? 1 : -1;
    if (count < 0) return at_column(at, std::string("Invalid closing bracket: ") + text[at]);
    if (open[shape] != 0) continue;
    if (shape > 0 && open[0] > 0) return at_column(opener, "Missing closing bracket for '('");
    if (shape > 1 && open[1] > 0) return at_column(opener, "Missing closing bracket for '['");
    return std::nullopt;
  }
  return at_column(opener, "Cannot find closing bracket.");
}

complaint bracket_error(std::string_view text, std::size_t at, std::size_t end) {
  for (; at < end; ++at) {
    const std::size_t opener = at;
    if (brackets.find(text[at]) > 2) {
      return at_column(at, std::string("Cannot parse token: ") + text[at]);
    }
    if (auto error = search_closer(text, at, end)) return error;
    if (auto error = bracket_error(text, opener + 1, at)) return error;
  }
  return std::nullopt;
}

// The report of a load, if it failed before there were commands.
complaint reported(script_host& host, const std::string& text) {
  host.log->records.clear();
  host.load(text);
  const auto errors = host.log->texts(vrn_log_level::error);
  if (errors.empty() || !errors.back().starts_with("command_map")) return std::nullopt;
  const std::string& report = errors.at(0);
  const std::size_t place = report.find(" --> ");
  const std::size_t message = report.find("*** ", place);
  return report.substr(place, report.find('\n', place) - place) + ' ' +
         report.substr(message, report.find('\n', message) - message);
}

TEST(command_map, matches_brackets_by_the_rule) {
  script_host host;
  std::mt19937 random(1);
  for (int round = 0; round < 5'000; ++round) {
    std::string text(2 + random() % 9, ' ');
    for (char& bracket : text) bracket = brackets[random() % 6];
    ASSERT_EQ(reported(host, text), bracket_error(text, 0, text.size())) << text;
  }
}

}  // namespace
}  // namespace vorn::test
