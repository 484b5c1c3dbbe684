// The language server's messages as they are sent: a header that tells the length, an empty line,
// and so many bytes.
#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace vorn::lsp {

// The next message's bytes; empty when the stream has ended. Header lines that mean nothing are
// passed over. Of a message that is too large nothing is kept: it counts as an empty one.
std::optional<std::string> read_message(std::istream& in);

// A message with its header.
std::string framed(std::string_view message);

}  // namespace vorn::lsp
