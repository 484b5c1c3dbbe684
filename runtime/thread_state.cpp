#include <vornscript/thread_state.hpp>

#include <memory>

#include "platform/platform.hpp"
#include "runtime/thread_record.hpp"

namespace vorn {

constinit thread_local vrnscript* current_script = nullptr;
constinit thread_local vrn_log_base* log_override = nullptr;

namespace {

// A plain pointer: an object here would go while others of the thread still log.
constinit thread_local vrn_thread_record* kept = nullptr;

constinit thread_local std::uint32_t id = 0;

// Apart, so that all but the first call save no registers.
[[gnu::noinline]] std::uint32_t ask_thread_id() noexcept {
  id = platform::thread_id();
  return id;
}

void free_record(void* held) {
  kept = nullptr;
  const std::unique_ptr<vrn_thread_record> owned(static_cast<vrn_thread_record*>(held));
}

}  // namespace

std::uint32_t thread_id() noexcept { return id != 0 ? id : ask_thread_id(); }

vrn_thread_record* find_thread_record() noexcept { return kept; }

vrn_thread_record& thread_record() {
  if (!kept) {
    kept = std::make_unique<vrn_thread_record>().release();
    platform::at_thread_end(free_record, kept);
  }
  return *kept;
}

std::string_view thread_name() noexcept { return kept ? kept->name : std::string_view(); }

void set_thread_name(std::string_view name) {
  if (name == thread_name()) return;
  vrn_thread_record& own = thread_record();
  own.name = name;
  own.sender.clear();
}

}  // namespace vorn
