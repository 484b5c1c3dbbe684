#include <vornscript/clock.hpp>

#include <cstddef>
#include <new>

#include <vornscript/thread_state.hpp>
#include <vornscript/vrnscript.hpp>

#include "platform/platform.hpp"

namespace vorn {

std::uint64_t vrn_clock::wall_ticks() const { return platform::wall_ticks(); }

std::uint64_t vrn_clock::monotonic_ns() const { return platform::monotonic_ns(); }

const vrn_clock& current_clock() {
  if (current_script) return current_script->clock();
  // Never destroyed: statics that go late may still ask for it.
  alignas(vrn_clock) static std::byte storage[sizeof(vrn_clock)];
  static const vrn_clock& system = *::new (storage) vrn_clock;
  return system;
}

}  // namespace vorn
