// Object pools: where values and their payloads live.
//
// A pool hands out fixed-size slots from chunks of 255. A chunk, with the pool that owns it in
// front, lies at an address from which any object in it finds it by masking; so a release needs no
// search, and a wrong slot byte (a memory fault, or the copy that a class payload makes of its
// source's) can lead to a message but never to a wild read, a wrong delete or a slot handed out
// twice.
//
// Threads: only the owner's thread takes objects and puts them back into chunks. Any other thread
// puts an object into the owner's ring of 1024 slots, which the owner drains while it holds the
// interpreter's lock; when the ring is full, that thread waits. Threads without an interpreter take
// objects from the general heap (vrn_pool_heap); their slot byte is 255.
//
// What is rare stands in functions of its own (gnu::noinline), so that taking and giving back need
// not save registers for it.
//
// A pooled type T has a one-byte slot number (pool_slot()) and can be emptied (pool_reset()).
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "memory/chunk.hpp"
#include "memory/interpreter_lock.hpp"
#include "memory/pool_messages.hpp"

namespace vorn {

class vrn_pool_base {
 public:
  vrn_pool_base() = default;
  vrn_pool_base(const vrn_pool_base&) = delete;
  vrn_pool_base& operator=(const vrn_pool_base&) = delete;
  virtual ~vrn_pool_base() = default;

  // Puts back what other threads have released.
  virtual void drain() {}
};

// Objects that belong to no pool: those made on threads without an interpreter, and those that were
// still out when their pool was destroyed. They lie in chunks like all others, which are freed with
// their last object. Any thread may call it.
template <class T, template <class> class Chunk>
class vrn_pool_heap {
 public:
  using region = vrn_pool_region<T, Chunk>;

  [[gnu::noinline]] static T* take() {
    const std::lock_guard lock(mutex());
    if (!current_ || current_->chunk.free_count == 0) current_ = region::create(nullptr);
    Chunk<T>& chunk = current_->chunk;
    T* object = chunk.take(chunk.free_stack[--chunk.free_count]);
    object->pool_slot() = heap_slot;
    return object;
  }

  [[gnu::noinline]] static void give_back(T* object) noexcept {
    if (!slot_is_right(object)) {
      // It claims to lie in a pool, and no search would find it there.
      pool_message::invalid_magic(0);
      pool_message::invalid_memory(object->pool_slot());
      return pool_message::unknown_object();
    }
    object->pool_reset();
    if (!put_back(object)) pool_message::already_free();
  }

  // Takes a chunk over from a pool that is being destroyed.
  static void adopt(region* orphan) {
    const std::lock_guard lock(mutex());
    orphan->chunk.magic = 0;
    orphan->owner.store(nullptr, std::memory_order_relaxed);
  }

 private:
  // The objects of a chunk that came from a pool keep their slot numbers.
  static bool slot_is_right(T* object) noexcept {
    const std::lock_guard lock(mutex());
    return object->pool_slot() == heap_slot || region::of(object)->chunk.magic != chunk_alive;
  }

  // False when the object's chunk is wholly free.
  static bool put_back(T* object) noexcept {
    const std::lock_guard lock(mutex());
    region* home = region::of(object);
    Chunk<T>& chunk = home->chunk;
    if (chunk.free_count == chunk_slots) return false;
    const std::uint8_t slot = chunk.slot_of(object);
    Chunk<T>::end(object);
    chunk.free_stack[chunk.free_count++] = slot;
    if (chunk.free_count == chunk_slots && home != current_) region::destroy(home);
    return true;
  }

  // Never destroyed: statics that go late may still release what they hold.
  static std::mutex& mutex() noexcept {
    alignas(std::mutex) static std::byte storage[sizeof(std::mutex)];
    static std::mutex& made = *::new (storage) std::mutex;
    return made;
  }

  static inline constinit region* current_ = nullptr;
};

template <class T, template <class> class Chunk>
class vrn_pool : public vrn_pool_base {
 public:
  using region = vrn_pool_region<T, Chunk>;
  using heap = vrn_pool_heap<T, Chunk>;

  ~vrn_pool() override {
    for (region* home : chunks_) {
      if (home->chunk.free_count == chunk_slots) {
        region::destroy(home);
      } else {
        pool_message::still_allocated();
        heap::adopt(home);
      }
    }
  }

  // An object in its initial state. Throws std::bad_alloc.
  T* take() {
    while (!free_chunks_.empty()) {
      region* home = free_chunks_.back();
      Chunk<T>& chunk = home->chunk;
      if (chunk.free_count > 0) {
        const std::uint8_t slot = chunk.free_stack[--chunk.free_count];
        T* object = chunk.take(slot);
        object->pool_slot() = slot;
        ++live_count_;
        return object;
      }
      home->listed = false;
      free_chunks_.pop_back();
    }
    return take_from_new_chunk();
  }

  // Puts an object of this pool back. On the owner's thread.
  void give_back(T* object) noexcept {
    region* home = region::of(object);
    Chunk<T>& chunk = home->chunk;
    if (!chunk.is_at(object, object->pool_slot()) || chunk.magic != chunk_alive) {
      if (!mend(object, chunk)) return;
    }
    object->pool_reset();
    if (chunk.free_count == chunk_slots) return pool_message::already_free();
    const std::uint8_t slot = object->pool_slot();
    Chunk<T>::end(object);
    chunk.free_stack[chunk.free_count++] = slot;
    // A chunk leaves the list only when a take finds it full.
    if (!home->listed) list(home);
    --live_count_;
  }

