#include "parser/operator_index.hpp"

namespace vorn {
namespace {

constexpr std::uint32_t pair_of(char first, char second) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(first)) << 8 |
         static_cast<unsigned char>(second);
}

}  // namespace

std::uint32_t operator_precedence(const vrn_src_token& token) {
  if (token.kind != vrn_token_kind::symbol || token.text.size() > 2) return 0;
  switch (pair_of(token.text[0], token.text.size() == 2 ? token.text[1] : '\0')) {
    case pair_of('|', '|'):
      return 1;
    case pair_of('&', '&'):
      return 2;
    case pair_of('=', '='):
    case pair_of('!', '='):
      return 3;
    case pair_of('<', '\0'):
    case pair_of('>', '\0'):
    case pair_of('<', '='):
    case pair_of('>', '='):
      return 4;
    case pair_of('+', '\0'):
    case pair_of('-', '\0'):
      return 5;
    case pair_of('*', '\0'):
    case pair_of('/', '\0'):
    case pair_of('%', '\0'):
      return 6;
    case pair_of('^', '\0'):
      return 7;
    case pair_of('+', '+'):
    case pair_of('-', '-'):
    case pair_of('!', '\0'):
      return 8;
    default:
      return 0;
  }
}

std::uint32_t vrn_operator_index::add(vrn_src_command_view range) {
  std::uint32_t root = none;
  path_.clear();
  for (std::uint32_t position = range.first; position < range.last; ++position) {
    const std::uint32_t precedence = operator_precedence(*range.token(position));
    if (precedence == 0) continue;
    const auto made = static_cast<std::uint32_t>(entries_.size());
    std::uint32_t passed = none;
    while (!path_.empty() && entries_[path_.back()].precedence > precedence) {
      passed = path_.back();
      path_.pop_back();
    }
    entries_.push_back({position, precedence, passed, none});
    (path_.empty() ? root : entries_[path_.back()].right) = made;
    path_.push_back(made);
  }
  return root;
}

}  // namespace vorn
