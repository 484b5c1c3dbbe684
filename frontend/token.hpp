// Tokens and the token map of a source file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frontend/tab_run.hpp"

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

// A program has very many of these, so what can be worked out from the source is not kept.
struct vrn_src_token {
  const vrn_src_token_view* source;
  std::uint32_t begin;   // of the text, a byte offset in the source's
  std::uint32_t extent;  // the text's length in bytes; of a group token, the group's number
  std::uint32_t column;  // of the first character, from 0, in code points
  vrn_token_kind kind;
  bool space_before = false;  // never set on numbers, strings and groups
  std::uint16_t symbol = 0;   // a symbol's code; of a string, how long its quotes are; else 0

  bool is_group() const {
    return kind >= vrn_token_kind::group_paren && kind <= vrn_token_kind::group_brace;
  }
  // A group token's is its first character, the opening bracket if it has one.
  std::string_view text() const;
  // From 1; a string's is the line of its closing quote.
  std::uint32_t line() const;
  // The byte offset of the first character, a string's opening quote.
  std::uint32_t index() const { return kind == vrn_token_kind::string ? begin - symbol : begin; }
  // That of the end, behind a string's closing quote.
  std::uint32_t end() const;

  bool is_symbol(std::string_view spelling) const { return symbol == symbol_code(spelling); }
  bool is_word(std::string_view spelling) const {
    return kind == vrn_token_kind::word && text() == spelling;
  }
};
static_assert(sizeof(void*) != 8 || sizeof(vrn_src_token) == 24);

// What an include directive names, which is no token of the map.
struct vrn_include_operand {
  vrn_src_token token;
  std::size_t before;  // the position of the token that follows, after the inclusion
  std::string path;    // of the file that it was found to be; empty when there is none
};

// The token map of one source file. Owns the tokens and the text that they lie in, and the views of
// the files that it includes, whose tokens stand among its own.
struct vrn_src_token_view {
  vrn_src_token_view() = default;
  vrn_src_token_view(const vrn_src_token_view&) = delete;
  vrn_src_token_view& operator=(const vrn_src_token_view&) = delete;

  // The text of a line, from its first byte to its end; empty when there is no such line. Asked
  // again for the same line, it need not look for the end.
  std::string_view line_text(std::uint32_t line) const;

  // Sets the text, normalised.
  void set_text(std::string bytes);

  // What an offset in the text is in the file as it was read.
  std::uint32_t offset_in_file(std::uint32_t at) const;

  std::string text;  // normalised; not changed once there are tokens
  // Whether somebody may ask where in the file as it was read something stands. Set before the
  // text; what is noted for that stays empty otherwise.
  bool notes_places = false;
  std::vector<vrn_tab_run> tabs;
  std::string name;  // the file's canonical path, or "<memory>"
  std::string directory;
  std::vector<vrn_src_token> tokens;
  std::unordered_map<std::string, std::shared_ptr<std::string>> included;  // of the main file
  std::vector<vrn_include_operand> operands;  // of the main file, noted like the tabs
  std::vector<std::uint32_t> lines;           // where line n+1 begins in the text
  std::vector<std::shared_ptr<vrn_src_token_view>> includes;
  const vrn_src_token_view* parent = nullptr;  // null for the main file
  vrn_src_token included_at{};                 // the operand that named this file in the parent

 private:
  mutable std::uint32_t measured_line_ = 0;  // the last that was asked for
  mutable std::size_t measured_length_ = 0;
};

inline std::string_view vrn_src_token::text() const {
  return {source->text.data() + begin, is_group() ? 1 : extent};
}

}  // namespace vorn
