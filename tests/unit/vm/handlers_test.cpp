// Instructions in hand-built code, and the loop that runs them.
#include "vm/handlers.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>

#include "stdlib/add_std_functions.hpp"
#include "tests/support/script_host.hpp"
#include "vm/payload.hpp"
#include "vm/run.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;
using slots = std::vector<vrnvar_shared>;

std::uint64_t address(const void* object) { return reinterpret_cast<std::uintptr_t>(object); }

std::string framed(const std::string& message) {
  const std::string rule(60, '-');
  return "Runtime Error ***\n" + rule + "\n" + message + "\n" + rule;
}

vrnvar_shared of_type(vrn_type type) {
  vrnvar_shared value = var_none();
  value->set_type(type);
  return value;
}

vrnvar_shared ref_to(const vrnvar_shared& target) {
  vrnvar_shared value = var_none();
  value->set_ref(target);
  return value;
}

std::string shown(const vrnvar_shared& slot) {
  return slot ? std::string(type_name(slot->type)) + " " + slot->to_text() : "empty";
}

// A routine within a routine, and a task that runs the inner one. Code that is appended runs on
// from where the last run ended.
class handlers_test : public testing::Test {
 protected:
  handlers_test() { task_.value_stack.resize(1); }

  template <class... Operands>
  std::uint32_t execute(std::uint32_t opcode, Operands... operands) {
    block_.emit(opcode, operands...);
    return run(block_, task_);
  }

  // A record of a native function that lives as long as the test.
  std::uint64_t native(vrn_native callable) {
    natives_.push_back(make_std_function("native", std::move(callable), 0, 9));
    return address(natives_.back().get());
  }

  vrnvar_shared& top() { return task_.value_stack.back(); }
  strings errors() const { return host_.log->texts(vrn_log_level::error); }

  script_host host_;
  vrn_program program_ = std::make_shared<vrn_program_block_root>();
  vrn_program_block_routine& outer_ = *program_->main;
  vrn_program_block_routine block_{&outer_};
  std::vector<vrn_ref<vrn_std_function>> natives_;
  vrn_task task_;
};

TEST_F(handlers_test, every_record_runs_at_any_address) {
  const std::uint32_t sizes[] = {16, 24, 40, 16, 16, 8, 8, 8, 4, 4, 4, 4, 4, 4, 8, 8, 16, 4, 8, 4};
  block_.strings = std::make_shared<strings>(strings{"zero", "one"});
  vrn_program_block_routine callee(&outer_);
  const vrnvar_shared function = of_type(vrn_type::function);
  function->as<vrnvar_ptr_function>()->routine = callee.handle();
  outer_.variables = {var_int(1), var_int(2)};
  callee.variables = {var_int(1), var_int(2)};
  std::uint32_t stop = 0;
  vrn_vm_context context{&task_, &block_, &stop};
  for (std::uint32_t opcode = 0; opcode < opcode_count; ++opcode) {
    task_.value_stack = {var_int(4), var_int(6), opcode == op_call ? function : var_int(2)};
    task_.argument_frames.assign(1, {var_int(1), var_int(2)});
    task_.frame_depth = 1;
    task_.call_stack = {callee.handle()};
    std::byte buffer[64] = {};
    std::byte* const record = buffer + 1;
    write_field(record, 0, opcode);
    write_field(record, 4, std::uint32_t{1});
    write_field(record, 8, std::uint64_t{1});
    if (opcode == op_load_value) write_field(record, 8, function.get());
    if (opcode == op_call_native) {
      write_field(record, 8, native([](auto&, auto& given) { return given[1]; }));
    }
    EXPECT_EQ(handlers[opcode](context, record), sizes[opcode]) << vrn_opcodes[opcode].name;
  }
  EXPECT_EQ(errors(), strings());
  EXPECT_EQ(stop, 2U);
  EXPECT_TRUE(callee.active);
  EXPECT_EQ(shown(callee.variables[1]), "int 2");
}

