// Conditions, loops and return.
#include <cstddef>

#include <vornscript/language.hpp>

#include "frontend/report.hpp"
#include "parser/parser_state.hpp"

namespace vorn {
namespace {

// Whether the token at a position, if there is one, is a group of a kind.
bool has_group(vrn_src_command_view range, std::uint32_t at, vrn_token_kind kind) {
  return at < range.last && range.token(at).kind == kind;
}

}  // namespace

// if ( ) { } [else if ( ) { }]... [else { }]
vrn_node vrn_parser::parse_condition(vrn_src_command_view range) {
  if (!range.front().is_word(words::if_)) return fail(report_invalid_condition, range.front());
  auto* const node = ast_.make<vrn_ast_node_condition>(range.front());
  auto* branch = node;
  for (std::uint32_t at = range.first;;) {
    if (!parse_branch(range, at, *branch)) return nullptr;
    at += 3;
    if (at == range.last) return node;
    const vrn_src_token& keyword = range.token(at++);
    const bool is_last = at == range.last || !range.token(at).is_word(words::if_);
    if (!keyword.is_word(words::else_) || (is_last && at + 1 < range.last)) {
      return fail(report_cannot_parse_conditional_block, range.front());
    }
    auto* const otherwise = ast_.make<vrn_ast_node_condition>(is_last ? keyword : range.token(at));
    branch->otherwise = otherwise;
    branch = otherwise;
    if (is_last) return parse_body(range, at, keyword, branch->body) ? node : nullptr;
  }
}

// One "if" with its header and its body.
bool vrn_parser::parse_branch(vrn_src_command_view range, std::uint32_t at,
                              vrn_ast_node_condition& branch) {
  const vrn_src_token& keyword = range.token(at);
  if (!has_group(range, at + 1, vrn_token_kind::group_paren) ||
      expressions_in(commands_.group(range.token(at + 1))) != 1) {
    fail(report_invalid_condition, keyword);
    return false;
  }
  branch.condition = parse_only(commands_.group(range.token(at + 1)));
  if (!branch.condition) {
    fail(report_cannot_parse_condition, keyword);
    return false;
  }
  return parse_body(range, at + 2, keyword, branch.body);
}

// What follows the keyword of a branch or a loop, and its header.
bool vrn_parser::parse_body(vrn_src_command_view range, std::uint32_t at,
                            const vrn_src_token& keyword, vrn_statement_list& body) {
  if (has_group(range, at, vrn_token_kind::group_brace) &&
      !parse_list(commands_.group(range.token(at)), body)) {
    return true;
  }
  fail(report_cannot_parse_conditional_block, keyword);
  return false;
}

// for ( ) { }
vrn_node vrn_parser::parse_loop(vrn_src_command_view range) {
  auto* const node = ast_.make<vrn_ast_node_loop>(range.front());
  if (!parse_loop_header(range, *node)) return nullptr;
  if (range.size() > 3) return fail(report_cannot_parse_conditional_block, range.front());
  return parse_body(range, range.first + 2, range.front(), node->body) ? node : nullptr;
}

// The parts of a header, by their number: the condition; the start and the condition; all three.
bool vrn_parser::parse_loop_header(vrn_src_command_view range, vrn_ast_node_loop& loop) {
  const auto failed = [&](vrn_reporter reporter) {
    fail(reporter, range.front());
    return false;
  };
  if (!has_group(range, range.first + 1, vrn_token_kind::group_paren)) {
    return failed(report_invalid_for_condition);
  }
  const vrn_command_span header = commands_.group(range.token(range.first + 1));
  const std::size_t count = expressions_in(header);
  if (count == 0) return failed(report_loop_needs_condition);
  if (count > 3) return failed(report_invalid_for_condition);

  vrn_node* const members[] = {&loop.start, &loop.condition, &loop.end};
  const vrn_reporter reporters[] = {report_cannot_parse_start, report_invalid_for_condition,
                                    report_cannot_parse_end};
  const std::size_t first = count == 1 ? 1 : 0;
  vrn_statement_list parts;
  if (parse_list(header, parts)) return failed(reporters[first + parts.size()]);
  for (std::size_t i = 0; i < count; ++i) *members[first + i] = parts[i].node;
  return true;
}

// A return needs a value.
vrn_node vrn_parser::parse_return(vrn_src_command_view range) {
  auto* const node = ast_.make<vrn_ast_node_return>(range.front());
  node->value = parse({range.tokens, range.first + 1, range.last});
  return node->value ? node : fail(report_cannot_parse_return, range.front());
}

}  // namespace vorn
