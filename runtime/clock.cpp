#include <vornscript/clock.hpp>

#include <vornscript/thread_state.hpp>
#include <vornscript/vrnscript.hpp>

#include "platform/platform.hpp"

namespace vorn {

std::uint64_t vrn_clock::wall_ticks() const { return platform::wall_ticks(); }

std::uint64_t vrn_clock::monotonic_ns() const { return platform::monotonic_ns(); }

const vrn_clock& current_clock() {
  if (current_script) return current_script->clock();
  static const vrn_clock system;
  return system;
}

}  // namespace vorn
