#include "frontend/bracket_map.hpp"

#include <array>
#include <cstdint>
#include <vector>

#include "frontend/report.hpp"

namespace vorn {
namespace {

enum class side : std::uint8_t { none, opening, closing };

struct bracket {
  side which = side::none;
  std::uint8_t shape = 0;  // in the order of the group token kinds, in which counters are looked at
};

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

vrn_token_kind group_kind(std::uint32_t shape) {
  return static_cast<vrn_token_kind>(static_cast<std::uint32_t>(vrn_token_kind::group_paren) +
                                     shape);
}

}  // namespace

vrn_bracket_map::vrn_bracket_map(std::span<vrn_src_token> tokens) : tokens_(tokens) {
  std::array<std::vector<std::uint32_t>, 3> open;

  for (std::uint32_t i = 0; i < tokens.size(); ++i) {
    const auto [which, shape] = brackets[static_cast<unsigned char>(punctuation(tokens[i]))];
    if (which == side::none) continue;
    if (which == side::opening) {
      open[shape].push_back(i);
      tokens[i].kind = group_kind(shape);
      tokens[i].extent = none;
      tokens[i].space_before = false;
      tokens[i].symbol = 0;
      continue;
    }
    if (open[shape].empty()) {
      stray_ = i;  // no search gets further
      return;
    }
    const std::uint32_t opener = open[shape].back();
    open[shape].pop_back();
    tokens[opener].extent = i;
    for (std::uint32_t other = shape; other-- > 0;) {
      if (!open[other].empty() && open[other].back() > opener) {
        tokens[opener].symbol = symbol_code(other == 0 ? "(" : "[");
      }
    }
  }
}

std::uint32_t vrn_bracket_map::find_closer(std::uint32_t at, std::uint32_t end) const {
  const vrn_src_token& opener = tokens_[at];
  if (opener.extent < end) {
    if (opener.symbol == 0) return opener.extent;
    if (opener.is_symbol("(")) {
      report_missing_closing_parenthesis(opener);
    } else {
      report_missing_closing_bracket(opener);
    }
  } else if (stray_ < end) {
    report_invalid_closer(tokens_[stray_], tokens_[stray_].text());
  } else {
    report_no_closer(opener);
  }
  return none;
}

}  // namespace vorn
