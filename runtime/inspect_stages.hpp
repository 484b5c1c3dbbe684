// What the stages of a load give, visited.
#pragma once

#include <cstdint>
#include <string_view>

#include <vornscript/inspect.hpp>
#include <vornscript/program_block.hpp>

#include "frontend/command.hpp"
#include "frontend/token.hpp"
#include "parser/ast.hpp"

namespace vorn {

vrn_inspected inspected(std::uint32_t depth, std::string_view kind, const vrn_src_token& token);
std::string_view kind_name(vrn_token_kind kind);

void visit_tokens(const vrn_src_token_view& view, const vrn_inspect_visitor& visit);
void visit_commands(const vrn_src_command_map& map, const vrn_inspect_visitor& visit);
void visit_tree(const vrn_ast& ast, const vrn_inspect_visitor& visit);
void visit_code(const vrn_program_block_root& program, const vrn_inspect_visitor& visit);

}  // namespace vorn
