#include "vm/number_text.hpp"

#include <charconv>
#include <limits>
#include <string>
#include <system_error>
#include <version>

#include "platform/platform.hpp"

namespace vorn {
namespace {

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string_view number_text(std::int64_t number, vrn_number_buffer& buffer) {
  char* const begin = buffer.text;
  const char* const end = std::to_chars(begin, begin + sizeof buffer.text, number).ptr;
  return {begin, static_cast<std::size_t>(end - begin)};
}

std::string_view number_text(double number, vrn_number_buffer& buffer) {
  char* const begin = buffer.text;
  const char* const end =
      std::to_chars(begin, begin + sizeof buffer.text, number, std::chars_format::fixed, 6).ptr;
  return {begin, static_cast<std::size_t>(end - begin)};
}

std::int64_t text_to_int(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  // std::from_chars takes a minus sign, but no plus sign.
  if (text.size() > 1 && text[0] == '+' && is_digit(text[1])) text.remove_prefix(1);
  std::int64_t number = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), number).ec ==
      std::errc::result_out_of_range) {
    using limits = std::numeric_limits<std::int64_t>;
    return text.front() == '-' ? limits::min() : limits::max();
  }
  return number;
}

double text_to_float(std::string_view text) {
#ifdef __cpp_lib_to_chars  // also means std::from_chars for floats, which not every library has
  // The fast way covers plain decimal numbers, all that scripts can write as literals.
  const bool hexadecimal = text.size() > 1 && text[0] == '0' && (text[1] | 32) == 'x';
  if (!text.empty() && (is_digit(text[0]) || text[0] == '.') && !hexadecimal) {
    double number = 0.0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec == std::errc()) return number;
  }
#endif
  return platform::read_float(std::string(text).c_str());
}

}  // namespace vorn
