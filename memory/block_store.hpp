// Storage for the many small objects that one tree consists of.
//
// Objects are cut from slabs, one behind the other, so making one costs an addition. They belong to
// the store and go with it, all at once and without a destructor being called. A store and its
// objects belong to one thread at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace vorn {

class vrn_block_store {
 public:
  // With room for so many bytes; more is added as it is needed.
  explicit vrn_block_store(std::size_t size) { open_slab(size); }

  template <class T, class... Arguments>
  T* make(Arguments&&... arguments) {
    return ::new (allocate<T>(1)) T(std::forward<Arguments>(arguments)...);
  }

  // So many objects, side by side.
  template <class T>
  std::span<T> make_list(std::size_t count) {
    T* const first = static_cast<T*>(allocate<T>(count));
    std::uninitialized_value_construct_n(first, count);
    return {first, count};
  }

 private:
  static constexpr std::size_t alignment = 8;

  template <class T>
  void* allocate(std::size_t count) {
    static_assert(alignof(T) <= alignment && std::is_trivially_destructible_v<T>);
    const std::size_t size = (count * sizeof(T) + alignment - 1) / alignment * alignment;
    if (size > static_cast<std::size_t>(end_ - next_)) open_slab(size);
    return std::exchange(next_, next_ + size);
  }
  // With room for at least so many bytes.
  void open_slab(std::size_t size);

  std::vector<std::unique_ptr<std::byte[]>> slabs_;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
};

}  // namespace vorn
