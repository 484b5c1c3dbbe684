#include "memory/pool_messages.hpp"

#include <vornscript/log.hpp>

#include "memory/chunk.hpp"
#include "memory/shown_address.hpp"

namespace vorn::pool_message {
namespace {

// Objects are released when nothing may throw: a message for which there is no memory is left out.
template <class... Parts>
void write_error(const Parts&... parts) noexcept try {
  log_line(vrn_log_level::error, parts...);
} catch (...) {
}

}  // namespace

void invalid_magic(std::uint32_t found) {
  const auto shown = [](std::uintptr_t magic) {
    return vrn_shown_address{reinterpret_cast<const void*>(magic)};
  };
  write_error("invalid pool magic num: ", shown(found), " vs ", shown(chunk_alive));
}

void invalid_memory(int slot) { write_error("invalid variable pool memory! ", slot); }

void unknown_object() { write_error("unknown var encountered."); }

void wrong_place(const void* object, const void* chunk, int claimed, int actual) {
  write_error("Seems like variable ", vrn_shown_address{object}, " belongs to pool ",
              vrn_shown_address{chunk}, ", offset was ", claimed, ", but actually is ", actual,
              ".");
}

void already_free() {
  write_error("Additionally, the variable was already free'd. Check for mem corruptions.");
}

void still_allocated() { write_error("There are still pool chunks allocated!"); }

}  // namespace vorn::pool_message
