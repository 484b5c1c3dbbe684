#include "memory/pool.hpp"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/collecting_log.hpp"
#include "vm/value_pools.hpp"

namespace vorn {
namespace {

using values_pool = vrn_value_pools::values_pool;
using messages = std::vector<std::string>;

const std::string already_free =
    "Additionally, the variable was already free'd. Check for mem corruptions.";

messages of_wrong_place(const char* magic, const void* object, const void* chunk, int claimed,
                        int actual) {
  char text[200];
  std::snprintf(text, sizeof text,
                "Seems like variable %p belongs to pool %p, offset was %i, but actually is %i.",
                object, chunk, claimed, actual);
  return {"invalid pool magic num: " + std::string(magic) + " vs 0xffabcdef",
          "invalid variable pool memory! " + std::to_string(claimed), text};
}

template <class Pool>
auto take_many(Pool& pool, std::size_t count) {
  std::vector<decltype(pool.take())> taken(count);
  for (auto& object : taken) object = pool.take();
  return taken;
}

template <class Pool, class Objects>
void release_all(const Objects& objects, Pool& own) {
  for (auto* object : objects) Pool::release(object, &own);
}

class pool_test : public testing::Test {
 protected:
  pool_test() { log_override = &log_; }
  ~pool_test() override {
    EXPECT_EQ(errors(), messages());
    log_override = nullptr;
  }

  // Those since the last look.
  messages errors() {
    messages texts = log_.texts(vrn_log_level::error);
    log_.records.clear();
    return texts;
  }

