#include "fuzz/support/source_report.hpp"

#include <algorithm>
#include <string>
#include <utility>

#include <vornscript/filesys.hpp>

#include "fuzz/support/check.hpp"

namespace vorn::fuzz {
namespace {

constexpr std::string_view rule = "------------------------------------------------------------";

// What stands in front of `end`, which is taken off too.
std::string take_until(std::string_view& text, std::string_view end) {
  const std::size_t at = text.find(end);
  check(at != std::string_view::npos, "A report has all of its parts.", text);
  const std::string_view taken = text.substr(0, at);
  text.remove_prefix(at + end.size());
  return std::string(taken);
}

}  // namespace

bool is_source_report(std::string_view logged) { return logged.starts_with("Syntax Error"); }

source_report parse_source_report(std::string_view rest) {
  source_report report;
  check(take_until(rest, rule) == "Syntax Error ***\n", "A report has a head.");
  take_until(rest, "\n");
  take_until(rest, "--> ");
  report.file = take_until(rest, ":");
  const std::string line = take_until(rest, ":");
  report.line = std::stoul(line);
  report.column = std::stoul(take_until(rest, "\n"));
  take_until(rest, " " + line + " | ");
  report.shown = take_until(rest, "\n");
  take_until(rest, "|\n\n*** ");
  check(rest.ends_with(rule), "A report has a foot.", rest);
  report.message = rest.substr(0, rest.size() - rule.size() - 1);
  return report;
}

bool has_place(const source_report& report, std::string text) {
  text = normalise_source(std::move(text));
  const auto line_ends = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  return report.line >= 1 && report.line <= line_ends + 1 && report.column <= text.size() &&
         text.find(report.shown) != std::string::npos;
}

}  // namespace vorn::fuzz
