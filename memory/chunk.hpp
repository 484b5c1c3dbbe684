// Chunks: the 255 slots that pooled objects lie in.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <new>

namespace vorn {

class vrn_pool_base;

inline constexpr std::size_t chunk_slots = 255;

// The slot byte of an object that no pool holds.
inline constexpr std::uint8_t heap_slot = 255;

inline constexpr std::uint32_t chunk_alive = 0xFFABCDEF;

// The slots back to back, then a stack of the free ones' numbers. A new chunk hands its slots out
// in ascending order.
template <class T, class Slots>
struct vrn_pool_chunk {
  vrn_pool_chunk() {
    for (std::size_t k = 0; k < chunk_slots; ++k) {
      free_stack[k] = static_cast<std::uint8_t>(chunk_slots - 1 - k);
    }
  }

  const std::byte* begin() const { return reinterpret_cast<const std::byte*>(this); }

  // Whether an object of this chunk lies in the slot with a number; 255 is the number of none.
  bool is_at(const T* object, std::uint8_t slot) const {
    return reinterpret_cast<const std::byte*>(object) == begin() + slot * sizeof(T);
  }

  std::uint8_t slot_of(const T* object) const {
    const auto offset = reinterpret_cast<const std::byte*>(object) - begin();
    return static_cast<std::uint8_t>(static_cast<std::size_t>(offset) / sizeof(T));
  }

  bool is_free(std::uint8_t slot, std::size_t entries) const {
    const auto end = free_stack.begin() + static_cast<std::ptrdiff_t>(entries);
    return std::find(free_stack.begin(), end, slot) != end;
  }

  Slots slots;
  std::array<std::uint8_t, chunk_slots> free_stack;
  std::uint8_t free_count = chunk_slots;
  std::uint32_t magic = chunk_alive;
};

// A chunk whose objects live as long as the chunk; taking one hands out what is there.
template <class T>
struct vrn_pool_chunk_static : vrn_pool_chunk<T, std::array<T, chunk_slots>> {
  T* take(std::uint8_t slot) { return &this->slots[slot]; }
  static void end(T*) noexcept {}
};

// A chunk of raw slots; taking one makes a new object in it. To be placed where a T can be.
template <class T>
struct vrn_pool_chunk_dynamic : vrn_pool_chunk<T, std::array<std::byte, chunk_slots * sizeof(T)>> {
  T* take(std::uint8_t slot) { return ::new (&this->slots[slot * sizeof(T)]) T; }
  static void end(T* object) noexcept { object->~T(); }
};

// A chunk and whose it is. Lies at a multiple of `boundary`, so it is found from an object's
// address alone, whatever the object's slot byte says.
template <class T, template <class> class Chunk>
struct vrn_pool_region {
  static vrn_pool_region* create(vrn_pool_base* owner) {
    return ::new (std::align_val_t{boundary()}) vrn_pool_region(owner);
  }
  static void destroy(vrn_pool_region* region) noexcept {
    region->chunk.magic = 0;
    region->~vrn_pool_region();
    ::operator delete (region, std::align_val_t{boundary()});
  }

  static vrn_pool_region* of(const T* object) {
    return reinterpret_cast<vrn_pool_region*>(reinterpret_cast<std::uintptr_t>(object) &
                                              ~std::uintptr_t{boundary() - 1});
  }

  static constexpr std::size_t boundary() { return std::bit_ceil(sizeof(vrn_pool_region)); }

  std::atomic<vrn_pool_base*> owner;  // null: nobody's
  bool listed = false;                // on its pool's list of chunks to take from
  alignas(8) Chunk<T> chunk;

 private:
  explicit vrn_pool_region(vrn_pool_base* pool) : owner(pool) {}
};

}  // namespace vorn
