// Commands: statements made of tokens, in which every bracketed part is one group token.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "frontend/token.hpp"

namespace vorn {

enum class vrn_command_kind : std::uint32_t {
#define VRN_COMMAND_KIND(number, name) name = number,
#include "frontend/command_kinds.def"
#undef VRN_COMMAND_KIND
};

// Where a command's tokens lie in the token map. They hold no line ends. The bodies of conditionals
// and loops are brace groups, also when the script has a single statement there; a body that is
// missing altogether has no token.
struct vrn_src_command {
  vrn_command_kind kind = vrn_command_kind::ordinary;
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  std::uint32_t body_size = 0;  // of a define: its body's tokens, those inside groups counted too
};

// Where a list of commands lies in its map.
struct vrn_command_list {
  std::uint32_t first = 0;
  std::uint32_t last = 0;
};

// What the parser reads: the tokens [first, last) of a command. Positions are those in the token
// map.
struct vrn_src_command_view {
  const vrn_src_token* tokens;
  std::uint32_t first;
  std::uint32_t last;

  std::uint32_t size() const { return last - first; }
  const vrn_src_token& token(std::uint32_t position) const { return tokens[position]; }
  const vrn_src_token& front() const { return token(first); }
  const vrn_src_token& back() const { return token(last - 1); }
};

// A source file's commands. Shares the token map, whose tokens are those of the commands. What
// belongs together lies side by side: the tokens of a command, the commands of a list.
struct vrn_src_command_map {
  std::shared_ptr<vrn_src_token_view> source;
  std::vector<vrn_src_command> top;
  std::vector<vrn_src_command> commands;  // of the groups
  std::vector<vrn_command_list> groups;   // by the number that a group token carries

  std::span<const vrn_src_command> group(const vrn_src_token& token) const {
    const vrn_command_list& list = groups[token.extent];
    return std::span(commands).subspan(list.first, list.last - list.first);
  }
  vrn_src_command_view view(const vrn_src_command& command) const {
    return {source->tokens.data(), command.first, command.last};
  }
};

}  // namespace vorn
