// What a value owned, on its way back.
//
// Releasing a payload can release others: the members of json and classes, the targets of refs.
// Chains of them are followed by recursion down to a depth and put aside beyond it, in lists that
// run through the payloads themselves; so a release of any depth takes little stack and no memory.
#pragma once

#include <cstdint>
#include <utility>

#include <vornscript/value.hpp>

namespace vorn {

// Takes what a value owns out of it; released with this object.
class vrn_detached_payload {
 public:
  vrn_detached_payload() = default;
  explicit vrn_detached_payload(vrnvar& value) { take_from(value); }
  vrn_detached_payload(const vrn_detached_payload&) = delete;
  vrn_detached_payload& operator=(const vrn_detached_payload&) = delete;
  ~vrn_detached_payload() {
    if (type_ >= vrn_type::primitive_end) let_go();
  }

 private:
  vrn_detached_payload(const void* payload, vrn_type type)
      : payload_(reinterpret_cast<std::uintptr_t>(payload)), type_(type) {}

  void take_from(vrnvar& value) noexcept {
    payload_ = std::exchange(value.payload, 0);
    type_ = std::exchange(value.type, vrn_type::none);
  }
  template <class Object>
  Object* as() const {
    return reinterpret_cast<Object*>(static_cast<std::uintptr_t>(payload_));
  }

  void let_go() noexcept;
  void release() noexcept;
  void put_aside() noexcept;
  static void release_aside() noexcept;

  std::uint64_t payload_ = 0;
  vrn_type type_ = vrn_type::none;
};

}  // namespace vorn
