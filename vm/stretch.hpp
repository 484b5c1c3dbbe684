// Instructions in a row that are executed without a return to the loop; see vm/stretch.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "compiler/instruction.hpp"
#include "vm/run_context.hpp"

namespace vorn {

// Whether an opcode is one of a few, told by one comparison.
constexpr bool is_one_of(std::uint32_t opcode, std::initializer_list<vrn_opcode> few) {
  std::uint32_t set = 0;
  for (const vrn_opcode each : few) set |= 1U << each;
  return (set >> opcode & 1U) != 0;
}

static_assert(size_of<op_load_int> == size_of<op_load_value> &&
              size_of<op_load_float> == size_of<op_load_value>);

// Whether the instructions from a record on are enough of a stretch to be worth its beginning and
// its end, which cost as much as a few handlers.
inline bool begins_stretch(const vrn_run_context& context, const std::byte* record) {
  constexpr std::uint32_t load = size_of<op_push>;
  constexpr std::uint32_t behind = load + size_of<op_load_value>;
  if (!context.end || context.end - record <= std::ptrdiff_t{behind}) return false;
  const auto opcode = read_field<std::uint32_t>(record, 0);
  if (opcode != op_push) return is_one_of(opcode, {op_add, op_sub, op_mul, op_div});
  const auto loading = read_field<std::uint32_t>(record, load);
  return loading == op_load_string ||
         (is_one_of(loading, {op_load_value, op_load_int, op_load_float}) &&
          is_one_of(read_field<std::uint32_t>(record, behind),
                    {op_push, op_add, op_sub, op_mul, op_div, op_assign}));
}

// Executes the instructions from a record on as far as the stretch goes, and counts them; gives the
// size of their records.
std::uint32_t run_stretch(vrn_run_context& context, std::byte* record);

}  // namespace vorn
