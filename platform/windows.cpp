// Windows, 64 bits. Texts are UTF-8 on this side, and UTF-16 on the system's.
#define _WIN32_WINNT 0x0A00  // from Windows 10 on
#define WIN32_LEAN_AND_MEAN
#include "platform/platform.hpp"

#include <windows.h>
// Behind it, as they need it.
#include <cxxabi.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

#include "platform/colour.hpp"

namespace vorn::platform {
namespace {

constexpr std::size_t console_buffer_size = 0x10000;

// Not in the headers yet.
constexpr DWORD timer_high_resolution = 2;

// Standard output is a terminal that has been made to show colours.
bool decide_colours() {
  const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  return std::getenv("NO_COLOR") == nullptr && GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

bool coloured() {
  static const bool decided = decide_colours();
  return decided;
}

// The console's own stream, from buffer_console() on. It is never closed: the C library writes what
// it holds after the last destructor of the program.
std::FILE* own_stream = nullptr;

// Lines end as they are written, whatever the C library would make of them.
bool take_as_it_stands(std::FILE* stream) noexcept {
  return _setmode(_fileno(stream), _O_BINARY) != -1;
}

std::FILE* console_stream() noexcept {
  if (own_stream) return own_stream;
  [[maybe_unused]] static const bool set = take_as_it_stands(stdout);
  return stdout;
}

// At the end of a thread, keys are looked at in the order in which they were made: the C++
// library's, by which the thread's own objects are destroyed, has to come before the compiler's, by
// which their memory is given back. Each is made when it is first needed, so this asks for the
// former early.
[[gnu::constructor(101)]] void order_thread_end() {
  abi::__cxa_thread_atexit([](void*) {}, nullptr, nullptr);
}

std::atomic<int> stop_signal{0};
HANDLE stop_event = nullptr;  // set along with it

// Runs on a thread of its own. False leaves the event to the system, which ends the process.
BOOL WINAPI handle_stop(DWORD event) {
  const int number = event == CTRL_C_EVENT ? SIGINT : event == CTRL_BREAK_EVENT ? SIGBREAK : 0;
  if (number == 0 || stop_signal.exchange(number, std::memory_order_relaxed) != 0) return FALSE;
  SetEvent(stop_event);
  return TRUE;
}

// Of a number that no double comes near: whether it is too large, rather than too small. The power
// of its first digit that counts tells, since one that is neither is far from 0.
bool is_too_large(std::string_view number, bool hexadecimal) noexcept {
  const std::size_t mark = number.find_first_of(hexadecimal ? "pP" : "eE");
  const std::string_view digits = number.substr(0, mark);
  const std::size_t point =
      std::min(digits.find_first_not_of("0123456789abcdefABCDEF"), digits.size());
  const auto first = static_cast<std::int64_t>(digits.find_first_not_of("0."));
  std::int32_t exponent = 0;
  if (mark < number.size()) {
    std::string_view written = number.substr(mark + 1);
    if (written.starts_with('+')) written.remove_prefix(1);
    const auto read = std::from_chars(written.data(), written.data() + written.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) return !written.starts_with('-');
  }
  return (static_cast<std::int64_t>(point) - first) * (hexadecimal ? 4 : 1) >
         -std::int64_t{exponent};
}

// As a path the system's text is the same in UTF-8.
std::string utf8(const std::wstring& text) {
  const std::u8string converted = std::filesystem::path(text).u8string();
  return {converted.begin(), converted.end()};
}

}  // namespace

// These slots are looked at after a thread's own objects have been destroyed, and the memory of its
// variables has gone; so what is to be released is kept in the slot.
void at_thread_end(void (*release)(void*), void* object) noexcept {
  static const DWORD slot = FlsAlloc(release);
  if (slot != FLS_OUT_OF_INDEXES) FlsSetValue(slot, object);
}

std::uint32_t thread_id() noexcept { return GetCurrentThreadId(); }

std::uint64_t wall_ticks() noexcept {
  constexpr std::uint64_t ticks_before_1970 = 116'444'736'000'000'000;
  FILETIME since_1601{};
  GetSystemTimePreciseAsFileTime(&since_1601);
  return (std::uint64_t{since_1601.dwHighDateTime} << 32 | since_1601.dwLowDateTime) -
         ticks_before_1970;
}

std::uint64_t monotonic_ns() noexcept {
  constexpr std::uint64_t second_ns = 1'000'000'000;
  static const auto per_second = [] {
    LARGE_INTEGER frequency{};
    QueryPerformanceFrequency(&frequency);
    return static_cast<std::uint64_t>(frequency.QuadPart);
  }();
  LARGE_INTEGER count{};
  QueryPerformanceCounter(&count);
  const auto now = static_cast<std::uint64_t>(count.QuadPart);
  return now / per_second * second_ns + now % per_second * second_ns / per_second;
}

// By a timer, because the system's other ways of waiting are exact to 16 ms only.
void sleep_ms(std::uint32_t milliseconds) noexcept {
  const HANDLE timer =
      CreateWaitableTimerExW(nullptr, nullptr, timer_high_resolution, TIMER_ALL_ACCESS);
  LARGE_INTEGER from_now{};
  from_now.QuadPart = -std::int64_t{10'000} * milliseconds;
  if (!timer || !SetWaitableTimer(timer, &from_now, 0, nullptr, nullptr, FALSE)) {
    Sleep(milliseconds);
  } else {
    const HANDLE ends[] = {timer, stop_event};
    WaitForMultipleObjects(stop_event ? 2 : 1, ends, FALSE, INFINITE);
  }
  if (timer) CloseHandle(timer);
}

// Not by the C library, whose function for this reads less than others do.
double read_float(const char* text) noexcept {
  std::string_view rest = text;
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t\n\v\f\r"), rest.size()));
  const bool negative = rest.starts_with('-');
  if (negative || rest.starts_with('+')) rest.remove_prefix(1);
  // Second signs, which from_chars takes.
  if (rest.starts_with('-')) return 0.0;
  rest = rest.substr(0, rest.find("+-"));
  const bool hexadecimal = rest.starts_with("0x") || rest.starts_with("0X");
  if (hexadecimal) rest.remove_prefix(2);
  double number = 0.0;
  if (!hexadecimal || rest.find_first_of("0123456789abcdefABCDEF.") == 0) {
    const auto format = hexadecimal ? std::chars_format::hex : std::chars_format::general;
    const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), number, format);
    if (read.ec == std::errc::invalid_argument && !hexadecimal) return 0.0;
    rest = rest.substr(0, static_cast<std::size_t>(read.ptr - rest.data()));
    if (read.ec == std::errc::result_out_of_range && is_too_large(rest, hexadecimal)) {
      number = std::numeric_limits<double>::infinity();
    }
  }
  return negative ? -number : number;
}

std::vector<std::string> arguments(int, char**) {
  int count = 0;
  wchar_t** const given = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> converted;
  for (int k = 0; given && k < count; ++k) converted.push_back(utf8(given[k]));
  LocalFree(given);
  return converted;
}

std::string executable_path() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return utf8(path);
    }
    path.resize(2 * path.size());
  }
}

