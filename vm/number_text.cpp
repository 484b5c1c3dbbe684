#include "vm/number_text.hpp"

#include <charconv>
#include <limits>
#include <system_error>

namespace vorn {
namespace {

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool is_hexadecimal_digit(char c) { return is_digit(c) || ((c | 32) >= 'a' && (c | 32) <= 'f'); }

// Whether a hexadecimal number begins here, and not just a zero.
bool begins_hexadecimal(std::string_view text) {
  if (text.size() < 3 || text[0] != '0' || (text[1] | 32) != 'x') return false;
  return is_hexadecimal_digit(text[2]) ||
         (text[2] == '.' && text.size() > 3 && is_hexadecimal_digit(text[3]));
}

// Whether a number that does not fit is too large, rather than too close to zero: by the place of
// its first digit that counts, and its exponent.
bool is_large(std::string_view text, std::chars_format format) {
  const bool hexadecimal = format == std::chars_format::hex;
  std::int64_t place = 0;
  bool after_point = false;
  bool counts = false;
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    if (text[at] == '.' && !after_point) {
      after_point = true;
    } else if (hexadecimal ? is_hexadecimal_digit(text[at]) : is_digit(text[at])) {
      counts |= text[at] != '0';
      if (counts != after_point) place += counts ? 1 : -1;
    } else {
      break;
    }
  }
  const std::string_view rest = text.substr(at);
  const bool has_exponent =
      rest.size() > 1 && (rest[0] | 32) == (hexadecimal ? 'p' : 'e') && !is_blank(rest[1]);
  const std::int64_t exponent = has_exponent ? text_to_int(rest.substr(1)) : 0;
  return exponent > -place * (hexadecimal ? 4 : 1);
}

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

// std::from_chars reads what strtod reads in the "C" locale, but for leading blanks, a plus sign,
// the prefix of hexadecimal numbers and the value of numbers that do not fit.
double text_to_float(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  if (text.starts_with('-')) return 0.0;

  auto format = std::chars_format::general;
  if (begins_hexadecimal(text)) {
    format = std::chars_format::hex;
    text.remove_prefix(2);
    // Some libraries take both signs in an exponent.
    text = text.substr(0, text.find("+-"));
  }
  double number = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, format);
  if (result.ec == std::errc::invalid_argument) return 0.0;  // no number, so no negative zero
  if (result.ec == std::errc::result_out_of_range) {
    number = is_large(text, format) ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return negative ? -number : number;
}

}  // namespace vorn