TEST_F(handlers_test, loads_pushes_and_pops) {
  const vrnvar_shared variable = var_int(7);
  execute(op_load_value, address(variable.get()));
  EXPECT_EQ(top().get(), variable.get());
  execute(op_load_int, static_cast<std::uint64_t>(-8));
  EXPECT_EQ(shown(variable) + ", " + shown(top()), "int 7, int -8");
  const vrnvar_shared kept = top();
  execute(op_load_float, std::bit_cast<std::uint64_t>(2.5));
  EXPECT_EQ(shown(kept) + ", " + shown(top()), "int -8, float 2.500000");
  block_.strings = std::make_shared<strings>(strings{"only"});
  execute(op_load_string, 0U);
  EXPECT_EQ(shown(top()), "string only");
  EXPECT_THROW(execute(op_load_string, 1U), std::out_of_range);
  EXPECT_EQ(block_.saved_pc, block_.instructions().size());
  EXPECT_FALSE(block_.active);
  block_.strings.reset();
  EXPECT_THROW(execute(op_load_string, 0U), std::out_of_range);
  EXPECT_EQ(errors(), strings());
  execute(op_push, 7U);
  ASSERT_EQ(task_.value_stack.size(), 2U);
  EXPECT_FALSE(top());
  top() = kept;
  execute(op_pop, 7U);
  EXPECT_EQ(task_.value_stack.size(), 1U);
  EXPECT_EQ(kept->refcount, 1U);
}

TEST_F(handlers_test, outer_variables_are_looked_up_once) {
  const std::string no_parent = framed("Critical runtime error, parent doesnt exist!");
  const std::string no_index = framed("Critical runtime error, index out of bounds!");
  const auto load = [this](std::uint32_t hops) {
    block_.code.reset();
    block_.saved_pc = 0;
    top() = var_int(5);
    host_.log->records.clear();
    execute(op_load_outer_var, hops, 0U, std::uint64_t{0});
    return shown(top()) + "\n" + (errors().empty() ? "" : errors()[0]);
  };
  const auto cache = [this] { return read_field<std::uint64_t>(block_.instructions().data(), 16); };
  const auto again = [this] {
    block_.saved_pc = 0;
    run(block_, task_);
    return shown(top());
  };
  for (const std::uint32_t hops : {2U, 3U, ~0U}) EXPECT_EQ(load(hops), "int 5\n" + no_parent);
  for (const std::uint32_t hops : {0U, 1U}) EXPECT_EQ(load(hops), "int 5\n" + no_index);
  EXPECT_EQ(cache(), 0U);
  // The last record walks again now that there is something to find, and then never more.
  outer_.variables = {var_int(1)};
  EXPECT_EQ(again(), "int 1");
  const vrnvar_shared variable = outer_.variables[0];
  EXPECT_EQ(cache(), address(variable.get()));
  outer_.variables.clear();
  top() = {};
  EXPECT_EQ(again(), "int 1");
  block_.variables = {var_int(9)};
  EXPECT_EQ(load(0), "int 9\n");
}

TEST_F(handlers_test, operators) {
  const auto i = var_int;
  const auto f = var_float;
  const auto s = [](std::string_view text) { return var_string(text); };
  const vrnvar_shared error = of_type(vrn_type::error);
  const vrnvar_shared boundary = of_type(vrn_type::primitive_end);
  const vrnvar_shared empty;
  const vrnvar_shared variable = i(4);
  const std::string no_int = "get_int() not implemented for type: ";
  const std::string no_float = "get_float() not implemented for type: ";
  struct row {
    std::uint32_t opcode;
    slots given;
    strings left;  // the slots, then the complaints
  };
  const row rows[] = {
      {op_negate, {ref_to(variable)}, {"int -4"}},
      {op_negate, {empty}, {"empty", framed("Cannot negate type \x01")}},
      {op_sub, {i(3), error}, {"int 3", no_int + "0"}},
      {op_mul, {i(3), empty}, {"int 0", no_int + "1"}},
      {op_div, {error, i(0)}, {"int 0"}},
      {op_add, {empty, f(1.5)}, {"float 1.500000", no_float + "1"}},
      {op_div, {error, f(-0.0)}, {"float 0.000000", no_float + "0"}},
      {op_add, {s("a"), empty}, {"string a"}},
      {op_add, {error, s("a")}, {"string ERRORa"}},
      {op_add, {boundary, s("a")}, {"string a"}},
      {op_add, {s("a"), of_type(vrn_type::json)}, {"string a", framed("Add invalid type: \x06")}},
      {op_add, {empty, empty}, {"empty", framed("Add invalid type: \x01")}},
      {op_mul, {error, error}, {"error ERROR", framed(std::string("Mult invalid type: ") + '\0')}},
      {op_div, {i(1), boundary}, {"int 1", framed("Div invalid type: \x04")}},
      {op_add, {ref_to(i(2)), ref_to(ref_to(i(3)))}, {"int 5"}},
      {op_add, {ref_to(s("a")), ref_to(f(3))}, {"string a3.000000"}},
      {op_sub, {ref_to(s("a")), i(1)}, {"ref ", framed("Sub invalid type: \x05")}},
      {op_assign, {ref_to(variable), ref_to(f(5))}, {"ref "}},
      {op_add, {variable, i(1)}, {"float 6.000000"}},
      {op_assign, {variable, ref_to(variable)}, {"float 5.000000"}},
      {op_assign, {variable, empty}, {"float 5.000000", framed("invalid variable.")}},
      {op_assign, {empty, variable}, {"empty", framed("invalid variable.")}},
  };
  for (const row& each : rows) {
    host_.log->records.clear();
    task_.value_stack = each.given;
    EXPECT_EQ(execute(each.opcode), 16U);
    strings left;
    for (const vrnvar_shared& slot : task_.value_stack) left.push_back(shown(slot));
    for (const std::string& complaint : errors()) left.push_back(complaint);
    EXPECT_EQ(left, each.left) << vrn_opcodes[each.opcode].name << " " << shown(each.given[0]);
  }
}

