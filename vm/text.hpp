// The text of string values and of json keys.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace vorn {

// A text in 32 bytes that need no alignment: up to 31 bytes stand inline, longer texts on the heap.
// The last byte is the length of an inline text, or `on_heap`; a heap text keeps its address and
// length in the first bytes.
class vrn_text {
 public:
  vrn_text() = default;
  vrn_text(const vrn_text&) = delete;
  vrn_text& operator=(const vrn_text&) = delete;
  ~vrn_text() { clear(); }

  std::string_view view() const {
    if (last_ != on_heap) return {bytes_, last_};
    return {heap_text(), heap_length()};
  }

  // The parts must not lie in this text.
  void assign(std::string_view first, std::string_view second = {}) {
    const std::size_t length = first.size() + second.size();
    char* place = make_room(length);
    if (!first.empty()) std::memcpy(place, first.data(), first.size());
    if (!second.empty()) std::memcpy(place + first.size(), second.data(), second.size());
  }

  void clear() noexcept {
    if (last_ == on_heap) std::allocator<char>().deallocate(heap_text(), heap_length());
    last_ = 0;
  }

 private:
  static constexpr std::uint8_t on_heap = 255;
  static constexpr std::size_t inline_max = 31;

  char* make_room(std::size_t length) {
    if (length <= inline_max) {
      clear();
      last_ = static_cast<std::uint8_t>(length);
      return bytes_;
    }
    char* place = std::allocator<char>().allocate(length);
    clear();
    std::memcpy(bytes_, &place, sizeof place);
    std::memcpy(bytes_ + sizeof place, &length, sizeof length);
    last_ = on_heap;
    return place;
  }

  char* heap_text() const {
    char* text;
    std::memcpy(&text, bytes_, sizeof text);
    return text;
  }
  std::size_t heap_length() const {
    std::size_t length;
    std::memcpy(&length, bytes_ + sizeof(char*), sizeof length);
    return length;
  }

  char bytes_[inline_max];
  std::uint8_t last_ = 0;
};
static_assert(sizeof(vrn_text) == 32 && alignof(vrn_text) == 1);

}  // namespace vorn
