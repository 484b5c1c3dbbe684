// Commands: statements made of tokens, in which every bracketed part is one group token.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "frontend/token.hpp"
#include "memory/block_store.hpp"

namespace vorn {

enum class vrn_command_kind : std::uint32_t {
  ordinary = 1,
  define = 2,       // tokens: the name, then the body
  conditional = 3,  // tokens: if ( ) { } [else if ( ) { }]... [else { }]
  loop = 4,         // tokens: for ( ) { }
};

struct vrn_src_command;
using vrn_command = vrn_ref<vrn_src_command>;
using vrn_command_list = std::vector<vrn_command>;

// Holds no line ends. The bodies of conditionals and loops are brace groups, also when the script
// has a single statement there; a body that is missing altogether has no token.
struct vrn_src_command {
  vrn_command_kind kind = vrn_command_kind::ordinary;
  std::uint32_t reference_count = 0;
  std::vector<vrn_command_list> groups;  // one for each group token, in order
  std::vector<vrn_token> tokens;

  const vrn_command_list& group(const vrn_src_token& token) const { return groups[token.command]; }
};

inline void release_last(vrn_src_command* command) noexcept { vrn_block_store::destroy(command); }

// A source file's commands. Shares the token map, which the tokens point into.
struct vrn_src_command_map {
  std::shared_ptr<vrn_src_token_view> source;
  vrn_block_store store;  // of the commands and the group tokens
  vrn_command_list commands;
};

// What the parser reads: the tokens [first, last) of a command.
struct vrn_src_command_view {
  const vrn_src_command* command;
  std::uint32_t first;
  std::uint32_t last;

  std::uint32_t size() const { return last - first; }
  const vrn_token& token(std::uint32_t position) const { return command->tokens[position]; }
  const vrn_token& front() const { return token(first); }
  const vrn_token& back() const { return token(last - 1); }
};

}  // namespace vorn
