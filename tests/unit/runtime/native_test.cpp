// Native functions made from plain ones: what scripts pass and get, call by call.
#include <vornscript/native.hpp>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

int add(int a, const int& b) noexcept { return a + b; }

void register_functions(vrnscript& script) {
  script.register_function("add", add);
  script.register_function("count", [count = 0]() mutable { return ++count; });
  script.register_function("i8", [](std::int8_t a) { return a; });
  script.register_function("i64", [](std::int64_t a) { return a; });
  script.register_function("u64", [](unsigned long long a) { return a / 2 * 2; });
  script.register_function("u64_half", [](std::uint64_t a) { return a / 2; });
  script.register_function("yes", [](bool a) { return a; });
  script.register_function("half", [](float a) { return a / 2; });
  script.register_function("text", [](std::string a) { return a += "!"; });
  script.register_function("first", [](std::string_view a) { return a.substr(0, 3); });
  script.register_function("both", [](std::string_view a, const std::string_view& b) {
    return std::string(a) + '|' + std::string(b);
  });
  script.register_function("set", [](vrnvar_shared a, const vrnvar_shared& b) {
    vrnvar_shared own = std::move(a);
    own->set_int(7);
    return b;
  });
  script.register_function("nothing", [](const vrnvar_shared&) {});
  script.register_function("no_value", [] { return vrnvar_shared(); });
  script.register_function("stop", [](vrn_vm_context& context, int status) {
    *context.stop_flag = static_cast<std::uint32_t>(status);
  });
  script.register_function(
      "some",
      [](const vrn_vm_context&, int a, std::optional<int> b,
         const std::optional<std::string_view>& c) -> std::optional<std::string> {
        if (a == 0) return std::nullopt;
        return std::to_string(b.value_or(-1)) + std::string(c.value_or("none"));
      });
}

TEST(native_test, calls) {
  script_host host;
  register_functions(host.script);
  const char* const rows[][2] = {
      {"add(1, 2), add('3', 4.9), count(), count()", "3 7 1 2"},
      {"i8(-129), i8(128), i8(127.9), i8(-1e300), i8('500')", "-128 127 127 -128 127"},
      {"i64(1e30), i64(-1e30)", "9223372036854775807 -9223372036854775808"},
      {"i64(sqrt(-1)), u64(-1), u64(-0.5)", "-9223372036854775808 0 0"},
      {"i64(9.2e18), u64(1e19)", "9200000000000000000 9223372036854775807"},
      {"u64_half(1e19), u64_half(1e300)", "5000000000000000000 9223372036854775807"},
      {"yes(-3), yes(0.5), yes('1'), yes(0)", "1 0 1 0"},
      {"half(3), half('1.5'), half(1e300)", "1.500000 0.750000 inf"},
      {"text('a'), text(1), text(1.5)", "a! 1! 1.500000!"},
      {"first('abcd'), first(1234), first(-12.5)", "abc 123 -12"},
      {"both(123456, 7.5), both('x', nil)", "123456|7.500000 x|"},
      {"set(a, 'b') + a", "b7"},
      {"vtype(nothing(1)), vtype(some(0)), vtype(no_value())", "none none none"},
      {"some(1), some(1, 2), some(1, 2, 3.5)", "-1none 2none 23.500000"},
      {"stop(8), 'on'", "on"},
  };
  for (const auto& [arguments, printed] : rows) {
    std::string line;
    for (const auto& each : host.output_of(std::string("print(") + arguments + ")")) {
      line += (line.empty() ? "" : " ") + each;
    }
    EXPECT_EQ(line, printed) << arguments;
    EXPECT_EQ(host.log->texts(vrn_log_level::error), strings()) << arguments;
  }
  // Conversions complain from the first argument to the last.
  host.output_of("fn() {} add(fn, nil);");
  EXPECT_EQ(
      host.log->texts(vrn_log_level::error),
      (strings{"get_int() not implemented for type: 9", "get_int() not implemented for type: 1"}));
}

}  // namespace
}  // namespace vorn::test
