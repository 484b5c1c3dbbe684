#include "memory/block_store.hpp"

#include <algorithm>
#include <new>

namespace vorn {
namespace {

// What the system's allocator keeps in front of an allocation. Leaving it free at a slab's end lets
// slabs lie back to back.
constexpr std::size_t allocator_header = 64;

constexpr std::uint32_t blocks_max = 64;

}  // namespace

void vrn_block_store::open_block() {
  if (!slab_) {
    open_slab(1);
  } else if (opened_ == slab_->blocks) {
    open_slab(std::min(slab_->blocks * 2, blocks_max));
  }
  // A slab begins with its first block, and that with its own header.
  std::byte* const begin = reinterpret_cast<std::byte*>(slab_) - sizeof(block);
  std::byte* const memory = begin + opened_ * block_size;
  ::new (memory) block{slab_};
  next_ = memory + sizeof(block) + (opened_ == 0 ? sizeof(slab) : 0);
  end_ = memory + block_size;
  if (++opened_ == slab_->blocks) end_ -= allocator_header;
}

void vrn_block_store::open_slab(std::uint32_t blocks) {
  void* const memory =
      ::operator new (blocks* block_size - allocator_header, std::align_val_t{block_size});
  if (slab_) release(slab_);
  slab_ = ::new (static_cast<std::byte*>(memory) + sizeof(block)) slab{1, blocks};
  opened_ = 0;
}

void vrn_block_store::free_slab(slab* empty) noexcept {
  ::operator delete (reinterpret_cast<std::byte*>(empty) - sizeof(block),
                     std::align_val_t{block_size});
}

}  // namespace vorn
