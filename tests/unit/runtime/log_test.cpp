#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

// A part of a message that tells whether it was looked at.
struct counted_part {
  int* count;
};
void append_part(std::string& line, counted_part part) { line += std::to_string(++*part.count); }

TEST(log, mask_decides_before_anything_is_formatted) {
  int formatted = 0;
  const test::script_host host;
  host.log->level_mask = 4 + 32;
  log_line(vrn_log_level::debug, counted_part{&formatted});
  log_line(vrn_log_level::out, "n=", counted_part{&formatted});
  EXPECT_EQ(host.log->records, (std::vector{test::log_record{vrn_log_level::out, "n=1"}}));
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
  const std::string id = "[" + std::to_string(thread_id()) + "] ";
  thread_name().clear();
  testing::internal::CaptureStdout();
  logger.verbose("hello");
  logger.out("two\nlines\n");
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "[VER] " + id + "hello\n[OUT] " + id + "> two\nlines\n\n");
}

}  // namespace
}  // namespace vorn
