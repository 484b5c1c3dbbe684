// Instructions on values that scripts cannot make, and the line that tells their speed.
#include "vm/handlers.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

#include "compiler/instruction.hpp"
#include "stdlib/add_std_functions.hpp"
#include "tests/support/script_host.hpp"
#include "vm/payload.hpp"
#include "vm/run.hpp"

namespace vorn::test {
namespace {

using slots = std::vector<vrnvar_shared>;

vrnvar_shared ref_to(const vrnvar_shared& target) {
  vrnvar_shared value = var_none();
  value->set_ref(target);
  return value;
}

std::string shown(const vrnvar_shared& slot) {
  return slot ? std::string(type_name(slot->type)) + " " + slot->to_text() : "empty";
}

// A routine and a task that runs it. Code that is appended runs on from where the last run ended.
class handlers_test : public testing::Test {
 protected:
  handlers_test() { task_.value_stack.resize(1); }

  template <class... Operands>
  std::uint32_t execute(std::uint32_t opcode, Operands... operands) {
    block_.emit(opcode, operands...);
    return run(block_, task_);
  }

  vrnvar_shared& top() { return task_.value_stack.back(); }

  script_host host_;
  vrn_program program_ = std::make_shared<vrn_program_block_root>();
  vrn_program_block_routine& block_ = *program_->main;
  vrn_task task_;
};

TEST_F(handlers_test, operators) {
  const vrnvar_shared error = var_none();
  error->set_type(vrn_type::error);
  const vrnvar_shared variable = var_int(4);
  struct row {
    std::uint32_t opcode;
    slots given;
    const char* left;
  };
  const row rows[] = {
      {op_negate, {ref_to(variable)}, "int -4"},
      {op_sub, {var_int(3), error}, "int 3"},
      {op_add, {error, var_string("a")}, "string ERRORa"},
      {op_add, {ref_to(var_int(2)), ref_to(ref_to(var_int(3)))}, "int 5"},
      {op_assign, {ref_to(variable), ref_to(var_float(5))}, "ref "},
      {op_assign, {variable, ref_to(variable)}, "float 5.000000"},
      {op_assign, {vrnvar_shared(), variable}, "empty"},
  };
  for (const row& each : rows) {
    task_.value_stack = each.given;
    execute(each.opcode);
    EXPECT_EQ(task_.value_stack.size(), 1U);
    EXPECT_EQ(shown(top()), each.left) << &each - rows;
  }
}

TEST_F(handlers_test, arguments_are_shared) {
  const vrnvar_shared variable = var_int(4);
  execute(op_args_begin, 3U);
  execute(op_arg_set, 1U);  // of an empty slot
  top() = ref_to(variable);
  execute(op_arg_set, 2U);
  const vrn_native change = [](auto&, auto& given) {
    given[2]->set_string("changed");
    return given[1];
  };
  const auto record = make_std_function("change", change, 0, 9);
  execute(op_call_native, address_of(record.get()));
  EXPECT_EQ(shown(top()) + shown(variable), "none string changed");
  // Until the frame is used again.
  EXPECT_EQ(task_.argument_frames.at(0).at(2).get(), variable.get());
}

TEST_F(handlers_test, calls_of_a_class) {
  top() = var_none();
  top()->set_type(vrn_type::class_);
  const vrn_program_block_routine inner(&block_);
  top()->as<vrnvar_ptr_function>()->routine = inner.handle();
  execute(op_call);
  EXPECT_TRUE(task_.call_stack.empty());
}

TEST_F(handlers_test, outer_variables_are_looked_up_once) {
  block_.add_variable("x");
  vrn_program_block_routine inner(&block_);
  inner.emit(op_load_outer_var, 1U, 0U, 0U);
  run(inner, task_);
  EXPECT_EQ(read_address<vrnvar>(inner.code->data(), 16), block_.variables[0].get());
}

TEST_F(handlers_test, outer_variables_that_are_not_there) {
  for (const auto& [hops, message] :
       {std::pair(9U, "parent doesnt exist!"), std::pair(0U, "index out of bounds!")}) {
    execute(op_load_outer_var, hops, 0U, std::uint64_t{0});
    EXPECT_NE(host_.log->texts(vrn_log_level::error).back().find(message), std::string::npos);
  }
  EXPECT_THROW(execute(op_load_string, 0U), std::out_of_range);
}

TEST_F(handlers_test, speed_line_and_moving_average) {
  // A run of so many instructions: its line up to the average, and the average.
  const auto line = [this](int count, std::uint64_t nanoseconds) {
    host_.log->records.clear();
    host_.clock->step_ns = nanoseconds;
    for (int k = 0; k < count; ++k) block_.emit(op_push, 1U);
    run(block_, task_);
    const std::string text = host_.log->texts(vrn_log_level::debug).at(0);
    const std::size_t cut = text.find(" avg IPS: ");
    return std::pair(text.substr(0, cut), std::stod(text.substr(cut + 10)));
  };
  EXPECT_EQ(line(1, 3).first, "Executed 1 instructions in: 3e-09 seconds (IPS: 333333333");
  // A rate that is too large for 32 bits.
  EXPECT_EQ(line(3, 1).first, "Executed 3 instructions in: 1e-09 seconds (IPS: 2147483647");
  // From the hundredth run on the newest has a weight of 1/100.
  for (int k = 0; k < 1500; ++k) line(1, 0);
  const double before = line(1, 0).second;
  EXPECT_NEAR(line(2, 1000).second, (99 * before + 2e6) / 100, 2);
}

}  // namespace
}  // namespace vorn::test
