#include "vm/runtime_error.hpp"

#include <string_view>

#include <vornscript/log.hpp>

namespace vorn {
namespace {

constexpr std::string_view rule = "------------------------------------------------------------";

void framed(std::string_view message, std::string_view type = {}) {
  log_line(vrn_log_level::error, "Runtime Error ***\n", rule, "\n", message, type, "\n", rule);
}

void framed(std::string_view message, vrn_type type) {
  const char byte = static_cast<char>(type);
  framed(message, std::string_view(&byte, 1));
}

}  // namespace

void runtime_error_no_parent() { framed("Critical runtime error, parent doesnt exist!"); }
void runtime_error_out_of_bounds() { framed("Critical runtime error, index out of bounds!"); }
void runtime_error_invalid_variable() { framed("invalid variable."); }
void runtime_error_text_too_long() { framed("String is too long."); }

void runtime_error_negate(vrn_type type) { framed("Cannot negate type ", type); }
void runtime_error_add(vrn_type type) { framed("Add invalid type: ", type); }
void runtime_error_sub(vrn_type type) { framed("Sub invalid type: ", type); }
void runtime_error_mul(vrn_type type) { framed("Mult invalid type: ", type); }
void runtime_error_div(vrn_type type) { framed("Div invalid type: ", type); }

void runtime_error_parallel() {
  log_line(vrn_log_level::error, "Parallelism not implemented yet!");
}
void runtime_error_not_a_function() {
  log_line(vrn_log_level::error, "Runtime error not a function!");
}

}  // namespace vorn
