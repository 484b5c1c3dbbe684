// Fields that may stand at any address.
#pragma once

#include <cstddef>
#include <cstring>

namespace vorn {

// A T in plain bytes, for records whose size leaves their neighbours in an array unaligned.
template <class T>
class vrn_unaligned {
 public:
  vrn_unaligned() : vrn_unaligned(T{}) {}
  vrn_unaligned(T value) { std::memcpy(bytes_, &value, sizeof value); }

  operator T() const {
    T value;
    std::memcpy(&value, bytes_, sizeof value);
    return value;
  }

 private:
  std::byte bytes_[sizeof(T)];
};

}  // namespace vorn
