// Tokens and commands.
#include "frontend/report.hpp"
#include "runtime/inspect_stages.hpp"

namespace vorn {
namespace {

std::string_view kind_name(vrn_command_kind kind) {
  switch (kind) {
#define VRN_COMMAND_KIND(number, name) \
  case vrn_command_kind::name:         \
    return #name;
#include "frontend/command_kinds.def"
#undef VRN_COMMAND_KIND
  }
  return {};
}

// Brackets nest no deeper than frontend/nesting.hpp allows.
void visit_list(const vrn_src_command_map& map, std::span<const vrn_src_command> list,
                std::uint32_t depth, const vrn_inspect_visitor& visit) {
  for (const vrn_src_command& command : list) {
    const vrn_src_command_view tokens = map.view(command);
    vrn_inspected item = inspected(depth, kind_name(command.kind), tokens.front());
    item.text = {};
    visit(item);
    for (std::uint32_t at = tokens.first; at < tokens.last; ++at) {
      const vrn_src_token& token = tokens.token(at);
      visit(inspected(depth + 1, kind_name(token.kind), token));
      if (token.is_group()) visit_list(map, map.group(token), depth + 2, visit);
    }
  }
}

}  // namespace

std::string_view kind_name(vrn_token_kind kind) {
  switch (kind) {
#define VRN_TOKEN_KIND(number, name) \
  case vrn_token_kind::name:         \
    return #name;
#include "frontend/token_kinds.def"
#undef VRN_TOKEN_KIND
  }
  return {};
}

vrn_inspected inspected(std::uint32_t depth, std::string_view kind, const vrn_src_token& token) {
  const vrn_src_token_view& source = *token.source;
  const std::size_t offset = source.offset_in_file(token.index());
  const std::size_t end = source.offset_in_file(token.end());
  return {depth,  kind,        token.text(), {source.name, token.line(), token.column},
          offset, end - offset};
}

void visit_tokens(const vrn_src_token_view& view, const vrn_inspect_visitor& visit) {
  auto operand = view.operands.begin();
  for (std::size_t at = 0; at <= view.tokens.size(); ++at) {
    for (; operand != view.operands.end() && operand->before == at; ++operand) {
      vrn_inspected item = inspected(0, "include", operand->token);
      item.text = operand->path;
      visit(item);
    }
    if (at == view.tokens.size()) break;
    const vrn_src_token& token = view.tokens[at];
    visit(inspected(0, kind_name(token.kind), token));
  }
}

void visit_commands(const vrn_src_command_map& map, const vrn_inspect_visitor& visit) {
  visit_list(map, map.top, 0, visit);
}

}  // namespace vorn
