// Builds commands from a list of tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "frontend/bracket_map.hpp"
#include "frontend/command.hpp"

namespace vorn {

inline bool is_line_end(const vrn_src_token& token) {
  return token.kind == vrn_token_kind::end_of_line || token.kind == vrn_token_kind::reserved_4;
}

inline bool is_closer(char symbol) { return symbol == ')' || symbol == ']' || symbol == '}'; }

// Whether the token is a backslash that continues a define on the next line.
inline bool is_continuation(std::span<const vrn_src_token> tokens, std::size_t at) {
  return punctuation(tokens[at]) == '\\' && at + 1 < tokens.size() &&
         tokens[at + 1].kind == vrn_token_kind::end_of_line;
}

// Goes through the tokens of the map's source once, from the first to the last, and gathers those
// of each command when it is complete. They take the place of tokens that have been gone through:
// there are always enough of those, since a group's token stands for two brackets and that of a
// body without any for the ")" or ";" before it.
class vrn_command_builder {
 public:
  explicit vrn_command_builder(vrn_src_command_map& map)
      : map_(map), tokens_(map.source->tokens), brackets_(tokens_) {}

  // Builds all commands; false when that fails, which has been reported then.
  bool build();

 private:
  // Those that give false have reported why, and the builder is of no further use.

  // Builds all commands up to the position `end`; they become the last of the open ones.
  // `enclosing` is what they stand in, of the group token kinds; the top level counts as a brace.
  bool build_list(std::uint32_t end, vrn_token_kind enclosing);
  bool build_command(std::uint32_t end, vrn_token_kind enclosing, vrn_src_command& command);
  bool build_ordinary(std::uint32_t end, vrn_token_kind enclosing, vrn_src_command& command);
  bool build_define(std::uint32_t end, vrn_src_command& command);
  bool build_conditional(std::uint32_t end, vrn_token_kind enclosing, vrn_src_command& command);
  bool build_loop(std::uint32_t end, vrn_token_kind enclosing, vrn_src_command& command);

  // Build a part of a command: a keyword and the "(" group that has to follow it; a body; a
  // bracketed group.
  bool build_header(std::uint32_t end);
  bool build_body(std::uint32_t end, vrn_token_kind enclosing);
  bool build_group(std::uint32_t end);

  // Where the line of a define whose body begins at `at` ends, or that of the last line that a
  // backslash continues.
  std::uint32_t end_of_line(std::uint32_t at, std::uint32_t end) const;

  // Adds a group, which is empty so far, and makes the token its own; gives the group's number.
  std::uint32_t add_group(vrn_src_token token);
  void take_token() { open_tokens_.push_back(tokens_[at_++]); }
  // Whether the token here is part of no command.
  bool at_line_end() const {
    return is_line_end(tokens_[at_]) || (in_define_ && is_continuation(tokens_, at_));
  }
  void take_or_skip() {
    if (at_line_end()) {
      ++at_;
    } else {
      take_token();
    }
  }
  // Makes the open tokens from `first` on those of the command.
  void finish(vrn_src_command& command, std::size_t first);
  // Makes the open commands from `first` on those of the group.
  void finish_group(std::uint32_t group, std::size_t first);

  void skip_line_ends(std::uint32_t end);
  // Skip line ends first.
  bool at_word(std::uint32_t end, std::string_view word);
  bool at_group(std::uint32_t end, vrn_token_kind shape);

  vrn_src_command_map& map_;
  std::vector<vrn_src_token>& tokens_;
  vrn_bracket_map brackets_;
  std::uint32_t depth_ = 0;  // of the brackets and bodies being built
  bool in_define_ = false;
  std::uint32_t at_ = 0;
  std::uint32_t finished_ = 0;  // how many tokens, from the first on, are those of commands
  // The tokens of the commands and the commands of the lists being built, those of the inner ones
  // behind the outer ones'.
  std::vector<vrn_src_token> open_tokens_;
  std::vector<vrn_src_command> open_commands_;
};

}  // namespace vorn
