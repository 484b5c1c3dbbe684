// Paths as texts: UTF-8, with "/" between names, whatever the system has instead.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vorn {

// Empty for a text that the system cannot have as a name.
inline std::filesystem::path path_of(std::string_view text) try {
  return std::u8string(text.begin(), text.end());
} catch (const std::system_error&) {
  return {};
}

inline std::string text_of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  std::string result(text.begin(), text.end());
  std::replace(result.begin(), result.end(),
               static_cast<char>(std::filesystem::path::preferred_separator), '/');
  return result;
}

}  // namespace vorn
