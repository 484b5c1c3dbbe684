#include <vornscript/value.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

using strings = std::vector<std::string>;

const std::string long_text = "12 and more than lies in the object";

constexpr vrn_type types[] = {
#define VRN_VALUE_TYPE(identifier, name) vrn_type::identifier,
#include <vornscript/value_types.def>
#undef VRN_VALUE_TYPE
};

vrn_json_container& members_of(const vrnvar& value) { return value.as<vrnvar_ptr_json>()->members; }
vrnvar_ptr_function& callable(const vrnvar& value) { return *value.as<vrnvar_ptr_function>(); }

vrnvar_shared empty(vrn_type type) {
  vrnvar_shared value = var_none();
  value->set_type(type);
  return value;
}

// A value of a type, with something in it.
vrnvar_shared filled(vrn_type type) {
  vrnvar_shared value = empty(type);
  if (type == vrn_type::error) value->payload = 7;
  if (type == vrn_type::integer) value->set_int(7);
  if (type == vrn_type::floating) value->set_float(2.5);
  if (type == vrn_type::string) value->set_string(long_text);
  if (type == vrn_type::json) {
    members_of(*value).add("key")->value.set_string("inner");
    members_of(*value).add("")->value.set_type(vrn_type::json);
  }
  if (type == vrn_type::class_) callable(*value).members = {var_int(1), var_string("member")};
  if (type == vrn_type::class_ || type == vrn_type::function) {
    callable(*value).routine = vrnptr<vrn_program_block_routine>(3, 4);
  }
  if (type == vrn_type::ref) value->set_ref(var_int(5));
  return value;
}

// All that a value is made of.
std::string shown(const vrnvar& value) {
  std::string text = std::string(type_name(value.type)) + ":";
  if (value.type == vrn_type::json) {
    for (std::size_t k = 0; k < members_of(value).size(); ++k) {
      const vrnjson* member = members_of(value).at(k);
      text += "{" + std::string(member->key.view());
      text += (members_of(value).find(member->key.view()) == member ? "=" : ":") +
              shown(member->value) + "}";
    }
  } else if (value.type == vrn_type::class_ || value.type == vrn_type::function) {
    const vrnvar_ptr_function& payload = callable(value);
    text +=
        std::to_string(payload.routine.index) + "/" + std::to_string(payload.routine.generation);
    for (const auto& member : payload.members) text += " " + testing::PrintToString(member.get());
  } else {
    text += value.type == vrn_type::string ? value.to_text() : std::to_string(value.payload);
  }
  return text;
}

class value_test : public testing::Test {
 protected:
  ~value_test() override { EXPECT_EQ(live(), 0U); }

  // Those since the last look.
  strings errors() {
    strings texts = host_.log->texts(vrn_log_level::error);
    host_.log->records.clear();
    return texts;
  }

  // The objects out of all five pools.
  std::uint64_t live() const {
    const vrn_value_pools& pools = host_.script.state().pools;
    return pools.functions.live_count() + pools.values.live_count() +
           pools.json_values.live_count() + pools.json.live_count() + pools.strings.live_count();
  }

  test::script_host host_;
};

TEST_F(value_test, every_type_becomes_every_type) {
  for (const vrn_type from : types) {
    for (const vrn_type to : types) {
      SCOPED_TRACE(std::string(type_name(from)) + " to " + std::string(type_name(to)));
      const bool reuses = from == to && empty(to)->payload != 0;
      const vrnvar_shared source = filled(to);
      const std::string before = shown(*source);
      for (const bool copies : {false, true}) {
        const vrnvar_shared value = filled(from);
        const std::uint64_t payload = value->payload;
        value->marker = value->reserved = 1;
        if (copies) {
          value->copy_from(source.get());
          EXPECT_EQ(shown(*value), before);
        } else {
          value->set_type(to);
          // A class that becomes a class keeps its members.
          if (reuses && to == vrn_type::class_) callable(*value).members.clear();
          EXPECT_EQ(shown(*value), shown(*empty(to)));
        }
        EXPECT_TRUE(!reuses || value->payload == payload);
        EXPECT_EQ(value->marker, reuses ? 1 : 0);
        EXPECT_EQ(value->reserved, 1);
        EXPECT_EQ(value->refcount, 1U);
      }
      source->copy_from(source.get());
      source->copy_from(nullptr);
      EXPECT_EQ(shown(*source), before);
    }
  }
  errors();  // of the classes, whose copies claim their source's slot
}

