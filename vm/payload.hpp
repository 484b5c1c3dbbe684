// What strings, json, classes and functions own: payload objects from the interpreter's pools, each
// with the byte that says which slot of its chunk it lies in.
#pragma once

#include <cstdint>
#include <vector>

#include <vornscript/program_block.hpp>
#include <vornscript/value.hpp>
#include <vornscript/vrnptr.hpp>

#include "vm/json.hpp"
#include "vm/text.hpp"

namespace vorn {

struct vrnvar_ptr_str {
  std::uint8_t& pool_slot() { return slot; }
  void pool_reset() noexcept { text.clear(); }

  vrn_text text;
  std::uint8_t slot = 255;
};
static_assert(sizeof(vrnvar_ptr_str) == 33);

struct vrnvar_ptr_json {
  std::uint8_t& pool_slot() { return slot; }
  void pool_reset() noexcept { members.clear(); }

  // Of those that wait for their release: the one behind this one, whose address stands in the
  // first member's spare word. Needs a member.
  vrnvar_ptr_json* next() const {
    return reinterpret_cast<vrnvar_ptr_json*>(static_cast<std::uintptr_t>(members.at(0)->word));
  }
  void set_next(vrnvar_ptr_json* payload) const {
    members.at(0)->word = reinterpret_cast<std::uintptr_t>(payload);
  }

  std::uint8_t slot = 255;
  vrn_json_container members;
};
static_assert(sizeof(void*) != 8 || sizeof(vrnvar_ptr_json) == 89);

// Of a function: the routine that a call enters. Of a class: its members too.
struct vrnvar_ptr_function {
  std::uint8_t& pool_slot() { return slot; }
  void pool_reset() noexcept {
    routine.clear();
    std::vector<vrnvar_shared>().swap(members);
  }

  // Of those that wait for their release: the one behind this one, whose address stands in the
  // handle of the routine, which is not called any more.
  vrnvar_ptr_function* next() const {
    const std::uint64_t address = std::uint64_t{routine.generation} << 32 | routine.index;
    return reinterpret_cast<vrnvar_ptr_function*>(static_cast<std::uintptr_t>(address));
  }
  void set_next(vrnvar_ptr_function* payload) {
    const std::uint64_t address = reinterpret_cast<std::uintptr_t>(payload);
    routine.index = static_cast<std::uint32_t>(address);
    routine.generation = static_cast<std::uint32_t>(address >> 32);
  }

  vrnptr<vrn_program_block_routine> routine;
  std::vector<vrnvar_shared> members;
  std::uint8_t padding[7] = {};
  std::uint8_t slot = 255;
};
static_assert(sizeof(void*) != 8 || sizeof(vrnvar_ptr_function) == 48);

}  // namespace vorn
