// Object pools beside malloc and the standard library's pool, on the 16 bytes of a value.
#include <atomic>
#include <cstdlib>
#include <memory_resource>
#include <string>
#include <thread>
#include <vector>

#include <vornscript/thread_state.hpp>

#include "bench/suite.hpp"
#include "vm/value_pools.hpp"

namespace vorn::bench {
namespace {

using values_pool = vrn_value_pools::values_pool;

struct pool_store {
  vrnvar* take() { return values_pool::take_from(&pool); }
  void give_back(vrnvar* value) { values_pool::release(value, &pool); }
  values_pool pool;
};

struct malloc_store {
  static vrnvar* take() { return ::new (std::malloc(sizeof(vrnvar))) vrnvar; }
  static void give_back(vrnvar* value) { std::free(value); }
};

struct pmr_store {
  vrnvar* take() { return ::new (pool.allocate(sizeof(vrnvar), alignof(vrnvar))) vrnvar; }
  void give_back(vrnvar* value) { pool.deallocate(value, sizeof(vrnvar), alignof(vrnvar)); }
  std::pmr::unsynchronized_pool_resource pool;
};

template <class Store>
void one_live(benchmark::State& state, std::size_t) {
  Store store;
  vrnvar* const other = store.take();
  for (auto _ : state) {
    vrnvar* const value = store.take();
    benchmark::DoNotOptimize(value);
    store.give_back(value);
  }
  store.give_back(other);
  set_items(state, "object", 1);
}

template <class Store>
void all_then_all(benchmark::State& state, std::size_t count) {
  Store store;
  std::vector<vrnvar*> live(count);
  for (auto _ : state) {
    for (vrnvar*& value : live) value = store.take();
    for (vrnvar* value : live) store.give_back(value);
  }
  set_items(state, "object", count);
}

template <class Store>
void replaced_at_random(benchmark::State& state, std::size_t count) {
  Store store;
  std::vector<vrnvar*> live(count);
  for (vrnvar*& value : live) value = store.take();
  std::uint64_t random = 1;
  for (auto _ : state) {
    random = random * 6364136223846793005U + 1442695040888963407U;
    vrnvar*& place = live[(random >> 33) % count];
    vrnvar* const old = std::exchange(place, store.take());
    store.give_back(old);
  }
  for (vrnvar* value : live) store.give_back(value);
  set_items(state, "object", 1);
}

template <class Store>
void add_store(std::string_view who) {
  const auto add_one = [who](std::string_view name, auto time, std::size_t count) {
    add({"pool", name, who}, [=](benchmark::State& state) { time(state, count); });
  };
  add_one("1_live", one_live<Store>, 1);
  add_one("10^4_taken_and_given_back", all_then_all<Store>, 10'000);
  add_one("10^6_taken_and_given_back", all_then_all<Store>, 1'000'000);
  add_one("10^4_live_at_random", replaced_at_random<Store>, 10'000);
  add_one("10^6_live_at_random", replaced_at_random<Store>, 1'000'000);
}

// Another thread releases what this one takes back.
void foreign_release(benchmark::State& state) {
  constexpr std::size_t batch = 100'000;
  values_pool pool;
  std::vector<vrnvar*> batch_values(batch);
  for (auto _ : state) {
    for (vrnvar*& value : batch_values) value = pool.take();
    std::thread other([&] {
      for (vrnvar* value : batch_values) values_pool::release(value, nullptr);
    });
    while (pool.live_count() > 0) pool.drain();
    other.join();
  }
  set_items(state, "object", batch);
}

}  // namespace

void add_pools() {
  add_store<pool_store>("ours");
  add_store<malloc_store>("malloc");
  add_store<pmr_store>("pmr");
  add({"pool", "released_by_another_thread", "ours"}, foreign_release)->UseRealTime();
}

}  // namespace vorn::bench
