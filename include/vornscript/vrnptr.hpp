// Registered pointers: handles to an interpreter's objects that notice when the object has gone.
#pragma once

#include <cstdint>
#include <memory>

namespace vorn {

class vrn_registry;

// An index into the registry of the thread's interpreter, and the generation of the object that was
// entered there. Generations 0 and all ones mean no object.
struct vrnptr_base {
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
  // The registered object, if it is alive and was registered under this type.
  void* resolve(const char* type) const;
};

// One address for each registered type.
template <class T>
inline constexpr char vrnptr_type{};

template <class T>
struct vrnptr : vrnptr_base {
  using vrnptr_base::vrnptr_base;
  vrnptr() = default;
  explicit vrnptr(const vrnptr_base& handle) : vrnptr_base(handle) {}

  // The object, or null when it has gone. Takes the interpreter's lock, which its own thread can do
  // at any time.
  T* get() const { return static_cast<T*>(resolve(&vrnptr_type<T>)); }
};

// An entry in the registry of the calling thread's interpreter, for as long as this lives. On a
// thread without an interpreter there is none, and the handle stays empty.
class vrnptr_entry {
 public:
  vrnptr_entry(const vrnptr_entry&) = delete;
  vrnptr_entry& operator=(const vrnptr_entry&) = delete;

  std::uint32_t registry_index() const { return handle_.index; }
  std::uint32_t registry_generation() const { return handle_.generation; }

 protected:
  vrnptr_entry(void* object, const char* type);
  ~vrnptr_entry();

 private:
  std::shared_ptr<vrn_registry> registry_;
  vrnptr_base handle_;
};

// The mix-in of a class whose objects can be referred to by vrnptr<T>.
template <class T, class Handle>
class vrnptr_register : public vrnptr_entry {
 public:
  vrnptr<T> handle() const { return vrnptr<T>(registry_index(), registry_generation()); }

 protected:
  vrnptr_register() : vrnptr_entry(static_cast<T*>(this), &vrnptr_type<T>) {}
};

}  // namespace vorn