TEST_F(handlers_test, argument_frames_are_used_again) {
  const auto& frames = task_.argument_frames;
  const vrnvar_shared variable = var_int(4);
  execute(op_args_begin, 1U);
  execute(op_args_begin, 3U);
  ASSERT_EQ(task_.frame_depth, 2U);
  EXPECT_EQ(shown(frames[0][0]) + shown(frames[1][2]), "none none ");
  execute(op_arg_set, 1U);
  EXPECT_EQ(shown(frames[1][1]), "none ");  // of an empty slot
  top() = ref_to(variable);
  execute(op_arg_set, 2U);
  EXPECT_EQ(shown(top()), "ref ");
  execute(op_call_native, native([](vrn_vm_context&, slots& given) {
            given[2]->set_string("changed");
            return var_int(static_cast<std::int64_t>(given.size()));
          }));
  EXPECT_EQ(shown(top()) + ", " + shown(variable), "int 3, string changed");
  // The closed frame keeps its values until the next call.
  EXPECT_EQ(task_.frame_depth, 1U);
  EXPECT_EQ(frames[1][2].get(), variable.get());
  execute(op_args_begin, 2U);
  EXPECT_EQ(frames[1].size(), 2U);
  EXPECT_EQ(variable->refcount, 1U);
  execute(op_call_native, native([](auto&, auto&) { return vrnvar_shared(); }));
  EXPECT_FALSE(top());
  EXPECT_THROW(execute(op_call_native, native({})), std::bad_function_call);
  EXPECT_EQ(task_.frame_depth, 0U);
}

TEST_F(handlers_test, calls_enter_routines_that_are_free) {
  const std::string refused = "Runtime error not a function!";
  auto callee = std::make_unique<vrn_program_block_routine>(&outer_);
  const vrnvar_shared function = of_type(vrn_type::function);
  const vrnvar_shared alike = of_type(vrn_type::class_);
  alike->as<vrnvar_ptr_function>()->routine = callee->handle();
  const auto call = [this](const vrnvar_shared& value) {
    host_.log->records.clear();
    top() = value;
    execute(op_call);
    EXPECT_EQ(top().get(), value.get());
    return errors().empty() ? "" : errors()[0];
  };
  for (const auto& value : {var_int(1), alike, function, vrnvar_shared()}) {
    EXPECT_EQ(call(value), refused);
  }
  function->as<vrnvar_ptr_function>()->routine = callee->handle();
  EXPECT_EQ(call(ref_to(function)), "");
  EXPECT_TRUE(callee->active);
  EXPECT_EQ(call(function), "Parallelism not implemented yet!");
  EXPECT_EQ(task_.call_stack.at(0).get(), callee.get());
  EXPECT_EQ(task_.call_stack.size(), 1U);
  callee.reset();
  EXPECT_EQ(call(function), refused);
}

TEST_F(handlers_test, arguments_are_stored_where_there_is_room) {
  auto callee = std::make_unique<vrn_program_block_routine>(&outer_);
  callee->variables = {var_int(0), var_int(1)};
  callee->parameter_count = 1;
  const vrnvar_shared number = var_int(4);
  top() = ref_to(number);
  execute(op_store_arg, 0U);  // no routine has been called
  task_.call_stack = {callee->handle()};
  for (const std::uint32_t index : {1U, 2U, ~0U}) execute(op_store_arg, index);
  EXPECT_EQ(shown(callee->variables[0]) + ", " + shown(callee->variables[1]), "int 0, ref ");
  EXPECT_EQ(callee->variables[1]->as<vrnvar>(), number.get());
  EXPECT_NE(callee->variables[1].get(), top().get());
  top() = {};
  execute(op_store_arg, 0U);
  EXPECT_EQ(shown(callee->variables[0]), "int 0");
  callee.reset();
  execute(op_store_arg, 0U);
  EXPECT_EQ(errors(), strings());
}

