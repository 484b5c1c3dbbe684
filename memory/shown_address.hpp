// How messages show where an object lies: in every system's log alike.
#pragma once

#include <charconv>
#include <cstdint>
#include <string>

namespace vorn {

// A part of a log line.
struct vrn_shown_address {
  const void* object;
};

inline void append_part(std::string& line, vrn_shown_address shown) {
  if (!shown.object) {
    line += "(nil)";
    return;
  }
  char digits[2 * sizeof(std::uintptr_t)];
  const auto address = reinterpret_cast<std::uintptr_t>(shown.object);
  line += "0x";
  line.append(digits, std::to_chars(digits, digits + sizeof digits, address, 16).ptr);
}

}  // namespace vorn
