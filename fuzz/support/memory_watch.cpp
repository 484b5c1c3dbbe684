#include "fuzz/support/memory_watch.hpp"

#include <atomic>

#include <sanitizer/allocator_interface.h>

namespace vorn::fuzz {
namespace {

std::atomic<std::ptrdiff_t> in_use{0};
std::atomic<std::ptrdiff_t> most{0};

void allocated(const volatile void*, std::size_t size) {
  const std::ptrdiff_t now = in_use += static_cast<std::ptrdiff_t>(size);
  if (now > most) most = now;
}

void freed(const volatile void* memory) {
  in_use -= static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(memory));
}

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);

}  // namespace

memory_watch::memory_watch() : before_(in_use) { most = before_; }

std::size_t memory_watch::peak() const { return static_cast<std::size_t>(most - before_); }

}  // namespace vorn::fuzz
