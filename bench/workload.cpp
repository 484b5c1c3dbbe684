#include "bench/workload.hpp"

#include <cstdint>
#include <string_view>

namespace vorn::bench {
namespace {

// The generator is spelled out so that scripts do not depend on a library's.
class sequence {
 public:
  std::size_t below(std::size_t bound) {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::size_t>(state_ >> 33) % bound;
  }
  std::string variable() { return "v" + std::to_string(below(50)); }
  std::string operand() { return below(10) < 7 ? variable() : std::to_string(1 + below(999)); }

 private:
  std::uint64_t state_ = 1;
};

std::string variables() {
  std::string script;
  for (int k = 0; k < 50; ++k) {
    script += "v" + std::to_string(k) + " = " + std::to_string(k) + ";\n";
  }
  return script;
}

}  // namespace

std::string arithmetic(std::size_t statements) {
  sequence random;
  std::string script = variables();
  for (std::size_t k = 0; k < statements; ++k) {
    script += random.variable() + " = " + random.operand();
    for (int operands = 0; operands < 3; ++operands) {
      script += {' ', "+-*"[random.below(3)], ' '};
      script += random.operand();
    }
    script += ";\n";
  }
  return script;
}

std::string calls(std::size_t statements) {
  sequence random;
  constexpr std::string_view outer[] = {"sqrt", "floor", "ceil", "abs"};
  std::string script = variables();
  for (std::size_t k = 0; k < statements; ++k) {
    script += random.variable() + " = ";
    script += outer[random.below(4)];
    script += "(max(" + random.variable() + ", " + random.operand() + "));\n";
  }
  return script;
}

std::string strings(std::size_t statements, const char* joining) {
  sequence random;
  std::string script;
  for (std::size_t k = 0; k < statements; ++k) {
    script += random.variable() + " = \"text " + std::to_string(random.below(100)) + "\" ";
    script += joining;
    script += " " + std::to_string(random.below(1000)) + ";\n";
  }
  return script;
}

std::string functions(std::size_t count) {
  std::string script;
  for (std::size_t k = 0; k < count; ++k) {
    const std::string name = "run" + std::to_string(k);
    script.append(name).append("(a, b) { a + b * 2 }\nx = ").append(name).append("(1, 2);\n");
  }
  return script;
}

}  // namespace vorn::bench
