// The instruction handlers.
//
// They work on the top slot of the task's value stack: loads replace what it holds, op_push adds an
// empty slot, and the arithmetic and assignment instructions take the right operand off. A slot
// shares the value that it holds, so a loaded variable can be assigned through it. Operands are
// looked at through refs. A fault is reported and the run goes on.
//
// A result becomes a new value, in the place of an old one: when the slot has a number that nobody
// else holds, that is written over instead of being given back and taken again.
//
// Loads and arithmetic execute the stretch behind them along with their own record, if one begins
// there (vm/stretch.cpp).
#include "vm/handlers.hpp"

#include <algorithm>
#include <bit>
#include <utility>

#include <vornscript/program_block.hpp>
#include <vornscript/task.hpp>

#include "compiler/instruction.hpp"
#include "vm/arithmetic.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/payload.hpp"
#include "vm/run.hpp"
#include "vm/runtime_error.hpp"
#include "vm/stretch.hpp"
#include "vm/value_access.hpp"

namespace vorn {
namespace {

constexpr std::size_t text_length_max = 268'435'456;

// What a handler returns that executes the stretch behind its record as well.
template <vrn_opcode opcode>
std::uint32_t and_stretch(vrn_run_context& context, std::byte* record) {
  std::byte* const next = record + size_of<opcode>;
  return size_of<opcode> + (begins_stretch(context, next) ? run_stretch(context, next) : 0);
}

vrnvar_shared& top(vrn_run_context& context) { return context.task->value_stack.back(); }

vrnvar_shared pop(vrn_run_context& context) {
  auto& stack = context.task->value_stack;
  vrnvar_shared popped = std::move(stack.back());
  stack.pop_back();
  return popped;
}

// The value of the top slot, null when it is empty.
vrnvar* top_value(vrn_run_context& context) { return deref_value(top(context).get()); }

std::uint32_t handle_op_load_value(vrn_run_context& context, std::byte* record) {
  top(context) = vrnvar_shared(read_address<vrnvar>(record, 8));
  return and_stretch<op_load_value>(context, record);
}

// The block `hops` parent links up, if it is there and holds variables.
vrn_program_block_routine* outer_routine(vrn_program_block_base* block, std::uint32_t hops) {
  for (; hops > 0 && block; --hops) block = block->parent;
  return block && block->kind == vrn_block_kind::routine
             ? static_cast<vrn_program_block_routine*>(block)
             : nullptr;
}

std::uint32_t handle_op_load_outer_var(vrn_run_context& context, std::byte* record) {
  auto* value = read_address<vrnvar>(record, 16);
  if (!value) {
    const auto* routine = outer_routine(context.block, read_field<std::uint32_t>(record, 4));
    const auto index = read_field<std::uint32_t>(record, 8);
    if (!routine) {
      runtime_error_no_parent({context, record});
      return size_of<op_load_outer_var>;
    }
    if (index >= routine->variables.size()) {
      runtime_error_out_of_bounds({context, record});
      return size_of<op_load_outer_var>;
    }
    value = routine->variables[index].get();
    write_field(record, 16, address_of(value));
  }
  top(context) = vrnvar_shared(value);
  return and_stretch<op_load_outer_var>(context, record);
}

std::uint32_t handle_op_skip40(vrn_run_context&, std::byte*) { return size_of<op_skip40>; }

std::uint32_t handle_op_load_int(vrn_run_context& context, std::byte* record) {
  set_number(top(context), read_field<std::uint64_t>(record, 8), vrn_type::integer);
  return and_stretch<op_load_int>(context, record);
}

std::uint32_t handle_op_load_float(vrn_run_context& context, std::byte* record) {
  set_number(top(context), read_field<std::uint64_t>(record, 8), vrn_type::floating);
  return and_stretch<op_load_float>(context, record);
}

std::uint32_t handle_op_load_string(vrn_run_context& context, std::byte* record) {
  const auto* const strings = context.block->strings.get();
  const auto index = read_field<std::uint32_t>(record, 4);
  top(context) = var_string(strings ? strings->at(index) : std::vector<std::string>().at(index));
  return and_stretch<op_load_string>(context, record);
}

std::uint32_t handle_op_push(vrn_run_context& context, std::byte*) {
  context.task->value_stack.emplace_back();
  return size_of<op_push>;
}

std::uint32_t handle_op_pop(vrn_run_context& context, std::byte*) {
  context.task->value_stack.pop_back();
  return size_of<op_pop>;
}

// With a ref or an empty slot among the operands. Apart, so that the other case need not keep what
// only a report wants to know.
[[gnu::noinline]] std::uint32_t assign_slowly(vrn_run_context& context, const std::byte* record) {
  const vrnvar_shared right = pop(context);
  const vrnvar* const source = deref_value(right.get());
  vrnvar* const target = top_value(context);
  if (source && target) {
    target->copy_from(source);
  } else {
    runtime_error_invalid_variable({context, record});
  }
  return size_of<op_assign>;
}

std::uint32_t handle_op_assign(vrn_run_context& context, std::byte* record) {
  auto& stack = context.task->value_stack;
  vrnvar* const source = stack.back().get();
  vrnvar* const target = stack.end()[-2].get();
  const bool plain =
      source && target && source->type != vrn_type::ref && target->type != vrn_type::ref;
  if (!plain) return assign_slowly(context, record);
  if (source->refcount == 1 && source->type == vrn_type::string && target->type == source->type) {
    // A text that nobody else holds changes hands instead of being copied.
    std::swap(target->payload, source->payload);
  } else {
    target->copy_from(source);
  }
  stack.pop_back();
  return size_of<op_assign>;
}

std::uint32_t handle_op_negate(vrn_run_context& context, std::byte* record) {
  const vrnvar* const value = top_value(context);
  const vrn_type type = value ? value->type : vrn_type::none;
  if (type == vrn_type::floating) {
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    set_number(top(context), value->payload ^ sign, type);
  } else if (type == vrn_type::integer) {
    // Unsigned, so that the most negative number wraps to itself.
    set_number(top(context), 0 - value->payload, type);
  } else {
    runtime_error_negate({context, record}, type);
  }
  return size_of<op_negate>;
}

// The value of an operand; an empty slot counts as none.
const vrnvar& operand_value(const vrnvar_shared& slot) {
  static const vrnvar nothing;
  const vrnvar* const value = deref_value(slot.get());
  return value ? *value : nothing;
}

void concatenate(vrn_fault_place place, vrnvar_shared& slot, const vrnvar& left,
                 const vrnvar& right) {
  vrn_number_buffer left_buffer;
  vrn_number_buffer right_buffer;
  const std::string_view first = value_text(left, left_buffer);
  const std::string_view second = value_text(right, right_buffer);
  if (first.size() + second.size() > text_length_max) return runtime_error_text_too_long(place);
  vrnvar_shared result = var_none();
  result->set_type(vrn_type::string);
  result->as<vrnvar_ptr_str>()->text.assign(first, second);
  slot = std::move(result);
}

template <vrn_opcode opcode, void (*invalid_type)(vrn_fault_place, vrn_type)>
std::uint32_t arithmetic(vrn_run_context& context, std::byte* record) {
  const vrnvar_shared popped = pop(context);
  vrnvar_shared& slot = top(context);
  const vrnvar& right = operand_value(popped);
  const vrnvar& left = operand_value(slot);
  const vrn_type type = std::max(left.type, right.type);
  if (type == vrn_type::integer) {
    const std::int64_t second = right.get_int();
    // The left side of a division by zero is not even converted.
    const std::int64_t first = opcode == op_div && second == 0 ? 0 : left.get_int();
    set_number(slot, of_integers(opcode, first, second), type);
  } else if (type == vrn_type::floating) {
    const double first = left.get_float();
    set_number(slot, of_floats(opcode, first, right.get_float()), type);
  } else if (type == vrn_type::string && opcode == op_add) {
    concatenate({context, record}, slot, left, right);
  } else {
    invalid_type({context, record}, type);
  }
  return and_stretch<opcode>(context, record);
}

std::uint32_t handle_op_args_begin(vrn_run_context& context, std::byte* record) {
  vrn_task& task = *context.task;
  const auto count = read_field<std::uint32_t>(record, 4);
  if (task.argument_frames.size() <= task.frame_depth) {
    task.argument_frames.resize(task.frame_depth + 1);
  }
  auto& frame = task.argument_frames[task.frame_depth];
  if (frame.size() > count) frame.resize(count);
  while (frame.size() < count) frame.push_back(var_none());
  ++task.frame_depth;
  return size_of<op_args_begin>;
}

std::uint32_t handle_op_arg_set(vrn_run_context& context, std::byte* record) {
  vrn_task& task = *context.task;
  vrnvar* const value = top_value(context);
  // Native functions count on every argument being there.
  task.argument_frames[task.frame_depth - 1][read_field<std::uint32_t>(record, 4)] =
      value ? vrnvar_shared(value) : var_none();
  return size_of<op_arg_set>;
}

// Closes the innermost argument frame, also when the native function throws. What the frame holds
// is let go when the frame is used again.
class frame_closer {
 public:
  explicit frame_closer(vrn_task& task) : task_(task) {}
  ~frame_closer() { --task_.frame_depth; }
  frame_closer(const frame_closer&) = delete;
  frame_closer& operator=(const frame_closer&) = delete;

