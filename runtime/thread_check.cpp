#include "runtime/thread_check.hpp"

#include <string>

#include <vornscript/log.hpp>
#include <vornscript/thread_state.hpp>

#include "platform/platform.hpp"

namespace vorn {

// The interpreters are compared, not thread ids: the system uses those again.
bool check_thread(const vrnscript& script, std::string_view operation) noexcept try {
  if (current_script == &script) return true;
  const std::string line =
      std::string(operation) + " called on a thread that is not the interpreter's!";
  if (current_script || log_override) {
    log_line(vrn_log_level::error, line);
  } else {
    platform::write_error(line + '\n');
  }
  return false;
} catch (...) {
  return false;  // no memory for the line, or a logger that throws
}

}  // namespace vorn
