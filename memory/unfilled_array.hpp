// Arrays that are written before they are read.
#pragma once

#include <cstddef>
#include <memory>

namespace vorn {

// Elements without a constructor have no value yet. As std::make_unique_for_overwrite, which not
// every C++ library has.
template <class Element>
std::unique_ptr<Element[]> make_unfilled_array(std::size_t size) {
  return std::unique_ptr<Element[]>(new Element[size]);
}

}  // namespace vorn
