// The fuzzer's bytes as a source of decisions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace vorn::fuzz {

// When the bytes have run out, every decision is 0; so 0 should stand for what is simplest.
class byte_source {
 public:
  explicit byte_source(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  bool empty() const { return at_ == bytes_.size(); }

  std::uint8_t byte() { return empty() ? std::uint8_t{0} : bytes_[at_++]; }

  // A number below `count`; takes two bytes when one is not enough.
  std::uint32_t below(std::uint32_t count) {
    std::uint32_t number = byte();
    if (count > 256) number = number << 8 | byte();
    return number % count;
  }

  // True once in `count`, never when the bytes have run out.
  bool one_in(std::uint32_t count) { return below(count) == count - 1 && count > 1; }

  std::uint64_t word() {
    std::uint64_t number = 0;
    for (int k = 0; k < 8; ++k) number = number << 8 | byte();
    return number;
  }

  // One of a table's rows.
  template <class T, std::size_t count>
  const T& pick(const T (&rows)[count]) {
    return rows[below(count)];
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t at_ = 0;
};

}  // namespace vorn::fuzz
