// The numeric functions. Arguments are read as floats; domain errors give what the C library gives.
#include <cmath>

#include "stdlib/builtins.hpp"

namespace vorn::builtin {
namespace {

double number(const arguments& given, std::size_t position) { return given[position]->get_float(); }

// Folds from the first argument; a later one is taken only when it compares as better, so a NaN
// stays when it comes first and is passed over when it comes later.
double smaller(double kept, double next) { return next < kept ? next : kept; }
double larger(double kept, double next) { return next > kept ? next : kept; }

template <class Choice>
vrnvar_shared fold(const arguments& given, Choice choice) {
  double kept = number(given, 0);
  for (std::size_t k = 1; k < given.size(); ++k) kept = choice(kept, number(given, k));
  return var_float(kept);
}

}  // namespace

// The functions of one number that the C library has under the same name.
#define VRN_C_FUNCTION(name)                              \
  vrnvar_shared name(vrn_vm_context&, arguments& given) { \
    return var_float(std::name(number(given, 0)));        \
  }
VRN_C_FUNCTION(sin)
VRN_C_FUNCTION(cos)
VRN_C_FUNCTION(tan)
VRN_C_FUNCTION(asin)
VRN_C_FUNCTION(acos)
VRN_C_FUNCTION(atan)
VRN_C_FUNCTION(sqrt)
VRN_C_FUNCTION(floor)
VRN_C_FUNCTION(ceil)
VRN_C_FUNCTION(round)
VRN_C_FUNCTION(exp)
VRN_C_FUNCTION(log)
VRN_C_FUNCTION(log2)
VRN_C_FUNCTION(log10)
VRN_C_FUNCTION(cbrt)
#undef VRN_C_FUNCTION

// An integer stays one; the most negative integer, which has no counterpart, is returned as it is.
vrnvar_shared abs(vrn_vm_context&, arguments& given) {
  if (given[0]->type != vrn_type::integer) return var_float(std::fabs(number(given, 0)));
  const std::int64_t value = given[0]->as_int();
  return var_int(value < 0 ? static_cast<std::int64_t>(0 - given[0]->payload) : value);
}

vrnvar_shared min(vrn_vm_context&, arguments& given) { return fold(given, smaller); }
vrnvar_shared max(vrn_vm_context&, arguments& given) { return fold(given, larger); }

// The upper bound comes first: where the bounds cross, the lower one wins.
vrnvar_shared clamp(vrn_vm_context&, arguments& given) {
  const double x = number(given, 0);
  const double low = number(given, 1);
  const double high = number(given, 2);
  return var_float(larger(smaller(x, high), low));
}

vrnvar_shared pow(vrn_vm_context&, arguments& given) {
  const double base = number(given, 0);
  return var_float(std::pow(base, number(given, 1)));
}

vrnvar_shared atan2(vrn_vm_context&, arguments& given) {
  const double y = number(given, 0);
  return var_float(std::atan2(y, number(given, 1)));
}

vrnvar_shared fract(vrn_vm_context&, arguments& given) {
  const double x = number(given, 0);
  return var_float(x - std::floor(x));
}

vrnvar_shared lerp(vrn_vm_context&, arguments& given) {
  const double from = number(given, 0);
  const double to = number(given, 1);
  return var_float((to - from) * number(given, 2) + from);
}

vrnvar_shared smoothstep(vrn_vm_context&, arguments& given) {
  const double from = number(given, 0);
  const double to = number(given, 1);
  double t = (number(given, 2) - from) / (to - from);
  if (t < 0.0) t = 0.0;
  if (!(t <= 1.0)) t = 1.0;  // a NaN, of equal edges, too
  return var_float(t * t * (3.0 - 2.0 * t));
}

vrnvar_shared sign(vrn_vm_context&, arguments& given) {
  const double x = number(given, 0);
  return var_float(x > 0.0 ? 1.0 : x < 0.0 ? -1.0 : 0.0);
}

}  // namespace vorn::builtin
