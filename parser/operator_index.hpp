// Which operator an expression splits at.
//
// A range of tokens splits at its operator of the lowest precedence, the leftmost of several; each
// side splits again. For all ranges that come about in this way the operators form one binary tree:
// left of an operator stand those that bind tighter, right of it those that bind at least as tight.
// The tree is built once, from left to right, so an expression costs a single pass however long it
// is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "frontend/command.hpp"

namespace vorn {

class vrn_operator_index {
 public:
  static constexpr std::uint32_t none = 0xFFFFFFFF;

  struct entry {
    std::uint32_t position;  // of the operator's token in its command
    std::uint32_t precedence;
    std::uint32_t left = none;
    std::uint32_t right = none;
  };

  // Adds the operators of a range; gives the one it splits at, or none.
  std::uint32_t add(vrn_src_command_view range);

  // Indexes nest like the expressions do: the inner one is removed before the outer goes on.
  std::size_t size() const { return entries_.size(); }
  void remove_from(std::size_t size) { entries_.resize(size); }

  const entry& operator[](std::uint32_t at) const { return entries_[at]; }

 private:
  std::vector<entry> entries_;
  // From the root along the right sides, while a tree grows; precedences do not fall along it.
  std::vector<std::uint32_t> path_;
};

}  // namespace vorn
