// A clock that stands still until it is moved, or is moved on by each reading.
#pragma once

#include <cstdint>

#include <vornscript/clock.hpp>

namespace vorn::test {

class manual_clock final : public vrn_clock {
 public:
  static constexpr std::uint64_t start_ms = 1'700'000'000'000;

  std::uint64_t wall_ticks() const override { return (ms += wall_step_ms) * 10'000; }
  std::uint64_t monotonic_ns() const override {
    return (ms - start_ms) * 1'000'000 + (ns += step_ns);
  }

  mutable std::uint64_t ms = start_ms;
  mutable std::uint64_t ns = 0;
  std::uint64_t wall_step_ms = 0;
  std::uint64_t step_ns = 0;
};

}  // namespace vorn::test
