#include "vm/runtime_error.hpp"

#include <string_view>

#include <vornscript/log.hpp>

#include "compiler/run_report.hpp"

namespace vorn {
namespace {

constexpr std::string_view parallel = "Parallelism not implemented yet!";
constexpr std::string_view border = "------------------------------------------------------------";

void tell(vrn_fault_place place, std::string_view message, std::string_view type = {}) {
  vrn_program_block_routine& routine = *place.context.block;
  const auto at = static_cast<std::size_t>(place.record - routine.instructions().data());
  report_run(vrn_report_kind::runtime, *place.context.task, &routine, at, message, type);
}

void framed(vrn_fault_place place, std::string_view message, std::string_view type = {}) {
  log_line(vrn_log_level::error, "Runtime Error ***\n", border, "\n", message, type, "\n", border);
  tell(place, message, type);
}

void framed(vrn_fault_place place, std::string_view message, vrn_type type) {
  const char byte = static_cast<char>(type);
  framed(place, message, std::string_view(&byte, 1));
}

void plain(vrn_fault_place place, std::string_view message) {
  log_line(vrn_log_level::error, message);
  tell(place, message);
}

}  // namespace

void runtime_error_no_parent(vrn_fault_place place) {
  framed(place, "Critical runtime error, parent doesnt exist!");
}
void runtime_error_out_of_bounds(vrn_fault_place place) {
  framed(place, "Critical runtime error, index out of bounds!");
}
void runtime_error_invalid_variable(vrn_fault_place place) { framed(place, "invalid variable."); }
void runtime_error_text_too_long(vrn_fault_place place) { framed(place, "String is too long."); }

void runtime_error_negate(vrn_fault_place place, vrn_type type) {
  framed(place, "Cannot negate type ", type);
}
void runtime_error_add(vrn_fault_place place, vrn_type type) {
  framed(place, "Add invalid type: ", type);
}
void runtime_error_sub(vrn_fault_place place, vrn_type type) {
  framed(place, "Sub invalid type: ", type);
}
void runtime_error_mul(vrn_fault_place place, vrn_type type) {
  framed(place, "Mult invalid type: ", type);
}
void runtime_error_div(vrn_fault_place place, vrn_type type) {
  framed(place, "Div invalid type: ", type);
}

void runtime_error_parallel(vrn_fault_place place) { plain(place, parallel); }
void runtime_error_parallel(vrn_task& task) {
  log_line(vrn_log_level::error, parallel);
  report_run(vrn_report_kind::runtime, task, nullptr, 0, parallel);
}
void runtime_error_not_a_function(vrn_fault_place place) {
  plain(place, "Runtime error not a function!");
}

}  // namespace vorn
