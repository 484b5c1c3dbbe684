// The built-in functions, where scripts do not reach them.
#include "stdlib/builtins.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using numbers = std::vector<double>;

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(builtins_test, numbers_out_of_range) {
  struct row {
    vrnvar_shared (*function)(vrn_vm_context&, builtin::arguments&);
    numbers given;
    double result;
  };
  const row rows[] = {
      {builtin::max, {-inf, nan, nan}, -inf},   {builtin::clamp, {nan, 0, 1}, nan},
      {builtin::clamp, {5, nan, 1}, 1},         {builtin::smoothstep, {0, 1, nan}, 1},
      {builtin::smoothstep, {-inf, inf, 0}, 1}, {builtin::fract, {inf}, nan},
      {builtin::lerp, {1, inf, 0}, nan},        {builtin::pow, {nan, 0}, 1},
  };
  for (const row& each : rows) {
    vrn_vm_context context{};
    builtin::arguments given;
    for (const double number : each.given) given.push_back(var_float(number));
    const double result = each.function(context, given)->get_float();
    EXPECT_TRUE(std::isnan(each.result) ? std::isnan(result) : result == each.result)
        << &each - rows << ": " << result;
  }
}

}  // namespace
}  // namespace vorn::test
