// The instruction handlers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "compiler/instruction.hpp"
#include "vm/run_context.hpp"

namespace vorn {

// Executes the instruction at `record` and returns the record's size. May write into the record.
using vrn_handler = std::uint32_t (*)(vrn_run_context& context, std::byte* record);

// Hidden, because position independent code takes what is only declared for another library's, and
// looks up where it is for every instruction.
struct [[gnu::visibility("hidden")]] vrn_handlers {
  static const std::array<vrn_handler, opcode_count> of_opcode;  // one for each
};

}  // namespace vorn
