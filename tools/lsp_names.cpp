#include "tools/lsp_names.hpp"

#include <algorithm>
#include <cstddef>

namespace vorn::lsp {
namespace {

constexpr name_kinds variable_kinds{6, 13};
constexpr name_kinds constant_kinds{21, 14};

}  // namespace

name_kinds kinds_of(const script_symbol& symbol) {
  if (symbol.kind == symbol_kind::function) return function_kinds;
  return symbol.kind == symbol_kind::define ? constant_kinds : variable_kinds;
}

const script_token& name_of(const document& in, const script_symbol& symbol) {
  return in.result.symbols.tokens()[symbol.token];
}

const script_symbol* symbol_of(const document& in, const script_token& word) {
  return word.symbol == none ? nullptr : &in.result.symbols.symbols()[word.symbol];
}

const vrn_builtin* builtin_of(const document& in, const script_token& word) {
  const script_symbol* const symbol = symbol_of(in, word);
  if (word.kind != token_kind::word || (symbol && symbol->defined)) return nullptr;
  const auto all = builtins();
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const vrn_builtin& each) { return each.name == word.text; });
  return found == all.end() ? nullptr : &*found;
}

std::vector<std::string> parameters_of(const vrn_builtin& builtin) {
  std::vector<std::string> names;
  std::string_view rest = builtin.parameters;
  while (!rest.empty()) {
    const std::size_t length = std::min(rest.find(", "), rest.size());
    names.emplace_back(rest.substr(0, length));
    rest.remove_prefix(std::min(length + 2, rest.size()));
  }
  return names;
}

std::string signature(std::string_view name, const std::vector<std::string>& parameters) {
  std::string text = std::string(name) + '(';
  for (const std::string& parameter : parameters) {
    if (text.back() != '(') text += ", ";
    text += parameter;
  }
  return text += ')';
}

}  // namespace vorn::lsp
