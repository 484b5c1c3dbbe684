// The lock of an interpreter: who may work on its registry and pools just now.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>

#include <vornscript/thread_state.hpp>

namespace vorn {

// A plain mutex and the id of the thread that holds it.
class vrn_interpreter_mutex {
 public:
  bool held_by_caller() const noexcept {
    return owner_.load(std::memory_order_relaxed) == thread_id();
  }

 private:
  friend class vrn_interpreter_lock;

  std::atomic<std::uint32_t> owner_{0};
  std::mutex mutex_;
};

// Holds the lock while it lives. On the thread that holds it already, it does nothing.
class vrn_interpreter_lock {
 public:
  explicit vrn_interpreter_lock(vrn_interpreter_mutex& mutex) {
    if (mutex.held_by_caller()) return;
    mutex.mutex_.lock();
    mutex.owner_.store(thread_id(), std::memory_order_relaxed);
    locked_ = &mutex;
  }
  ~vrn_interpreter_lock() {
    if (!locked_) return;
    locked_->owner_.store(0, std::memory_order_relaxed);
    locked_->mutex_.unlock();
  }
  vrn_interpreter_lock(const vrn_interpreter_lock&) = delete;
  vrn_interpreter_lock& operator=(const vrn_interpreter_lock&) = delete;

 private:
  vrn_interpreter_mutex* locked_ = nullptr;
};

}  // namespace vorn
