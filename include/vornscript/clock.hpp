// Where an interpreter takes its time from.
#pragma once

#include <cstdint>

#include <vornscript/export.hpp>

namespace vorn {

// The system's clocks. Derive from it to drive an interpreter by a time of your own (a paused game,
// a replay, a test). Called on the interpreter's thread.
class VRN_API vrn_clock {
 public:
  vrn_clock() = default;
  vrn_clock(const vrn_clock&) = delete;
  vrn_clock& operator=(const vrn_clock&) = delete;
  virtual ~vrn_clock() = default;

  // Wall-clock time in units of 100 nanoseconds since 1970-01-01.
  virtual std::uint64_t wall_ticks() const;

  // A monotonic, high-resolution time in nanoseconds, from any start.
  virtual std::uint64_t monotonic_ns() const;

  // Wall-clock milliseconds since 1970-01-01, truncated.
  std::uint64_t wall_ms() const { return wall_ticks() / 10'000; }
};

// The clock of the calling thread's interpreter, or the system's when it has none.
VRN_API const vrn_clock& current_clock();

}  // namespace vorn
