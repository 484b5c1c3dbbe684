#include "memory/block_store.hpp"

#include <algorithm>

#include "memory/unfilled_array.hpp"
#include "platform/platform.hpp"

namespace vorn {
namespace {

// Behind the first slab each one is twice the one before it, from 8 KiB to 1 MiB.
constexpr std::size_t slab_size_base = std::size_t{1} << 12;
constexpr std::size_t doublings_max = 8;

}  // namespace

void vrn_block_store::open_slab(std::size_t size) {
  if (!slabs_.empty()) {
    size = std::max(size, slab_size_base << std::min(slabs_.size(), doublings_max));
  }
  slabs_.push_back(make_unfilled_array<std::byte>(size));
  next_ = slabs_.back().get();
  platform::prefer_large_pages(next_, size / 3 * 2);
  end_ = next_ + size;
}

}  // namespace vorn
