#include "tools/lsp_symbols.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include <vornscript/language.hpp>

namespace vorn::lsp {
namespace {

constexpr std::string_view openers = "([{";
constexpr std::string_view closers = ")]}";

// Which bracket of a set the token is; npos for none.
std::size_t bracket_in(std::string_view set, const script_token& token) {
  if (token.kind != token_kind::symbol || token.text.size() != 1) return std::string_view::npos;
  return set.find(token.text[0]);
}

bool is_keyword(std::string_view word) {
  return std::find(vrn_keywords.begin(), vrn_keywords.end(), word) != vrn_keywords.end();
}

bool names_something(const script_token& token) {
  return token.kind == token_kind::word && !is_keyword(token.text) && !is_number(token.text);
}

}  // namespace

bool is_number(std::string_view word) {
  const bool has_number_begin = word[0] == '.' || (word[0] >= '0' && word[0] <= '9');
  return has_number_begin || word.find_first_not_of("0123456789.fe") == std::string_view::npos;
}

symbol_table::symbol_table(std::vector<script_token> tokens) : tokens_(std::move(tokens)) {
  for (std::uint32_t at = 0; at < tokens_.size(); ++at) {
    if (tokens_[at].file == 0) own_tokens_.push_back(at);
  }
  pair_brackets();
  resolve_names();
}

// A closer ends the innermost bracket of its kind; those further inside remain without partners.
void symbol_table::pair_brackets() {
  std::vector<std::pair<std::uint32_t, std::size_t>> open;
  std::array<std::size_t, openers.size()> counts{};
  for (std::uint32_t at = 0; at < tokens_.size(); ++at) {
    if (const std::size_t opener = bracket_in(openers, tokens_[at]);
        opener != std::string_view::npos) {
      open.emplace_back(at, opener);
      ++counts[opener];
    }
    const std::size_t closer = bracket_in(closers, tokens_[at]);
    if (closer == std::string_view::npos || counts[closer] == 0) continue;
    for (bool found = false; !found; open.pop_back()) {
      const auto [opener_at, opener] = open.back();
      found = opener == closer;
      --counts[opener];
      if (!found) continue;
      tokens_[opener_at].partner = at;
      tokens_[at].partner = opener_at;
    }
  }
}

void symbol_table::resolve_names() {
  const auto count = static_cast<std::uint32_t>(tokens_.size());
  open_.push_back({0, count});
  std::uint32_t define_end = 0;  // behind the body of the define that is being read
  for (std::uint32_t at = 0; at < count; ++at) {
    close_scopes(at);
    tokens_[at].scope = open_.back().scope;
    if (tokens_[at].is("#") && at + 1 < count) {
      define_end = read_define(at);
      at += define_end > at ? 2 : 1;
    } else if (names_something(tokens_[at])) {
      if (begins_function(at)) {
        at = read_function(at);
      } else {
        read_word(at, at < define_end);
      }
    }
  }
  visible_.clear();
  defines_.clear();
  open_.clear();
}

void symbol_table::close_scopes(std::uint32_t at) {
  while (at > open_.back().last) {
    for (const std::uint32_t symbol : scopes_[open_.back().scope].declared) {
      visible_[tokens_[symbols_[symbol].token].text].pop_back();
    }
    open_.pop_back();
  }
}

bool symbol_table::next_is(std::uint32_t at, std::string_view spelling) const {
  return at + 1 < tokens_.size() && tokens_[at + 1].is(spelling);
}

// A name, parameters, and a block.
bool symbol_table::begins_function(std::uint32_t at) const {
  if (!next_is(at, "(")) return false;
  const std::uint32_t closer = tokens_[at + 1].partner;
  return closer != none && next_is(closer, "{");
}

// From a "#" on. Where it begins a define, gives the end of its line, else 0.
std::uint32_t symbol_table::read_define(std::uint32_t at) {
  const std::uint32_t name = at + 2;
  if (!tokens_[at + 1].is_word(words::define) || name >= tokens_.size() ||
      tokens_[name].kind != token_kind::word) {
    return 0;
  }
  std::uint32_t last = name;
  while (last + 1 < tokens_.size() &&
         (!tokens_[last].last_on_line || (last > name && tokens_[last].is("\\")))) {
    ++last;
  }
  const auto symbol = static_cast<std::uint32_t>(symbols_.size());
  symbols_.push_back({symbol_kind::define, true, name, last, 0, none, {}});
  scopes_[0].declared.push_back(symbol);
  defines_[tokens_[name].text] = symbol;
  tokens_[name].symbol = symbol;
  tokens_[name].scope = open_.back().scope;
  return last + 1;
}

// Gives the last token of the parameters.
std::uint32_t symbol_table::read_function(std::uint32_t at) {
  const std::uint32_t closer = tokens_[at + 1].partner;
  const std::uint32_t body = tokens_[closer + 1].partner;
  const std::uint32_t symbol = declare(symbol_kind::function, at, true);
  tokens_[at].symbol = symbol;
  symbols_[symbol].last = body == none ? static_cast<std::uint32_t>(tokens_.size()) - 1 : body;
  symbols_[symbol].own_scope = static_cast<std::uint32_t>(scopes_.size());
  scopes_.push_back({open_.back().scope, symbol, scopes_[open_.back().scope].depth + 1});
  open_.push_back({symbols_[symbol].own_scope, symbols_[symbol].last});
  read_parameters(at + 1, closer, symbols_[symbol]);
  return closer;
}

// A parameter is the first word behind the opening bracket or a separator; a default may follow.
void symbol_table::read_parameters(std::uint32_t first, std::uint32_t last,
                                   script_symbol& function) {
  for (std::uint32_t at = first; at <= last; ++at) tokens_[at].scope = open_.back().scope;
  std::vector<std::uint32_t> names;
  bool expected = true;
  for (std::uint32_t at = first + 1; at < last; ++at) {
    const script_token& token = tokens_[at];
    if (expected && names_something(token)) names.push_back(at);
    expected = token.is(",") || token.is(";");
    if (token.partner != none) at = std::max(at, token.partner);
  }
  for (const std::uint32_t name : names) function.parameters.push_back(tokens_[name].text);
  for (const std::uint32_t name : names) {
    tokens_[name].symbol = declare(symbol_kind::parameter, name, true);
  }
}

void symbol_table::read_word(std::uint32_t at, bool in_define) {
  script_token& token = tokens_[at];
  // Words before another are kept and mean nothing.
  const bool is_modifier = at + 1 < tokens_.size() && tokens_[at + 1].kind == token_kind::word &&
                           !(in_define && token.last_on_line);
  if (is_modifier) return;
  if (const auto define = defines_.find(token.text); define != defines_.end()) {
    token.symbol = define->second;
    return;
  }
  const auto found = visible_.find(token.text);
  const bool is_known = found != visible_.end() && !found->second.empty();
  const bool is_assigned = next_is(at, "=") && !in_define;
  if (is_known) {
    token.symbol = found->second.front();
  } else if (!next_is(at, "(") && !in_define) {
    token.symbol = declare(symbol_kind::variable, at, false);
  }
  if (!is_assigned || token.symbol == none) return;
  script_symbol& symbol = symbols_[token.symbol];
  if (!symbol.defined) symbol.token = symbol.last = at;
  symbol.defined = true;
}

std::uint32_t symbol_table::declare(symbol_kind kind, std::uint32_t token, bool defined) {
  const auto symbol = static_cast<std::uint32_t>(symbols_.size());
  symbols_.push_back({kind, defined, token, token, open_.back().scope, none, {}});
  visible_[tokens_[token].text].push_back(symbol);
  scopes_[open_.back().scope].declared.push_back(symbol);
  return symbol;
}

std::uint32_t symbol_table::token_before(std::size_t offset) const {
  const auto after =
      std::partition_point(own_tokens_.begin(), own_tokens_.end(),
                           [&](std::uint32_t token) { return tokens_[token].offset < offset; });
  return after == own_tokens_.begin() ? none : *std::prev(after);
}

// Where two tokens meet, the word.
std::uint32_t symbol_table::token_at(std::size_t offset) const {
  const std::uint32_t at = token_before(offset + 1);
  if (at == none) return none;
  const std::uint32_t before = token_before(tokens_[at].offset);
  const bool is_behind_word = tokens_[at].offset == offset &&
                              tokens_[at].kind != token_kind::word && before != none &&
                              tokens_[before].end() == offset;
  if (is_behind_word && tokens_[before].kind == token_kind::word) return before;
  return offset <= tokens_[at].end() ? at : none;
}

std::uint32_t symbol_table::scope_behind(std::uint32_t token) const {
  if (token == none) return 0;
  const std::uint32_t scope = tokens_[token].scope;
  const std::uint32_t function = scopes_[scope].function;
  const bool ends_it = function != none && symbols_[function].last == token &&
                       tokens_[token].partner != none && tokens_[token].is("}");
  return ends_it ? scopes_[scope].parent : scope;
}

}  // namespace vorn::lsp
