// Closing brackets, found for a whole list of tokens at once.
//
// The rule for one opener is a search over the tokens that follow it, with three depth counters,
// "()", "[]" and "{}" apart:
//   - a counter that falls below zero ends the search: that closer is invalid;
//   - where the opener's own counter is back at zero, its closer has been found. A "[" then needs
//     the counter of "()" to be zero too, a "{" those of "()" and "[]"; a "(" deliberately does not
//     look at the others;
//   - at the end of the tokens there is no closer.
// One pass with a stack for each counter tells the outcome for every opener: its own stack pairs it
// with its closer, the other two tell what is open there, and the only closer at which a counter
// can fall below zero is the first one of all that has no opener. The outcome is noted in the
// opener itself, which becomes the token of its group: until the group has a number, `extent` is
// the position of its closer, and `symbol` what its rule finds open there.
#pragma once

#include <cstdint>
#include <span>

#include "frontend/token.hpp"

namespace vorn {

// The character of a one-character symbol, or 0.
inline char punctuation(const vrn_src_token& token) {
  return token.symbol < 0x80 ? static_cast<char>(token.symbol) : '\0';
}

class vrn_bracket_map {
 public:
  static constexpr std::uint32_t none = 0xFFFFFFFF;

  explicit vrn_bracket_map(std::span<vrn_src_token> tokens);

  // The position of the closer of the bracket at a position, when the tokens are searched up to
  // `end`; none when the search fails, which has been reported then. An opener outside a group is
  // asked about only if all brackets before it, one inside only if all before it in the group
  // turned out well nested.
  std::uint32_t find_closer(std::uint32_t at, std::uint32_t end) const;

 private:
  std::span<vrn_src_token> tokens_;
  std::uint32_t stray_ = none;  // the first closer without an opener
};

}  // namespace vorn
