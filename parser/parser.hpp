// The parser: from commands to the syntax tree.
#pragma once

#include <memory>

#include "frontend/command.hpp"
#include "parser/ast.hpp"

namespace vorn {

// Parses every command, in order; empty on failure, which has been reported then. The tree shares
// the token map; the commands are not needed any more.
std::shared_ptr<vrn_ast> create_ast(const vrn_src_command_map& commands);

}  // namespace vorn
