// The define directive: a name and the tokens of its line.
#include <span>
#include <string>
#include <utility>

#include <vornscript/language.hpp>
#include <vornscript/log.hpp>

#include "frontend/command_builder.hpp"
#include "frontend/report.hpp"

namespace vorn {
namespace {

// Empty when nobody is going to see it.
std::string define_line(std::span<const vrn_src_token> texts) {
  if (!get_log().enabled(vrn_log_level::verbose)) return {};
  std::string line = "DEF";
  for (std::size_t at = 0; at < texts.size(); ++at) {
    if (!is_line_end(texts[at]) && !is_continuation(texts, at)) {
      line.append(" ").append(texts[at].text());
    }
  }
  return line;
}

}  // namespace

// The brackets of a body have to be closed on its line, so groups are built up to the line's end.
// It keeps every ";" and "," of the line, unlike an ordinary command.
bool vrn_command_builder::build_define(std::uint32_t end, vrn_src_command& command) {
  const std::uint32_t sign = at_;
  if (end - at_ < 3 || !tokens_[at_ + 1].is_word(words::define) ||
      tokens_[at_ + 2].kind != vrn_token_kind::word) {
    report_invalid_directive(tokens_[sign]);
    return false;
  }
  command.kind = vrn_command_kind::define;
  const std::size_t first = open_tokens_.size();
  const std::uint32_t first_inner = finished_;
  at_ += 2;
  const std::uint32_t line_end = end_of_line(at_ + 1, end);
  const std::string line = define_line(std::span(tokens_).subspan(at_, line_end - at_));
  take_token();
  const bool is_outermost = !std::exchange(in_define_, true);
  while (at_ < line_end) {
    const vrn_src_token& token = tokens_[at_];
    const char symbol = punctuation(token);
    if (token.is_group()) {
      if (!build_group(line_end)) return false;
    } else if (is_closer(symbol)) {
      report_cannot_parse_token(token, token.text());
      return false;
    } else {
      take_or_skip();
    }
  }
  if (is_outermost) in_define_ = false;
  finish(command, first);
  // The tokens of its groups were finished since it was begun; the name is no part of the body.
  command.body_size = command.last - first_inner - 1;
  log_line(vrn_log_level::verbose, line);
  return true;
}

// A define among the groups of another's body ends with that one's line, which is where they end.
std::uint32_t vrn_command_builder::end_of_line(std::uint32_t at, std::uint32_t end) const {
  if (in_define_) return end;
  while (at < end &&
         (tokens_[at].kind != vrn_token_kind::end_of_line || is_continuation(tokens_, at - 1))) {
    ++at;
  }
  return at;
}

}  // namespace vorn
