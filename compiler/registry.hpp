// The registry behind vrnptr handles.
#pragma once

#include <cstdint>
#include <vector>

#include <vornscript/vrnptr.hpp>

#include "memory/interpreter_lock.hpp"

namespace vorn {

// One entry for each registered object: where it is, as what it was registered, and the generation
// that a handle must have to mean it. An index is used again with the next generation; one that has
// gone through all of them is never used again, so no handle ever comes to mean another object.
// Objects may leave after their interpreter has gone.
class vrn_registry {
 public:
  explicit vrn_registry(vrn_interpreter_mutex& mutex) : mutex_(&mutex) {}

  vrnptr_base enter(void* object, const char* type);
  void leave(const vrnptr_base& handle);

  // Takes the interpreter's lock.
  void* resolve(const vrnptr_base& handle, const char* type) const;

  // The number of objects entered at present.
  std::size_t size() const { return entries_.size() - free_.size() - retired_; }

 private:
  struct entry {
    void* object;
    const char* type;
    std::uint32_t generation;
  };

  vrn_interpreter_mutex* mutex_;
  std::vector<entry> entries_;
  std::vector<std::uint32_t> free_;
  std::size_t retired_ = 0;
};

}  // namespace vorn
