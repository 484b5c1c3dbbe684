// Every instruction alone, on buffers made by hand, and the loop itself.
#include <array>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "bench/suite.hpp"
#include "bench/workload.hpp"
#include "compiler/instruction.hpp"
#include "vm/handlers.hpp"
#include "vm/payload.hpp"
#include "vm/run.hpp"

namespace vorn::bench {
namespace {

constexpr std::size_t record_count = 10'000;

// A routine and a task to run it on, with what any instruction can refer to.
struct machine {
  machine() {
    main.strings = std::make_shared<std::vector<std::string>>(1, "a string of some length");
    script.register_std_function(
        "nothing", [](auto&, auto&) { return vrnvar_shared(); }, 0, vrn_arguments_max);
    program = loader.create_program("x = 1; y = nothing();", "bench");
    nothing = program->main->natives.begin()->get();
    outer = program->main.get();
    callee = std::make_shared<vrn_program_block_routine>(outer);
    callee->add_variable("x");
    variable->set_int(4);
    function->set_type(vrn_type::function);
    function->as<vrnvar_ptr_function>()->routine = callee->handle();
  }

  vrnscript script{{.logger = std::make_shared<vrn_log_base>(0U)}};
  vrn_program_loader loader{script};
  vrn_program program = std::make_shared<vrn_program_block_root>();
  vrn_program holder = std::make_shared<vrn_program_block_root>();
  vrn_program_block_routine& main = *holder->main;
  vrn_program_block_routine* outer = nullptr;
  std::shared_ptr<vrn_program_block_routine> callee;
  const vrn_std_function* nothing = nullptr;
  vrnvar_shared variable = var_none();
  vrnvar_shared function = var_none();
  vrn_task task;

