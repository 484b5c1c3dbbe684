// Reading source files whole, up to the size in which tokens can hold their positions.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

#include <vornscript/filesys.hpp>

namespace vorn {

// The file's text; nothing when it is too large, which has been reported then.
std::optional<std::string> read_source(const vrn_filesys& filesys, const std::string& path);

void report_source_too_large(std::string_view name);

// Appends what a stream holds, and nothing when it cannot be read to its end. False, with nothing
// appended, when it holds more than `size_max` bytes; no more than that are kept to find out.
bool append_stream(std::istream& stream, std::string& bytes, std::uint64_t size_max);

}  // namespace vorn
