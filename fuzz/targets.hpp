// What is fuzzed. Each target does one thing with the bytes that it is given and throws
// std::logic_error when something does not hold that has to. They need no fuzzer: a test can run
// them too.
#pragma once

#include <cstdint>
#include <span>

namespace vorn::fuzz {

using input = std::span<const std::uint8_t>;

// The bytes are script files; they are loaded and run.
void fuzz_text(input bytes);

// The bytes decide what program is written, and what is wrong with it; it is loaded and run.
void fuzz_program(input bytes);

// The bytes decide the instructions of a few routines, which are run.
void fuzz_instructions(input bytes);

// The bytes are operations on values, done to the values and to a model of them.
void fuzz_values(input bytes);

// The bytes are takes and give-backs over several pools and threads.
void fuzz_pools(input bytes);

}  // namespace vorn::fuzz
