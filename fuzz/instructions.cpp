// Instructions that no compiler wrote, within the rules: every operand is there, and what a routine
// puts on the stack or opens, it takes off and closes again.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <future>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "compiler/disassembler.hpp"
#include "compiler/instruction.hpp"
#include "fuzz/support/byte_source.hpp"
#include "fuzz/support/check.hpp"
#include "fuzz/support/checked_host.hpp"
#include "tests/support/spaced_code.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/payload.hpp"

namespace vorn::fuzz {
namespace {

using routine_handle = std::shared_ptr<vrn_program_block_routine>;

// Native functions that do what a host's may do.
void add_natives(vrnscript& script) {
  using arguments = std::vector<vrnvar_shared>;
  script.register_std_function(
      "give",
      [](vrn_vm_context&, arguments& given) { return given.empty() ? vrnvar_shared() : given[0]; },
      0, vrn_arguments_max);
  script.register_std_function(
      "change",
      [](vrn_vm_context&, arguments& given) {
        given.front()->copy_from(given.back().get());
        given.back()->set_string("changed");
        return var_none();
      },
      1, vrn_arguments_max);
  script.register_std_function(
      "fail",
      [](vrn_vm_context&, arguments&) -> vrnvar_shared { throw std::runtime_error("on purpose"); },
      0, vrn_arguments_max);
  script.register_std_function("empty", {}, 0, vrn_arguments_max);
  for (const std::uint32_t status : {1U, 2U, 4U, 8U, 16U, 255U}) {
    script.register_std_function(
        "stop" + std::to_string(status),
        [status](vrn_vm_context& context, arguments&) {
          *context.stop_flag = status;
          return var_int(status);
        },
        0, vrn_arguments_max);
  }
}

class routine_writer {
 public:
  routine_writer(byte_source& source, const std::vector<routine_handle>& routines,
                 const std::vector<vrn_ref<vrn_std_function>>& natives)
      : source_(source), routines_(routines), natives_(natives) {}

  void write(vrn_program_block_routine& routine) {
    const std::uint32_t count = source_.below(64);
    for (std::uint32_t k = 0; k < count && !source_.empty(); ++k) write_instruction(routine);
    while (!frames_.empty()) write_native_call(routine);
  }

 private:
  void write_instruction(vrn_program_block_routine& routine) {
    const auto opcode = static_cast<vrn_opcode>(source_.below(opcode_count));
    switch (opcode) {
      case op_load_value:
        return routine.emit(opcode, address_of(some_variable()));
      case op_load_outer_var:
        return routine.emit(opcode, odd_number(4), odd_number(8), 0);
      case op_skip40:
        routine.emit(opcode, 0, 0, 0);
        return routine.code->resize(routine.code->size() + 16, std::byte{0xEE});
      case op_load_int:
      case op_load_float:
        return routine.emit(opcode, source_.word());
      case op_load_string:
      case op_store_arg:
        return routine.emit(opcode, odd_number(8));
      case op_push:
        ++depth_;
        routine.emit(opcode, odd_number(8));
        // As compilers write it, mostly.
        return source_.one_in(4) ? void()
                                 : routine.emit(op_load_value, address_of(some_variable()));
      case op_pop:
      case op_assign:
      case op_add:
      case op_sub:
      case op_mul:
      case op_div:
        if (depth_ < 2) return;
        --depth_;
        return opcode == op_pop ? routine.emit(opcode, odd_number(8)) : routine.emit(opcode);
      case op_negate:
      case op_call:
      case op_yield:
        return routine.emit(opcode);
      case op_args_begin:
        frames_.push_back(source_.below(6));
        return routine.emit(opcode, frames_.back());
      case op_arg_set:
        if (frames_.empty() || frames_.back() == 0) return;
        return routine.emit(opcode, source_.below(frames_.back()));
      case op_call_native:
        return frames_.empty() ? void() : write_native_call(routine);
      case opcode_count:
        return;
    }
  }

  // Any that takes as many arguments as the innermost frame holds; the first takes any number.
  void write_native_call(vrn_program_block_routine& routine) {
    const std::uint32_t count = frames_.back();
    frames_.pop_back();
    std::size_t at = source_.below(static_cast<std::uint32_t>(natives_.size()));
    while (count < natives_[at]->min_arguments || count > natives_[at]->max_arguments) --at;
    routine.natives.insert(natives_[at]);
    routine.emit(op_call_native, address_of(natives_[at].get()));
  }

  // Mostly below a limit.
  std::uint32_t odd_number(std::uint32_t limit) {
    return source_.one_in(32) ? static_cast<std::uint32_t>(source_.word()) : source_.below(limit);
  }

  vrnvar* some_variable() {
    const auto& routine = routines_[source_.below(static_cast<std::uint32_t>(routines_.size()))];
    return routine->variables[source_.below(static_cast<std::uint32_t>(routine->variables.size()))]
        .get();
  }

  byte_source& source_;
  const std::vector<routine_handle>& routines_;
  const std::vector<vrn_ref<vrn_std_function>>& natives_;
  std::uint32_t depth_ = 1;            // of the value stack, at least
  std::vector<std::uint32_t> frames_;  // how many arguments each open one holds
};

// A program whose routines are all reachable from its variables, which hold values of most types.
class program_builder {
 public:
  explicit program_builder(byte_source& source) : source_(source) {
    routines_.push_back(program_->main);
    const std::uint32_t functions = source_.below(4);
    for (std::uint32_t k = 0; k < functions; ++k) add_function();
    for (const routine_handle& routine : routines_) fill_variables(*routine);
    const auto& table = current_script->state().functions;
    natives_.push_back(table.find("give")->second);
    // In an order that is the same in each run.
    std::map<std::string, vrn_ref<vrn_std_function>> sorted(table.begin(), table.end());
    for (const auto& [name, function] : sorted) natives_.push_back(function);
    for (const routine_handle& routine : routines_) {
      routine_writer(source_, routines_, natives_).write(*routine);
    }
  }

