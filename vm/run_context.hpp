// What the loop and the handlers know of a run.
#pragma once

#include <cstddef>
#include <cstdint>

#include <vornscript/std_function.hpp>

namespace vorn {

// Native functions get the part that they may see.
struct vrn_run_context : vrn_vm_context {
  const std::byte* end = nullptr;  // of the code; null where each instruction is alone
  std::uint32_t stretched = 0;     // how many instructions others have executed along with theirs
  const std::byte* thrower = nullptr;  // in the one of those that throws
};

}  // namespace vorn
