// Assignments and operators.
//
// What waits for a side of its own is kept on a stack of the parser, not by recursion, so neither
// the length of an expression nor its mix of operators costs stack; only prefix and postfix
// operators and groups recurse.
#include <algorithm>
#include <initializer_list>
#include <optional>

#include "frontend/nesting.hpp"
#include "frontend/report.hpp"
#include "parser/parser_state.hpp"

namespace vorn {
namespace {

bool is_sign(const vrn_src_token& token) { return token.is_symbol("="); }

// Whether "=" behind this token is part of a comparison or compound operator that was written with
// a blank inside.
bool begins_operator(const vrn_src_token& token) {
  return token.kind == vrn_token_kind::symbol &&
         std::string_view("!&*+-/<>^|").find(token.text()[0]) != std::string_view::npos;
}

// Whether a range of several tokens begins with a sign, which an operator in front of the range had
// kept from being one.
bool begins_with_sign(vrn_src_command_view range) {
  return is_sign(range.front()) && !is_sign(range.token(range.first + 1));
}

bool is_any(const vrn_src_token& token, std::initializer_list<std::string_view> symbols) {
  return std::find(symbols.begin(), symbols.end(), token.text()) != symbols.end();
}

vrn_src_command_view before(vrn_src_command_view range, std::uint32_t position) {
  range.last = position;
  return range;
}

vrn_src_command_view after(vrn_src_command_view range, std::uint32_t position) {
  range.first = position + 1;
  return range;
}

}  // namespace

std::optional<std::uint32_t> vrn_parser::find_sign(vrn_src_command_view range) {
  for (std::uint32_t at = range.first; at < range.last; ++at) {
    if (!is_sign(range.token(at))) continue;
    if (at + 1 < range.last && is_sign(range.token(at + 1))) continue;
    if (at > range.first) {
      const vrn_src_token& previous = range.token(at - 1);
      if (is_sign(previous) || begins_operator(previous)) continue;
    }
    return at;
  }
  return std::nullopt;
}

// The tokens before the sign fall into groups at blanks: the last group is the target, the ones
// before it are keywords.
bool vrn_parser::parse_target(vrn_src_command_view range, std::uint32_t sign) {
  const vrn_src_token& sign_token = range.token(sign);
  if (sign == range.first || sign + 1 == range.last) {
    fail(report_no_value_to_assign, sign_token);
    return false;
  }
  auto* const node = ast_.make<vrn_ast_node_assign>(sign_token);
  vrn_src_command_view target = before(range, sign);
  for (std::uint32_t at = range.first + 1; at < sign; ++at) {
    if (range.token(at).space_before) target.first = at;
  }
  node->target = parse(target);
  if (!node->target) {
    fail(report_cannot_parse_target, sign_token);
    return false;
  }
  if (node->target->kind == vrn_node_kind::variable_node) {
    node->keyword_count = target.first - range.first;
  } else if (target.first > range.first) {
    report_assign_keywords_ignored(range.front());
  }
  assigns_.push_back(node);
  return true;
}

// Gives the values to the assignments that wait, the last one first; the first of them is the
// whole.
vrn_node vrn_parser::finish_assigns(std::size_t outer, vrn_node value) {
  for (; assigns_.size() > outer; assigns_.pop_back()) {
    vrn_ast_node_assign* const node = assigns_.back();
    if (!value) {
      fail(report_cannot_parse_assigned, *node->token);
    } else {
      node->value = value;
      value = node;
    }
  }
  return value;
}

vrn_node vrn_parser::parse_list_addition(vrn_src_command_view range, std::uint32_t sign) {
  const vrn_src_token& sign_token = range.token(sign);
  const vrn_node target = parse(before(range, sign - 1));
  if (!target) return fail(report_cannot_parse_initializer_list, sign_token);
  const vrn_node value = parse(after(range, sign));
  if (!value) return fail(report_cannot_parse_initializer_list, sign_token);
  auto* const node = ast_.make<vrn_ast_node_initializer_list_add>(sign_token);
  node->entries = ast_.make_list<vrn_node_list>(1);
  node->entries[0] = make_list({target, value});
  return node;
}

vrn_node vrn_parser::parse_operators(vrn_src_command_view range) {
  const std::size_t outer = operators_.size();
  const std::uint32_t at = operators_.add(range);
  if (at == vrn_operator_index::none) return parse_operand(range, at);
  const vrn_node node = parse_split(range, at);
  operators_.remove_from(outer);
  return node;
}

// Goes down along left sides, and up again with what they give, to turn right where a left side has
// been waited for.
vrn_node vrn_parser::parse_split(vrn_src_command_view range, std::uint32_t at) {
  const std::size_t outer = splits_.size();
  for (;;) {
    for (; !is_operand(range, at); at = operators_[at].left) {
      add_split(range, at);
      range.last = operators_[at].position;
    }
    const vrn_node side = finish_splits(outer, parse_operand(range, at));
    if (splits_.size() == outer) return side;
    range = splits_.back().rest;
    at = splits_.back().at;
  }
}

void vrn_parser::add_split(vrn_src_command_view range, std::uint32_t at) {
  const vrn_operator_index::entry& split = operators_[at];
  auto* const node = ast_.make<vrn_ast_node_binary>(range.token(split.position));
  splits_.push_back({node, after(range, split.position), split.right});
}

// Hangs a side onto the operator that waits for it, and so on with every operator that is complete
// then. What is left is the whole, unless an operator waits for its right side.
vrn_node vrn_parser::finish_splits(std::size_t outer, vrn_node side) {
  for (; splits_.size() > outer; splits_.pop_back()) {
    vrn_ast_node_binary* const node = splits_.back().node;
    if (!side) {
      const vrn_operand_reporter reporter = node->left
                                                ? vrn_operand_reporter(report_cannot_parse_right)
                                                : vrn_operand_reporter(report_cannot_parse_left);
      fail(reporter, *node->token, node->token->text());
    } else if (!node->left) {
      node->left = side;
      return nullptr;
    } else {
      node->right = side;
      side = node;
    }
  }
  return side;
}

bool vrn_parser::is_operand(vrn_src_command_view range, std::uint32_t at) const {
  if (is_simple(range) || begins_with_sign(range) || at == vrn_operator_index::none) return true;
  const std::uint32_t position = operators_[at].position;
  return position == range.first || position + 1 == range.last;
}

vrn_node vrn_parser::parse_operand(vrn_src_command_view range, std::uint32_t at) {
  if (is_simple(range)) return parse_simple(range);
  if (begins_with_sign(range)) return fail(report_no_value_to_assign, range.front());
  if (at == vrn_operator_index::none) return parse_bracket_form(range);
  const std::uint32_t position = operators_[at].position;
  const vrn_src_token& token = range.token(position);
  if (position + 1 == range.last && is_any(token, {"++", "--"})) {
    return parse_unary(range, at, true);
  }
  if (position == range.first && is_any(token, {"++", "--", "!", "-", "+"})) {
    return parse_unary(range, at, false);
  }
  return fail_loudly(report_operator_without_operands, token);
}

vrn_node vrn_parser::parse_unary(vrn_src_command_view range, std::uint32_t at, bool postfix) {
  const vrn_operator_index::entry split = operators_[at];
  const vrn_src_token& token = range.token(split.position);
  const vrn_reporter reporter = postfix ? vrn_reporter(report_cannot_parse_postfix_operand)
                                        : vrn_reporter(report_cannot_parse_prefix_operand);
  const vrn_src_command_view rest =
      postfix ? before(range, split.position) : after(range, split.position);
  const nesting_level level(depth_);
  if (level.too_deep()) return fail(report_nesting_too_deep, token);
  auto* const node = ast_.make<vrn_ast_node_unary>(token);
  node->postfix = postfix;
  node->operand = parse_split(rest, postfix ? split.left : split.right);
  return node->operand ? node : fail(reporter, token);
}

}  // namespace vorn
