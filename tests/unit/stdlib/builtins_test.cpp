// The built-in functions, where scripts do not reach them.
#include "stdlib/builtins.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;
using numbers = std::vector<double>;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double result_of(vrnvar_shared (*function)(vrn_vm_context&, builtin::arguments&),
                 const numbers& numbers_given) {
  vrn_vm_context context{};
  builtin::arguments given;
  for (const double number : numbers_given) given.push_back(var_float(number));
  return function(context, given)->get_float();
}

TEST(builtins_test, numbers_out_of_range) {
  using namespace builtin;
  struct row {
    vrnvar_shared (*function)(vrn_vm_context&, arguments&);
    numbers given;
    double result;
  };
  const row rows[] = {
      {min, {nan, 1, 2}, nan},
      {min, {2, nan, 1}, 1},
      {max, {-inf, nan, nan}, -inf},
      {clamp, {nan, 0, 1}, nan},
      {clamp, {5, nan, 1}, 1},
      {clamp, {-5, 0, nan}, 0},
      {smoothstep, {0, 1, nan}, 1},
      {smoothstep, {1, 0, 2}, 0},
      {smoothstep, {-inf, inf, 0}, 1},
      {sign, {nan}, 0},
      {abs, {-inf}, inf},
      {fract, {inf}, nan},
      {lerp, {1, inf, 0}, nan},
      {lerp, {1, inf, -2}, -inf},
      {round, {-inf}, -inf},
      {acos, {1.5}, nan},
      {log, {-1}, nan},
      {pow, {0, -1}, inf},
      {pow, {nan, 0}, 1},
  };
  for (const row& each : rows) {
    const double result = result_of(each.function, each.given);
    EXPECT_TRUE(std::isnan(each.result) ? std::isnan(result) : result == each.result)
        << &each - rows << ": " << result;
  }
}

TEST(builtins_test, each_thread_has_its_random_numbers) {
  for (int k = 0; k < 2; ++k) {
    std::thread([] {
      numbers first;
      for (int n = 0; n < 4; ++n) first.push_back(result_of(builtin::rand, {}) * 32767.0);
      EXPECT_EQ(first, (numbers{41, 18467, 6334, 26500}));
    }).join();
  }
}

TEST(builtins_test, a_function_can_take_its_own_place_while_it_runs) {
  script_host host;
  const auto token = std::make_shared<int>();
  const auto old_sin = [token, &host](auto&, auto&) {
    host.script.register_std_function(
        "sin", [](auto&, auto&) { return var_int(0); }, 0, 2);
    return var_string("old");
  };
  host.script.register_std_function("sin", old_sin, 1, 1);
  EXPECT_EQ(host.output_of("print(sin(1), sin(2));"), (strings{"old", "old"}));
  EXPECT_EQ(token.use_count(), 2);  // gone with the program
  EXPECT_EQ(host.output_of("print(sin(), sin(1, 2));"), (strings{"0", "0"}));
}

}  // namespace
}  // namespace vorn::test
