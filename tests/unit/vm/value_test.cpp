#include <vornscript/value.hpp>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

vrn_json_container& members_of(const vrnvar& value) { return value.as<vrnvar_ptr_json>()->members; }
vrnvar_ptr_function& callable(const vrnvar& value) { return *value.as<vrnvar_ptr_function>(); }

// A value of a type; the filled one has something in it.
vrnvar_shared empty(vrn_type type) {
  vrnvar_shared value = var_none();
  value->set_type(type);
  return value;
}
vrnvar_shared filled(vrn_type type) {
  vrnvar_shared value = empty(type);
  if (type == vrn_type::integer || type == vrn_type::floating) value->payload = 7;
  if (type == vrn_type::string) value->set_string("more than lies in the object itself");
  if (type == vrn_type::json) members_of(*value).add("key")->value.set_string("inner");
  if (type == vrn_type::class_) callable(*value).members = {var_int(1)};
  if (type == vrn_type::ref) value->set_ref(var_int(5));
  return value;
}

// All that a value is made of.
std::string shown(const vrnvar& value) {
  std::string text = std::string(type_name(value.type)) + ":";
  if (value.type == vrn_type::string) return text + value.to_text();
  if (value.type == vrn_type::class_ || value.type == vrn_type::function) {
    return text + std::to_string(callable(value).members.size());
  }
  if (value.type != vrn_type::json) return text + std::to_string(value.payload);
  for (std::size_t k = 0; k < members_of(value).size(); ++k) {
    const vrnjson* member = members_of(value).at(k);
    text += "{" + std::string(member->key.view()) + "=" + shown(member->value) + "}";
  }
  return text;
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
    const auto from = static_cast<vrn_type>(pair / 12);
    const auto to = static_cast<vrn_type>(pair % 12);
    SCOPED_TRACE(std::string(type_name(from)) + " to " + std::string(type_name(to)));
    const vrnvar_shared source = filled(to);
    const vrnvar_shared changed = filled(from);
    const vrnvar_shared copy = filled(from);
    changed->marker = copy->marker = 1;
    changed->set_type(to);
    copy->copy_from(source.get());
    copy->copy_from(copy.get());
    EXPECT_EQ(shown(*copy), shown(*source));
    // What a type owns is used again; the marker stays then, and so do the members of a class.
    const bool reused = from == to && empty(to)->payload != 0;
    EXPECT_EQ(changed->marker + copy->marker, reused ? 2 : 0);
    const bool keeps = reused && to == vrn_type::class_;
    EXPECT_EQ(shown(*changed), keeps ? "class:1" : shown(*empty(to)));
  }
}

TEST_F(value_test, copies_of_what_hangs_on_the_target) {
  const vrnvar_shared value = empty(vrn_type::json);
  members_of(*value).add("a")->value.copy_from(filled(vrn_type::json).get());
  value->copy_from(&members_of(*value).at(0)->value);
  EXPECT_EQ(shown(*value), "json:{key=string:inner}");

  // A copied class claims its source's slot.
  const vrnvar_shared outer = empty(vrn_type::class_);
  const std::uint8_t slot = callable(*outer).slot;
  callable(*outer).members = {filled(vrn_type::class_), var_int(1)};
  const std::uint8_t claimed = callable(*callable(*outer).members[0]).slot;
  outer->copy_from(callable(*outer).members[0].get());
  EXPECT_EQ(shown(*outer), "class:1");
  EXPECT_EQ(callable(*outer).slot, claimed);
  callable(*outer).slot = slot;
}

TEST_F(value_test, circles_of_refs) {
  // Each ref's target by its number; the start is ref 0.
  const std::vector<std::size_t> circles[] = {{0}, {1, 2, 3, 0}, {1, 1}, {1, 2, 3, 4, 5, 4}};
  for (const auto& targets : circles) {
    std::vector<vrnvar_shared> refs;
    for (std::size_t k = 0; k < targets.size(); ++k) refs.push_back(empty(vrn_type::ref));
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
  for (int k = 0; k < 100'000; ++k) {
    innermost->set_type(vrn_type::json);
    innermost = &members_of(*innermost).add("key")->value;
    const vrnvar_shared next = empty(vrn_type::class_);
    callable(*next).members = {chain};
    chain = var_none();
    chain->set_ref(next);
  }
  var_none()->copy_from(nest.get());
}

TEST_F(value_test, conversions) {
  for (const char* text : {"\t\n\v\f\r-17x", "-+5", "9223372036854775808", "0x1F", "-.5", "1e+",
                           "-9223372036854775809", "-Infinity", "1e400", "5e-324"}) {
    EXPECT_EQ(var_string(text)->get_int(), std::atoll(text)) << text;
    EXPECT_EQ(var_string(text)->get_float(), std::atof(text)) << text;
  }
  EXPECT_EQ(var_float(0x1p63)->get_int(), INT64_MIN);
  EXPECT_EQ(var_float(NAN)->get_int(), INT64_MIN);
}

}  // namespace
}  // namespace vorn
