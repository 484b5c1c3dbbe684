#include "tools/lsp_text.hpp"

#include <algorithm>
#include <utility>

namespace vorn::lsp {
namespace {

constexpr std::size_t mark_distance = 256;

bool ends_line(char byte) { return byte == '\n' || byte == '\r'; }

// How many UTF-16 units the character has that begins with the byte; none when it goes on with one.
std::size_t units_of(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  if ((value & 0xC0) == 0x80) return 0;
  return value >= 0xF0 ? 2 : 1;
}

}  // namespace

source_text::source_text(std::string bytes) : bytes_(std::move(bytes)) { place_marks(); }

void source_text::place_marks() {
  marks_.assign(1, {});
  text_position position;
  for (std::size_t at = 0; at < bytes_.size(); ++at) {
    const char byte = bytes_[at];
    if (byte == '\n' || (byte == '\r' && (at + 1 == bytes_.size() || bytes_[at + 1] != '\n'))) {
      position = {position.line + 1, 0};
      marks_.push_back({at + 1, position});
      continue;
    }
    const std::size_t units = units_of(byte);
    if (units > 0 && at - marks_.back().offset >= mark_distance) marks_.push_back({at, position});
    position.character += units;
  }
}

std::size_t source_text::offset_of(text_position position) const {
  const auto after = std::upper_bound(
      marks_.begin(), marks_.end(), position, [](text_position wanted, const mark& each) {
        return std::pair(wanted.line, wanted.character) <
               std::pair(each.position.line, each.position.character);
      });
  const mark& before = *std::prev(after);
  if (before.position.line < position.line) return bytes_.size();
  std::size_t at = before.offset;
  std::size_t left = position.character - before.position.character;
  while (at < bytes_.size() && !ends_line(bytes_[at])) {
    const std::size_t units = units_of(bytes_[at]);
    if (units > left || (units > 0 && left == 0)) break;
    left -= units;
    ++at;
  }
  return at;
}

text_position source_text::position_of(std::size_t offset) const {
  const auto after =
      std::upper_bound(marks_.begin(), marks_.end(), offset,
                       [](std::size_t wanted, const mark& each) { return wanted < each.offset; });
  const mark& before = *std::prev(after);
  text_position position = before.position;
  const std::size_t end = std::min(offset, bytes_.size());
  for (std::size_t at = before.offset; at < end; ++at) position.character += units_of(bytes_[at]);
  return position;
}

std::string_view source_text::line_at(std::size_t offset) const {
  const std::size_t line = position_of(offset).line;
  const std::size_t begin = offset_of({line, 0});
  std::string_view text = std::string_view(bytes_).substr(begin);
  text = text.substr(0, text.find_first_of("\r\n"));
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

void source_text::replace(std::size_t begin, std::size_t end, std::string_view text) {
  bytes_.replace(begin, std::max(begin, end) - begin, text);
  place_marks();
}

}  // namespace vorn::lsp
