// The functions, defines and variables of a script.
#include <cstdint>
#include <utility>

#include "tools/lsp_answers.hpp"
#include "tools/lsp_names.hpp"

namespace vorn::lsp {
namespace {

// Functions that lie deeper are left out of the outline.
constexpr std::uint32_t outline_depth_max = 32;

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

json outline_of(const document& of) { return outline_in(of, 0); }

}  // namespace vorn::lsp
