// How much memory a piece of work takes.
#pragma once

#include <cstddef>

namespace vorn::fuzz {

class memory_watch {
 public:
  memory_watch();

  // The most bytes that were allocated at once since this was made, on top of those before.
  std::size_t peak() const;

 private:
  std::ptrdiff_t before_;
};

}  // namespace vorn::fuzz
