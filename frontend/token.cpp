#include "frontend/token.hpp"

#include <algorithm>

namespace vorn {

std::string_view vrn_src_token_view::line_text(std::int32_t line) const {
  if (line < 1 || static_cast<std::size_t>(line) > lines.size()) return {};
  const std::string_view rest =
      std::string_view(text).substr(lines[static_cast<std::size_t>(line) - 1]);
  if (line != measured_line_) {
    measured_line_ = line;
    measured_length_ = std::min(rest.find('\n'), rest.size());
  }
  return rest.substr(0, measured_length_);
}

}  // namespace vorn
