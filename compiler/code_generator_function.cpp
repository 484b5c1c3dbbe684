// Function calls and definitions.
#include <utility>

#include <vornscript/log.hpp>

#include "compiler/code_generator.hpp"
#include "compiler/node_report.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {

// A name that is a variable anywhere around calls what that variable holds; any other, a native
// function.
bool vrn_code_generator::compile_call(vrn_program_block_base& block,
                                      const vrn_ast_node_function_call& node) {
  if (block.kind != vrn_block_kind::routine || node.callee->kind != vrn_node_kind::variable_node) {
    return report_node(node, report_cannot_resolve_call);
  }
  auto& routine = static_cast<vrn_program_block_routine&>(block);
  const auto callee = resolve(routine, node.callee->token->text());
  return callee ? compile_script_call(routine, node, *callee) : compile_native_call(routine, node);
}

// The routine is entered before its arguments are worked out. So a script call among the arguments
// enters another routine on top and yields to it, deliberately kept: scripts rely on the order.
bool vrn_code_generator::compile_script_call(vrn_program_block_routine& block,
                                             const vrn_ast_node_function_call& node,
                                             const location& callee) {
  load(block, callee);
  emit(block, op_call);
  if (!compile_arguments(block, node, op_store_arg)) return false;
  emit(block, op_yield);
  return true;
}

bool vrn_code_generator::compile_native_call(vrn_program_block_routine& block,
                                             const vrn_ast_node_function_call& node) {
  const std::string_view name = node.callee->token->text();
  const auto& functions = script_.state().functions;
  const auto found = functions.find(name);
  if (found == functions.end()) return report_node(node, report_cannot_resolve_call);
  const vrn_ref<vrn_std_function>& function = found->second;
  const std::uint32_t count = node.param_count;
  if (count < function->min_arguments) {
    return report_node(node, report_not_enough_arguments, name);
  }
  if (count > function->max_arguments) return report_node(node, report_too_many_arguments, name);
  block.natives.insert(function);
  emit(block, op_args_begin, count);
  if (!compile_arguments(block, node, op_arg_set)) return false;
  emit(block, op_call_native, address_of(function.get()));
  return true;
}

bool vrn_code_generator::compile_arguments(vrn_program_block_routine& block,
                                           const vrn_ast_node_function_call& node,
                                           vrn_opcode store) {
  std::uint32_t position = 0;
  for (const auto* param = node.params; param; param = param->next) {
    if (!compile(block, *param->value)) return false;
    emit(block, store, position++);
  }
  return true;
}

bool vrn_code_generator::compile_function_def(vrn_program_block_base& block,
                                              const vrn_ast_node_function_def& node) {
  if (block.kind != vrn_block_kind::routine) {
    return report_node(node, report_cannot_parse_definition);
  }
  auto& outer = static_cast<vrn_program_block_routine&>(block);
  const std::string_view name = node.token->text();
  if (outer.find_name(name)) return report_node(node, report_function_exists, name);
  const std::uint32_t index = outer.add_variable(name);
  const auto routine = make_routine(outer, node);
  const std::uint32_t outer_count = std::exchange(node_count_, node.node_count);
  if (!compile_list(*routine, node.body)) return false;
  node_count_ = outer_count;
  string_indexes_.erase(routine.get());
  if (!outer.children) {
    outer.children = std::make_shared<std::vector<std::shared_ptr<vrn_program_block_routine>>>();
  }
  outer.children->push_back(routine);
  vrnvar& variable = *outer.variables[index];
  variable.set_type(vrn_type::function);
  variable.as<vrnvar_ptr_function>()->routine = routine->handle();
  return true;
}

// The routine of a definition, with a variable for each parameter. Of two parameters with one name
// the last has it.
std::shared_ptr<vrn_program_block_routine> vrn_code_generator::make_routine(
    vrn_program_block_routine& block, const vrn_ast_node_function_def& node) {
  auto routine = std::make_shared<vrn_program_block_routine>(&block);
  routine->parameter_count = static_cast<std::uint32_t>(node.params.size());
  for (const auto* const param : node.params) {
    routine->add_variable(param->token->text());
    if (param->default_value) {
      log_line(vrn_log_level::log, "TODO: implement default parameters!");
    }
  }
  return routine;
}

}  // namespace vorn
