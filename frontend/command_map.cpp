#include "frontend/command_map.hpp"

#include <iterator>
#include <utility>

#include "frontend/command_builder.hpp"
#include "frontend/nesting.hpp"
#include "frontend/report.hpp"

namespace vorn {
namespace {

vrn_enclosing shape_of(char opener) {
  return opener == '('   ? vrn_enclosing::paren
         : opener == '[' ? vrn_enclosing::bracket
                         : vrn_enclosing::brace;
}

vrn_token_kind group_kind(vrn_enclosing shape) {
  return static_cast<vrn_token_kind>(static_cast<std::uint32_t>(vrn_token_kind::group_paren) +
                                     static_cast<std::uint32_t>(shape));
}

}  // namespace

bool vrn_command_builder::build_list(std::size_t end, vrn_enclosing enclosing,
                                     vrn_command_list& list) {
  for (skip_line_ends(end); at_ < end; skip_line_ends(end)) {
    const vrn_src_token& first = *tokens_[at_];
    if (is_closer(punctuation(first))) {
      report_cannot_parse_token(first, first.text);
      return false;
    }
    vrn_command command = map_.store.make<vrn_src_command>();
    if (!build_command(end, enclosing, *command)) return false;
    if (!command->tokens.empty()) list.push_back(std::move(command));
  }
  return true;
}

bool vrn_command_builder::build_command(std::size_t end, vrn_enclosing enclosing,
                                        vrn_src_command& command) {
  const vrn_src_token& first = *tokens_[at_];
  if (first.is_symbol("#")) return build_define(end, command);
  if (first.kind == vrn_token_kind::word) {
    if (first.text == "if") return build_conditional(end, enclosing, command);
    if (first.text == "for") return build_loop(end, enclosing, command);
    if (first.text == "else") {
      report_else_without_if(first);
      return false;
    }
  }
  return build_ordinary(end, enclosing, command);
}

bool vrn_command_builder::build_ordinary(std::size_t end, vrn_enclosing enclosing,
                                         vrn_src_command& command) {
  const std::size_t first = scratch_.size();
  for (bool complete = false; !complete && at_ < end;) {
    const vrn_src_token& token = *tokens_[at_];
    const char symbol = punctuation(token);
    if (is_closer(symbol)) break;
    if (symbol == ';' || (symbol == ',' && enclosing == vrn_enclosing::paren)) {
      ++at_;
      complete = true;
    } else if (is_opener(symbol)) {
      if (!build_group(end, command)) return false;
      complete = symbol == '{' && enclosing == vrn_enclosing::brace;
    } else {
      take_or_skip();
    }
  }
  finish(command, first);
  return true;
}

bool vrn_command_builder::build_group(std::size_t end, vrn_src_command& command) {
  const vrn_src_token& opener = *tokens_[at_];
  const std::size_t closer = brackets_.find_closer(at_, end);
  if (closer == vrn_bracket_map::none) return false;
  const nesting_level level(depth_);
  if (level.too_deep()) {
    report_nesting_too_deep(opener);
    return false;
  }

  const vrn_enclosing shape = shape_of(opener.text.front());
  add_group_token(shape, opener, command);
  vrn_command_list list;
  ++at_;
  if (!build_list(closer, shape, list)) return false;
  command.groups.push_back(std::move(list));
  at_ = closer + 1;
  return true;
}

void vrn_command_builder::add_group_token(vrn_enclosing shape, const vrn_src_token& first,
                                          const vrn_src_command& command) {
  scratch_.push_back(map_.store.make<vrn_src_token>(
      vrn_src_token{group_kind(shape), first.line, first.column, first.index, first.text,
                    first.source, static_cast<std::uint32_t>(command.groups.size())}));
}

void vrn_command_builder::finish(vrn_src_command& command, std::size_t first) {
  const auto begin = scratch_.begin() + static_cast<std::ptrdiff_t>(first);
  command.tokens.assign(std::make_move_iterator(begin), std::make_move_iterator(scratch_.end()));
  scratch_.erase(begin, scratch_.end());
}

void vrn_command_builder::skip_line_ends(std::size_t end) {
  while (at_ < end && at_line_end()) ++at_;
}

bool vrn_command_builder::at_word(std::size_t end, std::string_view word) {
  skip_line_ends(end);
  return at_ < end && tokens_[at_]->is_word(word);
}

bool vrn_command_builder::at_symbol(std::size_t end, char symbol) {
  skip_line_ends(end);
  return at_ < end && punctuation(*tokens_[at_]) == symbol;
}

std::shared_ptr<vrn_src_command_map> create_command_map(std::shared_ptr<vrn_src_token_view> view) {
  auto map = std::make_shared<vrn_src_command_map>();
  map->source = std::move(view);
  const std::vector<vrn_token>& tokens = map->source->tokens;
  vrn_command_builder builder(*map, tokens);
  if (!builder.build_list(tokens.size(), vrn_enclosing::brace, map->commands)) return nullptr;
  return map;
}

}  // namespace vorn
