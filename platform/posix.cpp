#include "platform/platform.hpp"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <stdio_ext.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "platform/colour.hpp"

namespace vorn::platform {
namespace {

constexpr std::size_t console_buffer_size = 0x10000;

bool coloured() {
  static const bool decided = isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
  return decided;
}

std::uint64_t read_clock(clockid_t clock, std::uint64_t units_per_second) noexcept {
  timespec now{};
  clock_gettime(clock, &now);
  const std::uint64_t nanoseconds_per_unit = 1'000'000'000 / units_per_second;
  return static_cast<std::uint64_t>(now.tv_sec) * units_per_second +
         static_cast<std::uint64_t>(now.tv_nsec) / nanoseconds_per_unit;
}

bool blocks(int descriptor) noexcept {
  const int flags = fcntl(descriptor, F_GETFL);
  return flags == -1 || (flags & O_NONBLOCK) == 0;
}

void wait_until_writable(int descriptor) noexcept {
  pollfd entry{descriptor, POLLOUT, 0};
  poll(&entry, 1, -1);
}

// Writes all of a text, also to a descriptor that does not block; returns how much was written
// before an error.
std::size_t write_all(int descriptor, std::string_view text) noexcept {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EAGAIN) {
      wait_until_writable(descriptor);
    } else if (errno != EINTR) {
      break;
    }
  }
  return written;
}

// The console's own stream, from buffer_console() on. It waits by itself, and is never closed: the
// C library writes what it holds after the last destructor of the program.
std::FILE* own_stream = nullptr;

void flush_stream(std::FILE* stream) noexcept {
  if (!blocks(fileno(stream))) wait_until_writable(fileno(stream));
  std::fflush(stream);
}

bool fits_buffer(std::FILE* stream, std::size_t size) noexcept {
  const std::size_t held = __fpending(stream);
  return held != 0 && __flbf(stream) == 0 && size < __fbufsize(stream) - held;
}

// The streams of the C library drop what a descriptor that does not block will not take at once.
// Such a descriptor is written to directly; asking when a buffer is begun or full is often enough,
// and costs no system call for each line.
void write_stream(std::FILE* stream, std::string_view text) noexcept {
  flockfile(stream);
  if (fits_buffer(stream, text.size()) || blocks(fileno(stream))) {
    fwrite_unlocked(text.data(), 1, text.size(), stream);
  } else {
    flush_stream(stream);
    write_all(fileno(stream), text);
  }
  funlockfile(stream);
}

constexpr int stop_signals[] = {SIGINT, SIGTERM};

bool ignored(int signal) noexcept {
  struct sigaction action {};
  sigaction(signal, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

std::atomic<int> stop_signal{0};
static_assert(std::atomic<int>::is_always_lock_free, "set by a signal handler");

void handle_stop(int received) {
  stop_signal.store(received, std::memory_order_relaxed);
  for (const int number : stop_signals) {
    if (!ignored(number)) signal(number, SIG_DFL);
  }
}

}  // namespace

// The values of keys are looked at after a thread's own objects have been destroyed.
void at_thread_end(void (*release)(void*), void* object) noexcept {
  static const auto key = [release]() -> std::optional<pthread_key_t> {
    pthread_key_t made{};
    if (pthread_key_create(&made, release) != 0) return std::nullopt;
    return made;
  }();
  if (key) pthread_setspecific(*key, object);
}

std::uint32_t thread_id() noexcept { return static_cast<std::uint32_t>(gettid()); }

std::uint64_t wall_ticks() noexcept { return read_clock(CLOCK_REALTIME, 10'000'000); }

std::uint64_t monotonic_ns() noexcept { return read_clock(CLOCK_MONOTONIC, 1'000'000'000); }

void sleep_ms(std::uint32_t milliseconds) noexcept {
  const timespec duration{static_cast<time_t>(milliseconds / 1000),
                          static_cast<long>(milliseconds % 1000) * 1'000'000};
  nanosleep(&duration, nullptr);
}

double read_float(const char* text) noexcept {
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(text, nullptr, c_locale);
}

std::vector<std::string> arguments(int count, char** values) { return {values, values + count}; }

std::string executable_path() {
  std::error_code failure;
  return std::filesystem::read_symlink("/proc/self/exe", failure).string();
}

void prefer_large_pages(void* memory, std::size_t size) noexcept {
  constexpr std::uintptr_t page_size = std::uintptr_t{2} << 20;
  const auto address = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t begin = (address + page_size - 1) / page_size * page_size;
  const std::uintptr_t end = (address + size) / page_size * page_size;
  if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

void buffer_console() noexcept {
  static char buffer[console_buffer_size];
  const auto write_cookie = [](void*, const char* text, std::size_t size) {
    return static_cast<ssize_t>(write_all(STDOUT_FILENO, {text, size}));
  };
  own_stream = fopencookie(nullptr, "w", {nullptr, write_cookie, nullptr, nullptr});
  if (own_stream) std::setvbuf(own_stream, buffer, _IOFBF, sizeof buffer);
}

void begin_line(std::string& line, int attribute) {
  if (coloured()) line += colour_of(attribute);
}

void write_console(std::string_view text) noexcept {
  if (own_stream) {
    std::fwrite(text.data(), 1, text.size(), own_stream);
  } else {
    write_stream(stdout, text);
  }
}

void flush_console() noexcept {
  if (own_stream) {
    std::fflush(own_stream);
  } else {
    flush_stream(stdout);
  }
}

void end_console() noexcept {
  if (coloured()) write_console(default_colour);
  flush_console();
}

void write_error(std::string_view text) noexcept { write_stream(stderr, text); }

bool error_is_terminal() noexcept { return isatty(STDERR_FILENO) != 0; }

void install_stop_signals() noexcept {
  struct sigaction action {};
  action.sa_handler = handle_stop;
  action.sa_flags = SA_RESTART;
  for (const int number : stop_signals) sigaddset(&action.sa_mask, number);
  for (const int number : stop_signals) {
    if (!ignored(number)) sigaction(number, &action, nullptr);
  }
}

int stop_requested() noexcept { return stop_signal.load(std::memory_order_relaxed); }

}  // namespace vorn::platform
