#include "fuzz/support/source_report.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

#include <vornscript/filesys.hpp>

#include "fuzz/support/check.hpp"

namespace vorn::fuzz {
namespace {

constexpr std::string_view head =
    "Syntax Error ***\n------------------------------------------------------------\n";
constexpr std::string_view foot = "\n------------------------------------------------------------";

// What stands in front of `end`, which is taken off too.
std::string_view take_until(std::string_view& text, std::string_view end) {
  const std::size_t at = text.find(end);
  check(at != std::string_view::npos, "A report has all of its parts.", text);
  const std::string_view taken = text.substr(0, at);
  text.remove_prefix(at + end.size());
  return taken;
}

std::uint32_t number_of(std::string_view digits) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  check(error == std::errc() && end == digits.data() + digits.size(), "A place is two numbers.",
        digits);
  return number;
}

// How much a token that begins with this byte takes up at least.
std::size_t length_at(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  return lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// Whether a line end may be no line end to the lexer: behind a backslash in a string, or where a
// stray lead byte takes it for a part of its character. In a string of several lines it is one, but
// the string has the column of its beginning and the line of its end.
bool has_odd_line_ends(std::string_view text) {
  if (text.find("\"\"\"") != std::string_view::npos || text.find("'''") != std::string_view::npos) {
    return true;
  }
  for (std::size_t at = text.find('\n'); at < text.size(); at = text.find('\n', at + 1)) {
    const std::string_view before =
        text.substr(at - std::min<std::size_t>(at, 3), std::min<std::size_t>(at, 3));
    if (before.ends_with('\\')) return true;
    if (std::any_of(before.begin(), before.end(), [](char c) { return (c & 0xC0) == 0xC0; }))
      return true;
  }
  return false;
}

}  // namespace

bool is_source_report(std::string_view logged) { return logged.starts_with("Syntax Error"); }

source_report parse_source_report(std::string_view logged) {
  check(logged.starts_with(head) && logged.ends_with(foot), "A report stands in its frame.",
        logged);
  std::string_view rest = logged.substr(head.size(), logged.size() - head.size() - foot.size());
  source_report report;
  take_until(rest, "--> ");
  std::string_view place = take_until(rest, "\n");
  report.file = take_until(place, ":");
  const std::string_view line = take_until(place, ":");
  report.line = number_of(line);
  report.column = number_of(place);
  take_until(rest, " " + std::string(line) + " | ");
  report.shown = take_until(rest, "\n");
  take_until(rest, "|\n\n*** ");
  report.message = rest;
  return report;
}

bool has_place(const source_report& report, std::string text) {
  text = normalise_source(std::move(text));
  std::size_t begin = 0;
  for (std::uint32_t line = 1; line < report.line && begin < text.size(); ++line) {
    begin = std::min(text.find('\n', begin), text.size() - 1) + 1;
  }
  const std::size_t width =
      has_odd_line_ends(text) ? text.size() : std::min(text.find('\n', begin), text.size()) - begin;
  return report.line > 0 && (begin < text.size() || report.line == 1) && report.column <= width &&
         text.find(report.shown) != std::string::npos;
}

bool is_blank(std::string_view text) {
  while (!text.empty()) {
    std::size_t length = length_at(text);
    if (text.starts_with("//")) {
      length = text.find('\n');
    } else if (text.starts_with("/*")) {
      const std::size_t end = text.find("*/", 2);
      if (end == std::string_view::npos) return false;
      length = end + 2;
    } else if (text[0] > ' ' && text[0] < '\x7f') {
      return false;
    }
    text.remove_prefix(std::min(length, text.size()));
  }
  return true;
}

}  // namespace vorn::fuzz
