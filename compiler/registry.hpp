// The registry behind vrnptr handles.
#pragma once

#include <cstdint>
#include <typeinfo>
#include <vector>

#include <vornscript/vrnptr.hpp>

#include "memory/interpreter_lock.hpp"

namespace vorn {

// One entry for each registered object: where it is, as what it was registered, and the generation
// that a handle must have to mean it. Indexes are used again; generations are given out for the
// whole process and come back only when all others have been used, so a handle of another
// interpreter, or to an object that has gone, comes to mean nothing. Objects may leave after their
// interpreter has gone.
class vrn_registry {
 public:
  explicit vrn_registry(vrn_interpreter_mutex& mutex) : mutex_(&mutex) {}

  vrnptr_base enter(vrnptr_entry* object, const std::type_info& type);
  void leave(const vrnptr_base& handle) noexcept;

  // Takes the interpreter's lock.
  vrnptr_entry* resolve(const vrnptr_base& handle, const std::type_info& type) const;

  // The number of objects entered at present.
  std::size_t size() const { return entries_.size() - free_.size(); }

 private:
  struct entry {
    vrnptr_entry* object;
    const std::type_info* type;
    std::uint32_t generation;  // 0 while the index is free
  };

  vrn_interpreter_mutex* mutex_;
  std::vector<entry> entries_;
  std::vector<std::uint32_t> free_;
};

}  // namespace vorn
