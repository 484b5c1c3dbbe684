// Files as editors name them.
#pragma once

#include <string>
#include <string_view>

namespace vorn::lsp {

// The path in a URI of the scheme "file"; any other URI as it stands.
std::string path_of_uri(std::string_view uri);

std::string uri_of_path(std::string_view path);

}  // namespace vorn::lsp