TEST_F(handlers_test, runs_end_in_their_ways) {
  EXPECT_EQ(run(block_, task_), 16U);  // no code at all
  EXPECT_EQ(execute(op_yield), 2U);
  EXPECT_EQ(block_.saved_pc, 4U);
  EXPECT_FALSE(block_.active);
  EXPECT_EQ(task_.pending_calls, 1U);
  host_.log->records.clear();
  EXPECT_EQ(run(block_, task_), 16U);
  EXPECT_TRUE(host_.log->records.empty());

  // A native function can end the run after its instruction.
  for (const std::uint32_t status : {8U, 1U, 16U, ~0U}) {
    execute(op_args_begin, 0U);
    block_.emit(op_call_native, native([this, status](vrn_vm_context& context, auto&) {
                  EXPECT_TRUE(context.task == &task_ && context.block == &block_);
                  EXPECT_TRUE(block_.active);
                  *context.stop_flag = status;
                  return var_none();
                }));
    const std::size_t stop = block_.instructions().size();
    EXPECT_EQ(execute(op_load_int, std::uint64_t{3}), status);
    EXPECT_EQ(block_.saved_pc, stop);
    EXPECT_TRUE(block_.active);
    EXPECT_EQ(shown(top()), "none ");
    EXPECT_EQ(run(block_, task_), 16U);
    EXPECT_EQ(shown(top()), "int 3");
    EXPECT_FALSE(block_.active);
  }
}

// Every reading is `step` nanoseconds after the one before.
class stepping_clock final : public vrn_clock {
 public:
  std::uint64_t monotonic_ns() const override { return now_ += step; }
  std::uint64_t step = 0;

 private:
  mutable std::uint64_t now_ = 0;
};

TEST(run_test, speed_line_and_moving_average) {
  const auto log = std::make_shared<collecting_log>();
  const auto clock = std::make_shared<stepping_clock>();
  const vrnscript script({nullptr, log, false, "", clock});
  const vrn_program program = std::make_shared<vrn_program_block_root>();
  vrn_task task;
  // A run of so many instructions: its line up to the average, and the average.
  const auto line = [&](int count, std::uint64_t nanoseconds) {
    log->records.clear();
    clock->step = nanoseconds;
    for (int k = 0; k < count; ++k) program->main->emit(op_push, 1U);
    run(*program->main, task);
    const std::string text = log->texts(vrn_log_level::debug).at(0);
    const std::size_t cut = text.find("avg IPS: ") + 9;
    EXPECT_EQ(text.back(), ')');
    return std::pair(text.substr(0, cut), std::stod(text.substr(cut)));
  };
  const auto seconds = [](std::string text) { return " instructions in: " + text + " seconds "; };
  EXPECT_EQ(line(3, 0).first, "Executed 3" + seconds("0") + "(IPS: 0 avg IPS: ");
  EXPECT_EQ(line(1, 3).first, "Executed 1" + seconds("3e-09") + "(IPS: 333333333 avg IPS: ");
  EXPECT_EQ(line(2, 1'500'000).first, "Executed 2" + seconds("0.0015") + "(IPS: 1333 avg IPS: ");
  EXPECT_EQ(line(9, 1'234'567'890'123'456).first,
            "Executed 9" + seconds("1.23457e+06") + "(IPS: 0 avg IPS: ");
  // A rate that is too large for 32 bits.
  EXPECT_EQ(line(3, 1).first, "Executed 3" + seconds("1e-09") + "(IPS: 2147483647 avg IPS: ");

  // From the hundredth run on the newest has a weight of 1/100, whether it is logged or not. A run
  // of no instructions is none.
  for (int k = 0; k < 1500; ++k) line(1, 0);
  const double before = line(1, 0).second;
  EXPECT_LT(before, 1000);
  log->level_mask = 0;
  EXPECT_THROW(line(5, 1000), std::out_of_range);
  EXPECT_THROW(line(0, 1000), std::out_of_range);
  log->level_mask = vrn_log_all;
  EXPECT_NEAR(line(2, 1000).second, (99 * (99 * before + 5e6) / 100 + 2e6) / 100, 2);
}

}  // namespace
}  // namespace vorn::test
