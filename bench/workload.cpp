#include "bench/workload.hpp"

#include <algorithm>
#include <cstdint>

namespace vorn::bench {
namespace {

// The generator is spelled out so that scripts do not depend on a library's.
class sequence {
 public:
  std::size_t below(std::size_t bound) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::size_t>(state_ >> 33) % bound;
  }
  template <std::size_t count>
  std::string_view one_of(const std::string_view (&choices)[count]) {
    return choices[below(count)];
  }

 private:
  std::uint64_t state_ = 1;
};

constexpr std::size_t variable_count = 50;

// Appends texts and numbers to a script.
class writer {
 public:
  explicit writer(dialect language) : language_(language) {}

  writer& operator<<(std::string_view text) {
    text_ += text;
    return *this;
  }
  writer& operator<<(std::size_t number) { return *this << std::to_string(number); }

  // One of the variables v0, v1, ... that hold whole numbers, and x0, x1, ... that hold floats.
  writer& variable(std::string_view letter) { return *this << letter << below(variable_count); }
  writer& whole() { return below(10) < 7 ? variable("v") : *this << 1 + below(999); }
  writer& number() { return below(10) < 7 ? variable("x") : *this << below(9) << ".25"; }
  writer& operation() { return *this << random_.one_of({" + ", " - ", " * "}); }
  writer& function() { return *this << random_.one_of({"sqrt", "floor", "ceil", "abs"}); }

  writer& assign_variables(std::string_view letter, std::string_view fraction) {
    for (std::size_t k = 0; k < variable_count; ++k) {
      *this << letter << k << " = " << k << fraction << ";\n";
    }
    return *this;
  }

  std::size_t below(std::size_t bound) { return random_.below(bound); }
  bool is_lua() const { return language_ == dialect::lua; }
  std::string_view joining() const { return is_lua() ? " .. " : " + "; }
  std::string take() { return std::move(text_); }

