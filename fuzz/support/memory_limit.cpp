// Lets large allocations fail, as they do when memory has run out: a script of a few lines can
// double a string until it is huge, which is its right, and the fuzzer's time.
#include <cstddef>
#include <cstdlib>
#include <new>

#include <sanitizer/allocator_interface.h>

namespace {

constexpr std::size_t large = std::size_t{1} << 20;
constexpr std::size_t limit = std::size_t{64} << 20;

bool too_much(std::size_t size) {
  return size >= large && __sanitizer_get_current_allocated_bytes() + size > limit;
}

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return too_much(size) ? nullptr : std::malloc(size);
}

void* operator new(std::size_t size) {
  void* const memory = operator new(size, std::nothrow);
  if (!memory) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
