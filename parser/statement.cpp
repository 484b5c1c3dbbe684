// Conditions, loops and return.
#include <array>
#include <utility>

#include "frontend/report.hpp"
#include "parser/parser_state.hpp"

namespace vorn {
namespace {

// Whether the token at a position, if there is one, is a group of a kind.
bool has_group(const vrn_src_command_view& range, std::uint32_t at, vrn_token_kind kind) {
  return at < range.last && range.token(at)->kind == kind;
}

// The commands of a group that are no defines.
std::vector<vrn_command> expressions_of(const vrn_command_list& list) {
  std::vector<vrn_command> found;
  for (const vrn_command& command : list) {
    if (command->kind != vrn_command_kind::define) found.push_back(command);
  }
  return found;
}

}  // namespace

// if ( ) { } [else if ( ) { }]... [else { }]
vrn_node vrn_parser::parse_condition(const vrn_src_command_view& range) {
  auto node = ast_.make<vrn_ast_node_condition>(range.front());
  for (std::uint32_t at = range.first;;) {
    if (!range.token(at)->is_word("if")) return fail(report_invalid_condition, range.front());
    if (!parse_branch(range, at, node->branches.emplace_back())) return {};
    at += 3;
    if (at == range.last) return node;
    const bool follows = range.token(at)->is_word("else") && at + 1 < range.last;
    if (!follows) return fail(report_cannot_parse_conditional_block, range.front());
    ++at;
    if (!has_group(range, at, vrn_token_kind::group_brace)) continue;
    if (at + 1 < range.last) return fail(report_cannot_parse_conditional_block, range.front());
    auto otherwise = ast_.make<vrn_ast_node_condition>(range.token(at));
    if (!parse_body(range, at, otherwise->branches.emplace_back().body)) return {};
    node->otherwise = std::move(otherwise);
    return node;
  }
}

// One "if" with its header and its body.
bool vrn_parser::parse_branch(const vrn_src_command_view& range, std::uint32_t at,
                              vrn_ast_condition_branch& branch) {
  const vrn_token& keyword = range.token(at);
  if (!has_group(range, at + 1, vrn_token_kind::group_paren)) {
    fail(report_invalid_condition, keyword);
    return false;
  }
  const vrn_command_list& header = range.command->group(*range.token(at + 1));
  const auto expressions = expressions_of(header);
  if (expressions.size() != 1) {
    fail(report_invalid_condition, keyword);
    return false;
  }
  branch.condition = parse_only(header);
  if (!branch.condition) {
    fail(report_cannot_parse_condition, expressions[0]->tokens.front());
    return false;
  }
  return parse_body(range, at + 2, branch.body);
}

bool vrn_parser::parse_body(const vrn_src_command_view& range, std::uint32_t at,
                            std::vector<vrn_node>& body) {
  if (has_group(range, at, vrn_token_kind::group_brace)) {
    const vrn_command_list& list = range.command->group(*range.token(at));
    return parse_list(list, report_cannot_parse_conditional_block, body);
  }
  fail(report_cannot_parse_conditional_block, range.front());
  return false;
}

// for ( ) { }
vrn_node vrn_parser::parse_loop(const vrn_src_command_view& range) {
  auto node = ast_.make<vrn_ast_node_loop>(range.front());
  if (!parse_loop_header(range, *node)) return {};
  if (range.size() > 3) return fail(report_cannot_parse_conditional_block, range.front());
  if (!parse_body(range, range.first + 2, node->body)) return {};
  return node;
}

// The parts of a header, by their number: the condition; the start and the condition; all three.
bool vrn_parser::parse_loop_header(const vrn_src_command_view& range, vrn_ast_node_loop& loop) {
  if (!has_group(range, range.first + 1, vrn_token_kind::group_paren)) {
    fail(report_invalid_for_condition, range.front());
    return false;
  }
  struct part {
    vrn_node* node;
    vrn_reporter reporter;
  };
  const part start = {&loop.start, report_cannot_parse_start};
  const part condition = {&loop.condition, report_invalid_for_condition};
  const part end = {&loop.end, report_cannot_parse_end};
  const vrn_command_list& header = range.command->group(*range.token(range.first + 1));
  const auto count = expressions_of(header).size();
  if (count == 0 || count > 3) {
    fail(count == 0 ? vrn_reporter(report_loop_needs_condition)
                    : vrn_reporter(report_invalid_for_condition),
         range.front());
    return false;
  }
  std::array<part, 3> parts = {start, condition, end};
  std::size_t next = count == 1 ? 1 : 0;
  for (const vrn_command& command : header) {
    if (command->kind == vrn_command_kind::define) {
      add_define(command);
      continue;
    }
    const part& current = parts[next++];
    *current.node = parse(*command);
    if (!*current.node) {
      fail(current.reporter, command->tokens.front());
      return false;
    }
  }
  return true;
}

// A return needs a value.
vrn_node vrn_parser::parse_return(const vrn_src_command_view& range) {
  auto node = ast_.make<vrn_ast_node_return>(range.front());
  node->value = parse({range.command, range.first + 1, range.last});
  return node->value ? node : fail(report_cannot_parse_return, range.front());
}

}  // namespace vorn