  std::uint64_t chunk_count() const { return chunks_.size(); }
  std::uint64_t live_count() const { return live_count_; }

 private:
  [[gnu::noinline]] T* take_from_new_chunk() {
    // The lists have room for the chunk before it exists, so nothing is lost when memory runs out,
    // and a release never has to allocate.
    if (chunks_.size() == chunks_.capacity()) {
      const std::size_t room = chunks_.size() * 2 + 4;
      free_chunks_.reserve(room);
      chunks_.reserve(room);
    }
    region* home = region::create(this);
    chunks_.push_back(home);
    list(home);
    return take();
  }

  [[gnu::noinline]] void list(region* home) noexcept {
    free_chunks_.push_back(home);
    home->listed = true;
  }

  // Gives an object whose slot byte, or whose chunk, is not what it should be its right slot
  // number. False when the object has to be left alone. What stands where the object claims that
  // its chunk begins is not looked at; the search for its real chunk ends at the one found by
  // masking.
  [[gnu::noinline]] static bool mend(T* object, const Chunk<T>& chunk) noexcept {
    const std::uint8_t claimed = object->pool_slot();
    const std::uint8_t actual = chunk.slot_of(object);
    pool_message::invalid_magic(claimed == actual ? chunk.magic : 0);
    pool_message::invalid_memory(claimed);
    pool_message::wrong_place(object, &chunk, claimed, actual);
    // The search for the claimed slot deliberately looks at one entry more than is valid: the slot
    // that was taken last.
    const std::size_t valid = chunk.free_count;
    if (chunk.is_free(claimed, std::min(valid + 1, chunk_slots)) || chunk.is_free(actual, valid)) {
      pool_message::already_free();
      return false;
    }
    object->pool_slot() = actual;
    return true;
  }

  std::vector<region*> chunks_;
  std::vector<region*> free_chunks_;
  std::uint64_t live_count_ = 0;
};

template <class T, template <class> class Chunk>
class vrn_pool_threadsafe final : public vrn_pool<T, Chunk> {
 public:
  using typename vrn_pool<T, Chunk>::region;
  using typename vrn_pool<T, Chunk>::heap;

  // Drains only while the caller holds `mutex`; without one, always.
  explicit vrn_pool_threadsafe(const vrn_interpreter_mutex* mutex = nullptr) : mutex_(mutex) {}

  // Releases an object on any thread; `own` is the pool of the calling thread's interpreter.
  static void release(T* object, vrn_pool_threadsafe* own) noexcept {
    vrn_pool_base* owner = owner_of(object);
    if (!owner) return heap::give_back(object);
    auto& home = static_cast<vrn_pool_threadsafe&>(*owner);
    if (&home == own) {
      home.give_back(object);
    } else {
      home.queue(object);
    }
  }

  // Whether a release on this thread puts the object back at once, rather than into a ring.
  static bool takes_back(const T* object, const vrn_pool_threadsafe* own) noexcept {
    const vrn_pool_base* const owner = owner_of(object);
    return !owner || owner == own;
  }

  // An object from the calling thread's pool, or from the heap when it has none.
  static T* take_from(vrn_pool_threadsafe* own) { return own ? own->take() : heap::take(); }

  void drain() override {
    if (remote_counter_.load(std::memory_order_relaxed) == drained_) return;
    if (mutex_ && !mutex_->held_by_caller()) return;
    for (std::atomic<T*>& slot : remote_slots_) {
      if (!slot.load(std::memory_order_relaxed)) continue;
      this->give_back(slot.exchange(nullptr, std::memory_order_acquire));
      ++drained_;
    }
  }

 private:
  static vrn_pool_base* owner_of(const T* object) noexcept {
    return region::of(object)->owner.load(std::memory_order_relaxed);
  }

  static constexpr std::uint32_t ring_size = 1024;

  // Consecutive tickets land in different groups of eight slots, that is, on different cache lines.
  static constexpr std::uint32_t ring_index(std::uint32_t ticket) {
    const std::uint32_t n = ticket % ring_size;
    return (n & ~63u) | ((n & 7u) << 3) | ((n >> 3) & 7u);
  }

  [[gnu::noinline]] void queue(T* object) noexcept {
    const std::uint32_t ticket = remote_counter_.fetch_add(1, std::memory_order_relaxed);
    std::atomic<T*>& slot = remote_slots_[ring_index(ticket)];
    for (T* occupant = nullptr; !slot.compare_exchange_weak(
             occupant, object, std::memory_order_release, std::memory_order_relaxed);
         occupant = nullptr) {
      while (slot.load(std::memory_order_relaxed)) std::this_thread::yield();
    }
  }

  const vrn_interpreter_mutex* mutex_;
  std::uint32_t drained_ = 0;  // how many tickets have come back
  alignas(64) std::atomic<std::uint32_t> remote_counter_{0};
  alignas(64) std::array<std::atomic<T*>, ring_size> remote_slots_{};
};

}  // namespace vorn
