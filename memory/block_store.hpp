// Storage for the many small objects that one source file or tree consists of.
//
// Objects are cut from slabs, one behind the other, so making one costs an addition. A slab counts
// the objects alive in it and goes when its last one has gone, so the objects may outlive the store
// that they came from. It is divided into blocks of 16 KiB, each at a multiple of its size, that
// begin with the slab's address: from any object it is found by masking. A store's first slab is
// one block, each further one is double the last, up to 1 MiB. Counts are plain integers: a store
// and all its objects belong to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include <vornscript/ref.hpp>

namespace vorn {

class vrn_block_store {
 public:
  vrn_block_store() = default;
  vrn_block_store(const vrn_block_store&) = delete;
  vrn_block_store& operator=(const vrn_block_store&) = delete;
  ~vrn_block_store() {
    if (slab_) release(slab_);
  }

  // A new T in a handle. T's release_last has to call destroy().
  template <class T, class... Arguments>
  vrn_ref<T> make(Arguments&&... arguments) {
    static_assert(alignof(T) <= alignment && sizeof(T) <= block_size / 4);
    void* place = allocate((sizeof(T) + alignment - 1) & ~(alignment - 1));
    vrn_ref<T> made(::new (place) T(std::forward<Arguments>(arguments)...));
    ++slab_->live;
    return made;
  }

  // Destroys an object that make() returned, through a pointer to it or to its first base.
  template <class T>
  static void destroy(T* object) noexcept {
    const auto* home = reinterpret_cast<block*>(reinterpret_cast<std::uintptr_t>(object) &
                                                ~std::uintptr_t{block_size - 1});
    slab* const owner = home->owner;
    object->~T();
    release(owner);
  }

 private:
  static constexpr std::size_t alignment = 8;
  static constexpr std::size_t block_size = 16 * 1024;

  struct slab {
    std::uint32_t live = 1;  // the store itself counts as one object of its current slab
    std::uint32_t blocks;
  };
  // What a block begins with.
  struct block {
    slab* owner;
  };

  void* allocate(std::size_t size) {
    if (size > static_cast<std::size_t>(end_ - next_)) open_block();
    return std::exchange(next_, next_ + size);
  }
  void open_block();
  void open_slab(std::uint32_t blocks);
  static void release(slab* owner) noexcept {
    if (--owner->live == 0) free_slab(owner);
  }
  static void free_slab(slab* empty) noexcept;

  slab* slab_ = nullptr;
  std::uint32_t opened_ = 0;  // how many of its blocks
  std::byte* next_ = nullptr;
  std::byte* end_ = nullptr;
};

}  // namespace vorn
