// The arithmetic of scripts on numbers, and how a number gets into a slot.
#pragma once

#include <bit>
#include <cstdint>

#include <vornscript/value.hpp>

#include "compiler/instruction.hpp"

namespace vorn {

// One of two numbers, without a branch, where that would be guessed wrong as often as not.
constexpr std::uint64_t select(bool condition, std::uint64_t yes, std::uint64_t no) {
  return no ^ ((yes ^ no) & (0 - static_cast<std::uint64_t>(condition)));
}

// The bits of left + right, left - right or left * right.
constexpr std::uint64_t combine(std::uint32_t opcode, auto left, auto right) {
  const auto bits = [](auto result) { return std::bit_cast<std::uint64_t>(result); };
  return select(opcode == op_mul, bits(left * right),
                select(opcode == op_sub, bits(left - right), bits(left + right)));
}

// Integers wrap. Division by zero gives zero, deliberately without a report.
constexpr std::uint64_t of_integers(std::uint32_t opcode, std::int64_t left, std::int64_t right) {
  const auto unsigned_left = static_cast<std::uint64_t>(left);
  if (opcode != op_div) return combine(opcode, unsigned_left, static_cast<std::uint64_t>(right));
  if (right == 0) return 0;
  return right == -1 ? 0 - unsigned_left : static_cast<std::uint64_t>(left / right);
}

constexpr std::uint64_t of_floats(std::uint32_t opcode, double left, double right) {
  if (opcode != op_div) return combine(opcode, left, right);
  return std::bit_cast<std::uint64_t>(right == 0.0 ? 0.0 : left / right);
}

inline void write_number(vrnvar& value, std::uint64_t bits, vrn_type type) {
  value.payload = bits;
  value.marker = 0;
  value.type = type;
}

// Puts a fresh number into a slot: writes over a number that nobody else holds.
inline void set_number(vrnvar_shared& slot, std::uint64_t bits, vrn_type type) {
  if (!slot || slot->refcount != 1 || slot->type >= vrn_type::primitive_end) slot = var_none();
  write_number(*slot, bits, type);
}

}  // namespace vorn
