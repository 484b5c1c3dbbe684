// What the system gives: threads, clocks, numbers, the executable's path, the console, stop
// requests.
//
// The one place that knows the operating system; there is one source file for each system, and
// nobody else asks which one it is. Callable from any thread unless said otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::platform {

// The system's number of the calling thread, never 0.
std::uint32_t thread_id() noexcept;

// Has `release` called with the object that was given last at the end of the calling thread, when
// all objects of the thread's own have gone. One function for the whole process. The main thread
// ends with the process, and leaves its memory to the system.
void at_thread_end(void (*release)(void*), void* object) noexcept;

// Wall-clock time in units of 100 nanoseconds since 1970-01-01.
std::uint64_t wall_ticks() noexcept;

// A monotonic, high-resolution time in nanoseconds.
std::uint64_t monotonic_ns() noexcept;

// Returns early when a signal arrives.
void sleep_ms(std::uint32_t milliseconds) noexcept;

// What strtod gives for a text in the "C" locale, whatever locale the process has set.
double read_float(const char* text) noexcept;

// The arguments of main, which are told, as UTF-8.
std::vector<std::string> arguments(int count, char** values);

// The path of the running executable; empty when it cannot be had.
std::string executable_path();

// Asks for memory that is going to be filled to come in large pages, as many as lie in it whole. A
// page costs all of its size once it is touched, so callers leave out what may well stay empty.
void prefer_large_pages(void* memory, std::size_t size) noexcept;

// The console: standard output, by the C library's stream, so that lines keep their order among
// what others print. Nothing written to it is flushed before flush_console(), the end of the
// program (the very end: destructors of static objects may write) or, on a terminal, the end of the
// line. Where standard output does not block, each text is passed on at once, and waits until it
// has gone.

// Gives the console a stream of its own with a large buffer, which is written when it is full or
// flushed, on a terminal too; what others print keeps no order with it. Called by a program that
// flushes by itself, before it writes anything. Standard input gives the bytes that come in.
void buffer_console() noexcept;

// Begins a line in the colour of a text attribute (red 4, green 2, blue 1). Only a terminal shows
// colours, and only while the variable NO_COLOR is unset; otherwise nothing is appended.
void begin_line(std::string& line, int attribute);

// Writes with one call, so lines of several threads do not mix.
void write_console(std::string_view text) noexcept;
void flush_console() noexcept;

// Hands a coloured terminal back in its default colour, and flushes.
void end_console() noexcept;

// Writes to standard error, unbuffered, with one call; waits as the console does.
void write_error(std::string_view text) noexcept;
bool error_is_terminal() noexcept;

// From here on, the user's first wish to end the program (an interrupt or a termination signal) is
// only noted; the second ends it at once. A signal that is ignored stays so. Called by the main
// thread.
void install_stop_signals() noexcept;
// The number of the signal that said so; 0 while there is none.
int stop_requested() noexcept;

}  // namespace vorn::platform
