#include "frontend/bracket_map.hpp"

#include <array>
#include <cstdint>

#include "frontend/report.hpp"

namespace vorn {
namespace {

enum class side : std::uint8_t { none, opening, closing };

struct bracket {
  side which = side::none;
  std::uint8_t shape = 0;  // the position of its counter in the order in which they are looked at
};

constexpr std::array<char, 3> openers = {'(', '[', '{'};

constexpr std::array<bracket, 128> brackets = [] {
  std::array<bracket, 128> table{};
  table['('] = {side::opening, 0};
  table['['] = {side::opening, 1};
  table['{'] = {side::opening, 2};
  table[')'] = {side::closing, 0};
  table[']'] = {side::closing, 1};
  table['}'] = {side::closing, 2};
  return table;
}();

}  // namespace

vrn_bracket_map::vrn_bracket_map(std::span<const vrn_src_token> tokens) : tokens_(tokens) {
  std::array<std::vector<std::uint32_t>, 3> open;  // positions in pairs_

  for (std::uint32_t i = 0; i < tokens.size(); ++i) {
    const auto [which, shape] = brackets[static_cast<unsigned char>(punctuation(tokens[i]))];
    if (which == side::none) continue;
    if (which == side::opening) {
      open[shape].push_back(static_cast<std::uint32_t>(pairs_.size()));
      pairs_.push_back({i});
      continue;
    }
    if (open[shape].empty()) {
      stray_ = i;  // no search gets further
      return;
    }
    const std::uint32_t closed = open[shape].back();
    open[shape].pop_back();
    pairs_[closed].closer = i;
    for (std::size_t other = shape; other-- > 0;) {
      if (!open[other].empty() && open[other].back() > closed) {
        pairs_[closed].still_open = openers[other];
      }
    }
  }
}

std::uint32_t vrn_bracket_map::find_closer(std::uint32_t opener, std::uint32_t end) {
  while (next_ < pairs_.size() && pairs_[next_].opener < opener) ++next_;
  const pair found = next_ < pairs_.size() ? pairs_[next_] : pair{opener};

  if (found.closer < end) {
    if (found.still_open == '\0') return found.closer;
    if (found.still_open == '(') {
      report_missing_closing_parenthesis(tokens_[opener]);
    } else {
      report_missing_closing_bracket(tokens_[opener]);
    }
  } else if (stray_ < end) {
    report_invalid_closer(tokens_[stray_], tokens_[stray_].text());
  } else {
    report_no_closer(tokens_[opener]);
  }
  return none;
}

}  // namespace vorn
