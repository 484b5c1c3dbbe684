// What a word may go on to be.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <vornscript/language.hpp>

#include "tools/lsp_answers.hpp"
#include "tools/lsp_names.hpp"

namespace vorn::lsp {
namespace {

constexpr int keyword_kind = 14;

// One item for each name: of several with one name that which was added first.
class completion_list {
 public:
  explicit completion_list(const document& in) : in_(in) {}

  // The names that are known in a scope.
  void add_names(std::uint32_t scope) {
    const symbol_table& table = in_.result.symbols;
    for (; scope != none; scope = table.scopes()[scope].parent) {
      for (const std::uint32_t declared : table.scopes()[scope].declared) {
        add_symbol(table.symbols()[declared]);
      }
    }
  }

  template <class Words>
  void add_words(const Words& words) {
    for (const std::string_view word : words) add(word, {{"kind", keyword_kind}});
  }

  void add_builtins() {
    for (const vrn_builtin& builtin : builtins()) {
      add_function(builtin.name, parameters_of(builtin));
    }
  }

  json take() {
    json items = json::array();
    for (auto& [label, item] : items_) {
      item["label"] = label;
      items.push_back(std::move(item));
    }
    return items;
  }

 private:
  void add_symbol(const script_symbol& symbol) {
    if (!symbol.defined) return;
    const std::string& name = name_of(in_, symbol).text;
    if (symbol.kind == symbol_kind::function) {
      add_function(name, symbol.parameters);
    } else {
      add(name, {{"kind", kinds_of(symbol).completion}});
    }
  }

  void add_function(std::string_view name, const std::vector<std::string>& parameters) {
    add(name, {{"kind", function_kinds.completion}, {"detail", signature(name, parameters)}});
  }

  void add(std::string_view label, json&& item) {
    items_.try_emplace(std::string(label), std::move(item));
  }

  const document& in_;
  std::map<std::string, json> items_;
};

// The token that a word at the offset follows, or is going to follow.
const script_token* token_left_of_word(const symbol_table& table, std::size_t offset) {
  std::uint32_t token = table.token_before(offset);
  if (token != none && table.tokens()[token].kind == token_kind::word &&
      table.tokens()[token].end() >= offset) {
    token = table.token_before(table.tokens()[token].offset);
  }
  return token == none ? nullptr : &table.tokens()[token];
}

bool in_quotes(const symbol_table& table, std::size_t offset) {
  const std::uint32_t before = table.token_before(offset);
  if (before == none) return false;
  const script_token& token = table.tokens()[before];
  return token.end() > offset &&
         (token.kind == token_kind::string || token.kind == token_kind::include);
}

}  // namespace

json completions_at(const document& at, std::size_t offset) {
  const symbol_table& table = at.result.symbols;
  completion_list list(at);
  const script_token* const left = token_left_of_word(table, offset);
  if (left && left->is("#")) {
    list.add_words(vrn_directives);
  } else if (!in_quotes(table, offset)) {
    list.add_names(table.scope_behind(table.token_before(offset)));
    list.add_words(vrn_keywords);
    list.add_builtins();
  }
  return list.take();
}

}  // namespace vorn::lsp
