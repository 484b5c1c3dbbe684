// A clock that stands still until it is moved.
#pragma once

#include <cstdint>

#include <vornscript/clock.hpp>

namespace vorn::test {

class manual_clock final : public vrn_clock {
 public:
  static constexpr std::uint64_t start_ms = 1'700'000'000'000;

  std::uint64_t wall_ticks() const override { return ms * 10'000; }
  std::uint64_t monotonic_ns() const override { return (ms - start_ms) * 1'000'000; }

  std::uint64_t ms = start_ms;
};

}  // namespace vorn::test
