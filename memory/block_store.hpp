// Storage for the many small objects that one source file or tree consists of.
//
// Objects are cut from 16 KiB blocks, one behind the other, so making one costs an addition. A
// block lies at a multiple of its size: its header, which counts the objects alive in it, is found
// from any object by masking the address. The block goes when its last object has gone, so the
// objects may outlive the store that they came from. Counts are plain integers: a store and all its
// objects belong to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include <vornscript/ref.hpp>

namespace vorn {

class vrn_block_store {
 public:
  vrn_block_store() = default;
  vrn_block_store(const vrn_block_store&) = delete;
  vrn_block_store& operator=(const vrn_block_store&) = delete;
  ~vrn_block_store() { close(); }

  // A new T in a handle. T's release_last has to call destroy().
  template <class T, class... Arguments>
  vrn_ref<T> make(Arguments&&... arguments) {
    static_assert(alignof(T) <= alignment && sizeof(T) <= block_size / 4);
    void* place = allocate((sizeof(T) + alignment - 1) & ~(alignment - 1));
    vrn_ref<T> made(::new (place) T(std::forward<Arguments>(arguments)...));
    ++current_->live;
    return made;
  }

  // Destroys an object that make() returned, through a pointer to it or to its first base.
  template <class T>
  static void destroy(T* object) noexcept {
    block* home = reinterpret_cast<block*>(reinterpret_cast<std::uintptr_t>(object) &
                                           ~std::uintptr_t{block_size - 1});
    object->~T();
    if (--home->live == 0) free_block(home);
  }

 private:
  static constexpr std::size_t alignment = 8;
  static constexpr std::size_t block_size = 16 * 1024;

  // The store itself counts as one object of its current block.
  struct alignas(alignment) block {
    std::uint32_t live = 1;
  };

  void* allocate(std::size_t size) {
    if (size > static_cast<std::size_t>(end_ - next_)) open_block();
    return std::exchange(next_, next_ + size);
  }
  void open_block();
  void close() noexcept {
    if (current_ && --current_->live == 0) free_block(current_);
  }
  static void free_block(block* empty) noexcept;

  block* current_ = nullptr;
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
};

}  // namespace vorn