 private:
  dialect language_;
  sequence random_;
  std::string text_;
};

using statement = void (*)(writer& script, std::size_t number);

void add_arithmetic(writer& script, std::size_t) {
  script.variable("v") << " = ";
  script.whole().operation().whole().operation().whole().operation().whole() << ";\n";
}

void add_float(writer& script, std::size_t) {
  script.variable("x") << " = ";
  script.number().operation().number().operation().number().operation().number() << ";\n";
}

void add_call(writer& script, std::size_t) {
  script.variable("x") << " = ";
  script.function() << "(max(";
  script.variable("x") << ", min(";
  script.variable("x") << ", ";
  script.number() << ")));\n";
}

void add_string(writer& script, std::size_t) {
  script.variable("s") << " = \"text " << script.below(100) << "\"" << script.joining();
  script.variable("v") << ";\n";
}

void add_mixed(writer& script, std::size_t number) {
  constexpr statement kinds[] = {add_arithmetic, add_float, add_call, add_arithmetic, add_string};
  kinds[number % std::size(kinds)](script, number);
}

void add_name(writer& script, std::size_t number) {
  script << "name_" << number << " = ";
  if (number > 0) script << "name_" << number / 2 << " + ";
  script << number << ";\n";
}

void add_literal(writer& script, std::size_t number) {
  script.variable("s") << " = ";
  if (number % 2 == 0) {
    script << "\"literal " << number << "\";\n";
  } else {
    script << number << ".5;\n";
  }
}

// A function that is defined and called once.
void add_function(writer& script, std::size_t number) {
  script << (script.is_lua() ? "function " : "") << "run" << number
         << (script.is_lua() ? "(a, b) return a + b * 2 end\n" : "(a, b) { a + b * 2 }\n");
  script.variable("v") << " = run" << number << "(1, " << number << ");\n";
}

void add_builtin_call(writer& script, std::size_t) {
  script.variable("x") << " = abs(";
  script.variable("x") << ");\n";
}

void add_concatenation(writer& script, std::size_t) {
  script.variable("s") << " = long" << script.below(9) << script.joining() << "long"
                       << script.below(9) << ";\n";
}

// Short statements, as people write them.

void add_subtraction(writer& script, std::size_t) {
  script.variable("v") << " = ";
  script.variable("v").operation() << 1 + script.below(999) << ";\n";
}

void add_bracketed(writer& script, std::size_t) {
  script.variable("v") << " = (";
  script.variable("v").operation();
  script.variable("v") << ") * " << 1 + script.below(99);
  script.operation().variable("v") << ";\n";
}

void add_nested_calls(writer& script, std::size_t) {
  script.variable("x") << " = sqrt(abs(";
  script.function() << "(";
  script.variable("x") << ")));\n";
}

void add_joining(writer& script, std::size_t) {
  script.variable("s") << " = t" << script.below(9) << script.joining() << "\" \""
                       << script.joining() << "t" << script.below(9) << ";\n";
}

void add_copy(writer& script, std::size_t) {
  script.variable("v") << " = ";
  script.variable("v") << ";\n";
}

void add_constant(writer& script, std::size_t) {
  script.variable("v") << " = " << script.below(1000) << ";\n";
}

void add_commented(writer& script, std::size_t number) {
  constexpr std::string_view words = " what the next statement does, and why it does it ";
  const std::string_view line = script.is_lua() ? "--" : "//";
  for (int k = 0; k < 4; ++k) script << line << words << number << "\n";
  script << (script.is_lua() ? "--[[" : "/***") << words << "\n" << words << "\n";
  script << words << (script.is_lua() ? "--]]\n" : "***/\n");
  add_arithmetic(script, number);
}

void add_define(writer& script, std::size_t number) {
  script << "#define NAME_" << number << " " << number << " + 1\n";
  script.variable("v") << " = NAME_" << number / 2 << " * NAME_" << number << ";\n";
}

template <statement add>
std::string statements(dialect language, std::size_t count) {
  writer script(language);
  script.assign_variables("v", "").assign_variables("x", ".5");
  for (std::size_t k = 0; k < count; ++k) add(script, k);
  return script.take();
}

std::string with_locals(dialect language, std::size_t count) {
  writer script(language);
  if (script.is_lua()) {
    script << "local v0";
    for (std::size_t k = 1; k < variable_count; ++k) script << ", v" << k;
    script << "\n";
  }
  return script.take() + statements<add_arithmetic>(language, count);
}

std::string concatenations(dialect language, std::size_t count) {
  writer script(language);
  for (std::size_t k = 0; k < 9; ++k) {
    script << "long" << k << " = \"" << std::string(1000 + k, 'a') << "\";\n";
  }
  for (std::size_t k = 0; k < count; ++k) add_concatenation(script, k);
  return script.take();
}

std::string joinings(dialect language, std::size_t count) {
  writer script(language);
  for (std::size_t k = 0; k < 9; ++k) script << "t" << k << " = \"word " << k << "\";\n";
  for (std::size_t k = 0; k < count; ++k) add_joining(script, k);
  return script.take();
}

std::string expression(dialect language, std::size_t operators) {
  writer script(language);
  script.assign_variables("v", "") << "v0 = v1";
  for (std::size_t k = 0; k < operators; ++k) script.operation().whole();
  return script.take() + ";\n";
}

// So many operators, each in brackets of its own: ((v1 + 2) * v3) and so on to the given depth.
void add_brackets(writer& script, std::size_t depth, bool of_constants = false) {
  const auto operand = [&]() -> writer& {
    return of_constants ? script << 1 + script.below(999) : script.whole();
  };
  script << "v0 = " << std::string(depth, '(');
  operand();
  for (std::size_t k = 0; k < depth; ++k) {
    script.operation();
    operand() << ")";
  }
  script << ";\n";
}

// A hundred expressions, each as deep as the size says.
std::string deep_expressions(dialect language, std::size_t depth) {
  writer script(language);
  script.assign_variables("v", "");
  for (int k = 0; k < 100; ++k) add_brackets(script, depth);
  return script.take();
}

// Which Lua makes one constant of.
void add_constant_brackets(writer& script, std::size_t) { add_brackets(script, 5, true); }

// Many expressions, almost as deep as a language takes: 1000 levels, in Lua 200.
std::string brackets(dialect language, std::size_t operators) {
  writer script(language);
  script.assign_variables("v", "");
  const std::size_t depth = script.is_lua() ? 180 : 900;
  for (; operators > 0; operators -= std::min(operators, depth)) {
    add_brackets(script, std::min(operators, depth));
  }
  return script.take();
}

std::string includes(dialect language, std::size_t count) {
  writer script(language);
  script << "#include";
  for (std::size_t k = 0; k < count; ++k) script << " \"part" << k << "\"";
  return script.take() + "\n";
}

constexpr workload all_workloads[] = {
    {"arithmetic", "statement", 10'000, statements<add_arithmetic>},
    {"floats", "statement", 10'000, statements<add_float>},
    {"calls", "statement", 10'000, statements<add_call>},
    {"strings", "statement", 10'000, statements<add_string>},
    {"mixed", "statement", 10'000, statements<add_mixed>},
    {"subtraction", "statement", 10'000, statements<add_subtraction>},
    {"bracketed", "statement", 10'000, statements<add_bracketed>},
    {"nested_calls", "statement", 10'000, statements<add_nested_calls>},
    {"joining", "statement", 10'000, joinings},
    {"copies", "statement", 10'000, statements<add_copy>},
    {"constants", "statement", 10'000, statements<add_constant>},
    {"names", "name", 10'000, statements<add_name>},
    {"literals", "literal", 10'000, statements<add_literal>},
    {"functions", "function", 5'000, statements<add_function>},
    {"expression", "operator", 100'000, expression},
    {"brackets", "operator", 100'000, brackets},
    {"constant_brackets", "statement", 10'000, statements<add_constant_brackets>},
    {"comments", "statement", 10'000, statements<add_commented>},
    {"includes", "file", 300, includes, false},
    {"defines", "define", 5'000, statements<add_define>, false},
    {"depth", "level of 100 expressions", 900, deep_expressions, false},
    {"built-in_call", "call", 10'000, statements<add_builtin_call>},
    {"concatenation", "pair of 1000 bytes", 5'000, concatenations},
    {"locals_in_Lua", "statement", 10'000, with_locals},
};

}  // namespace

std::span<const workload> workloads() { return all_workloads; }

const workload& find_workload(std::string_view name) {
  return *std::find_if(std::begin(all_workloads), std::end(all_workloads) - 1,
                       [name](const workload& each) { return each.name == name; });
}

std::string included_text() { return statements<add_arithmetic>(dialect::vornscript, 20); }

std::string lines(std::string_view function, std::string_view line_end, std::size_t count) {
  writer script(dialect::vornscript);
  for (std::size_t k = 0; k < count; ++k) {
    script << function << "(\"This is line " << k << " of the output." << line_end << "\");\n";
  }
  return script.take();
}

}  // namespace vorn::bench
