#include "memory/block_store.hpp"

#include <new>

namespace vorn {
namespace {

// What the system's allocator keeps in front of an allocation. Leaving it free at a block's end
// lets blocks lie back to back.
constexpr std::size_t allocator_header = 64;

}  // namespace

void vrn_block_store::open_block() {
  void* memory = ::operator new (block_size - allocator_header, std::align_val_t{block_size});
  close();
  current_ = ::new (memory) block;
  next_ = static_cast<std::byte*>(memory) + sizeof(block);
  end_ = static_cast<std::byte*>(memory) + block_size - allocator_header;
}

void vrn_block_store::free_block(block* empty) noexcept {
  empty->~block();
  ::operator delete (empty, std::align_val_t{block_size});
}

}  // namespace vorn
