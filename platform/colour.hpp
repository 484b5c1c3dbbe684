// What a terminal is sent to change the colour of the text that follows.
#pragma once

#include <string_view>

namespace vorn::platform {

inline constexpr std::string_view default_colour = "\033[0m";

// That of a text attribute (red 4, green 2, blue 1).
constexpr std::string_view colour_of(int attribute) {
  switch (attribute) {
    case 4:
      return "\033[31m";
    case 6:
      return "\033[33m";
    default:
      return default_colour;
  }
}

}  // namespace vorn::platform
