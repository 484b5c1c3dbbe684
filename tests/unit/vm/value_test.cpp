#include <vornscript/value.hpp>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <map>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/json.hpp"

// Sets a locale that writes a comma for the point; false where there is no way to make one.
bool set_comma_locale();

namespace vorn {
namespace {

vrn_json_container& members_of(const vrnvar& value) { return value.as<vrnvar_ptr_json>()->members; }

vrnvar_shared ref_to(const vrnvar_shared& target) {
  vrnvar_shared value = var_none();
  value->set_ref(target);
  return value;
}

// A value of a type with something in it.
vrnvar_shared filled(vrn_type type) {
  vrnvar_shared value = var_int(7);
  value->set_type(type);
  if (type == vrn_type::string) value->set_string("more than lies in the object itself");
  if (type == vrn_type::json) members_of(*value).add("key")->value.set_string("inner");
  if (type == vrn_type::class_) value->as<vrnvar_ptr_function>()->members = {var_int(1)};
  return type == vrn_type::ref ? ref_to(var_int(5)) : value;
}

std::string shown(const vrnvar* value) {
  if (!value) return "nothing";
  std::string text = std::string(type_name(value->type)) + ":" + value->to_text();
  if (value->type == vrn_type::ref) return text + shown(value->as<vrnvar>());
  if (value->type != vrn_type::json || members_of(*value).size() == 0) return text;
  const vrnjson* const member = members_of(*value).at(0);
  return text + std::string(member->key.view()) + shown(&member->value);
}

class value_test : public testing::Test {
 protected:
  ~value_test() override {
    const vrn_value_pools& pools = host_.script.state().pools;
    EXPECT_EQ(pools.values.live_count() + pools.strings.live_count(), 0U);
  }

  test::script_host host_;
};

TEST_F(value_test, every_type_becomes_every_type) {
  for (int pair = 0; pair < 12 * 12; ++pair) {
    const auto to = static_cast<vrn_type>(pair % 12);
    const vrnvar_shared source = filled(to);
    const vrnvar_shared changed = filled(static_cast<vrn_type>(pair / 12));
    const vrnvar_shared fresh = var_none();
    fresh->set_type(to);
    changed->set_type(to);
    EXPECT_EQ(shown(changed.get()), shown(fresh.get())) << pair;
    changed->copy_from(source.get());
    EXPECT_EQ(shown(changed.get()), shown(source.get())) << pair;
  }
}

// Another thread drops what a value has in it, then its payload, then the value.
TEST_F(value_test, every_part_of_a_value_comes_back_from_another_thread) {
  for (int type = 0; type < 12; ++type) {
    std::thread([value = filled(static_cast<vrn_type>(type))]() mutable {
      value->set_type(value->type);
      value->set_type(vrn_type::none);
      value = {};
    }).join();
  }
  host_.script.tick();
  EXPECT_EQ(test::live_objects(host_.script), 0U);
}

TEST_F(value_test, circles_of_refs) {
  // Each ref's target by its number; the start is ref 0.
  const std::vector<std::size_t> circles[] = {{0}, {1, 2, 3, 0}, {1, 1}, {1, 2, 3, 4, 5, 4}};
  for (const auto& targets : circles) {
    std::vector<vrnvar_shared> refs;
    for (std::size_t k = 0; k < targets.size(); ++k) refs.push_back(ref_to({}));
    for (std::size_t k = 0; k < targets.size(); ++k) refs[k]->set_ref(refs[targets[k]]);
    testing::internal::CaptureStderr();
    const vrnvar_shared end = refs[0].deref();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning: circular reference detected in deref().\n");
    // A circle through the start ends with the ref before it, any other one at any of its refs.
    EXPECT_TRUE(targets.back() == 0 ? end.get() == refs.back().get() : end->type == vrn_type::ref);
    refs.back()->set_type(vrn_type::none);
  }
}

TEST_F(value_test, long_chains_and_deep_nests) {
  const vrnvar_shared nest = var_none();
  vrnvar* innermost = nest.get();
  vrnvar_shared chain = var_string("the end");
  vrnvar_shared kept;
  for (int k = 0; k < 100'000; ++k) {
    innermost->set_type(vrn_type::json);
    innermost = &members_of(*innermost).add("key")->value;
    const vrnvar_shared next = var_none();
    next->set_type(vrn_type::class_);
    next->as<vrnvar_ptr_function>()->members = {chain};
    chain = ref_to(next);
    if (k == 500) kept = next;
  }
  chain = {};
  EXPECT_EQ(kept->type, vrn_type::class_);
  var_none()->copy_from(nest.get());
}

TEST_F(value_test, conversions) {
  std::istringstream rows(
      "\t\n\v\f\r-17x|+-5|+ 5|+5|9223372036854775808|-9223372036854775809| "
      "1.5|-1.5|+1.5e2x|-.5|"
      "-|-0|1e+|1e400|-1e400|5e-324|-1e-400|0.0001e313|100000e-400|0x1F|-0X.8p1|0x|0x.p1|0x1p+-2|"
      "0x1p1024|0xfp-1080|0x-1|0xinf|-Infinity|+inf");
  std::vector<std::pair<std::string, double>> expected;
  for (std::string text; std::getline(rows, text, '|');) {
    expected.emplace_back(text, std::strtod(text.c_str(), nullptr));
  }
  const bool has_comma = set_comma_locale();
  for (const auto& [text, number] : expected) {
    EXPECT_EQ(var_string(text)->get_int(), std::atoll(text.c_str())) << text;
    EXPECT_EQ(var_string(text)->get_float(), number) << text;
    EXPECT_EQ(std::signbit(var_string(text)->get_float()), std::signbit(number)) << text;
  }
  EXPECT_TRUE(std::isnan(var_string("-nan(1)")->get_float()));
  // Not every C library gives 0.
  EXPECT_FALSE(std::signbit(var_string("-+5")->get_float()));
  EXPECT_EQ(var_float(2.5)->to_text(), "2.500000");
  std::setlocale(LC_NUMERIC, "C");
  EXPECT_EQ(var_float(0x1p63)->get_int(), INT64_MIN);
  EXPECT_EQ(var_float(NAN)->get_int(), INT64_MIN);
  if (!has_comma) GTEST_SKIP() << "no such locale here: read in the \"C\" locale only";
}

// Up to seven keys lie in the container, more in a table that grows. Of several members with one
// key the last is found; one without a key is listed only.
TEST_F(value_test, members_are_listed_in_order_and_found_by_key) {
  for (const std::size_t keys : {7U, 300U}) {
    vrn_json_container container;
    std::map<std::string, const vrnjson*> last;
    for (std::size_t k = 0; k < 400; ++k) {
      const std::string key(k % keys, 'x');
      const vrnjson* const member = container.add(key);
      EXPECT_EQ(container.at(k), member);
      last[key] = key.empty() ? nullptr : member;
      for (const auto& [name, entry] : last) ASSERT_EQ(container.find(name), entry);
    }
    container.clear();
    EXPECT_EQ(container.find("x"), nullptr);
  }
}

}  // namespace
}  // namespace vorn
