#include "frontend/token.hpp"

#include <algorithm>
#include <utility>

#include "frontend/code_point.hpp"

namespace vorn {

std::uint32_t vrn_src_token::line() const {
  const std::uint32_t at = kind == vrn_token_kind::string ? begin + extent : begin;
  const auto& lines = source->lines;
  return static_cast<std::uint32_t>(std::upper_bound(lines.begin(), lines.end(), at) -
                                    lines.begin());
}

// The closing quote or quotes are characters like the opening ones, but may be spelt differently.
std::uint32_t vrn_src_token::end() const {
  if (kind != vrn_token_kind::string) return begin + static_cast<std::uint32_t>(text().size());
  const char* const file_end = source->text.data() + source->text.size();
  const char* at = text().data() + extent;
  for (const char* open = text().data() - symbol; open < text().data();) {
    open += read_code_point(open, file_end).length;
    at += read_code_point(at, file_end).length;
  }
  return static_cast<std::uint32_t>(at - source->text.data());
}

void vrn_src_token_view::set_text(std::string bytes) {
  text = normalise_source(std::move(bytes), notes_places ? &tabs : nullptr);
}

// A place among the blanks counts from their begin; there are at least as many of them as tabs.
std::uint32_t vrn_src_token_view::offset_in_file(std::uint32_t at) const {
  const auto next = std::upper_bound(
      tabs.begin(), tabs.end(), at,
      [](std::uint32_t offset, const vrn_tab_run& run) { return offset < run.end; });
  const vrn_tab_run before = next == tabs.begin() ? vrn_tab_run{0, 0} : *std::prev(next);
  const std::uint32_t offset = before.end_in_file + (at - before.end);
  return next == tabs.end() ? offset : std::min(offset, next->end_in_file);
}

std::string_view vrn_src_token_view::line_text(std::uint32_t line) const {
  if (line < 1 || line > lines.size()) return {};
  const std::string_view rest = std::string_view(text).substr(lines[line - 1]);
  if (line != measured_line_) {
    measured_line_ = line;
    measured_length_ = std::min(rest.find('\n'), rest.size());
  }
  return rest.substr(0, measured_length_);
}

}  // namespace vorn
