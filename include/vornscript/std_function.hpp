// Native functions: C++ that scripts call by name.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <vornscript/export.hpp>
#include <vornscript/ref.hpp>
#include <vornscript/value.hpp>

namespace vorn {

struct vrn_task;
class vrn_program_block_routine;

// What instruction handlers and native functions are given to work on.
struct vrn_vm_context {
  vrn_task* task;
  vrn_program_block_routine* block;
  // Set to 8, it makes the task wait after this instruction. The other values are the machine's
  // own.
  std::uint32_t* stop_flag;
};

// Gets the call's arguments, which share the caller's values: changing one changes the caller's
// variable. Never called with fewer or more arguments than were registered. The result is the
// call's value; an empty handle leaves the caller without one. An exception ends the task. It may
// load, start, wake, cancel and release what it likes, also the program that is running, but not
// the interpreter; calls of tick() are refused.
using vrn_native =
    std::function<vrnvar_shared(vrn_vm_context& context, std::vector<vrnvar_shared>& arguments)>;

// The most arguments that a native function without an upper bound takes.
inline constexpr std::uint32_t vrn_arguments_max = 999;

struct vrn_std_function {
  vrn_native callable;
  std::uint32_t min_arguments = 0;
  std::uint32_t max_arguments = 0;
  std::uint32_t reference_count = 0;
  std::string name;
};
VRN_API void release_last(vrn_std_function* function) noexcept;

}  // namespace vorn
