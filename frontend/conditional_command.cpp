// Conditionals and loops: keywords, headers and bodies, gathered into one command.
#include <utility>

#include "frontend/command_builder.hpp"
#include "frontend/nesting.hpp"
#include "frontend/report.hpp"

namespace vorn {

// The chain of "else if" is a loop, so it may be of any length. An "else" goes to the innermost
// "if" that is still open, because bodies are built before what follows them is looked at.
bool vrn_command_builder::build_conditional(std::size_t end, vrn_enclosing enclosing,
                                            vrn_src_command& command) {
  command.kind = vrn_command_kind::conditional;
  const std::size_t first = scratch_.size();
  while (true) {
    if (!build_header(end, command) || !build_body(end, enclosing, command)) return false;
    if (!at_word(end, "else")) break;
    take_token();
    if (at_word(end, "if")) continue;
    if (!build_body(end, enclosing, command)) return false;
    break;
  }
  finish(command, first);
  return true;
}

bool vrn_command_builder::build_loop(std::size_t end, vrn_enclosing enclosing,
                                     vrn_src_command& command) {
  command.kind = vrn_command_kind::loop;
  const std::size_t first = scratch_.size();
  if (!build_header(end, command) || !build_body(end, enclosing, command)) return false;
  finish(command, first);
  return true;
}

bool vrn_command_builder::build_header(std::size_t end, vrn_src_command& command) {
  const vrn_src_token& keyword = *tokens_[at_];
  take_token();
  if (!at_symbol(end, '(')) {
    report_expected_parentheses(keyword, keyword.text);
    return false;
  }
  return build_group(end, command);
}

// A body of one statement becomes a group of one command, as deep as the header's, which has been
// found not too deep. A missing body adds nothing; the parser reports it.
bool vrn_command_builder::build_body(std::size_t end, vrn_enclosing enclosing,
                                     vrn_src_command& command) {
  if (at_symbol(end, '{')) return build_group(end, command);
  if (at_ == end) return true;
  const nesting_level level(depth_);
  const vrn_src_token& first = *tokens_[at_];
  vrn_command body = map_.store.make<vrn_src_command>();
  if (!build_command(end, enclosing, *body)) return false;
  if (body->tokens.empty()) return true;
  add_group_token(vrn_enclosing::brace, first, command);
  command.groups.push_back({std::move(body)});
  return true;
}

}  // namespace vorn
