// Random numbers: the classic 32-bit linear congruential generator with the multiplier 214013 and
// the increment 2531011, of whose state 15 bits are given out.
#include <cstdint>

#include "stdlib/builtins.hpp"

namespace vorn::builtin {
namespace {

// Never seeded: every thread of every run gets the same sequence.
constinit thread_local std::uint32_t state = 1;

}  // namespace

vrnvar_shared rand(vrn_vm_context&, arguments&) {
  state = state * 214013u + 2531011u;
  return var_float(((state >> 16) & 32767u) / 32767.0);
}

}  // namespace vorn::builtin
