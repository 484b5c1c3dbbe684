// What the names in an open script stand for, and how they are shown.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vornscript/language.hpp>

#include "tools/lsp_documents.hpp"

namespace vorn::lsp {

// The protocol's numbers for what a name stands for, in the two lists that have them.
struct name_kinds {
  int completion;
  int outline;
};
inline constexpr name_kinds function_kinds{3, 12};
name_kinds kinds_of(const script_symbol& symbol);

// The token that a symbol is named by.
const script_token& name_of(const document& in, const script_symbol& symbol);

// What a word names, if the script says; else null.
const script_symbol* symbol_of(const document& in, const script_token& word);

// The built-in function that a word names, also where the script mentions the name without giving
// it a value; else null.
const vrn_builtin* builtin_of(const document& in, const script_token& word);

// Their names; "..." stands for as many more as are wanted.
std::vector<std::string> parameters_of(const vrn_builtin& builtin);

// A function's name with its parameters, "clamp(x, low, high)".
std::string signature(std::string_view name, const std::vector<std::string>& parameters);

}  // namespace vorn::lsp
