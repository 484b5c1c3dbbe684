#include <vornscript/log_default.hpp>

#include <atomic>
#include <cstddef>
#include <utility>

#include <vornscript/thread_state.hpp>

#include "platform/platform.hpp"
#include "runtime/thread_record.hpp"

namespace vorn {
namespace {

// A thread keeps the memory of its last line for the next one, up to this size.
constexpr std::size_t kept_capacity = 0x4000;

// All console loggers share one console.
std::atomic<bool> written_since_flush{false};

const std::string& sender(vrn_thread_record& thread) {
  if (thread.sender.empty()) {
    std::string shown = thread.name.empty() ? "[" : '[' + thread.name + "] [";
    append_part(shown, thread_id());
    thread.sender = std::move(shown);
  }
  return thread.sender;
}

void write_line(std::string_view tag, int attribute, std::string_view marker,
                const std::string& message) {
  vrn_thread_record& thread = thread_record();
  std::string& line = thread.line;
  line.clear();
  platform::begin_line(line, attribute);
  line += tag;
  line += sender(thread);
  line += marker;
  line += message;
  line += '\n';
  platform::write_console(line);
  written_since_flush.store(true, std::memory_order_relaxed);
  if (line.capacity() > kept_capacity) std::string().swap(line);
}

}  // namespace

#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker)   \
  void vrn_log_default::operation(const std::string& message) { \
    write_line(tag, attribute, marker, message);                \
  }
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL

vrn_log_default::~vrn_log_default() { platform::end_console(); }

void vrn_log_default::flush() {
  if (written_since_flush.exchange(false, std::memory_order_relaxed)) platform::flush_console();
}

}  // namespace vorn
