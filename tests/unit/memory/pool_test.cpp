#include "memory/pool.hpp"

#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/value_pools.hpp"

namespace vorn {
namespace {

using values_pool = vrn_value_pools::values_pool;
using messages = std::vector<std::string>;

const std::string already_free =
    "Additionally, the variable was already free'd. Check for mem corruptions.";

std::vector<vrnvar*> take_many(values_pool& pool, std::size_t count) {
  std::vector<vrnvar*> taken(count);
  for (vrnvar*& object : taken) object = pool.take();
  return taken;
}

class pool_test : public testing::Test {
 protected:
  // Those since the last look.
  messages errors() {
    messages texts = host_.log->texts(vrn_log_level::error);
    host_.log->records.clear();
    return texts;
  }

  test::script_host host_;
};

// Five values are taken, some of them released, and one more is released with another slot byte.
TEST_F(pool_test, wrong_slot_bytes) {
  const std::tuple<std::vector<std::size_t>, std::uint8_t, bool> rows[] = {
      {{}, 1, true},                  // goes back; it has claimed a slot in use
      {{}, 4, false},                 // the slot taken last, which counts as free
      {{1}, 1, false},                // a slot that has come back
      {{0, 1, 2, 3, 4}, 255, false},  // no slot, in a wholly free chunk
  };
  for (const auto& [released, claimed, goes_back] : rows) {
    values_pool pool;
    const auto taken = take_many(pool, 5);
    std::set<vrnvar*> out(taken.begin(), taken.end());
    for (const std::size_t k : released) {
      pool.give_back(taken[k]);
      out.erase(taken[k]);
    }
    taken[3]->slot = claimed;
    pool.give_back(taken[3]);
    const auto address = [](const void* of) { return testing::PrintToString(of); };
    const std::string number = std::to_string(claimed);
    messages expected = {"invalid pool magic num: (nil) vs 0xffabcdef",
                         "invalid variable pool memory! " + number,
                         "Seems like variable " + address(taken[3]) + " belongs to pool " +
                             address(taken[0]) + ", offset was " + number + ", but actually is 3."};
    if (!goes_back) expected.push_back(already_free);
    EXPECT_EQ(errors(), expected);
    if (goes_back) out.erase(taken[3]);
    taken[3]->slot = 3;
    for (vrnvar* value : take_many(pool, 255 - out.size())) {
      EXPECT_TRUE(out.insert(value).second) << "handed out twice";
    }
    for (vrnvar* value : out) pool.give_back(value);
    // Nothing goes past the end of a free stack.
    pool.give_back(taken[0]);
    EXPECT_EQ(errors(), messages{already_free});
  }
}

TEST_F(pool_test, the_heap_fills_its_chunks) {
  using heap = values_pool::heap;
  std::vector<vrnvar*> taken(2 * chunk_slots);
  std::set<const void*> regions;
  for (vrnvar*& object : taken) regions.insert(values_pool::region::of(object = heap::take()));
  EXPECT_LE(regions.size(), 3U);
  for (vrnvar* object : taken) heap::give_back(object);
}

// Another thread releases them all.
void release_elsewhere(const std::vector<vrnvar*>& objects) {
  std::thread([&objects] {
    for (vrnvar* value : objects) values_pool::release(value, nullptr);
  }).join();
}

TEST_F(pool_test, ring_holds_1024_and_is_drained_under_the_lock_only) {
  vrn_interpreter_mutex mutex;
  values_pool pool(&mutex);
  release_elsewhere(take_many(pool, 1024));
  pool.drain();
  EXPECT_EQ(pool.live_count(), 1024U);
  const vrn_interpreter_lock lock(mutex);
  std::thread([&pool] { pool.drain(); }).join();
  EXPECT_EQ(pool.live_count(), 1024U);
  pool.drain();
  EXPECT_EQ(pool.live_count(), 0U);
}

// Where the ring's end is passed. A take hands out first what has come back last.
TEST_F(pool_test, objects_side_by_side_in_time_are_not_so_in_the_ring) {
  values_pool pool;
  release_elsewhere(take_many(pool, 1023));
  pool.drain();
  const auto taken = take_many(pool, 10);
  release_elsewhere(taken);
  pool.drain();
  for (const std::size_t k : {0U, 8U, 7U, 6U, 5U, 4U, 3U, 2U, 9U, 1U}) {
    EXPECT_EQ(pool.take(), taken[k]);
  }
  for (vrnvar* object : taken) pool.give_back(object);
}

}  // namespace
}  // namespace vorn
