#include "tools/lsp_uri.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace vorn::lsp {
namespace {

constexpr std::string_view scheme = "file://";
constexpr std::string_view unescaped =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";

// "C:/" and what follows
bool has_drive(std::string_view path) { return path.size() >= 2 && path[1] == ':'; }

}  // namespace

std::string path_of_uri(std::string_view uri) {
  if (!uri.starts_with(scheme)) return std::string(uri);
  // The host, which is empty or this one, ends at the path's first slash.
  uri.remove_prefix(std::min(uri.find('/', scheme.size()), uri.size()));
  std::string path;
  for (std::size_t at = 0; at < uri.size(); ++at) {
    unsigned char byte = 0;
    const char* const digits = uri.data() + at + 1;
    if (uri[at] == '%' && at + 2 < uri.size() &&
        std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
      path += static_cast<char>(byte);
      at += 2;
    } else {
      path += uri[at];
    }
  }
  if (has_drive(std::string_view(path).substr(path.empty() ? 0 : 1))) path.erase(0, 1);
  return path;
}

std::string uri_of_path(std::string_view path) {
  std::string uri(scheme);
  if (has_drive(path)) uri += '/';
  for (const char byte : path) {
    if (unescaped.find(byte) != std::string_view::npos) {
      uri += byte;
    } else {
      constexpr std::string_view digits = "0123456789ABCDEF";
      const auto value = static_cast<unsigned char>(byte);
      uri.append({'%', digits[value / 16], digits[value % 16]});
    }
  }
  return uri;
}

}  // namespace vorn::lsp
