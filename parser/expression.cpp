// Assignments and operators.
//
// Chains that group to the right (a - b - c, a = b = c) are read in a loop and linked as they come,
// so their length costs no stack; only left sides, prefix operators and groups recurse.
#include <optional>
#include <utility>

#include "frontend/nesting.hpp"
#include "frontend/report.hpp"
#include "parser/parser_state.hpp"

namespace vorn {
namespace {

bool is_sign(const vrn_src_token& token) { return token.is_symbol("="); }

// Whether "=" behind this token is part of a comparison or compound operator that was written with a
// blank inside.
bool begins_operator(const vrn_src_token& token) {
  return token.kind == vrn_token_kind::symbol &&
         std::string_view("!&*+-/<>^|").find(token.text[0]) != std::string_view::npos;
}

bool is_any(std::string_view op, std::string_view first, std::string_view second) {
  return op == first || op == second;
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

std::optional<std::uint32_t> vrn_parser::find_sign(const vrn_src_command_view& range) {
  for (std::uint32_t at = range.first; at < range.last; ++at) {
    if (!is_sign(*range.token(at))) continue;
    if (at + 1 < range.last && is_sign(*range.token(at + 1))) continue;
    if (at > range.first) {
      const vrn_src_token& previous = *range.token(at - 1);
      if (is_sign(previous) || begins_operator(previous)) continue;
    }
    return at;
  }
  return std::nullopt;
}

// The tokens before the sign fall into groups at blanks: the last group is the target, the ones
// before it are keywords.
bool vrn_parser::parse_assignment(const vrn_src_command_view& range, std::uint32_t sign,
                                  vrn_node_chain& chain) {
  const vrn_token& sign_token = range.token(sign);
  if (sign == range.first || sign + 1 == range.last) {
    fail(report_no_value_to_assign, sign_token);
    return false;
  }
  auto node = ast_.make<vrn_ast_node_assign>(sign_token);
  std::vector<vrn_token> group;
  vrn_src_command_view target = before(range, sign);
  for (std::uint32_t at = range.first; at < sign; ++at) {
    if (at > range.first && range.token(at)->space_before) {
      node->keywords.push_back(std::exchange(group, {}));
      target.first = at;
    }
    group.push_back(range.token(at));
  }
  node->target = parse(target);
  if (!node->target) {
    fail(report_cannot_parse_target, sign_token);
    return false;
  }
  if (!node->keywords.empty() && node->target->kind != vrn_node_kind::variable_node) {
    report_assign_keywords_ignored(*range.front());
    node->keywords.clear();
  }
  vrn_node& value = node->value;
  chain.add(std::move(node), value, report_cannot_parse_assigned);
  return true;
}

vrn_node vrn_parser::parse_list_addition(const vrn_src_command_view& range, std::uint32_t sign) {
  const vrn_token& sign_token = range.token(sign);
  vrn_node target = parse(before(range, sign - 1));
  if (!target) return fail(report_cannot_parse_initializer_list, sign_token);
  vrn_node value = parse(after(range, sign));
  if (!value) return fail(report_cannot_parse_initializer_list, sign_token);
  auto node = ast_.make<vrn_ast_node_initializer_list_add>(sign_token);
  node->entries.push_back({std::move(target), std::move(value)});
  return node;
}

vrn_node vrn_parser::parse_operators(const vrn_src_command_view& range) {
  const std::size_t outer = operators_.size();
  vrn_node node = parse_split(range, operators_.add(range));
  operators_.remove_from(outer);
  return node;
}

vrn_node vrn_parser::parse_split(vrn_src_command_view range, std::uint32_t at) {
  vrn_node_chain chain;
  for (;;) {
    if (at == vrn_operator_index::none) return finish(chain, parse_bracket_form(range));
    const vrn_operator_index::entry split = operators_[at];
    const vrn_token& token = range.token(split.position);
    const bool first = split.position == range.first;
    const bool last = split.position + 1 == range.last;
    if (last && is_any(token->text, "++", "--")) {
      return finish(chain, parse_unary(range, at, true));
    }
    if (first && (is_any(token->text, "++", "--") || is_any(token->text, "-", "+") ||
                  token->text == "!")) {
      return finish(chain, parse_unary(range, at, false));
    }
    if (first || last) {
      return finish(chain, fail_loudly(report_operator_without_operands, token));
    }
    auto node = ast_.make<vrn_ast_node_binary>(token);
    node->op = token->text;
    node->left = parse_operand(before(range, split.position), split.left);
    if (!node->left) return finish(chain, fail(report_cannot_parse_left, token, token->text));
    vrn_node& right = node->right;
    chain.add(std::move(node), right, report_cannot_parse_right);
    range = after(range, split.position);
    at = split.right;
    if (is_sign(*range.front())) return finish(chain, parse_operand(range, at));
    if (auto simple = parse_simple(range)) return finish(chain, *std::move(simple));
  }
}

vrn_node vrn_parser::parse_operand(const vrn_src_command_view& range, std::uint32_t at) {
  if (auto simple = parse_simple(range)) return *std::move(simple);
  // An operator in front of it kept this sign from being one; the range by itself begins with it.
  if (is_sign(*range.front()) && !is_sign(*range.token(range.first + 1))) {
    return fail(report_no_value_to_assign, range.front());
  }
  return parse_split(range, at);
}

vrn_node vrn_parser::parse_unary(const vrn_src_command_view& range, std::uint32_t at,
                                 bool postfix) {
  const vrn_operator_index::entry split = operators_[at];
  const vrn_token& token = range.token(split.position);
  const vrn_reporter reporter =
      postfix ? vrn_reporter(report_cannot_parse_postfix_operand)
              : vrn_reporter(report_cannot_parse_prefix_operand);
  const vrn_src_command_view rest =
      postfix ? before(range, split.position) : after(range, split.position);
  const nesting_level level(depth_);
  if (level.too_deep()) return fail(report_nesting_too_deep, token);
  auto node = ast_.make<vrn_ast_node_unary>(token);
  node->op = token->text;
  node->postfix = postfix;
  if (rest.size() > 0) node->operand = parse_operand(rest, postfix ? split.left : split.right);
  return node->operand ? node : fail(reporter, token);
}

}  // namespace vorn
