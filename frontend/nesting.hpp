// How deep a script may nest.
#pragma once

#include <cstdint>

namespace vorn {

// The depth up to which brackets, prefix operators, call chains, definitions, defines and includes
// nest. All of them are walked by recursion, none of which takes more than 4 KiB of stack a level,
// AddressSanitizer's redzones included (1 KiB without): half of an 8 MiB stack stays free.
inline constexpr std::uint32_t max_nesting = 1000;

// Counts one level for as long as it lives.
class nesting_level {
 public:
  explicit nesting_level(std::uint32_t& depth) : depth_(depth) { ++depth_; }
  ~nesting_level() { --depth_; }
  nesting_level(const nesting_level&) = delete;
  nesting_level& operator=(const nesting_level&) = delete;

  bool too_deep() const { return depth_ > max_nesting; }

 private:
  std::uint32_t& depth_;
};

}  // namespace vorn
