#include <vornscript/log.hpp>

#include <cstddef>
#include <new>

#include <vornscript/thread_state.hpp>
#include <vornscript/vrnscript.hpp>

namespace vorn {

void vrn_log_base::write(vrn_log_level level, const std::string& message) {
  switch (level) {
#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) \
  case vrn_log_level::operation:                              \
    return operation(message);
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL
  }
}

vrn_log_base& get_log() {
  if (log_override) return *log_override;
  if (current_script) return current_script->logger();
  // Never destroyed: statics that go late may still ask for it.
  alignas(vrn_log_base) static std::byte storage[sizeof(vrn_log_base)];
  static vrn_log_base& silent = *::new (storage) vrn_log_base;
  return silent;
}

}  // namespace vorn