 private:
  vrn_task& task_;
};

std::uint32_t handle_op_call_native(vrn_run_context& context, std::byte* record) {
  vrn_task& task = *context.task;
  const auto* const function = read_address<const vrn_std_function>(record, 8);
  vrn_vm_context copy = static_cast<const vrn_vm_context&>(context);
  const frame_closer closer(task);
  vrnvar_shared result = function->callable(copy, task.argument_frames[task.frame_depth - 1]);
  top(context) = std::move(result);
  return size_of<op_call_native>;
}

std::uint32_t handle_op_call(vrn_run_context& context, std::byte* record) {
  const vrnvar* const value = top_value(context);
  auto* const payload =
      value && value->type == vrn_type::function ? value->as<vrnvar_ptr_function>() : nullptr;
  vrn_program_block_routine* const routine = payload ? payload->routine.get() : nullptr;
  if (!routine) {
    runtime_error_not_a_function({context, record});
  } else if (routine->active) {
    // Not recursively either, deliberately: a routine has one set of variables.
    runtime_error_parallel({context, record});
  } else {
    context.task->call_stack.push_back(routine->handle());
    // Most code runs once, so it is in no cache yet.
    __builtin_prefetch(routine->code.get());
    __builtin_prefetch(routine->variables.data());
    routine->active = true;
    routine->entered_by = context.task->start;
    ++routine->uses;
  }
  return size_of<op_call>;
}

std::uint32_t handle_op_store_arg(vrn_run_context& context, std::byte* record) {
  const auto& calls = context.task->call_stack;
  const auto index = read_field<std::uint32_t>(record, 4);
  vrn_program_block_routine* const routine = calls.empty() ? nullptr : calls.back().get();
  if (routine && index < routine->variables.size() && routine->variables[index]) {
    routine->variables[index]->copy_from(top(context).get());
  }
  return size_of<op_store_arg>;
}

std::uint32_t handle_op_yield(vrn_run_context& context, std::byte*) {
  ++context.task->pending_calls;
  *context.stop_flag = run_status::called;
  return size_of<op_yield>;
}

constexpr vrn_handler handle_op_add = arithmetic<op_add, runtime_error_add>;
constexpr vrn_handler handle_op_sub = arithmetic<op_sub, runtime_error_sub>;
constexpr vrn_handler handle_op_mul = arithmetic<op_mul, runtime_error_mul>;
constexpr vrn_handler handle_op_div = arithmetic<op_div, runtime_error_div>;

}  // namespace

constinit const std::array<vrn_handler, opcode_count> vrn_handlers::of_opcode = {
#define VRN_OP(name, size, operands) handle_##name,
#include "compiler/opcodes.def"
#undef VRN_OP
};

}  // namespace vorn
