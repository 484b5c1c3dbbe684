#include "fuzz/support/program_writer.hpp"

#include <algorithm>
#include <utility>

#include <vornscript/std_function.hpp>

namespace vorn::fuzz {
namespace {

constexpr std::uint32_t depth_max = 6;
constexpr std::size_t include_depth_max = 4;

struct native {
  std::string_view name;
  std::uint32_t min;
  std::uint32_t max;
};

constexpr native natives[] = {
#define VRN_BUILTIN(name, min, max, ...) {#name, min, max},
#include "stdlib/builtins.def"
#undef VRN_BUILTIN
};

// None is a number (made of 0123456789.fe only), a keyword or the name of a built-in function.
constexpr std::string_view variables[] = {"a",   "b",  "count", "gr\xC3\xB6sse", "_1",
                                          "if_", "xf", "1e-5",  "0x1f"};

constexpr std::string_view numbers[] = {"0",   "1",  "00012", "9223372036854775808",
                                        "1.5", ".5", "1e300", "fe"};

constexpr std::string_view texts[] = {"",
                                      "text",
                                      "12",
                                      " -3.5x",
                                      "\\\"",
                                      "return",
                                      "=",
                                      "#",
                                      "1e3",
                                      "a text that is too long to stand inside of its value",
                                      "\xE2\x82\xAC\xF0\x9F\x98\x80"};

constexpr std::string_view gaps[] = {" ", " ", "  ", "\n", "\t", " /* ; */ ", " // )\n", "\r\n"};

constexpr fault faults[] = {
    {"x = ;", "No value to assign to."},
    {"x = return;", "Cannot parse return."},
    {"1 % 2;", "Invalid binary operator '%'"},
    {"!a;", "Invalid unary operator '!'"},
    {"2 * -3;", "Operator without operands."},
    {"no_such(1);", "Cannot resolve function call."},
    {"clamp(1);", "Not enough arguments for function clamp"},
    {"(1; 2);", "Too many expressions inside bracket."},
    {"a[1] = 2;", "Cannot compile instruction, not implemented."},
    {"[1, k = 2];", "Invalid command type: 18"},
    {"{ 1; 2; }", "Cannot parse sub-block."},
    {"a b;", "Cannot parse whatever this is."},
    {"twice(p) { p } twice(p) { p }", "Function twice already exists in this scope."},
    {"name(1 2) { 3 }", "Invalid arguments"},
    {"frob some { 1; }", "Unknown struct definition."},
    {"if { 2; }", "Expected '()' after 'if'"},
    {"for () { 2; }", "Loop needs a condition."},
    {"else { 1; }", "Else statement without leading if statement."},
    {"print(if (1) { 2; });", "Invalid arguments (print)"},
    {"#include_ some", "Invalid directive."},
    {"(];", "Invalid closing bracket: ]"},
    {"([1);];", "Cannot find closing bracket."},
    {"1e;", "Malformed exponent in numeric literal", false},
    {"#include \"nowhere\"", "File not found: nowhere.vrs", false},
};

}  // namespace

checked_host::files program_writer::write() {
  if (source_.one_in(2)) {
    fault_ = &source_.pick(faults);
    fault_after_ = source_.below(20);
  }
  files_.push_back({"main.vrs", ""});
  write_statements();
  if (fault_) write_fault();
  written_["main.vrs"] = std::move(current().text);
  return std::move(written_);
}

void program_writer::write_statements() {
  do {
    write_statement();
    write_gap();
  } while (!source_.empty() && !source_.one_in(8) && statements_left_ > 0);
}

void program_writer::write_statement() {
  if (statements_left_ > 0) --statements_left_;
  if (fault_ && fault_after_-- == 0) return write_fault();
  switch (source_.below(10)) {
    case 0:
      put("print(");
      write_arguments(1 + source_.below(3));
      return put(");");
    case 1:
      return write_function();
    case 2:
      return write_include();
    case 3:
      return write_define();
    case 4:
      // A blank in front of a literal does not part it from the word before.
      put("var x1 = ");
      write_expression();
      return put(";");
    case 5:
    case 6:
      write_variable();
      put(" =");
      write_gap();
      write_expression();
      return put(";");
    default:
      write_expression();
      put(";");
  }
}

void program_writer::write_function() {
  if (function_depth_ >= depth_max) return put(";");
  if (source_.one_in(4)) put("function int ");
  const std::string name = "fn" + std::to_string(function_count_++);
  functions_.push_back(name);
  const std::size_t outer = functions_.size();
  put(name + "(");
  constexpr std::string_view parameters[] = {"", "p", "p, q", "p, q = 1 + 2", "a, a"};
  put(source_.pick(parameters));
  put(") {\n");
  ++function_depth_;
  write_statements();
  --function_depth_;
  put("}");
  functions_.resize(outer);
}

void program_writer::write_include() {
  if (files_.size() > include_depth_max) return put(";");
  const bool again = include_count_ > 0 && source_.one_in(4);
  const std::uint32_t number = again ? source_.below(include_count_) : include_count_;
  put("\n#include \"part" + std::to_string(number) + "\"\n");
  if (again) return;
  ++include_count_;
  files_.push_back({"part" + std::to_string(number) + ".vrs", ""});
  write_statements();
  written_[current().name] = std::move(current().text);
  files_.pop_back();
}

// The body holds no other defines, so that it cannot grow without end.
void program_writer::write_define() {
  put("\n#define D" + std::to_string(define_count_ % 3) + " ");
  in_define_ = true;
  write_expression();
  in_define_ = false;
  ++define_count_;
  put("\n");
}

void program_writer::write_fault() {
  put("\n");
  const auto ends = std::count(current().text.begin(), current().text.end(), '\n');
  planted_ = {fault_, current().name, static_cast<std::uint32_t>(ends) + 1};
  put(fault_->text);
  put("\n");
  fault_ = nullptr;
}

void program_writer::write_expression() {
  ++depth_;
  if (source_.one_in(8)) put("- ");
  write_operand();
  while (source_.one_in(3)) {
    constexpr std::string_view operators[] = {"+", "-", "*", "/"};
    write_gap();
    put(source_.pick(operators));
    write_gap();
    write_operand();
  }
  --depth_;
}

void program_writer::write_operand() {
  switch (source_.below(depth_ < depth_max && !in_define_ ? 8 : 4)) {
    case 0:
      return put(source_.pick(numbers));
    case 1:
      return write_string();
    case 2:
      return write_variable();
    case 3:
      if (define_count_ == 0 || in_define_) return put("1");
      return put("D" + std::to_string(source_.below(std::min(define_count_, 3u))));
    case 4:
    case 5:
      return write_group();
    default:
      return write_call();
  }
}

void program_writer::write_group() {
  put("(");
  if (source_.one_in(4)) {
    write_variable();
    put(" = ");
  }
  write_expression();
  put(")");
}

void program_writer::write_call() {
  if (!functions_.empty() && source_.one_in(2)) {
    put(functions_[source_.below(static_cast<std::uint32_t>(functions_.size()))] + "(");
    write_arguments(source_.below(4));
  } else {
    const native& called = source_.pick(natives);
    put(called.name);
    put("(");
    write_arguments(called.min + source_.below(std::min(called.max - called.min, 3u) + 1));
  }
  put(")");
}

void program_writer::write_arguments(std::uint32_t count) {
  for (std::uint32_t k = 0; k < count; ++k) {
    if (k > 0) put(",");
    if (k > 0) write_gap();
    if (depth_ < depth_max) {
      write_expression();
    } else {
      put(source_.pick(numbers));
    }
  }
}

void program_writer::write_string() {
  constexpr std::string_view quotes[] = {"\"", "'", R"(""")"};
  const std::string_view quote = source_.pick(quotes);
  put(quote);
  put(source_.pick(texts));
  // A line more, and no quote that could meet the closing ones.
  if (quote.size() == 3) put(in_define_ ? " " : "\n ");
  put(quote);
}

void program_writer::write_variable() { put(source_.pick(variables)); }

void program_writer::write_gap() {
  const std::string_view gap = source_.pick(gaps);
  put(in_define_ ? " " : gap);
}

}  // namespace vorn::fuzz
