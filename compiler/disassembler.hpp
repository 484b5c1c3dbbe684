// A routine's code as text, to look at and to compare.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <vornscript/program_block.hpp>

namespace vorn {

struct vrn_instruction_text {
  std::size_t at;  // offset into the code
  std::string_view name;
  std::string_view operands;
};
using vrn_instruction_visitor = std::function<void(const vrn_instruction_text&)>;

// Values and native functions are shown by their names in the routine, so that the text does not
// depend on addresses. A record that is cut off, or has no known opcode, is shown as "?" and ends
// the text.
void disassemble(vrn_program_block_routine& routine, const vrn_instruction_visitor& visit);

// One line for each instruction: its name and operands.
std::string disassemble(vrn_program_block_routine& routine);

}  // namespace vorn
