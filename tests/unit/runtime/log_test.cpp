#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

constexpr vrn_log_level levels[] = {
#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) vrn_log_level::operation,
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL
};

// A part of a message that tells whether it was looked at.
struct counted_part {
  int* count;
};
void append_part(std::string& line, counted_part part) { line += std::to_string(++*part.count); }

TEST(log, mask_decides_before_anything_is_formatted) {
  int formatted = 0;
  test::collecting_log logger;
  logger.level_mask = 4 + 32;
  log_override = &logger;
  for (const vrn_log_level level : levels) log_line(level, "n=", counted_part{&formatted});
  log_override = nullptr;
  EXPECT_EQ(formatted, 2);
  EXPECT_EQ(logger.texts(vrn_log_level::error), std::vector<std::string>{"n=1"});
  EXPECT_EQ(logger.texts(vrn_log_level::out), std::vector<std::string>{"n=2"});
}

TEST(log, override_wins_over_interpreter_wins_over_silence) {
  vrn_log_base* const silent = &get_log();
  test::collecting_log overriding;
  {
    const test::script_host host;
    EXPECT_EQ(&get_log(), host.log.get());
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
  const std::string long_message(100'000, 'x');
  testing::internal::CaptureStdout();
  thread_name().clear();
  for (const vrn_log_level level : levels) logger.write(level, "hello");
  thread_name() = "MAIN";
  logger.log("two\nlines\n");
  logger.out(long_message);
  thread_name().clear();
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "[LOG] [" + id + "] * hello\n[WRN] [" + id + "] ** hello\n[ERR] [" + id +
                "] *** hello\n[VER] [" + id + "] hello\n[DEB] [" + id + "] hello\n[OUT] [" + id +
                "] > hello\n[LOG] [MAIN] [" + id + "] * two\nlines\n\n[OUT] [MAIN] [" + id +
                "] > " + long_message + "\n");
}

}  // namespace
}  // namespace vorn
