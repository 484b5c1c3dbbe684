// A module of its own that shows nothing but this function.
#include <vornscript/program_block.hpp>

extern "C" [[gnu::visibility("default")]] const void* resolve_beyond_border(
    const vorn::vrnptr_base& handle) {
  return vorn::vrnptr<vorn::vrn_program_block_routine>(handle).get();
}
