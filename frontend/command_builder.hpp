// Builds commands from a list of tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/bracket_map.hpp"
#include "frontend/command.hpp"

namespace vorn {

// What the commands being built stand in; the values are in order of the group token kinds. The top
// level counts as a brace.
enum class vrn_enclosing : std::uint32_t { paren = 0, bracket = 1, brace = 2 };

inline bool is_line_end(const vrn_src_token& token) {
  return token.kind == vrn_token_kind::end_of_line || token.kind == vrn_token_kind::reserved_4;
}

inline bool is_opener(char symbol) { return symbol == '(' || symbol == '[' || symbol == '{'; }
inline bool is_closer(char symbol) { return symbol == ')' || symbol == ']' || symbol == '}'; }

// Whether the token is a backslash that continues a define on the next line.
inline bool is_continuation(std::span<const vrn_token> tokens, std::size_t at) {
  return punctuation(*tokens[at]) == '\\' && at + 1 < tokens.size() &&
         tokens[at + 1]->kind == vrn_token_kind::end_of_line;
}

// Goes through its tokens once, from the first to the last, and moves those that are part of a
// command to the map. A builder whose operation has returned false has reported why, and is of no
// further use.
class vrn_command_builder {
 public:
  vrn_command_builder(vrn_src_command_map& map, std::span<vrn_token> tokens)
      : map_(map), tokens_(tokens), brackets_(tokens) {}

  // Builds all commands up to the position `end`.
  bool build_list(std::size_t end, vrn_enclosing enclosing, vrn_command_list& list);

 private:
  bool build_command(std::size_t end, vrn_enclosing enclosing, vrn_src_command& command);
  bool build_ordinary(std::size_t end, vrn_enclosing enclosing, vrn_src_command& command);
  bool build_define(std::size_t end, vrn_src_command& command);
  bool build_conditional(std::size_t end, vrn_enclosing enclosing, vrn_src_command& command);
  bool build_loop(std::size_t end, vrn_enclosing enclosing, vrn_src_command& command);

  // Build a part of a command: a keyword and the "(" group that has to follow it; a body; a
  // bracketed group.
  bool build_header(std::size_t end);
  bool build_body(std::size_t end, vrn_enclosing enclosing);
  bool build_group(std::size_t end);

  // Where the line of a define whose body begins at `at` ends, or that of the last line that a
  // backslash continues.
  std::size_t end_of_line(std::size_t at, std::size_t end) const;

  // Adds a token that stands for a new group, which is empty so far; gives the group's position.
  std::size_t add_group(vrn_enclosing shape, const vrn_src_token& first);
  void take_token() { open_tokens_.push_back(std::move(tokens_[at_++])); }
  // Whether the token here is part of no command.
  bool at_line_end() const {
    return is_line_end(*tokens_[at_]) || (in_define_ && is_continuation(tokens_, at_));
  }
  void take_or_skip() {
    if (at_line_end()) {
      ++at_;
    } else {
      take_token();
    }
  }
  // Moves the open tokens from `first` on to the map, as those of the command.
  void finish(vrn_src_command& command, std::size_t first);

  void skip_line_ends(std::size_t end);
  // Skip line ends first.
  bool at_word(std::size_t end, std::string_view word);
  bool at_symbol(std::size_t end, char symbol);

  vrn_src_command_map& map_;
  std::span<vrn_token> tokens_;
  vrn_bracket_map brackets_;
  std::uint32_t depth_ = 0;  // of the brackets and bodies being built
  bool in_define_ = false;
  std::size_t at_ = 0;
  // The tokens of the commands and the commands of the lists being built, those of the inner ones
  // behind the outer ones'.
  std::vector<vrn_token> open_tokens_;
  std::vector<vrn_src_command> open_commands_;
};

}  // namespace vorn
