// Conditionals and loops: keywords, headers and bodies, gathered into one command.
#include <utility>

#include <vornscript/language.hpp>

#include "frontend/command_builder.hpp"
#include "frontend/nesting.hpp"
#include "frontend/report.hpp"

namespace vorn {

// The chain of "else if" is a loop, so it may be of any length. An "else" goes to the innermost
// "if" that is still open, because bodies are built before what follows them is looked at.
bool vrn_command_builder::build_conditional(std::uint32_t end, vrn_token_kind enclosing,
                                            vrn_src_command& command) {
  command.kind = vrn_command_kind::conditional;
  const std::size_t first = open_tokens_.size();
  while (true) {
    if (!build_header(end) || !build_body(end, enclosing)) return false;
    if (!at_word(end, words::else_)) break;
    take_token();
    if (at_word(end, words::if_)) continue;
    if (!build_body(end, enclosing)) return false;
    break;
  }
  finish(command, first);
  return true;
}

bool vrn_command_builder::build_loop(std::uint32_t end, vrn_token_kind enclosing,
                                     vrn_src_command& command) {
  command.kind = vrn_command_kind::loop;
  const std::size_t first = open_tokens_.size();
  if (!build_header(end) || !build_body(end, enclosing)) return false;
  finish(command, first);
  return true;
}

bool vrn_command_builder::build_header(std::uint32_t end) {
  const vrn_src_token& keyword = tokens_[at_];
  take_token();
  if (!at_group(end, vrn_token_kind::group_paren)) {
    report_expected_parentheses(keyword, keyword.text());
    return false;
  }
  return build_group(end);
}

// A body of one statement becomes a group of one command, as deep as the header's, which has been
// found not too deep. A missing body adds nothing; the parser reports it.
bool vrn_command_builder::build_body(std::uint32_t end, vrn_token_kind enclosing) {
  if (at_group(end, vrn_token_kind::group_brace)) return build_group(end);
  if (at_ == end) return true;
  const nesting_level level(depth_);
  const vrn_src_token first = tokens_[at_];
  vrn_src_command body;
  if (!build_command(end, enclosing, body)) return false;
  if (body.first == body.last) return true;
  const std::size_t outer = open_commands_.size();
  open_commands_.push_back(body);
  finish_group(add_group({.source = first.source,
                          .begin = first.begin,
                          .extent = 0,
                          .column = first.column,
                          .kind = vrn_token_kind::group_brace}),
               outer);
  return true;
}

}  // namespace vorn
