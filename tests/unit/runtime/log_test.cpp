#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <vornscript/vornscript.hpp>

namespace vorn {
namespace {

// Notes the name of each operation that is called.
class noting_log final : public vrn_log_base {
 public:
  using vrn_log_base::vrn_log_base;
#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) \
  void operation(const std::string& message) override { notes.push_back(#operation ":" + message); }
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL
  std::vector<std::string> notes;
};

constexpr vrn_log_level levels[] = {
#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) vrn_log_level::operation,
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL
};

// What `write` leaves on standard output.
template <class Write>
std::string console(Write write) {
  testing::internal::CaptureStdout();
  write();
  return testing::internal::GetCapturedStdout();
}

TEST(log, levels_reach_their_operations) {
  noting_log logger;
  for (const vrn_log_level level : levels) logger.write(level, "x");
  EXPECT_EQ(logger.notes, (std::vector<std::string>{"log:x", "warning:x", "error:x", "verbose:x",
                                                    "debug:x", "out:x"}));
}

// A part of a message that tells whether it was looked at.
struct counted_part {
  int* count;
};
void append_part(std::string& line, counted_part part) { line += std::to_string(++*part.count); }

TEST(log, mask_decides_before_anything_is_formatted) {
  int formatted = 0;
  noting_log logger(0);
  log_override = &logger;
  for (const vrn_log_level level : levels) log_line(level, counted_part{&formatted});
  logger.level_mask = 4 + 32;
  for (const vrn_log_level level : levels) log_line(level, "n=", counted_part{&formatted});
  log_override = nullptr;
  EXPECT_EQ(formatted, 2);
  EXPECT_EQ(logger.notes, (std::vector<std::string>{"error:n=1", "out:n=2"}));
}

TEST(log, override_wins_over_interpreter_wins_over_silence) {
  vrn_log_base* const silent = &get_log();
  EXPECT_EQ(silent->level_mask, 63U);
  noting_log overriding;
  {
    const auto own = std::make_shared<noting_log>();
    vrnscript_config config;
    config.logger = own;
    vrnscript script(std::move(config));
    EXPECT_EQ(&get_log(), own.get());
    std::thread([silent] { EXPECT_EQ(&get_log(), silent); }).join();
    log_override = &overriding;
    EXPECT_EQ(&get_log(), &overriding);
    log_override = nullptr;
  }
  EXPECT_EQ(&get_log(), silent);
}

TEST(log, console_lines) {
  vrn_log_default logger;
  const std::string id = std::to_string(thread_id());
  const auto lines = [&logger](const char* message) {
    return console([&] {
      for (const vrn_log_level level : levels) logger.write(level, message);
    });
  };
  thread_name().clear();
  EXPECT_EQ(lines("hello"), "[LOG] [" + id + "] * hello\n" + "[WRN] [" + id + "] ** hello\n" +
                                "[ERR] [" + id + "] *** hello\n" + "[VER] [" + id + "] hello\n" +
                                "[DEB] [" + id + "] hello\n" + "[OUT] [" + id + "] > hello\n");
  thread_name() = "MAIN";
  EXPECT_EQ(console([&] { logger.log("two\nlines\n"); }),
            "[LOG] [MAIN] [" + id + "] * two\nlines\n\n");
  const std::string long_message(100'000, 'x');
  EXPECT_EQ(console([&] { logger.out(long_message); }),
            "[OUT] [MAIN] [" + id + "] > " + long_message + "\n");
  thread_name().clear();
}

TEST(log, threads_have_their_own_id_and_name) {
  const std::uint32_t id = thread_id();
  thread_name() = "OWN";
  std::thread([id] {
    EXPECT_NE(thread_id(), id);
    EXPECT_EQ(thread_name(), "");
    EXPECT_EQ(log_override, nullptr);
    EXPECT_EQ(current_script, nullptr);
  }).join();
  EXPECT_EQ(thread_id(), id);
  EXPECT_EQ(thread_name(), "OWN");
  thread_name().clear();
}

TEST(clock, system_clocks_agree_with_the_standard_library) {
  const auto wall_now = [] {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
  };
  const auto before = static_cast<std::uint64_t>(wall_now());
  const std::uint64_t ours = current_clock().wall_ms();
  EXPECT_LE(before, ours);
  EXPECT_LE(ours, static_cast<std::uint64_t>(wall_now()));
  const std::uint64_t first = current_clock().monotonic_ns();
  EXPECT_LE(first, current_clock().monotonic_ns());
}

}  // namespace
}  // namespace vorn
