// What faults in a running script write to the log, at the error level, and tell the interpreter's
// callback. A fault never stops a run, unless the callback throws.
#pragma once

#include <cstddef>

#include <vornscript/std_function.hpp>
#include <vornscript/value.hpp>

namespace vorn {

// The instruction that has come upon the fault.
struct vrn_fault_place {
  const vrn_vm_context& context;
  const std::byte* record;
};

// In a frame of their own:
void runtime_error_no_parent(vrn_fault_place place);
void runtime_error_out_of_bounds(vrn_fault_place place);
void runtime_error_invalid_variable(vrn_fault_place place);
void runtime_error_text_too_long(vrn_fault_place place);

// These show the type as a single character with the type's number, deliberately.
void runtime_error_negate(vrn_fault_place place, vrn_type type);
void runtime_error_add(vrn_fault_place place, vrn_type type);
void runtime_error_sub(vrn_fault_place place, vrn_type type);
void runtime_error_mul(vrn_fault_place place, vrn_type type);
void runtime_error_div(vrn_fault_place place, vrn_type type);

// As a plain line:
void runtime_error_parallel(vrn_fault_place place);
void runtime_error_parallel(vrn_task& task);  // before its first instruction
void runtime_error_not_a_function(vrn_fault_place place);

}  // namespace vorn
