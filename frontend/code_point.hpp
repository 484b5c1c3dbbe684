// Reading UTF-8 text one code point at a time. Any bytes can be read.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorn {

struct code_point {
  std::uint32_t value;
  std::uint32_t length;  // in bytes
};

// The bytes after a lead byte are deliberately not checked: the low 6 bits of each count, whatever
// it is. A character that is cut off by the end of the text ends with the text.
inline code_point read_long_code_point(const char* at, const char* end) {
  const auto lead = static_cast<unsigned char>(*at);
  const std::uint32_t length = (lead & 0xE0) == 0xC0   ? 2
                               : (lead & 0xF0) == 0xE0 ? 3
                               : (lead & 0xF8) == 0xF0 ? 4
                                                       : 1;
  if (length == 1) return {0xFFFD, 1};
  const auto left = static_cast<std::size_t>(end - at);
  const auto available = static_cast<std::uint32_t>(std::min<std::size_t>(length, left));
  std::uint32_t value = lead & (0x7Fu >> length);
  for (std::uint32_t i = 1; i < length; ++i) {
    value = value << 6 | (i < available ? static_cast<unsigned char>(at[i]) & 0x3Fu : 0u);
  }
  return {value, available};
}

// The code point at `at`, which lies before `end`.
inline code_point read_code_point(const char* at, const char* end) {
  const auto lead = static_cast<unsigned char>(*at);
  return lead < 0x80 ? code_point{lead, 1} : read_long_code_point(at, end);
}

// Whether a byte continues the character before it.
inline bool continues_character(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// The number of characters in a text, read by bytes: those that continue none before them.
inline std::uint32_t count_characters(std::string_view text) {
  return static_cast<std::uint32_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return !continues_character(byte); }));
}

}  // namespace vorn
