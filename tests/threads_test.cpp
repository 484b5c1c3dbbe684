// Interpreters side by side, and values that are dropped on other threads than their own. Runs
// under the thread sanitizer too.
#include <atomic>
#include <mutex>
#include <optional>
#include <set>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;
using values = std::vector<vrnvar_shared>;

TEST(threads_test, four_interpreters_at_once) {
  const auto work = [](int first) {
    script_host host;
    host.files->add("shared.vrs", "#define SHARED 100\nadd(a, b) { sleep(5); a + b }");
    for (int sum = first; sum < 1000; sum += 4) {
      const std::string more = std::to_string(sum - 100);
      const std::string text = "#include \"shared\"\nprint(\"sum: \" + add(SHARED, " + more + "));";
      EXPECT_EQ(host.output_of(text + "]"), strings());
      EXPECT_EQ(host.output_of(text), strings{"sum: " + std::to_string(sum)});
    }
    EXPECT_EQ(live_objects(host.script), 0U);
  };
  std::jthread threads[4];
  int first = 0;
  for (auto& thread : threads) thread = std::jthread(work, first++);
}

// Nothing is done but to say so; an interpreter that ends elsewhere releases what it has.
TEST(threads_test, an_interpreter_on_another_thread) {
  std::optional<script_host> host;
  vrn_program program;
  vrn_ref<vrn_task> task;
  std::thread([&] {
    host.emplace();
    program = host->load("print(1); sleep(1000);");
    task = task_create(program);
    task_run(*task, 0);
    vrnptr<vrn_program_block_routine>& handle = task->call_stack.back();
    // The same index, and a generation that nobody else has.
    std::thread([&handle] {
      script_host other;
      const vrn_program first = other.load("print(2);");
      EXPECT_EQ(handle.get(), nullptr);
    }).join();
  }).join();
  const std::string told = " called on a thread that is not the interpreter's!";
  const auto use = [&] {
    host->script.tick();
    EXPECT_FALSE(host->loader.create_program("main.vrs"));
    EXPECT_FALSE(host->loader.create_program("print(1);", "text"));
  };
  const auto log = host->log;
  testing::internal::CaptureStderr();
  use();
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "tick()" + told + "\ncreate_program()" + told + "\n");
  {
    script_host own;
    use();
    program = {};
    task = {};
    host.reset();
    EXPECT_EQ(own.log->texts(vrn_log_level::error),
              (strings{"tick()" + told, "create_program()" + told, "create_program()" + told,
                       "~vrnscript()" + told}));
    EXPECT_EQ(own.output_of("print(3);"), strings{"3"});
  }
  EXPECT_EQ(log->texts(vrn_log_level::error), strings());
  EXPECT_EQ(current_script, nullptr);
}

// Two threads, of which one has an interpreter too, drop a million values while their owner ticks.
// Some they change before, which drops the payload by itself.
TEST(threads_test, values_dropped_elsewhere_come_back_once) {
  constexpr std::int64_t count = 1'000'000;
  constexpr std::int64_t total = count * (count + 1) / 2;
  script_host host;
  std::mutex mutex;
  std::vector<values> handed_over;
  std::atomic<std::int64_t> sum{0};
  const auto drop_all = [&](bool with_interpreter) {
    std::optional<script_host> own;
    if (with_interpreter) own.emplace();
    while (sum < total) {
      values taken;
      if (const std::lock_guard lock(mutex); !handed_over.empty()) {
        taken = std::move(handed_over.back());
        handed_over.pop_back();
      }
      for (vrnvar_shared& value : taken) {
        const std::int64_t number = value->get_int();
        if (number % 3 == 0) value->set_int(0);
        value = {};
        sum += number;
      }
    }
    EXPECT_TRUE(!own || live_objects(own->script) == 0);
  };
  std::thread first(drop_all, false);
  std::thread second(drop_all, true);
  for (std::int64_t number = 0; number < count; host.script.tick()) {
    values batch(1000);
    for (vrnvar_shared& value : batch) {
      ++number;
      value = number % 2 == 0 ? var_int(number) : var_string(std::to_string(number));
    }
    const std::lock_guard lock(mutex);
    handed_over.push_back(std::move(batch));
  }
  while (sum < total) host.script.tick();
  first.join();
  second.join();
  host.script.tick();
  EXPECT_EQ(sum, total);
  EXPECT_EQ(live_objects(host.script), 0U);
  EXPECT_EQ(host.log->texts(vrn_log_level::error), strings());

  // All slots can be handed out again, each once.
  const auto& chunks = host.script.state().pools.values;
  const std::uint64_t before = chunks.chunk_count();
  values taken(static_cast<std::size_t>(before) * chunk_slots);
  std::set<const void*> objects;
  for (vrnvar_shared& value : taken) {
    value = var_string("");
    objects.insert({value.get(), value->as<vrnvar_ptr_str>()});
  }
  EXPECT_EQ(objects.size(), 2 * taken.size());
  EXPECT_EQ(chunks.chunk_count(), before);
}

}  // namespace
}  // namespace vorn::test
