#include "tools/lsp_answers.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/lsp_names.hpp"

namespace vorn::lsp {
namespace {

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

}  // namespace vorn::lsp
