// Reports about running code, for the interpreter's callback.
#pragma once

#include <cstddef>
#include <string_view>

#include <vornscript/program_block.hpp>
#include <vornscript/report.hpp>

namespace vorn {

// Calls the callback, if there is one, with a report about the statement of which the instruction
// at an offset into a routine's code is a part; without a place where there is no routine, or
// nothing was noted for it. The operand completes the message. What the callback throws comes
// through.
void report_run(vrn_report_kind kind, vrn_task& task, const vrn_program_block_routine* routine,
                std::size_t at, std::string_view message, std::string_view operand = {});

}  // namespace vorn
