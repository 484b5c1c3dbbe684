// Type query, output and sleeping.
#include <vornscript/log.hpp>
#include <vornscript/task.hpp>

#include "stdlib/builtins.hpp"
#include "vm/run.hpp"
#include "vm/value_access.hpp"

namespace vorn::builtin {

vrnvar_shared vtype(vrn_vm_context&, arguments& given) {
  return var_string(type_name(given[0]->type));
}

namespace {

// Whether nothing holds a string but the arguments of this call and the slot for its result, in
// which the last argument still is.
bool is_unshared_string(const vrnvar_shared& argument, const vrn_vm_context& context) {
  const bool in_slot = context.task->value_stack.back().get() == argument.get();
  return argument->type == vrn_type::string && argument->refcount == (in_slot ? 2U : 1U);
}

}  // namespace

vrnvar_shared print(vrn_vm_context& context, arguments& given) {
  vrn_log_base& logger = get_log();
  if (logger.enabled(vrn_log_level::out)) {
    std::string line;
    for (const vrnvar_shared& argument : given) {
      vrn_number_buffer buffer;
      line = value_text(*argument, buffer);
      logger.out(line);
    }
  }
  if (is_unshared_string(given[0], context)) return given[0];
  vrn_number_buffer buffer;
  return var_string(value_text(*given[0], buffer));
}

vrnvar_shared sleep(vrn_vm_context& context, arguments& given) {
  schedule(*context.task, given[0]->get_int());
  *context.stop_flag = run_status::waiting;
  return var_none();
}

}  // namespace vorn::builtin
