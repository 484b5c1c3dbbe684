// The command map: from a flat list of tokens to commands and bracketed groups.
#pragma once

#include <memory>

#include "frontend/command.hpp"
#include "frontend/token.hpp"

namespace vorn {

// Groups the view's tokens into commands, whose tokens replace them; empty on failure, which has
// been reported then.
std::shared_ptr<vrn_src_command_map> create_command_map(std::shared_ptr<vrn_src_token_view> view);

}  // namespace vorn
