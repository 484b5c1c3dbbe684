// Native functions made from plain ones: what scripts pass and get, call by call.
#include <vornscript/native.hpp>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

int add(int a, const int& b) noexcept { return a + b; }

struct counter {
  int operator()() { return ++count; }
  int count = 0;
};

void register_functions(vrnscript& script) {
  script.register_function("add", add);
  script.register_function("count", counter());
  script.register_function("i8", [](std::int8_t a) { return a; });
  script.register_function("i64", [](std::int64_t a) { return a; });
  script.register_function("u64", [](unsigned long long a) { return a / 2 * 2; });
  script.register_function("u64_half", [](unsigned long a) { return a / 2; });
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
  const struct {
    const char* text;
    strings out, errors;
  } rows[] = {
      {"print(add(1, 2), add('3', 4.9));", {"3", "7"}, {}},
      {"print(count()); print(count());", {"1", "2"}, {}},
      {"print(i8(-129), i8(128), i8(127.9), i8(-1e300), i8('500'));",
       {"-128", "127", "127", "-128", "127"},
       {}},
      {"print(i64(1e30), i64(-1e30), i64(sqrt(-1)), i64(9.2e18));",
       {"9223372036854775807", "-9223372036854775808", "-9223372036854775808",
        "9200000000000000000"},
       {}},
      {"print(u64(-1), u64(-0.5), u64(1e19), u64_half(1e19), u64_half(1e300));",
       {"0", "0", "9223372036854775807", "5000000000000000000", "9223372036854775807"},
       {}},
      {"print(yes(-3), yes(0.5), yes('1'), yes(0));", {"1", "0", "1", "0"}, {}},
      {"print(half(3), half('1.5'), half(1e300));", {"1.500000", "0.750000", "inf"}, {}},
      {"print(text('a'), text(1), text(1.5), first('abcd'), first(1234), first(-12.5));",
       {"a!", "1!", "1.500000!", "abc", "123", "-12"},
       {}},
      {"print(both(123456, 7.5), both('x', nil));", {"123456|7.500000", "x|"}, {}},
      {"a = 1; b = 'b'; print(set(a, b) + a);", {"b7"}, {}},
      {"print(vtype(nothing(1)), vtype(some(0)));", {"none", "none"}, {}},
      {"print(vtype(no_value()));", {"none"}, {}},
      {"stop(8); print('on');", {"on"}, {}},
      {"print(some(1), some(1, 2), some(1, 2, 3.5));", {"-1none", "2none", "23.500000"}, {}},
      // Conversions complain from the first argument to the last.
      {"fn() {} add(fn, nil);",
       {},
       {"get_int() not implemented for type: 9", "get_int() not implemented for type: 1"}},
  };
  for (const auto& [text, out, errors] : rows) {
    script_host host;
    register_functions(host.script);
    EXPECT_EQ(host.output_of(text), out) << text;
    EXPECT_EQ(host.log->texts(vrn_log_level::error), errors) << text;
  }
}

}  // namespace
}  // namespace vorn::test
