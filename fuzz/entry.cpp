// Where the fuzzer enters; compiled once for each target.
#include <cstddef>
#include <cstdint>

#include "fuzz/targets.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vorn::fuzz::VRN_FUZZ_TARGET({data, size});
  return 0;
}