// Large pages are for processes with a privilege of their own.
void prefer_large_pages(void*, std::size_t) noexcept {}

// A terminal is told that texts are UTF-8.
void buffer_console() noexcept {
  static char buffer[console_buffer_size];
  take_as_it_stands(stdin);
  SetConsoleOutputCP(CP_UTF8);
  own_stream = _fdopen(_dup(_fileno(stdout)), "wb");
  if (!own_stream) return;
  take_as_it_stands(own_stream);
  std::setvbuf(own_stream, buffer, _IOFBF, sizeof buffer);
}

void begin_line(std::string& line, int attribute) {
  if (coloured()) line += colour_of(attribute);
}

void write_console(std::string_view text) noexcept {
  std::fwrite(text.data(), 1, text.size(), console_stream());
}

void flush_console() noexcept { std::fflush(console_stream()); }

void end_console() noexcept {
  if (coloured()) write_console(default_colour);
  flush_console();
}

void write_error(std::string_view text) noexcept {
  [[maybe_unused]] static const bool set = take_as_it_stands(stderr);
  std::fwrite(text.data(), 1, text.size(), stderr);
}

bool error_is_terminal() noexcept {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

void install_stop_signals() noexcept {
  stop_event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  SetConsoleCtrlHandler(handle_stop, TRUE);
}

int stop_requested() noexcept { return stop_signal.load(std::memory_order_relaxed); }

}  // namespace vorn::platform
