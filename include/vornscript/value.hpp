// Script values and the handles that share them.
//
// A vrnvar is a 16-byte tagged variant. Numbers are held inline; strings, json, classes and
// functions own a payload object from one of the interpreter's pools; a ref holds a handle to
// another value. Values come from var_new() and its kin and live as long as a vrnvar_shared holds
// them.
//
// Threads: values and handles belong to their interpreter's thread and their counts are plain
// integers. A handle may be moved to another thread and dropped there: the value then goes back to
// its interpreter through a ring of 1024 slots, which the interpreter empties in tick(). A thread
// that drops more than that waits for the owner's tick.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include <vornscript/export.hpp>

namespace vorn {

enum class vrn_type : std::uint8_t {
#define VRN_VALUE_TYPE(identifier, name) identifier,
#include <vornscript/value_types.def>
#undef VRN_VALUE_TYPE
};

// The name that scripts see, "int" for example.
VRN_API std::string_view type_name(vrn_type type);

struct vrnvar_ptr_str;
struct vrnvar_ptr_json;
struct vrnvar_ptr_function;
class vrnvar_shared;

struct VRN_API vrnvar {
  vrnvar() = default;
  vrnvar(const vrnvar&) = delete;
  vrnvar& operator=(const vrnvar&) = delete;

  // Makes this an empty value of the given type (0, "", no target). A payload of the same type is
  // emptied and kept.
  void set_type(vrn_type new_type);

  // Makes this an independent copy; json is copied in depth, the members of a class and the target
  // of a ref are shared. Copying nothing, or a value onto itself, changes nothing.
  void copy_from(const vrnvar* source);

  void set_int(std::int64_t number);
  void set_float(double number);
  void set_string(std::string_view text);
  void set_ref(const vrnvar_shared& target);

  // The value as a number. Strings are read like atoll and atof read them; a float is truncated
  // toward zero, and one that does not fit gives the most negative integer. Any other type logs an
  // error and gives 0.
  std::int64_t get_int() const;
  double get_float() const;

  // The value as text: numbers in decimal (floats with six digits), strings as they are, "ERROR"
  // for an error, nothing for all others. A ref is not followed.
  std::string to_text() const;

  // The text of a string value; empty for every other type. Valid until the value changes.
  std::string_view string_text() const;

  std::int64_t as_int() const { return static_cast<std::int64_t>(payload); }
  double as_float() const { return std::bit_cast<double>(payload); }
  template <class Payload>
  Payload* as() const {
    return reinterpret_cast<Payload*>(static_cast<std::uintptr_t>(payload));
  }

  // What the pools ask of everything that they hold.
  std::uint8_t& pool_slot() { return slot; }
  void pool_reset() noexcept { become_none(); }

  std::uint64_t payload = 0;  // the integer, the float's bits, or the address of what is owned
  std::uint32_t refcount = 0;
  std::uint8_t reserved = 0;
  std::uint8_t marker = 0;  // cleared by every change of type
  vrn_type type = vrn_type::none;
  std::uint8_t slot = 255;  // place within the pool's chunk; 255: from the general heap

 private:
  void become_none() noexcept;
};
static_assert(sizeof(vrnvar) == 16);

// A counted handle to a value; may be empty.
class VRN_API vrnvar_shared {
 public:
  constexpr vrnvar_shared() noexcept = default;
  explicit vrnvar_shared(vrnvar* value) noexcept : value_(value) { retain(); }
  vrnvar_shared(const vrnvar_shared& other) noexcept : value_(other.value_) { retain(); }
  vrnvar_shared(vrnvar_shared&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
  ~vrnvar_shared() { release(); }

  // The new value is counted before the old one is let go.
  vrnvar_shared& operator=(const vrnvar_shared& other) noexcept {
    vrnvar_shared(other).swap(*this);
    return *this;
  }
  vrnvar_shared& operator=(vrnvar_shared&& other) noexcept {
    vrnvar_shared(std::move(other)).swap(*this);
    return *this;
  }

  vrnvar* get() const noexcept { return value_; }
  vrnvar* operator->() const noexcept { return value_; }
  vrnvar& operator*() const noexcept { return *value_; }
  explicit operator bool() const noexcept { return value_ != nullptr; }

  // The value at the end of a chain of refs. A chain that comes back to its start, or to itself,
  // is reported on standard error and gives the last ref.
  vrnvar_shared deref() const;

  void swap(vrnvar_shared& other) noexcept { std::swap(value_, other.value_); }

  // Gives the value up without lowering its count; adopt() takes such a value over.
  [[nodiscard]] vrnvar* detach() noexcept { return std::exchange(value_, nullptr); }
  static vrnvar_shared adopt(vrnvar* value) noexcept {
    vrnvar_shared handle;
    handle.value_ = value;
    return handle;
  }

 private:
  void retain() noexcept {
    if (value_) ++value_->refcount;
  }
  void release() noexcept {
    if (value_ && --value_->refcount == 0) release_last(value_);
  }
  static void release_last(vrnvar* value) noexcept;

  vrnvar* value_ = nullptr;
};

// A fresh value of type none with a count of 0, from the calling thread's interpreter, or from the
// general heap on a thread without one. Hand it to a vrnvar_shared.
VRN_API vrnvar* var_new();

// Fresh values in a handle.
VRN_API vrnvar_shared var_none();
VRN_API vrnvar_shared var_int(std::int64_t number);
VRN_API vrnvar_shared var_float(double number);
VRN_API vrnvar_shared var_string(std::string_view text);

}  // namespace vorn
