#include "tools/lsp_transport.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace vorn::lsp {
namespace {

constexpr std::size_t header_size_max = 256;
constexpr std::size_t message_size_max = std::size_t{64} << 20;
constexpr std::string_view length_name = "Content-Length:";

// A header without its line end, cut off where it is too long to mean anything. False at the end.
bool read_header(std::istream& in, std::string& header) {
  header.clear();
  char next = 0;
  while (in.get(next) && next != '\n') {
    if (header.size() < header_size_max) header += next;
  }
  if (header.ends_with('\r')) header.pop_back();
  return !in.eof();
}

// The length that a header tells, the largest number when it is larger.
std::optional<std::uint64_t> length_in(std::string_view header) {
  if (!header.starts_with(length_name)) return {};
  header.remove_prefix(length_name.size());
  header.remove_prefix(std::min(header.find_first_not_of(' '), header.size()));
  std::uint64_t length = 0;
  const auto [end, error] = std::from_chars(header.data(), header.data() + header.size(), length);
  if (end != header.data() + header.size() || error == std::errc::invalid_argument) return {};
  return error == std::errc() ? length : std::numeric_limits<std::uint64_t>::max();
}

}  // namespace

std::optional<std::string> read_message(std::istream& in) {
  std::optional<std::uint64_t> length;
  for (std::string header; read_header(in, header);) {
    if (const auto found = length_in(header)) length = found;
    if (!header.empty() || !length) continue;
    if (*length > message_size_max) {
      constexpr auto ignored_max = std::numeric_limits<std::streamsize>::max();
      in.ignore(*length < std::uint64_t{ignored_max} ? static_cast<std::streamsize>(*length)
                                                     : ignored_max);
      return std::string();
    }
    std::string message(static_cast<std::size_t>(*length), '\0');
    if (in.read(message.data(), static_cast<std::streamsize>(message.size()))) return message;
    break;
  }
  return {};
}

std::string framed(std::string_view message) {
  std::string whole(length_name);
  whole.append(" ").append(std::to_string(message.size())).append("\r\n\r\n").append(message);
  return whole;
}

}  // namespace vorn::lsp
