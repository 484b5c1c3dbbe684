#include "vm/json.hpp"

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

// Up to seven keys lie in the container, more in a table that grows. Of several members with one
// key the last is found; one without a key is listed only.
TEST(json_test, members_are_listed_in_order_and_found_by_key) {
  const test::script_host host;
  for (const std::size_t keys : {1U, 7U, 8U, 300U}) {
    vrn_json_container container;
    std::vector<std::pair<std::string, const vrnjson*>> added;
    std::map<std::string, const vrnjson*> last;
    for (std::size_t k = 0; k < 400; ++k) {
      const std::string key = k % 5 == 4 ? "" : std::string(k % keys, 'x');
      const vrnjson* const member = container.add(key);
      EXPECT_EQ(member->value.type, vrn_type::none);
      added.emplace_back(key, member);
      if (!key.empty()) last[key] = member;
      if (k > 30 && k < 399) continue;
      ASSERT_EQ(container.size(), added.size());
      for (std::size_t at = 0; at < added.size(); ++at) {
        EXPECT_EQ(container.at(at), added[at].second);
        EXPECT_EQ(container.at(at)->key.view(), added[at].first);
      }
      for (const auto& [name, entry] : last) EXPECT_EQ(container.find(name), entry);
      EXPECT_EQ(container.find(""), nullptr);
      EXPECT_EQ(container.find("missing"), nullptr);
    }
    container.clear();
    EXPECT_EQ(container.size(), 0U);
    EXPECT_EQ(container.find("x"), nullptr);
  }
  EXPECT_EQ(host.script.state().pools.json_values.live_count(), 0U);
}

TEST(json_test, texts_of_any_length) {
  vrn_text text;
  for (const std::size_t length : {0U, 1U, 30U, 31U, 5U, 1000U, 2000U, 29U}) {
    const std::string expected(length, 'a');
    text.assign(expected, "bc");
    EXPECT_EQ(text.view(), expected + "bc");
  }
  text.clear();
  EXPECT_EQ(text.view(), "");
}

}  // namespace
}  // namespace vorn
