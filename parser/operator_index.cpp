#include "parser/operator_index.hpp"

namespace vorn {
namespace {

// 1 binds loosest; 0: not an operator.
std::uint32_t operator_precedence(const vrn_src_token& token) {
  if (token.kind != vrn_token_kind::symbol) return 0;
  switch (token.symbol) {
    case symbol_code("||"):
      return 1;
    case symbol_code("&&"):
      return 2;
    case symbol_code("=="):
    case symbol_code("!="):
      return 3;
    case symbol_code("<"):
    case symbol_code(">"):
    case symbol_code("<="):
    case symbol_code(">="):
      return 4;
    case symbol_code("+"):
    case symbol_code("-"):
      return 5;
    case symbol_code("*"):
    case symbol_code("/"):
    case symbol_code("%"):
      return 6;
    case symbol_code("^"):
      return 7;
    case symbol_code("++"):
    case symbol_code("--"):
    case symbol_code("!"):
      return 8;
    default:
      return 0;
  }
}

}  // namespace

std::uint32_t vrn_operator_index::add(vrn_src_command_view range) {
  std::uint32_t root = none;
  path_.clear();
  for (std::uint32_t position = range.first; position < range.last; ++position) {
    const std::uint32_t precedence = operator_precedence(range.token(position));
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
