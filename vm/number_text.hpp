// Between numbers and text.
#pragma once

#include <cstdint>
#include <string_view>

namespace vorn {

// Room for any number in text form.
struct vrn_number_buffer {
  char text[340];
};

// Decimal, no padding.
std::string_view number_text(std::int64_t number, vrn_number_buffer& buffer);
// Six digits after the point, like "%f".
std::string_view number_text(double number, vrn_number_buffer& buffer);

// Like atoll: leading blanks, a sign, digits; 0 when there are none. What does not fit becomes the
// nearest number that does.
std::int64_t text_to_int(std::string_view text);
// Like atof.
double text_to_float(std::string_view text);

}  // namespace vorn