TEST_F(value_test, as_text_and_numbers) {
  const std::map<vrn_type, std::string> known = {{vrn_type::integer, "7,7,7.000000"},
                                                 {vrn_type::floating, "2.500000,2,2.500000"},
                                                 {vrn_type::string, long_text + ",12,12.000000"}};
  for (const vrn_type type : types) {
    const vrnvar_shared value = filled(type);
    std::string seen = value->to_text();
    seen += "," + std::to_string(value->get_int());
    seen += "," + std::to_string(value->get_float());
    for (const std::string& error : errors()) seen += "," + error;
    std::string unknown = type == vrn_type::error ? "ERROR,0,0.000000" : ",0,0.000000";
    for (const char* operation : {",get_int", ",get_float"}) {
      unknown += operation;
      unknown += "() not implemented for type: " + std::to_string(static_cast<int>(type));
    }
    EXPECT_EQ(seen, known.contains(type) ? known.at(type) : unknown);
  }
}

TEST_F(value_test, numbers_are_read_and_written_like_those_of_c) {
  std::istringstream texts(
      "|42|  "
      "42abc|\t\n\v\f\r-17|+5|+-5|-+5|--5|-|+|abc|1e3|9223372036854775807|007|0x1F|-0X1p3|1.5|"
      "9223372036854775808|-9223372036854775808|-9999999999999999999|+9223372036854775808|.5|-.5|5."
      "|.|1e|1e+|1e-3|+1.25e2x|inf|-Infinity|1e400|-1e400|1e-400|5e-324| 2.5|1,5|0.1");
  for (std::string text; std::getline(texts, text, '|');) {
    EXPECT_EQ(var_string(text)->get_int(), std::atoll(text.c_str())) << text;
    EXPECT_EQ(var_string(text)->get_float(), std::atof(text.c_str())) << text;
  }
  std::vector<double> numbers = {0.0, -0.0, 0x1p-7, -2.7, 0x1p63, -0x1p63, NAN, -NAN, INFINITY};
  std::mt19937_64 random(1);
  for (int k = 0; k < 5000; ++k) numbers.push_back(std::bit_cast<double>(random()));
  for (const double number : numbers) {
    char text[400];
    std::snprintf(text, sizeof text, "%f", number);
    EXPECT_EQ(var_float(number)->to_text(), text);
    const bool fits = number >= -0x1p63 && number < 0x1p63;
    EXPECT_EQ(var_float(number)->get_int(), fits ? static_cast<std::int64_t>(number) : INT64_MIN);
  }
}

TEST_F(value_test, copies_of_what_hangs_on_the_target) {
  const vrnvar_shared value = empty(vrn_type::json);
  vrnvar& member = members_of(*value).add("a")->value;
  member.set_type(vrn_type::json);
  members_of(member).add("b")->value.set_string("text");
  value->copy_from(&member);
  EXPECT_EQ(shown(*value), "json:{b=string:text}");
  // The other way round, the member has become an empty json by the time it is copied.
  members_of(*value).at(0)->value.copy_from(value.get());
  EXPECT_EQ(shown(*value), "json:{b=json:{b=json:}}");
  members_of(*value).at(0)->value.set_string("text");
  value->copy_from(&members_of(*value).at(0)->value);
  value->set_string(value->string_text().substr(1));
  EXPECT_EQ(shown(*value), "string:ext");

  const vrnvar_shared outer = empty(vrn_type::class_);
  callable(*outer).members = {filled(vrn_type::class_), var_int(1), var_int(2)};
  const std::string expected = shown(*callable(*outer).members[0]);
  const std::uint8_t slot = callable(*outer).slot;
  outer->copy_from(callable(*outer).members[0].get());
  EXPECT_EQ(shown(*outer), expected);
  callable(*outer).slot = slot;

  const vrnvar_shared ref = filled(vrn_type::ref);
  ref->set_ref(vrnvar_shared(ref->as<vrnvar>()));
  ref->copy_from(ref->as<vrnvar>());
  EXPECT_EQ(shown(*ref), "int:5");
}

