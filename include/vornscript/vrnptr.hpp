// Registered pointers: handles to an interpreter's objects that notice when the object has gone.
#pragma once

#include <cstdint>
#include <memory>
#include <typeinfo>

#include <vornscript/export.hpp>

namespace vorn {

class vrn_registry;
class vrnptr_entry;

// An index into the registry of the thread's interpreter, and the generation of the object that was
// entered there, which no other object of the process has. Generations 0 and all ones mean no
// object.
struct VRN_API vrnptr_base {
  static constexpr std::uint32_t none = 0xFFFFFFFF;

  vrnptr_base() = default;
  vrnptr_base(std::uint32_t at, std::uint32_t version) : index(at), generation(version) {}
  vrnptr_base(const vrnptr_base&) = default;
  vrnptr_base& operator=(const vrnptr_base&) = default;
  virtual ~vrnptr_base() = default;

  void clear() { index = generation = none; }
  bool empty() const { return generation == 0 || generation == none; }

  std::uint32_t index = none;
  std::uint32_t generation = none;

 protected:
  // The registered object, if it is alive and was registered as this type.
  vrnptr_entry* resolve(const std::type_info& type) const;
};

// An entry in the registry of the calling thread's interpreter, for as long as this lives. On a
// thread without an interpreter there is none, and the handle stays empty.
class VRN_API vrnptr_entry {
 public:
  vrnptr_entry(const vrnptr_entry&) = delete;
  vrnptr_entry& operator=(const vrnptr_entry&) = delete;

  std::uint32_t registry_index() const { return handle_.index; }
  std::uint32_t registry_generation() const { return handle_.generation; }

 protected:
  explicit vrnptr_entry(const std::type_info& type);
  ~vrnptr_entry();

 private:
  std::shared_ptr<vrn_registry> registry_;
  vrnptr_base handle_;
};

template <class T>
struct vrnptr;

// The mix-in of a class whose objects can be referred to by vrnptr<T>.
template <class T, class Handle>
class vrnptr_register : public vrnptr_entry {
 public:
  vrnptr<T> handle() const { return vrnptr<T>(registry_index(), registry_generation()); }

 protected:
  vrnptr_register() : vrnptr_entry(typeid(T)) {}
};

template <class T>
struct vrnptr : vrnptr_base {
  using vrnptr_base::vrnptr_base;
  vrnptr() = default;
  explicit vrnptr(const vrnptr_base& handle) : vrnptr_base(handle) {}

  // The object, or null when it has gone. Takes the interpreter's lock, which its own thread can do
  // at any time.
  T* get() const {
    vrnptr_entry* const entry = resolve(typeid(T));
    return static_cast<T*>(static_cast<vrnptr_register<T, vrnptr_base>*>(entry));
  }
};

}  // namespace vorn
