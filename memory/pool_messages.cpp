#include "memory/pool_messages.hpp"

#include <cstdio>
#include <string>

#include <vornscript/log.hpp>

#include "memory/chunk.hpp"

namespace vorn::pool_message {
namespace {

// Objects are released when nothing may throw: a message for which there is no memory is left out.
template <class... Values>
void write_error(const char* format, Values... values) noexcept try {
  vrn_log_base& logger = get_log();
  if (!logger.enabled(vrn_log_level::error)) return;
  char text[200];
  std::snprintf(text, sizeof text, format, values...);
  logger.error(text);
} catch (...) {
}

}  // namespace

void invalid_magic(std::uint32_t found) {
  const auto shown = [](std::uintptr_t magic) { return reinterpret_cast<const void*>(magic); };
  write_error("invalid pool magic num: %p vs %p", shown(found), shown(chunk_alive));
}

void invalid_memory(int slot) { write_error("invalid variable pool memory! %i", slot); }

void unknown_object() { write_error("%s", "unknown var encountered."); }

void wrong_place(const void* object, const void* chunk, int claimed, int actual) {
  write_error("Seems like variable %p belongs to pool %p, offset was %i, but actually is %i.",
              object, chunk, claimed, actual);
}

void already_free() {
  write_error("%s", "Additionally, the variable was already free'd. Check for mem corruptions.");
}

void still_allocated() { write_error("%s", "There are still pool chunks allocated!"); }

}  // namespace vorn::pool_message