 private:
  test::collecting_log log_;
};

template <class Pool>
class any_pool_test : public pool_test {};
using five = testing::Types<vrn_value_pools::callables, values_pool, vrn_value_pools::entries,
                            vrn_value_pools::containers, vrn_value_pools::texts>;
TYPED_TEST_SUITE(any_pool_test, five);

TYPED_TEST(any_pool_test, hands_out_in_order_and_reuses_what_came_last) {
  TypeParam pool;
  auto taken = take_many(pool, 255);
  for (std::size_t k = 0; k < 255; ++k) {
    EXPECT_EQ(taken[k], taken[0] + k);
    EXPECT_EQ(taken[k]->pool_slot(), k);
  }
  EXPECT_EQ(pool.chunk_count(), 1U);
  taken.push_back(pool.take());
  EXPECT_EQ(taken[255]->pool_slot(), 0U);
  EXPECT_EQ(pool.chunk_count(), 2U);

  // The first chunk, found full before, comes first again once it has a free slot.
  for (const std::size_t k : {7U, 3U, 9U}) pool.give_back(taken[k]);
  for (const std::size_t k : {9U, 3U, 7U}) EXPECT_EQ(pool.take(), taken[k]);
  taken.push_back(pool.take());
  EXPECT_EQ(taken[256], taken[255] + 1);

  EXPECT_EQ(pool.live_count(), 257U);
  release_all(taken, pool);
  EXPECT_EQ(pool.live_count(), 0U);
  EXPECT_EQ(pool.chunk_count(), 2U);
}

TYPED_TEST(any_pool_test, objects_of_threads_without_an_interpreter) {
  TypeParam pool;
  std::vector<decltype(pool.take())> made(600);
  std::thread([&made] {
    for (auto& object : made) object = TypeParam::take_from(nullptr);
  }).join();
  for (auto* object : made) EXPECT_EQ(object->pool_slot(), 255U);
  made[0]->pool_slot() = 3;
  TypeParam::release(made[0], &pool);
  EXPECT_EQ(this->errors(),
            (messages{"invalid pool magic num: (nil) vs 0xffabcdef",
                      "invalid variable pool memory! 3", "unknown var encountered."}));
  made[0]->pool_slot() = 255;
  for (std::size_t k = 0; k < 600; ++k) TypeParam::release(made[k], k % 2 ? &pool : nullptr);
  EXPECT_EQ(pool.chunk_count(), 0U);
}

TYPED_TEST(any_pool_test, objects_may_outlive_their_pool) {
  std::optional<TypeParam> pool(std::in_place);
  const auto taken = take_many(*pool, 4 * 255);
  for (std::size_t k = 511; k < taken.size(); ++k) pool->give_back(taken[k]);
  pool.reset();
  EXPECT_EQ(this->errors(), messages(3, "There are still pool chunks allocated!"));
  TypeParam other;
  for (std::size_t k = 0; k < 511; ++k) TypeParam::release(taken[k], k % 2 ? &other : nullptr);
}

// Into an intact chunk it is not noticed, but nothing goes past the end of the free stack.
TEST_F(pool_test, double_release) {
  values_pool pool;
  const auto taken = take_many(pool, 2);
  pool.give_back(taken[0]);
  pool.give_back(taken[0]);
  EXPECT_EQ(errors(), messages());
  pool.give_back(taken[1]);
  EXPECT_EQ(errors(), messages{already_free});
}

// Five values are taken, some of them released, and one more is released with another slot byte.
TEST_F(pool_test, wrong_slot_bytes) {
  struct row {
    const char* claim;
    std::vector<std::size_t> released;
    std::uint8_t victim, claimed;
    bool goes_back;
  };
  const std::vector<row> rows = {
      {"a slot in use", {}, 3, 1, true},
      {"no slot", {}, 3, 255, true},
      {"the slot taken last, which counts as free", {}, 3, 4, false},
      {"a free slot", {}, 3, 200, false},
      {"a slot that has come back", {1}, 3, 1, false},
      {"a slot in use, of an object that has come back", {3}, 3, 1, false},
      {"no slot, in a wholly free chunk", {0, 1, 2, 3, 4}, 2, 255, false},
  };
  for (const row& each : rows) {
    SCOPED_TRACE(each.claim);
    values_pool pool;
    const auto taken = take_many(pool, 5);
    std::set<vrnvar*> out(taken.begin(), taken.end());
    for (const std::size_t k : each.released) {
      pool.give_back(taken[k]);
      out.erase(taken[k]);
    }
    vrnvar* const victim = taken[each.victim];
    victim->slot = each.claimed;
    values_pool::release(victim, &pool);
    messages expected = of_wrong_place("(nil)", victim, taken[0], each.claimed, each.victim);
    if (!each.goes_back) expected.push_back(already_free);
    EXPECT_EQ(errors(), expected);

    if (each.goes_back) out.erase(victim);
    EXPECT_EQ(pool.live_count(), out.size());
    victim->slot = each.victim;
    for (vrnvar* value : take_many(pool, 255 - out.size())) {
      EXPECT_TRUE(out.insert(value).second) << "handed out twice";
    }
    release_all(out, pool);
  }
}

TEST_F(pool_test, wrong_magic) {
  values_pool pool;
  const auto taken = take_many(pool, 2);
  auto& chunk = values_pool::region::of(taken[0])->chunk;
  chunk.magic = 0x1234;
  pool.give_back(taken[0]);
  EXPECT_EQ(errors(), of_wrong_place("0x1234", taken[0], &chunk, 0, 0));
  chunk.magic = chunk_alive;
  pool.give_back(taken[1]);
}

TEST_F(pool_test, ring_holds_1024_and_is_drained_under_the_lock_only) {
  vrn_interpreter_mutex mutex;
  values_pool pool(&mutex);
  const auto taken = take_many(pool, 1024);
  std::thread([&taken] {
    values_pool own;
    release_all(taken, own);
  }).join();
  pool.drain();
  EXPECT_EQ(pool.live_count(), 1024U);
  {
    const vrn_interpreter_lock lock(mutex);
    { const vrn_interpreter_lock again(mutex); }
    EXPECT_TRUE(mutex.held_by_caller());
    std::thread([&pool] { pool.drain(); }).join();
    EXPECT_EQ(pool.live_count(), 1024U);
    pool.drain();
  }
  EXPECT_FALSE(mutex.held_by_caller());
  EXPECT_EQ(pool.live_count(), 0U);
}

}  // namespace
}  // namespace vorn