  std::uint32_t run_from_start() {
    main.saved_pc = 0;
    return run(main, task);
  }
};

// Stacks with a slot for each record to take off, and one more.
void fill_stack(machine& host, const std::function<vrnvar_shared()>& value) {
  auto& stack = host.task.value_stack;
  stack.clear();
  for (std::size_t k = 0; k <= record_count; ++k) stack.push_back(value());
}

void one_slot(machine& host) {
  host.task.value_stack.clear();
  host.task.value_stack.resize(1);
}
void integers(machine& host) {
  fill_stack(host, [] { return var_int(7); });
}
void floats(machine& host) {
  fill_stack(host, [] { return var_float(7.5); });
}
void shared_integer(machine& host) {
  one_slot(host);
  host.task.value_stack[0] = host.variable;
}
void own_integer(machine& host) {
  one_slot(host);
  host.task.value_stack[0] = var_int(7);
}
void no_frame(machine& host) {
  one_slot(host);
  host.task.frame_depth = 0;
}
void one_frame(machine& host) {
  shared_integer(host);
  host.task.argument_frames.resize(record_count);
  host.task.frame_depth = 1;
  host.task.argument_frames[0] = {var_none()};
}
void all_frames(machine& host) {
  one_slot(host);
  host.task.argument_frames.resize(record_count);
  host.task.frame_depth = record_count;
}
void entered(machine& host) {
  shared_integer(host);
  host.task.call_stack = {host.callee->handle()};
}
void callable(machine& host) {
  one_slot(host);
  host.task.value_stack[0] = host.function;
  host.task.call_stack.clear();
  host.callee->active = false;
}

struct row {
  std::string_view name;
  vrn_opcode opcode;
  void (*prepare)(machine& host);
};

constexpr row rows[] = {
    {"op_load_value", op_load_value, one_slot},
    {"op_load_outer_var", op_load_outer_var, one_slot},
    {"op_skip40", op_skip40, one_slot},
    {"op_load_int", op_load_int, own_integer},
    {"op_load_float", op_load_float, own_integer},
    {"op_load_string", op_load_string, one_slot},
    {"op_push", op_push, one_slot},
    {"op_pop", op_pop, integers},
    {"op_assign", op_assign, integers},
    {"op_negate", op_negate, own_integer},
    {"op_add", op_add, integers},
    {"op_add_floats", op_add, floats},
    {"op_sub", op_sub, integers},
    {"op_mul", op_mul, integers},
    {"op_div", op_div, integers},
    {"op_args_begin", op_args_begin, no_frame},
    {"op_arg_set", op_arg_set, one_frame},
    {"op_call_native", op_call_native, all_frames},
    {"op_store_arg", op_store_arg, entered},
};

void write_record(machine& host, vrn_opcode opcode) {
  vrn_program_block_routine& code = host.main;
  switch (vrn_opcodes[opcode].operands) {
    case vrn_operands::none:
      code.emit(opcode);
      return code.code->resize(code.code->size() + vrn_opcodes[opcode].size - sizeof opcode);
    case vrn_operands::u32:
    case vrn_operands::reserved:
      return code.emit(opcode, 0U);
    case vrn_operands::i64:
    case vrn_operands::f64:
      return code.emit(opcode, std::uint64_t{7});
    case vrn_operands::value:
      return code.emit(opcode, address_of(host.variable.get()));
    case vrn_operands::native:
      return code.emit(opcode, address_of(host.nothing));
    case vrn_operands::outer:
      return code.emit(opcode, 0U, 0U, address_of(host.variable.get()));
  }
}

void add_opcode(const row& each) {
  add({"opcode", each.name, "ours"}, [each](benchmark::State& state) {
    machine host;
    for (std::size_t k = 0; k < record_count; ++k) write_record(host, each.opcode);
    time_prepared(
        state,
        [&] {
          each.prepare(host);
          return 0;
        },
        [&](int) { return host.run_from_start(); });
    set_items(state, "instruction", record_count);
    host.task.frame_depth = 0;
  });
}

// A run of one instruction: these end it, or need something done after each of them.
void add_single(std::string_view name, vrn_opcode opcode, void (*prepare)(machine& host)) {
  add({"opcode", name, "ours"}, [=](benchmark::State& state) {
    machine host;
    write_record(host, opcode);
    for (auto _ : state) {
      prepare(host);
      host.run_from_start();
    }
    set_items(state, "run", 1);
  });
}

template <std::uint32_t size>
std::uint32_t do_nothing(vrn_run_context&, std::byte*) {
  return size;
}

constexpr std::array<vrn_handler, opcode_count> idle_handlers = {
#define VRN_OP(name, size, operands) do_nothing<size>,
#include "compiler/opcodes.def"
#undef VRN_OP
};

// The loop as run() has it, over other handlers.
std::uint32_t run_idle(vrn_program_block_routine& routine, vrn_task& task) {
  std::uint32_t stop = 0;
  std::uint32_t count = 0;
  // The compiler is not to know what it holds.
  const vrn_handler* const volatile hidden = idle_handlers.data();
  const vrn_handler* const table = hidden;
  const auto code = routine.instructions();
  vrn_run_context context{{&task, &routine, &stop}, code.data() + code.size()};
  for (std::byte* at = code.data(); at < context.end; ++count) {
    if (stop != 0) break;
    at += table[read_field<std::uint32_t>(at, 0)](context, at);
  }
  return count;
}

// The instructions of so many statements, over and over: of twenty, which a processor learns by
// heart, and of a thousand, which it does not.
void add_mix(std::string_view name, std::size_t statements, std::string_view who,
             std::uint32_t (*execute)(vrn_program_block_routine&, vrn_task&)) {
  add({"loop", name, who}, [statements, execute](benchmark::State& state) {
    machine host;
    host.program = host.loader.create_program(
        find_workload("arithmetic").text(dialect::vornscript, statements), "bench");
    one_slot(host);
    for (auto _ : state) {
      host.program->main->saved_pc = 0;
      benchmark::DoNotOptimize(execute(*host.program->main, host.task));
    }
    set_items(state, "instruction", host.loader.instruction_count());
  });
}

}  // namespace

void add_opcodes() {
  for (const row& each : rows) add_opcode(each);
  add_single("op_call", op_call, callable);
  add_single("op_yield", op_yield, one_slot);
  for (const auto& [name, statements] :
       {std::pair{"20_arithmetic_statements", 20U}, {"1000_arithmetic_statements", 1000U}}) {
    add_mix(name, statements, "ours", [](auto& routine, auto& task) { return run(routine, task); });
    add_mix(name, statements, "idle_handlers", run_idle);
  }
}

}  // namespace vorn::bench
