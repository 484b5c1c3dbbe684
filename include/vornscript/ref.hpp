// A counted handle to an object that carries its own count.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace vorn {

// Shares ownership of a T. T has a `std::uint32_t reference_count` that starts at 0, and a function
// `void release_last(T*)`, found beside T, that disposes of an object whose last handle has gone.
// The count is a plain integer: an object and all its handles belong to one thread at a time.
template <class T>
class vrn_ref {
 public:
  constexpr vrn_ref() noexcept = default;
  constexpr vrn_ref(std::nullptr_t) noexcept {}
  explicit vrn_ref(T* object) noexcept : object_(object) { retain(); }

  vrn_ref(const vrn_ref& other) noexcept : object_(other.object_) { retain(); }
  vrn_ref(vrn_ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}

  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  vrn_ref(const vrn_ref<U>& other) noexcept : object_(other.get()) {
    retain();
  }
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  vrn_ref(vrn_ref<U>&& other) noexcept : object_(other.detach()) {}

  ~vrn_ref() { release(); }

  vrn_ref& operator=(const vrn_ref& other) noexcept {
    vrn_ref(other).swap(*this);
    return *this;
  }
  vrn_ref& operator=(vrn_ref&& other) noexcept {
    vrn_ref(std::move(other)).swap(*this);
    return *this;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }

  // True when this is the only handle to an object.
  bool unique() const noexcept { return object_ && object_->reference_count == 1; }

  void reset() noexcept { vrn_ref().swap(*this); }
  void swap(vrn_ref& other) noexcept { std::swap(object_, other.object_); }

  // Gives the object up without lowering its count.
  [[nodiscard]] T* detach() noexcept { return std::exchange(object_, nullptr); }

  friend auto operator<=>(const vrn_ref&, const vrn_ref&) = default;

 private:
  void retain() noexcept {
    if (object_) ++object_->reference_count;
  }
  void release() noexcept {
    if (object_ && --object_->reference_count == 0) release_last(object_);
  }

  T* object_ = nullptr;
};

}  // namespace vorn
