// What the pools write to the log, at the error level.
#pragma once

#include <cstdint>

namespace vorn::pool_message {

void invalid_magic(std::uint32_t found);
void invalid_memory(int slot);
void unknown_object();
void wrong_place(const void* object, const void* chunk, int claimed, int actual);
void already_free();
void still_allocated();

}  // namespace vorn::pool_message
