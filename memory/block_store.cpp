#include "memory/block_store.hpp"

#include <algorithm>

#include "platform/platform.hpp"

namespace vorn {
namespace {

// Each slab but the first is twice the one before it, within these bounds.
constexpr std::size_t slab_size_min = std::size_t{1} << 12;
constexpr std::size_t slab_size_max = std::size_t{1} << 20;

}  // namespace

void vrn_block_store::open_slab(std::size_t size) {
  if (!slabs_.empty()) {
    const std::size_t usual = slab_size_min << std::min<std::size_t>(slabs_.size(), 8);
    size = std::max(size, std::min(usual, slab_size_max));
  }
  slabs_.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
  next_ = slabs_.back().get();
  platform::prefer_large_pages(next_, size / 3 * 2);
  end_ = next_ + size;
}

}  // namespace vorn