TEST_F(value_test, copied_class_claims_the_slot_of_its_source) {
  const vrnvar_shared pooled = filled(vrn_type::class_);
  vrnvar_shared unpooled;
  std::thread([&unpooled] { unpooled = filled(vrn_type::class_); }).join();
  for (const auto& [source, claimed] : {std::pair{pooled, "0"}, std::pair{unpooled, "255"}}) {
    vrnvar_shared copy = var_none();
    copy->copy_from(source.get());
    EXPECT_EQ(std::to_string(callable(*copy).slot), claimed);
    copy = {};
    const strings found = errors();
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[1], std::string("invalid variable pool memory! ") + claimed);
    EXPECT_TRUE(found[2].ends_with(std::string(claimed) + ", but actually is 1."));
  }
}

TEST_F(value_test, circles_of_refs) {
  // Each ref's target by its number; the start is ref 0.
  const std::vector<std::size_t> circles[] = {{0},    {1, 0},       {1, 2, 3, 0},
                                              {1, 1}, {1, 2, 3, 1}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 8}};
  for (const auto& targets : circles) {
    std::vector<vrnvar_shared> refs(targets.size());
    for (auto& ref : refs) ref = var_none();
    for (std::size_t k = 0; k < refs.size(); ++k) refs[k]->set_ref(refs[targets[k]]);
    testing::internal::CaptureStderr();
    const vrnvar_shared end = refs[0].deref();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Warning: circular reference detected in deref().\n");
    // A circle through the start ends with the ref before it, any other one at any of its refs.
    EXPECT_TRUE(targets.back() == 0 ? end.get() == refs.back().get() : end->type == vrn_type::ref);
    for (auto& ref : refs) ref->set_type(vrn_type::none);
    EXPECT_EQ(refs[0].deref().get(), refs[0].get());
  }
  EXPECT_FALSE(vrnvar_shared().deref());
  EXPECT_FALSE(empty(vrn_type::ref).deref());
}

TEST_F(value_test, long_chains_and_deep_nests) {
  const std::vector<vrn_type> cycles[] = {{vrn_type::ref},
                                          {vrn_type::json},
                                          {vrn_type::class_},
                                          {vrn_type::class_, vrn_type::ref, vrn_type::json}};
  for (const auto& links : cycles) {
    vrnvar_shared chain = var_string("the end");
    for (std::size_t k = 0; k < 99'999; ++k) {
      vrnvar_shared next = empty(links[k % links.size()]);
      if (next->type == vrn_type::ref) {
        next->set_ref(chain);
      } else if (next->type == vrn_type::class_) {
        callable(*next).members.push_back(chain);
      } else {
        vrnvar& member = members_of(*next).add("key")->value;
        std::swap(member.payload, chain->payload);
        std::swap(member.type, chain->type);
      }
      chain = std::move(next);
    }
    vrnvar_shared copy = var_none();
    if (chain->type == vrn_type::json) copy->copy_from(chain.get());
    EXPECT_GT(live(), 100'000U);
    chain = {};
    copy = {};
    EXPECT_EQ(live(), 0U);
  }
}

TEST_F(value_test, made_on_a_thread_without_an_interpreter) {
  std::vector<vrnvar_shared> made;
  std::thread([&made] {
    for (const vrn_type type : types) made.push_back(filled(type));
  }).join();
  EXPECT_EQ(live(), 0U);
  for (const auto& value : made) EXPECT_EQ(value->slot, 255);
  made.clear();
  EXPECT_EQ(errors(), strings());
}

}  // namespace
}  // namespace vorn
