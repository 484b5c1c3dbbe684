// A routine's code as text, to look at and to compare.
#pragma once

#include <string>

#include <vornscript/program_block.hpp>

namespace vorn {

// One line for each instruction: its name and operands. Values and native functions are shown by
// their names in the routine, so that the text does not depend on addresses. A record that is cut
// off, or has no known opcode, is shown as "?" and ends the text.
std::string disassemble(vrn_program_block_routine& routine);

}  // namespace vorn
