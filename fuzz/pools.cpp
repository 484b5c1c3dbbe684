// Takes and give-backs over several pools, with foreign threads.
#include <algorithm>
#include <atomic>
#include <charconv>
#include <memory>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include <vornscript/log.hpp>
#include <vornscript/thread_state.hpp>

#include "fuzz/support/byte_source.hpp"
#include "fuzz/support/check.hpp"
#include "fuzz/targets.hpp"
#include "vm/value_pools.hpp"

namespace vorn::fuzz {
namespace {

// Counts the pools that were destroyed while some of their objects were out.
class counting_log final : public vrn_log_base {
 public:
  counting_log() { log_override = this; }
  ~counting_log() override { log_override = nullptr; }

  void error(const std::string& text) override {
    if (text == "There are still pool chunks allocated!") ++chunks_left;
  }

  std::uint64_t chunks_left = 0;
};

// Objects are written with a number, which has to be there when they go back.
void mark(vrnvar& value, std::uint64_t number) { value.set_int(static_cast<std::int64_t>(number)); }
bool is_marked(const vrnvar& value, std::uint64_t number) {
  return value.type == vrn_type::integer && value.payload == number;
}
std::string marking(std::uint64_t number) {
  return std::string(number % 2 == 0 ? 1 : 40, 'x') + std::to_string(number);
}
void mark(vrnvar_ptr_str& payload, std::uint64_t number) { payload.text.assign(marking(number)); }
bool is_marked(const vrnvar_ptr_str& payload, std::uint64_t number) {
  return payload.text.view() == marking(number);
}

// A pool of this thread and one of another, which is alive only while it takes and gives back.
template <class T, template <class> class Chunk>
class pool_pair {
 public:
  using pool = vrn_pool_threadsafe<T, Chunk>;
  using region = vrn_pool_region<T, Chunk>;

  void step(byte_source& source) {
    const std::uint32_t count = amount(source);
    switch (source.below(8)) {
      case 0:
      case 1:
        return take(near_, count);
      case 2:
        return give_back(source, count);
      case 3:
        return foreign([&] { take(far_, count); });
      case 4:
        return take(heap_, count);
      case 5:
        return give_back_elsewhere(source, count);
      case 6:
        return give_back_claiming(source);
      default:
        return foreign([&] { give_back_to(far_.objects.get(), far_, far_.live.size()); });
    }
  }

  // The pools go before what is still out; then that goes too.
  void end() {
    foreign([&] { far_.objects->drain(); });
    near_.objects->drain();
    counting_log log;
    const std::uint64_t expected = chunks_in_use(near_) + chunks_in_use(far_);
    near_.objects.reset();
    far_.objects.reset();
    check(log.chunks_left == expected, "Each chunk in use is told of.");
    for (owner* each : {&near_, &far_, &heap_}) give_back_to(nullptr, *each, each->live.size());
  }

 private:
  struct marked {
    T* object;
    std::uint64_t number;
  };
  struct owner {
    std::unique_ptr<pool> objects;  // none: the heap
    std::vector<marked> live;
    std::size_t most = 0;
    std::size_t on_the_way = 0;  // given back by others, and perhaps not yet drained
  };

  static constexpr std::size_t ring_size = 1024;

  static std::uint32_t amount(byte_source& source) {
    const std::uint32_t small = source.below(256);
    return small < 240 ? 1 + small % 16 : small < 250 ? 300 : 1300;
  }

  static std::uint64_t chunks_in_use(const owner& from) {
    std::unordered_set<const region*> regions;
    for (const marked& each : from.live) regions.insert(region::of(each.object));
    return regions.size();
  }

  void take(owner& from, std::size_t count) {
    for (std::size_t k = 0; k < count && from.live.size() < 3000; ++k) {
      T* const object = pool::take_from(from.objects.get());
      check(taken_.insert(object).second, "No slot is handed out twice.");
      const region* const home = region::of(object);
      check(home->owner.load() == from.objects.get(), "An object lies in its pool.");
      check(object->pool_slot() == (from.objects ? home->chunk.slot_of(object) : heap_slot),
            "An object knows its slot.");
      mark(*object, ++numbers_);
      from.live.push_back({object, numbers_});
      from.most = std::max(from.most, from.live.size() + from.on_the_way);
    }
    check_counts(from);
  }

