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
// can fall below zero is the first one of all that has no opener.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "frontend/token.hpp"

namespace vorn {

// The character of a one-character symbol, or 0.
inline char punctuation(const vrn_src_token& token) {
  return token.symbol < 0x80 ? static_cast<char>(token.symbol) : '\0';
}

class vrn_bracket_map {
 public:
  static constexpr std::uint32_t none = 0xFFFFFFFF;

  explicit vrn_bracket_map(std::span<const vrn_src_token> tokens);

  // The position of the closer of the bracket at `opener`, when the tokens are searched up to
  // `end`; none when the search fails, which has been reported then. Openers are asked about in
  // order, and one outside a group only if all brackets before it, one inside only if all before it
  // in the group turned out well nested.
  std::uint32_t find_closer(std::uint32_t opener, std::uint32_t end);

 private:
  struct pair {
    std::uint32_t opener;
    std::uint32_t closer = none;
    char still_open = '\0';  // what the opener's rule finds open at the closer
  };

  std::span<const vrn_src_token> tokens_;
  std::vector<pair> pairs_;     // by their openers
  std::size_t next_ = 0;        // the pair of the next opener to be asked about
  std::uint32_t stray_ = none;  // the first closer without an opener
};

}  // namespace vorn
