#include "vm/json.hpp"

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

// Up to seven keys lie in the container, more in a table that grows. Of several members with one
// key the last is found; one without a key is listed only.
TEST(json_test, members_are_listed_in_order_and_found_by_key) {
  const test::script_host host;
  for (const std::size_t keys : {7U, 8U, 300U}) {
    vrn_json_container container;
    std::map<std::string, const vrnjson*> last;
    for (std::size_t k = 0; k < 400; ++k) {
      const std::string key(k % keys, 'x');
      const vrnjson* const member = container.add(key);
      EXPECT_EQ(container.at(k), member);
      if (!key.empty()) last[key] = member;
      for (const auto& [name, entry] : last) ASSERT_EQ(container.find(name), entry);
      EXPECT_EQ(container.find(""), nullptr);
      EXPECT_EQ(container.find("missing"), nullptr);
    }
    container.clear();
    EXPECT_EQ(container.size(), 0U);
    EXPECT_EQ(container.find("x"), nullptr);
  }
}

}  // namespace
}  // namespace vorn
