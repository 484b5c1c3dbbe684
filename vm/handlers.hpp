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

// One handler for each opcode.
extern const std::array<vrn_handler, opcode_count> handlers;

}  // namespace vorn