  // Objects that go back in the order in which they were taken, or the other way round. Those of
  // the other thread, which takes nothing back just now, at most as many as can be on the way.
  void give_back(byte_source& source, std::size_t count) {
    owner* const owners[] = {&near_, &heap_, &far_};
    owner& from = *source.pick(owners);
    if (source.below(2) == 0) std::reverse(from.live.begin(), from.live.end());
    if (&from == &far_) {
      count = std::min({count, ring_size - far_.on_the_way, far_.live.size()});
      far_.on_the_way += count;
    }
    give_back_to(near_.objects.get(), from, count);
  }

  // Objects that go back on a thread with the pool `own`, or without one.
  void give_back_to(pool* own, owner& from, std::size_t count) {
    for (; count > 0 && !from.live.empty(); --count) {
      const marked last = forget_last(from);
      pool::release(last.object, own);
    }
    if (own == from.objects.get()) check_counts(from);
  }

  marked forget_last(owner& from) {
    const marked last = from.live.back();
    from.live.pop_back();
    check(is_marked(*last.object, last.number), "An object stays as it is.");
    taken_.erase(last.object);
    return last;
  }

  // Two other threads release objects of this one, which has to drain meanwhile.
  void give_back_elsewhere(byte_source& source, std::size_t count) {
    std::vector<T*> objects[2];
    for (; count > 0 && !near_.live.empty(); --count) {
      objects[count % 2].push_back(forget_last(near_).object);
    }
    // Whether the threads have an interpreter; two threads cannot have the same.
    pool* const own = source.below(2) == 0 ? nullptr : far_.objects.get();
    std::atomic<int> running{2};
    const auto release_all = [&running](const std::vector<T*>& all, pool* theirs) {
      for (T* object : all) pool::release(object, theirs);
      --running;
    };
    std::thread first(release_all, std::cref(objects[0]), own);
    std::thread second(release_all, std::cref(objects[1]), nullptr);
    while (running > 0) near_.objects->drain();
    first.join();
    second.join();
    near_.objects->drain();
    check_counts(near_);
  }

  // An object whose slot byte is wrong is put back where it belongs, or left alone.
  void give_back_claiming(byte_source& source) {
    if (near_.live.empty()) return;
    T* const object = forget_last(near_).object;
    object->pool_slot() = source.byte();
    const std::uint64_t before = near_.objects->live_count();
    pool::release(object, near_.objects.get());
    if (near_.objects->live_count() == before) {
      object->pool_slot() = region::of(object)->chunk.slot_of(object);
      pool::release(object, near_.objects.get());
    }
    check_counts(near_);
  }

  // On the thread of the other pool; it takes back first what was released here.
  template <class Work>
  void foreign(Work work) {
    std::thread([&] {
      far_.objects->drain();
      far_.on_the_way = 0;
      work();
    }).join();
  }

  static void check_counts(const owner& from) {
    if (!from.objects) return;
    check(from.objects->live_count() == from.live.size() + from.on_the_way, "All are counted.");
    check(from.objects->chunk_count() == (from.most + chunk_slots - 1) / chunk_slots,
          "There are no more chunks than needed.");
  }

  owner near_{std::make_unique<pool>(), {}, 0, 0};
  owner far_{std::make_unique<pool>(), {}, 0, 0};
  owner heap_;
  std::unordered_set<const T*> taken_;
  std::uint64_t numbers_ = 0;
};

}  // namespace

void fuzz_pools(input bytes) {
  byte_source source(bytes);
  pool_pair<vrnvar, vrn_pool_chunk_dynamic> values;
  pool_pair<vrnvar_ptr_str, vrn_pool_chunk_static> strings;
  while (!source.empty()) {
    if (source.below(2) == 0) {
      values.step(source);
    } else {
      strings.step(source);
    }
  }
  values.end();
  strings.end();
}

}  // namespace vorn::fuzz
