// vrn run
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "platform/platform.hpp"
#include "tools/commands.hpp"
#include "tools/files.hpp"
#include "tools/output.hpp"

namespace vorn::tool {
namespace {

enum status : int { finished = 0, not_loaded = 1, failed = 3, timed_out = 4, signalled = 128 };

// Up to one byte more than a script may have: the loader refuses it then.
std::string read_standard_input() {
  std::string text;
  std::array<char, 0x10000> piece;
  while (text.size() <= vrn_source_size_max) {
    const std::size_t count = std::fread(piece.data(), 1, piece.size(), stdin);
    if (count == 0) break;
    text.append(piece.data(), count);
  }
  return text;
}

vrn_program load(vrnscript& script, const run_options& options) {
  vrn_program_loader loader(script);
  if (options.text) return loader.create_program(*options.text, "<command line>");
  if (*options.file == "-") return loader.create_program(read_standard_input(), "<stdin>");
  return loader.create_program(*options.file);
}

// The end of the monotonic clock when there is none.
std::uint64_t deadline_ns(const std::optional<double>& timeout) {
  constexpr double never = 0x1p63;
  const double end = static_cast<double>(platform::monotonic_ns()) + timeout.value_or(never) * 1e9;
  return static_cast<std::uint64_t>(std::min(end, never));
}

// A signal that comes right before a sleep does not end it, so none is long.
constexpr std::uint64_t longest_sleep_ms = 50;

// Sleeps until a time of the wall clock; gives a status if the run is over before.
int sleep_until(const vrn_clock& clock, std::uint64_t due_ms, std::uint64_t deadline) {
  for (;;) {
    if (const int signal = platform::stop_requested()) return signalled + signal;
    const std::uint64_t now_ms = clock.wall_ms();
    if (now_ms >= due_ms) return finished;
    const std::uint64_t now_ns = platform::monotonic_ns();
    if (now_ns >= deadline) return timed_out;
    platform::flush_console();
    const std::uint64_t left_ms = (deadline - now_ns) / 1'000'000 + 1;
    platform::sleep_ms(
        static_cast<std::uint32_t>(std::min({due_ms - now_ms, left_ms, longest_sleep_ms})));
  }
}

int run_tasks(vrnscript& script, std::uint64_t deadline) {
  while (const auto due_ms = script.next_due_ms()) {
    if (const int ended = sleep_until(script.clock(), *due_ms, deadline)) return ended;
    script.tick();
  }
  return finished;
}

}  // namespace

int run(const run_options& options) {
  const auto log = std::make_shared<script_log>();
  std::shared_ptr<vrn_log_base> shown = log;
  if (options.verbose) shown = std::make_shared<vrn_log_default>();
  bool any_report = false;
  bool any_fault = false;
  vrnscript script({.filesys = open_files(options.folders),
                    .logger = shown,
                    .thread_name = "MAIN",
                    .on_report = [&](const vrn_report& report) {
                      any_report = true;
                      if (report.kind != vrn_report_kind::syntax) any_fault = true;
                      if (!options.verbose) write_error_line(log->last_error());
                    }});
  const vrn_program program = load(script, options);
  if (!program) {
    if (!any_report && !options.verbose) write_error_line(log->first_error());
    return not_loaded;
  }
  // Until here a signal ends the process at once: standard input may be a terminal.
  platform::install_stop_signals();
  const auto task = task_create(program);
  task_run(*task, 0);
  const int ended = run_tasks(script, deadline_ns(options.timeout));
  return ended == finished && any_fault ? failed : ended;
}

}  // namespace vorn::tool
