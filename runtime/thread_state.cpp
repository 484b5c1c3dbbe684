#include <vornscript/thread_state.hpp>

#include "platform/platform.hpp"

namespace vorn {

constinit thread_local vrnscript* current_script = nullptr;
constinit thread_local vrn_log_base* log_override = nullptr;

std::uint32_t thread_id() noexcept {
  static constinit thread_local std::uint32_t id = 0;
  if (id == 0) id = platform::thread_id();
  return id;
}

std::string& thread_name() noexcept {
  static thread_local std::string name;
  return name;
}

}  // namespace vorn
