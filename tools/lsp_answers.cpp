#include "tools/lsp_answers.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include <vornscript/language.hpp>

namespace vorn::lsp {
namespace {

// The protocol's numbers for what a name stands for, in the two lists that have them.
struct name_kinds {
  int completion;
  int outline;
};
constexpr name_kinds function_kinds{3, 12};
constexpr name_kinds variable_kinds{6, 13};
constexpr name_kinds constant_kinds{21, 14};
constexpr int completion_keyword = 14;

name_kinds kinds_of(const script_symbol& symbol) {
  if (symbol.kind == symbol_kind::function) return function_kinds;
  return symbol.kind == symbol_kind::define ? constant_kinds : variable_kinds;
}

// Functions that lie deeper are left out of the outline.
constexpr std::uint32_t outline_depth_max = 32;

const script_token& name_of(const document& of, const script_symbol& symbol) {
  return of.result.symbols.tokens()[symbol.token];
}

// What a word names, if the script says.
const script_symbol* symbol_of(const document& of, const script_token& word) {
  return word.symbol == none ? nullptr : &of.result.symbols.symbols()[word.symbol];
}

// The built-in function that a word names, also where the script mentions the name without giving
// it a value.
const vrn_builtin* builtin_of(const document& of, const script_token& word) {
  const script_symbol* const symbol = symbol_of(of, word);
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

std::string description(const vrn_builtin& builtin) {
  return std::string(builtin.result) + ": " + std::string(builtin.description);
}

// The line on which a symbol gets its meaning; of a function its head.
std::string meaning(open_documents& documents, const document& at, const script_symbol& symbol) {
  const script_token& name = name_of(at, symbol);
  if (symbol.kind == symbol_kind::function) return signature(name.text, symbol.parameters);
  if (name.file == 0) return std::string(at.text.line_at(name.offset));
  return std::string(documents.text_of(at.result.files[name.file]).line_at(name.offset));
}

json code_block(const std::string& code, const std::string& text) {
  return {{"kind", "markdown"}, {"value", "```vrs\n" + code + "\n```\n" + text}};
}

json location(open_documents& documents, const document& at, const script_token& token) {
  const std::string& path = at.result.files[token.file];
  const json range = token.file == 0
                         ? range_in(at.text, token.offset, token.length)
                         : range_in(documents.text_of(path), token.offset, token.length);
  return {{"uri", documents.uri_of(path)}, {"range", range}};
}

// The innermost call whose arguments an offset is among: its name's token, and how many arguments
// end before.
struct open_call {
  std::uint32_t callee;
  std::size_t argument;
};

std::optional<open_call> call_around(const document& at, std::size_t offset) {
  const auto& tokens = at.result.symbols.tokens();
  std::size_t separators = 0;
  for (std::uint32_t i = at.result.symbols.token_before(offset); i != none && i > 0; --i) {
    const script_token& token = tokens[i];
    if (token.file != 0) continue;
    if (token.partner != none && token.partner < i) {
      i = token.partner;
      if (i == 0) break;
    } else if (token.is("{")) {
      break;
    } else if (token.is("(") && tokens[i - 1].kind == token_kind::word) {
      return open_call{i - 1, separators};
    } else if (token.is("(") || token.is("[")) {
      separators = 0;
    } else if (token.is(",") || token.is(";")) {
      ++separators;
    }
  }
  return {};
}

json outline_in(const document& of, std::uint32_t scope) {
  const symbol_table& table = of.result.symbols;
  json entries = json::array();
  if (table.scopes()[scope].depth > outline_depth_max) return entries;
  for (const std::uint32_t declared : table.scopes()[scope].declared) {
    const script_symbol& symbol = table.symbols()[declared];
    const script_token& name = name_of(of, symbol);
    const bool is_function = symbol.kind == symbol_kind::function;
    const bool is_shown = is_function || symbol.kind == symbol_kind::define || scope == 0;
    if (!is_shown || !symbol.defined || name.file != 0) continue;
    const script_token& end = table.tokens()[symbol.last];
    const script_token& last = end.file == 0 ? end : name;
    json entry = {{"name", name.text},
                  {"kind", kinds_of(symbol).outline},
                  {"range", range_in(of.text, name.offset, last.end() - name.offset)},
                  {"selectionRange", range_in(of.text, name.offset, name.length)}};
    if (is_function) {
      entry["detail"] = signature(name.text, symbol.parameters);
      entry["children"] = outline_in(of, symbol.own_scope);
    }
    entries.push_back(std::move(entry));
  }
  return entries;
}

}  // namespace

json hover_at(open_documents& documents, const document& at, std::size_t offset) {
  const std::uint32_t token = at.result.symbols.token_at(offset);
  if (token == none) return nullptr;
  const script_token& word = at.result.symbols.tokens()[token];
  json contents;
  if (const vrn_builtin* const builtin = builtin_of(at, word)) {
    contents = code_block(signature(builtin->name, parameters_of(*builtin)), description(*builtin));
  } else if (const script_symbol* const symbol = symbol_of(at, word)) {
    contents = code_block(meaning(documents, at, *symbol),
                          symbol->defined ? "" : "Nothing is assigned to it.");
  } else {
    return nullptr;
  }
  return {{"contents", std::move(contents)},
          {"range", range_in(at.text, word.offset, word.length)}};
}

json signature_at(const document& at, std::size_t offset) {
  const auto call = call_around(at, offset);
  if (!call) return nullptr;
  const script_token& callee = at.result.symbols.tokens()[call->callee];
  const script_symbol* const symbol = symbol_of(at, callee);
  const vrn_builtin* const builtin = builtin_of(at, callee);
  const bool is_function = symbol && symbol->kind == symbol_kind::function;
  if (!builtin && (!is_function || symbol->token == call->callee)) return nullptr;
  const std::vector<std::string> names = builtin ? parameters_of(*builtin) : symbol->parameters;
  json parameters = json::array();
  for (const std::string& name : names) parameters.push_back({{"label", name}});
  json label = {{"label", signature(callee.text, names)}, {"parameters", std::move(parameters)}};
  std::size_t active = call->argument;
  if (builtin) {
    label["documentation"] = description(*builtin);
    if (!names.empty() && names.back() == "...") active = std::min(active, names.size() - 1);
  }
  return {{"signatures", {std::move(label)}}, {"activeSignature", 0}, {"activeParameter", active}};
}

json completions_at(const document& at, std::size_t offset) {
  const symbol_table& table = at.result.symbols;
  const std::uint32_t before = table.token_before(offset);
  const script_token* token = before == none ? nullptr : &table.tokens()[before];
  const bool in_quotes = token && token->end() > offset &&
                         (token->kind == token_kind::string || token->kind == token_kind::include);
  if (in_quotes) return json::array();
  std::map<std::string, json> items;
  const auto add = [&](std::string_view label, int kind, const std::string& detail) {
    json& item = items[std::string(label)];
    if (!item.is_null()) return;
    item = {{"label", label}, {"kind", kind}};
    if (!detail.empty()) item["detail"] = detail;
  };
  // The word that is being typed is no part of what it follows.
  if (token && token->kind == token_kind::word && token->end() >= offset) {
    const std::uint32_t earlier = table.token_before(token->offset);
    token = earlier == none ? nullptr : &table.tokens()[earlier];
  }
  json result = json::array();
  if (token && token->is("#")) {
    for (const std::string_view word : vrn_directives) add(word, completion_keyword, "");
  } else {
    for (std::uint32_t scope = table.scope_behind(before); scope != none;
         scope = table.scopes()[scope].parent) {
      for (const std::uint32_t declared : table.scopes()[scope].declared) {
        const script_symbol& symbol = table.symbols()[declared];
        if (!symbol.defined) continue;
        const std::string& name = name_of(at, symbol).text;
        const bool is_function = symbol.kind == symbol_kind::function;
        add(name, kinds_of(symbol).completion,
            is_function ? signature(name, symbol.parameters) : "");
      }
    }
    for (const std::string_view word : vrn_keywords) add(word, completion_keyword, "");
    for (const vrn_builtin& builtin : builtins()) {
      add(builtin.name, function_kinds.completion, signature(builtin.name, parameters_of(builtin)));
    }
  }
  for (auto& [label, item] : items) result.push_back(std::move(item));
  return result;
}

json definition_at(open_documents& documents, const document& at, std::size_t offset) {
  const std::uint32_t token = at.result.symbols.token_at(offset);
  if (token == none) return nullptr;
  const script_token& word = at.result.symbols.tokens()[token];
  if (word.kind == token_kind::include && !word.text.empty()) {
    return {{"uri", documents.uri_of(word.text)}, {"range", range_in(source_text(""), 0, 0)}};
  }
  const script_symbol* const symbol = symbol_of(at, word);
  return symbol ? location(documents, at, name_of(at, *symbol)) : json();
}

json outline_of(const document& of) { return outline_in(of, 0); }

}  // namespace vorn::lsp
