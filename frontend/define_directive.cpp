// The define directive: a name and the tokens of its line.
#include <string>
#include <utility>

#include <vornscript/log.hpp>

#include "frontend/command_builder.hpp"
#include "frontend/report.hpp"

namespace vorn {
namespace {

void log_define(const vrn_token& name, const std::vector<vrn_token>& body) {
  if (!get_log().enabled(vrn_log_level::verbose)) return;
  std::string texts(name->text);
  for (const vrn_token& token : body) texts.append(" ").append(token->text);
  log_line(vrn_log_level::verbose, "DEF ", texts);
}

}  // namespace

// The body is built apart from the tokens around it: its brackets have to be closed on its line.
bool vrn_command_builder::build_define(std::size_t end, vrn_src_command& command) {
  const vrn_src_token& sign = *tokens_[at_];
  if (end - at_ < 3 || !tokens_[at_ + 1]->is_word("define") ||
      tokens_[at_ + 2]->kind != vrn_token_kind::word) {
    report_invalid_directive(sign);
    return false;
  }
  command.kind = vrn_command_kind::define;
  const vrn_token& name = tokens_[at_ + 2];
  at_ += 3;
  const std::vector<vrn_token> body = take_line(end);
  if (!vrn_command_builder(map_, body, depth_).build_define_body(name, command)) return false;
  log_define(name, body);
  return true;
}

std::vector<vrn_token> vrn_command_builder::take_line(std::size_t end) {
  std::vector<vrn_token> line;
  for (; at_ < end; ++at_) {
    if (tokens_[at_]->kind == vrn_token_kind::end_of_line) {
      if (!tokens_[at_ - 1]->is_symbol("\\")) break;
      line.pop_back();
    } else if (tokens_[at_]->kind != vrn_token_kind::reserved_4) {
      line.push_back(tokens_[at_]);
    }
  }
  return line;
}

// Unlike an ordinary command it keeps every ";" and "," of its line.
bool vrn_command_builder::build_define_body(const vrn_token& name, vrn_src_command& define) {
  scratch_.push_back(name);
  while (at_ < tokens_.size()) {
    const vrn_src_token& token = *tokens_[at_];
    switch (punctuation(token)) {
      case '(':
      case '[':
      case '{':
        if (!build_group(tokens_.size(), define)) return false;
        break;
      case ')':
      case ']':
      case '}':
        report_cannot_parse_token(token, token.text);
        return false;
      default:
        take_token();
    }
  }
  finish(define, 0);
  return true;
}

}  // namespace vorn
