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

// How many bytes the character takes up that begins with this one.
std::size_t length_at(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  return lead < 0xC0 || lead > 0xF7 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = length_at(text);
    const std::string_view rest = text.substr(1, length - 1);
    const bool shortest = length == 1 ? text[0] >= 0
                                      : text[0] != '\xC0' && !text.starts_with("\xE0\x80") &&
                                            !text.starts_with("\xF0\x80");
    if (!shortest || rest.size() < length - 1 ||
        !std::all_of(rest.begin(), rest.end(), [](char c) { return c < '\xC0'; })) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

// Whether the lexer counts the lines as they look. It does not count a line end behind a backslash
// in a string, nor one that a stray lead byte takes for a part of its character; and a string of
// several lines has the column of its beginning and the line of its end.
bool has_plain_lines(std::string_view text) {
  return is_utf8(text) && text.find("\\\n") == std::string_view::npos &&
         text.find(R"(""")") == std::string_view::npos &&
         text.find("'''") == std::string_view::npos;
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
  if (report.line == 0) return false;
  if (!has_plain_lines(text)) {
    return report.line <= text.size() && report.column <= text.size() &&
           text.find(report.shown) != std::string::npos;
  }
  std::size_t begin = 0;
  for (std::uint32_t line = 1; line < report.line && begin < text.size(); ++line) {
    begin = std::min(text.find('\n', begin), text.size() - 1) + 1;
  }
  const std::size_t end = std::min(text.find('\n', begin), text.size());
  return begin < text.size() && report.column <= end - begin &&
         text.substr(begin, end - begin).find(report.shown) != std::string::npos;
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
