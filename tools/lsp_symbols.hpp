// What the names of a script mean, as far as its tokens tell: so that works while the script is
// being typed, and no stage behind the lexer can make sense of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace vorn::lsp {

inline constexpr std::uint32_t none = 0xFFFFFFFF;

enum class token_kind : std::uint8_t { symbol, word, string, include };

// A token of the script or of a file that it includes.
struct script_token {
  token_kind kind;
  bool last_on_line = false;
  std::string text;    // a string's between its quotes; of an include, the path of the file
  std::uint32_t file;  // position in the list of files; 0 is the script
  std::size_t offset;  // in bytes of the file
  std::size_t length;  // with the quotes of a string
  std::uint32_t partner = none;  // the token of the other bracket
  std::uint32_t scope = 0;
  std::uint32_t symbol = none;  // that the word names

  bool is(std::string_view spelling) const {
    return kind == token_kind::symbol && text == spelling;
  }
  bool is_word(std::string_view spelling) const {
    return kind == token_kind::word && text == spelling;
  }
  std::size_t end() const { return offset + length; }
};

enum class symbol_kind : std::uint8_t { variable, parameter, function, define };

struct script_symbol {
  symbol_kind kind;
  bool defined;             // false for a variable that nothing is assigned to
  std::uint32_t token;      // its name where it is defined, or mentioned first
  std::uint32_t last;       // the last token of the definition
  std::uint32_t scope;      // that it stands in
  std::uint32_t own_scope;  // of a function
  std::vector<std::string> parameters;
};

// A function's parameters and body; the first is the top level.
struct script_scope {
  std::uint32_t parent = none;
  std::uint32_t function = none;
  std::uint32_t depth = 0;
  std::vector<std::uint32_t> declared = {};  // symbols; all defines are the top level's
};

class symbol_table {
 public:
  // The tokens in the order in which they are compiled, without line ends.
  explicit symbol_table(std::vector<script_token> tokens);

  const std::vector<script_token>& tokens() const { return tokens_; }
  const std::vector<script_symbol>& symbols() const { return symbols_; }
  const std::vector<script_scope>& scopes() const { return scopes_; }

  // The last token of the script that begins before an offset; `none` when there is none.
  std::uint32_t token_before(std::size_t offset) const;
  // The token of the script that an offset is in, or right behind of; `none` when there is none.
  std::uint32_t token_at(std::size_t offset) const;
  // The scope that a token of the script leaves open.
  std::uint32_t scope_behind(std::uint32_t token) const;

 private:
  struct open_scope {
    std::uint32_t scope;
    std::uint32_t last;  // token
  };

  void pair_brackets();
  void resolve_names();
  void close_scopes(std::uint32_t at);
  bool begins_function(std::uint32_t at) const;
  std::uint32_t read_define(std::uint32_t at);
  std::uint32_t read_function(std::uint32_t at);
  void read_parameters(std::uint32_t first, std::uint32_t last, script_symbol& function);
  void read_word(std::uint32_t at, bool in_define);
  std::uint32_t declare(symbol_kind kind, std::uint32_t token, bool defined);
  bool next_is(std::uint32_t at, std::string_view spelling) const;

  std::vector<script_token> tokens_;
  std::vector<script_symbol> symbols_;
  std::vector<script_scope> scopes_{{}};
  std::vector<std::uint32_t> own_tokens_;  // those of the script

  // While names are resolved. Of the symbols with a name, the outermost is meant.
  std::vector<open_scope> open_;
  std::unordered_map<std::string_view, std::vector<std::uint32_t>> visible_;
  std::unordered_map<std::string_view, std::uint32_t> defines_;
};

// Whether a word is meant as a number, or counts as one since it is made of "0123456789.fe".
bool is_number(std::string_view word);

}  // namespace vorn::lsp
