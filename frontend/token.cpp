#include "frontend/token.hpp"

#include <algorithm>

namespace vorn {

std::uint32_t vrn_src_token::line() const {
  const std::uint32_t at = kind == vrn_token_kind::string ? begin + extent : begin;
  const auto& lines = source->lines;
  return static_cast<std::uint32_t>(std::upper_bound(lines.begin(), lines.end(), at) -
                                    lines.begin());
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
