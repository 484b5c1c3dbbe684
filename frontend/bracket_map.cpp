#include "frontend/bracket_map.hpp"

#include <array>
#include <string_view>

#include "frontend/report.hpp"

namespace vorn {

vrn_bracket_map::vrn_bracket_map(std::span<const vrn_token> tokens) : tokens_(tokens) {
  constexpr std::string_view openers = "([{";
  constexpr std::string_view closers = ")]}";
  std::array<std::vector<std::size_t>, 3> open;  // positions in pairs_

  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const char bracket = punctuation(*tokens[i]);
    if (bracket == '\0') continue;
    if (const std::size_t shape = openers.find(bracket); shape != std::string_view::npos) {
      open[shape].push_back(pairs_.size());
      pairs_.push_back({i});
      continue;
    }
    const std::size_t shape = closers.find(bracket);
    if (shape == std::string_view::npos) continue;
    if (open[shape].empty()) {
      stray_ = i;  // no search gets further
      return;
    }
    const std::size_t closed = open[shape].back();
    open[shape].pop_back();
    pairs_[closed].closer = i;
    // Shapes are in the order in which they are looked at.
    for (std::size_t other = shape; other-- > 0;) {
      if (!open[other].empty() && open[other].back() > closed) {
        pairs_[closed].still_open = openers[other];
      }
    }
  }
}

std::size_t vrn_bracket_map::find_closer(std::size_t opener, std::size_t end) {
  while (next_ < pairs_.size() && pairs_[next_].opener < opener) ++next_;
  const pair found = next_ < pairs_.size() ? pairs_[next_] : pair{opener};

  if (found.closer < end) {
    if (found.still_open == '\0') return found.closer;
    if (found.still_open == '(') {
      report_missing_closing_parenthesis(*tokens_[opener]);
    } else {
      report_missing_closing_bracket(*tokens_[opener]);
    }
  } else if (stray_ < end) {
    report_invalid_closer(*tokens_[stray_], tokens_[stray_]->text);
  } else {
    report_no_closer(*tokens_[opener]);
  }
  return none;
}

}  // namespace vorn
