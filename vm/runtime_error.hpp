// What faults in a running script write to the log, at the error level. A fault never stops a run.
#pragma once

#include <vornscript/value.hpp>

namespace vorn {

// In a frame of their own:
void runtime_error_no_parent();
void runtime_error_out_of_bounds();
void runtime_error_invalid_variable();
void runtime_error_text_too_long();

// These show the type as a single character with the type's number, deliberately.
void runtime_error_negate(vrn_type type);
void runtime_error_add(vrn_type type);
void runtime_error_sub(vrn_type type);
void runtime_error_mul(vrn_type type);
void runtime_error_div(vrn_type type);

// As a plain line:
void runtime_error_parallel();
void runtime_error_not_a_function();

}  // namespace vorn
