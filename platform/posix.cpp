#include "platform/platform.hpp"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <system_error>

namespace vorn::platform {
namespace {

constexpr std::size_t console_buffer_size = 0x10000;
constexpr std::string_view default_colour = "\033[0m";

bool coloured() {
  static const bool decided = isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
  return decided;
}

std::string_view colour_of(int attribute) {
  switch (attribute) {
    case 4:
      return "\033[31m";
    case 6:
      return "\033[33m";
    default:
      return default_colour;
  }
}

std::uint64_t read_clock(clockid_t clock, std::uint64_t units_per_second) noexcept {
  timespec now{};
  clock_gettime(clock, &now);
  const std::uint64_t nanoseconds_per_unit = 1'000'000'000 / units_per_second;
  return static_cast<std::uint64_t>(now.tv_sec) * units_per_second +
         static_cast<std::uint64_t>(now.tv_nsec) / nanoseconds_per_unit;
}

std::atomic<bool> stop_flag{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set by a signal handler");

void handle_stop(int) {
  stop_flag.store(true, std::memory_order_relaxed);
  signal(SIGINT, SIG_DFL);
  signal(SIGTERM, SIG_DFL);
}

}  // namespace

// The values of keys are looked at after a thread's own objects have been destroyed.
void at_thread_end(void (*release)(void*)) noexcept {
  static const auto key = [release]() -> std::optional<pthread_key_t> {
    pthread_key_t made{};
    if (pthread_key_create(&made, release) != 0) return std::nullopt;
    return made;
  }();
  static char asked_for;
  if (key) pthread_setspecific(*key, &asked_for);
}

std::uint32_t thread_id() noexcept { return static_cast<std::uint32_t>(gettid()); }

std::uint64_t wall_ticks() noexcept { return read_clock(CLOCK_REALTIME, 10'000'000); }

std::uint64_t monotonic_ns() noexcept { return read_clock(CLOCK_MONOTONIC, 1'000'000'000); }

void sleep_ms(std::uint32_t milliseconds) noexcept {
  const timespec duration{static_cast<time_t>(milliseconds / 1000),
                          static_cast<long>(milliseconds % 1000) * 1'000'000};
  nanosleep(&duration, nullptr);
}

std::string executable_path() {
  std::error_code failure;
  return std::filesystem::read_symlink("/proc/self/exe", failure).string();
}

void buffer_console() noexcept {
  static char buffer[console_buffer_size];
  std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
}

void begin_line(std::string& line, int attribute) {
  if (coloured()) line += colour_of(attribute);
}

void write_console(std::string_view text) noexcept {
  std::fwrite(text.data(), 1, text.size(), stdout);
}

void flush_console() noexcept { std::fflush(stdout); }

void end_console() noexcept {
  if (coloured()) write_console(default_colour);
  flush_console();
}

void write_error(std::string_view text) noexcept {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void install_stop_signals() noexcept {
  struct sigaction action {};
  action.sa_handler = handle_stop;
  action.sa_flags = SA_RESTART;  // or a stream would drop what it is writing
  sigaddset(&action.sa_mask, SIGINT);
  sigaddset(&action.sa_mask, SIGTERM);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
}

bool stop_requested() noexcept { return stop_flag.load(std::memory_order_relaxed); }

}  // namespace vorn::platform
