// The lexer: from a source text to its tokens.
#pragma once

#include <cstdint>

#include "frontend/token.hpp"

namespace vorn {

// Fills the view's tokens and lines from its text, then splices in the tokens of the files that it
// includes. Returns the number of lines read, those of the included files too; 0 when the text
// holds no token, or ends inside a comment or string, which has been reported then.
std::uint32_t tokenize(vrn_src_token_view& view);

}  // namespace vorn
