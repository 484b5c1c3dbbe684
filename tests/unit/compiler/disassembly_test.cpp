// What scripts compile to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "compiler/code_generator.hpp"
#include "compiler/disassembler.hpp"
#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

// The instructions of a routine, its strings behind a "$", then in braces the routines defined in
// it, each led by the number of its parameters. Instructions are written without "op_".
std::string code_of(vrn_program_block_routine& routine) {
  std::string text = disassemble(routine);
  for (std::size_t at = 0; (at = text.find("op_", at)) != std::string::npos;) text.erase(at, 3);
  for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
    text.replace(at, 1, at + 1 == text.size() ? "" : "; ");
  }
  if (routine.strings) {
    for (const std::string& each : *routine.strings) text += " $" + each;
  }
  if (routine.children) {
    for (const auto& child : *routine.children) {
      text += " " + std::to_string(child->parameter_count) + "{ " + code_of(*child) + " }";
    }
  }
  return text;
}

struct example {
  const char* script;
  const char* code;
};

const example examples[] = {
    // Numbers, and the minus signs that become part of them.
    {"-5; -2.5; -(5); -f; - -5",
     "load_int -5; load_float -2.500000; load_int -5; load_float -0.000000; load_int -5; negate"},
    {"-2 + 5; -\"2\"; 1e2; 1E2",
     "load_int 2; push 1; load_int 5; add; negate; load_string 0; negate; load_float 100.000000; "
     "load_value 1E2 $2"},

    // Equal texts of one routine share an entry.
    {"'a' + \"b\" + 'a'; ''; 'b'",
     "load_string 0; push 1; load_string 1; push 1; load_string 0; add; add; load_string 2; "
     "load_string 1 $a $b $"},
    {"'a'; run() { 'b'; 'a' }", "load_string 0 $a 0{ load_string 0; load_string 1 $b $a }"},

    // Variables: of the routine, of those around it, the outermost first.
    {"y; x; run(x) { x; y; z }",
     "load_value y; load_value x 1{ load_outer_var 1 1; load_outer_var 1 0; load_value z }"},
    {"x; one(p) { two(x, p) { p; x; y; three() { p; y; x; two } } }",
     "load_value x 1{  2{ load_outer_var 1 0; load_outer_var 2 0; load_value y 0{ "
     "load_outer_var 2 0; load_outer_var 1 2; load_outer_var 3 0; load_outer_var 2 1 } } }"},

    // Calls.
    {"rand(); max(1, x, 'a')",
     "args_begin 0; call_native rand; args_begin 3; load_int 1; arg_set 0; load_value x; "
     "arg_set 1; load_string 0; arg_set 2; call_native max $a"},
    {"run(a) { } run(1, x = 2)",
     "load_value run; call; load_int 1; store_arg 0; load_value x; push 1; load_int 2; assign; "
     "store_arg 1; yield 1{  }"},
    {"one() { } two() { one(one()) } (two)()",
     "load_value two; call; yield 0{  } 0{ load_outer_var 1 0; call; load_outer_var 1 0; call; "
     "yield; store_arg 0; yield }"},
};

TEST(disassembly_test, code_of_scripts) {
  script_host host;
  for (const example& each : examples) {
    const vrn_program program = host.load(each.script);
    ASSERT_TRUE(program) << each.script;
    EXPECT_EQ(code_of(*program->main), each.code) << each.script;
  }
}

TEST(disassembly_test, blocks_made_by_hand) {
  script_host host;
  const vrn_program program = host.load("x; 5;");
  vrn_program_block_routine block(nullptr);
  std::uint32_t count = 0;
  EXPECT_TRUE(vrn_code_generator(host.script, count).compile_list(block, program->ast->nodes));
  EXPECT_EQ(code_of(block), "load_value x; load_int 5");
  block.insert_name("x", 1);
  for (const std::size_t size : {31U, 18U}) {
    block.code->resize(size);
    block.code->shrink_to_fit();
    EXPECT_EQ(code_of(block), "load_value ?; ?");
  }
  block.code->assign(4, std::byte{99});
  EXPECT_EQ(code_of(block), "?");
}

}  // namespace
}  // namespace vorn::test
