#include "tools/output.hpp"

#include "platform/platform.hpp"

namespace vorn::tool {
namespace {

#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) \
  [[maybe_unused]] constexpr std::string_view operation##_marker = marker;
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL

}  // namespace

void write_error_line(std::string_view message) {
  // The marker begins with what closes the thread's number.
  std::string line(error_marker.substr(error_marker.find('*')));
  line.append(message) += '\n';
  platform::flush_console();
  platform::write_error(line);
}

script_log::script_log()
    : vrn_log_base(static_cast<std::uint32_t>(vrn_log_level::error) |
                   static_cast<std::uint32_t>(vrn_log_level::out)) {}

void script_log::error(const std::string& message) {
  if (first_error_.empty()) first_error_ = message;
  last_error_ = message;
}

void script_log::out(const std::string& message) {
  line_ = message;
  line_ += '\n';
  platform::write_console(line_);
}

void script_log::forget_errors() {
  first_error_.clear();
  last_error_.clear();
}

}  // namespace vorn::tool
