#include "frontend/command_map.hpp"

#include <algorithm>
#include <utility>

#include <vornscript/language.hpp>

#include "frontend/command_builder.hpp"
#include "frontend/nesting.hpp"
#include "frontend/report.hpp"

namespace vorn {
namespace {

std::uint32_t count_of(const auto& list) { return static_cast<std::uint32_t>(list.size()); }

}  // namespace

bool vrn_command_builder::build() {
  open_commands_.reserve(map_.source->lines.size());
  if (!build_list(count_of(tokens_), vrn_token_kind::group_brace)) return false;
  tokens_.resize(finished_);
  map_.top = std::move(open_commands_);
  return true;
}

bool vrn_command_builder::build_list(std::uint32_t end, vrn_token_kind enclosing) {
  for (skip_line_ends(end); at_ < end; skip_line_ends(end)) {
    const vrn_src_token& first = tokens_[at_];
    if (is_closer(punctuation(first))) {
      report_cannot_parse_token(first, first.text());
      return false;
    }
    vrn_src_command command;
    if (!build_command(end, enclosing, command)) return false;
    if (command.first != command.last) open_commands_.push_back(command);
  }
  return true;
}

bool vrn_command_builder::build_command(std::uint32_t end, vrn_token_kind enclosing,
                                        vrn_src_command& command) {
  const vrn_src_token& first = tokens_[at_];
  if (first.is_symbol("#")) return build_define(end, command);
  if (first.kind == vrn_token_kind::word) {
    if (first.text() == words::if_) return build_conditional(end, enclosing, command);
    if (first.text() == words::for_) return build_loop(end, enclosing, command);
    if (first.text() == words::else_) {
      report_else_without_if(first);
      return false;
    }
  }
  return build_ordinary(end, enclosing, command);
}

bool vrn_command_builder::build_ordinary(std::uint32_t end, vrn_token_kind enclosing,
                                         vrn_src_command& command) {
  const std::size_t first = open_tokens_.size();
  for (bool complete = false; !complete && at_ < end;) {
    const vrn_src_token& token = tokens_[at_];
    if (token.is_group()) {
      complete = token.kind == vrn_token_kind::group_brace && enclosing == token.kind;
      if (!build_group(end)) return false;
      continue;
    }
    const char symbol = punctuation(token);
    if (is_closer(symbol)) break;
    if (symbol == ';' || (symbol == ',' && enclosing == vrn_token_kind::group_paren)) {
      ++at_;
      complete = true;
    } else {
      take_or_skip();
    }
  }
  finish(command, first);
  return true;
}

bool vrn_command_builder::build_group(std::uint32_t end) {
  const vrn_src_token& opener = tokens_[at_];
  const std::uint32_t closer = brackets_.find_closer(at_, end);
  if (closer == vrn_bracket_map::none) return false;
  const nesting_level level(depth_);
  if (level.too_deep()) {
    report_nesting_too_deep(opener);
    return false;
  }

  const std::uint32_t group = add_group(opener);
  const std::size_t outer = open_commands_.size();
  ++at_;
  if (!build_list(closer, opener.kind)) return false;
  finish_group(group, outer);
  at_ = closer + 1;
  return true;
}

std::uint32_t vrn_command_builder::add_group(vrn_src_token token) {
  token.extent = count_of(map_.groups);
  map_.groups.emplace_back();
  open_tokens_.push_back(token);
  return token.extent;
}

void vrn_command_builder::finish(vrn_src_command& command, std::size_t first) {
  command.first = finished_;
  const auto begin = open_tokens_.begin() + static_cast<std::ptrdiff_t>(first);
  std::copy(begin, open_tokens_.end(), tokens_.begin() + static_cast<std::ptrdiff_t>(finished_));
  finished_ += static_cast<std::uint32_t>(open_tokens_.end() - begin);
  open_tokens_.erase(begin, open_tokens_.end());
  command.last = finished_;
}

void vrn_command_builder::finish_group(std::uint32_t group, std::size_t first) {
  const auto begin = open_commands_.begin() + static_cast<std::ptrdiff_t>(first);
  map_.groups[group].first = count_of(map_.commands);
  map_.commands.insert(map_.commands.end(), begin, open_commands_.end());
  map_.groups[group].last = count_of(map_.commands);
  open_commands_.erase(begin, open_commands_.end());
}

void vrn_command_builder::skip_line_ends(std::uint32_t end) {
  while (at_ < end && at_line_end()) ++at_;
}

bool vrn_command_builder::at_word(std::uint32_t end, std::string_view word) {
  skip_line_ends(end);
  return at_ < end && tokens_[at_].is_word(word);
}

bool vrn_command_builder::at_group(std::uint32_t end, vrn_token_kind shape) {
  skip_line_ends(end);
  return at_ < end && tokens_[at_].kind == shape;
}

std::shared_ptr<vrn_src_command_map> create_command_map(std::shared_ptr<vrn_src_token_view> view) {
  auto map = std::make_shared<vrn_src_command_map>();
  map->source = std::move(view);
  return vrn_command_builder(*map).build() ? map : nullptr;
}

}  // namespace vorn
