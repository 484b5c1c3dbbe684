// The operators, all of two characters. Other punctuation is a symbol of one character.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vorn {

inline constexpr std::array<std::string_view, 20> operator_spellings = {
    "==", "!=", "<=", ">=", "&&", "||", "++", "--", "+=", "-=",
    "*=", "/=", "%=", "&=", "|=", "^=", "<<", ">>", "->", "::",
};

// A hash set with linear probing, made at compile time.
class operator_set {
 public:
  constexpr operator_set() {
    for (const std::string_view spelling : operator_spellings) {
      std::size_t slot = hash(spelling) % slot_count;
      while (!slots_[slot].empty()) slot = (slot + 1) % slot_count;
      slots_[slot] = spelling;
      is_last_[static_cast<unsigned char>(spelling.back())] = true;
    }
  }

  constexpr bool contains(std::string_view text) const {
    std::size_t slot = hash(text) % slot_count;
    for (; !slots_[slot].empty(); slot = (slot + 1) % slot_count) {
      if (slots_[slot] == text) return true;
    }
    return false;
  }

  // The length of the operator that the text starts with, 0 for none.
  constexpr std::size_t match(std::string_view text) const {
    if (text.size() < 2 || !is_last_[static_cast<unsigned char>(text[1])]) return 0;
    return contains(text.substr(0, 2)) ? 2 : 0;
  }

 private:
  static constexpr std::size_t slot_count = 64;

  // FNV-1a, 64 bits.
  static constexpr std::uint64_t hash(std::string_view text) {
    std::uint64_t value = 0xcbf29ce484222325;
    for (const char character : text) {
      value = (value ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    }
    return value;
  }

  std::array<std::string_view, slot_count> slots_{};
  std::array<bool, 256> is_last_{};  // the characters that operators end in
};

inline constexpr operator_set operators;

}  // namespace vorn
