// What scripts compile to.
#include <string_view>

#include <gtest/gtest.h>

#include "compiler/disassembler.hpp"
#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

// The instructions of a routine, its strings behind a "$", then in braces the routines defined in
// it, each led by the number of its parameters. Instructions are written without "op_" and "load_".
std::string code_of(vrn_program_block_routine& routine) {
  std::string text = disassemble(routine);
  for (const std::string_view prefix : {"op_", "load_"}) {
    for (std::size_t at = 0; (at = text.find(prefix, at)) != std::string::npos;) {
      text.erase(at, prefix.size());
    }
  }
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

TEST(disassembly_test, code_of_scripts) {
  const char* const rows[][2] = {
      // Minus signs that become part of a number, and a number that is a name.
      {"-5; -2.5; -(5); -f; - -5; 1E2",
       "int -5; float -2.500000; int -5; float -0.000000; int -5; negate; value 1E2"},
      // Equal texts of one routine share an entry.
      {"'a' + \"b\" + 'a'; ''; run() { 'b'; 'a' }",
       "string 0; push 1; string 1; push 1; string 0; add; add; string 2 $a $b $ "
       "0{ string 0; string 1 $b $a }"},
      // Variables of the routine and of those around it, the outermost first.
      {"y; x; one(p) { two(x, p) { p; x; y; z; three() { p; x; y; z; two } } }",
       "value y; value x 1{  2{ outer_var 1 0; outer_var 2 1; outer_var 2 0; value z 0{ "
       "outer_var 2 0; outer_var 3 1; outer_var 3 0; outer_var 1 2; outer_var 2 1 } } }"},
      {"run(a) { } run(1, max('a', x = 2))",
       "value run; call; int 1; store_arg 0; args_begin 2; string 0; arg_set 0; value x; push 1; "
       "int 2; assign; arg_set 1; call_native max; store_arg 1; yield $a 1{  }"},
  };
  script_host host;
  for (const auto& [text, code] : rows) {
    const vrn_program program = host.load(text);
    ASSERT_TRUE(program) << text;
    EXPECT_EQ(code_of(*program->main), code) << text;
  }
}

TEST(disassembly_test, code_that_is_cut_off) {
  script_host host;
  const vrn_program program = host.load("x; 5;");
  vrn_program_block_routine& block = *program->main;
  block.variables.clear();
  for (const std::size_t size : {31U, 18U}) {
    block.code->resize(size);
    block.code->shrink_to_fit();
    EXPECT_EQ(code_of(block), "value ?; ?");
  }
  block.code->assign(4, std::byte{99});
  EXPECT_EQ(code_of(block), "?");
}

}  // namespace
}  // namespace vorn::test
