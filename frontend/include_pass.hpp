// The include pass: puts the tokens of included files in the place of the directives.
#pragma once

#include <cstdint>

#include "frontend/token.hpp"

namespace vorn {

// What came of one file's text, without the files that it includes.
struct vrn_scan {
  std::uint32_t lines = 0;      // 0: the text cannot be used, which has been reported
  bool has_directives = false;  // whether there is any "#"
};

// Fills the view's tokens and lines from its text. The lexer's part, called for every file.
vrn_scan scan_tokens(vrn_src_token_view& view);

// Replaces the include directives among the main file's tokens. Returns the number of lines of the
// included files.
std::uint32_t splice_includes(vrn_src_token_view& main);

}  // namespace vorn
