// The console host: loads "test_simple.vrs", runs it as a task three seconds later, and drives the
// interpreter with a tick every millisecond until it is interrupted.
#include <algorithm>
#include <cstdint>
#include <exception>
#include <limits>
#include <memory>
#include <string>

#include <vornscript/vornscript.hpp>

#include "platform/platform.hpp"

namespace {

using vorn::log_line;
using vorn::vrn_log_level;

constexpr std::int64_t start_delay_ms = 3000;
constexpr std::uint64_t tick_ns = 1'000'000;
constexpr std::uint64_t longest_sleep_ms = 86'400'000;

vorn::vrn_program load(vorn::vrnscript& script) {
  try {
    return vorn::vrn_program_loader(script).create_program("test_simple.vrs");
  } catch (const std::exception& failure) {
    log_line(vrn_log_level::error, failure.what());
    return nullptr;
  }
}

void sleep_until(std::uint64_t target_ns) {
  for (std::uint64_t now = vorn::platform::monotonic_ns();
       now < target_ns && !vorn::platform::stop_requested(); now = vorn::platform::monotonic_ns()) {
    const std::uint64_t left_ns = target_ns - now;
    const std::uint64_t left_ms = left_ns / 1'000'000 + (left_ns % 1'000'000 != 0 ? 1 : 0);
    vorn::platform::sleep_ms(static_cast<std::uint32_t>(std::min(left_ms, longest_sleep_ms)));
  }
}

void run(const std::shared_ptr<vorn::vrn_log_default>& logger) {
  vorn::vrnscript script({.filesys = std::make_shared<vorn::vrn_filesys_os>(),
                          .logger = logger,
                          .add_std_functions = true,
                          .thread_name = "MAIN",
                          .clock = nullptr});
  log_line(vrn_log_level::log, "This is a message.");
  log_line(vrn_log_level::warning, "This is a warning.");
  log_line(vrn_log_level::error, "This is an error.");

  const vorn::vrn_program program = load(script);
  if (!program) return log_line(vrn_log_level::error, "Cannot create program.");
  const auto task = vorn::task_create(program);
  log_line(vrn_log_level::log, "SCHEDULE TEST!");
  logger->flush();
  vorn::task_run(*task, start_delay_ms);
  script.tick();

  while (!vorn::platform::stop_requested()) {
    logger->flush();
    const std::uint64_t last_ns = vorn::platform::monotonic_ns();
    sleep_until(last_ns + std::min(tick_ns, std::numeric_limits<std::uint64_t>::max() - last_ns));
    script.tick();
  }
}

}  // namespace

// A program that cannot be created is told in the log only; the status is 0 all the same.
int main() {
  vorn::platform::buffer_console();
  vorn::platform::install_stop_signals();
  try {
    const auto logger = std::make_shared<vorn::vrn_log_default>();
    run(logger);
    return 0;
  } catch (const std::exception& failure) {
    vorn::platform::write_error(std::string(failure.what()) + '\n');
    return 1;
  }
}
