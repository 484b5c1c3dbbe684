// Tokens and the token map of a source file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <vornscript/ref.hpp>

#include "memory/block_store.hpp"

namespace vorn {

enum class vrn_token_kind : std::uint8_t {
#define VRN_TOKEN_KIND(number, name) name = number,
#include "frontend/token_kinds.def"
#undef VRN_TOKEN_KIND
};

// A symbol of one or two characters as one number, the first character lowest.
constexpr std::uint16_t symbol_code(std::string_view spelling) {
  const auto first = static_cast<unsigned char>(spelling[0]);
  const auto second = static_cast<unsigned char>(spelling.size() > 1 ? spelling[1] : '\0');
  return static_cast<std::uint16_t>(first | second << 8);
}

struct vrn_src_token_view;

struct vrn_src_token {
  std::string_view text;  // lies in the view's text
  const vrn_src_token_view* source;
  std::int32_t line;     // from 1; a string's is the line of its closing quote
  std::uint32_t column;  // of the first character, from 0, in code points
  std::uint32_t index;   // byte offset in the source text
  vrn_token_kind kind;
  bool space_before = false;  // never set on numbers, strings and groups
  std::uint16_t symbol = 0;   // its code; 0 when the token is no symbol
  std::uint32_t command = 0;  // of a group token: its position among the groups
  std::uint32_t reference_count = 0;

  bool is_symbol(std::string_view spelling) const { return symbol == symbol_code(spelling); }
  bool is_word(std::string_view spelling) const {
    return kind == vrn_token_kind::word && text == spelling;
  }
};

inline void release_last(vrn_src_token* token) noexcept { vrn_block_store::destroy(token); }

using vrn_token = vrn_ref<vrn_src_token>;

// The token map of one source file. Owns the text that its tokens point into, and the views of the
// files that it includes, whose tokens stand among its own.
struct vrn_src_token_view {
  vrn_src_token_view() = default;
  vrn_src_token_view(const vrn_src_token_view&) = delete;
  vrn_src_token_view& operator=(const vrn_src_token_view&) = delete;

  // The text of a line, from its first byte to its end; empty when there is no such line. Asked
  // again for the same line, it need not look for the end.
  std::string_view line_text(std::int32_t line) const;

  std::string name;  // the file's canonical path, or "<memory>"
  std::string directory;
  std::string text;  // normalised; not changed once tokens point into it
  std::vector<vrn_token> tokens;
  std::unordered_map<std::string, std::shared_ptr<std::string>> included;  // of the main file
  std::vector<std::uint32_t> lines;  // where line n+1 begins in the text
  std::vector<std::shared_ptr<vrn_src_token_view>> includes;
  const vrn_src_token_view* parent = nullptr;  // null for the main file
  vrn_token included_at;                       // the operand that named this file in the parent
  vrn_block_store store;                       // of the tokens

 private:
  mutable std::int32_t measured_line_ = 0;  // the last that was asked for
  mutable std::size_t measured_length_ = 0;
};

}  // namespace vorn