  // Cycles of values are the business of who makes them.
  ~program_builder() {
    for (const routine_handle& routine : routines_) {
      for (const vrnvar_shared& variable : routine->variables) variable->set_type(vrn_type::none);
    }
  }

  program_builder(const program_builder&) = delete;
  program_builder& operator=(const program_builder&) = delete;

  const std::vector<routine_handle>& routines() const { return routines_; }

 private:
  void add_function() {
    const routine_handle parent =
        routines_[source_.below(static_cast<std::uint32_t>(routines_.size()))];
    if (!parent->children) parent->children = std::make_shared<std::vector<routine_handle>>();
    routines_.push_back(std::make_shared<vrn_program_block_routine>(parent.get()));
    parent->children->push_back(routines_.back());
  }

  void fill_variables(vrn_program_block_routine& routine) {
    routine.strings = std::make_shared<std::vector<std::string>>(
        std::vector<std::string>{"", "12", "-3.5x", std::string(100, 'x')});
    const std::uint32_t count = 1 + source_.below(6);
    for (std::uint32_t k = 0; k < count; ++k) {
      routine.add_variable("v" + std::to_string(k));
      fill(*routine.variables.back());
    }
  }

  // All types but class, whose copies mislead the pools on purpose.
  void fill(vrnvar& value) {
    value.set_type(static_cast<vrn_type>(source_.below(12)));
    switch (value.type) {
      case vrn_type::integer:
      case vrn_type::floating:
        value.payload = source_.word();
        return;
      case vrn_type::string:
        return value.set_string(std::string(source_.byte(), '7'));
      case vrn_type::json:
        for (std::uint32_t k = source_.below(12); k > 0; --k) {
          value.as<vrnvar_ptr_json>()
              ->members.add(k % 3 == 0 ? "" : std::to_string(k))
              ->value.set_int(k);
        }
        return;
      case vrn_type::class_:
      case vrn_type::function: {
        value.set_type(vrn_type::function);
        const std::uint32_t number =
            source_.below(static_cast<std::uint32_t>(routines_.size()) + 1);
        if (number < routines_.size()) {
          value.as<vrnvar_ptr_function>()->routine = routines_[number]->handle();
        }
        return;
      }
      case vrn_type::ref: {
        const auto& targets = program_->main->variables;
        return value.set_ref(targets[source_.below(static_cast<std::uint32_t>(targets.size()))]);
      }
      default:
        return;
    }
  }

  byte_source& source_;
  vrn_program program_ = std::make_shared<vrn_program_block_root>();
  std::vector<routine_handle> routines_;
  std::vector<vrn_ref<vrn_std_function>> natives_;
};

// Runs each routine as a task, all at once and then once more. Those that are in another's hands
// are refused.
std::vector<vrn_ref<vrn_task>> run_tasks(test::script_host& host, const program_builder& program) {
  std::vector<vrn_ref<vrn_task>> tasks;
  for (const routine_handle& routine : program.routines()) {
    tasks.push_back(task_create(routine->handle()));
  }
  for (int rounds = 0; rounds < 2; ++rounds) {
    for (const vrn_ref<vrn_task>& task : tasks) task_run(*task, 0);
    // Every tick runs an instruction at least, or waits for at most a day of what may be years.
    for (int ticks = 0; ticks < 1000; ++ticks) {
      std::uint64_t next = UINT64_MAX;
      for (const auto& task : tasks) {
        if (task->scheduled) next = std::min(next, task->due_ms);
      }
      if (next == UINT64_MAX) break;
      host.clock->ms = std::clamp(next, host.clock->ms, host.clock->ms + 86'400'000);
      host.script.tick();
    }
  }
  return tasks;
}

void check_errors(const test::collecting_log& log) {
  for (const std::string& error : log.texts(vrn_log_level::error)) {
    check(is_runtime_error(error) || error.starts_with("Task failed: ") ||
              error == "TODO: HANDLE RETURN!" || error == "Cannot run task!" ||
              error == "TODO: Cleanup old routine data here!",
          "Instructions make no other errors.", error);
  }
}

// What the program leaves; `spaced`: with every instruction executed singly.
std::vector<std::string> run_program(byte_source source, bool spaced) {
  checked_host checked{checked_host::files()};
  test::script_host& host = checked.host();
  add_natives(host.script);
  test::remains left;
  {
    program_builder program(source);
    for (const routine_handle& routine : program.routines()) disassemble(*routine);
    if (spaced) test::space_out(*program.routines()[0]);
    const auto tasks = run_tasks(host, program);
    check_errors(*host.log);
    host.script.state().tasks = {};
    left.add(host, spaced ? 2 : 1);
    left.add(*program.routines()[0]);
    for (const auto& task : tasks) left.add(*task);
  }
  checked.check_health();
  return left.lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Random numbers begin anew on a thread.
  const auto left = [&](bool spaced) {
    return std::async(std::launch::async, run_program, byte_source({data, size}), spaced).get();
  };
  check(left(false) == left(true), "Stretches leave what single instructions leave.");
  return 0;
}

}  // namespace vorn::fuzz
