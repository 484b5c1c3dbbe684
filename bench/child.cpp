#include "bench/child.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <string_view>
#include <utility>

#include <vornscript/log_default.hpp>

#include "bench/contender.hpp"
#include "bench/workload.hpp"
#include "platform/platform.hpp"

namespace vorn::bench {
namespace {

constexpr const char* child_flag = "--child";
constexpr int report_file = 3;

// Of this process alone, so other work on the machine does not count.
double processor_seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

class file {
 public:
  explicit file(int descriptor) : descriptor_(descriptor) {}
  file(file&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  file& operator=(file&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~file() { close(); }

  int get() const { return descriptor_; }
  void close() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  }
  // What is there to read at once; empty at the end.
  std::string read_some() const {
    std::string bytes(0x10000, '\0');
    const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
  }
  void skip_to_end() const {
    while (!read_some().empty()) continue;
  }

 private:
  int descriptor_;
};

struct pipe_ends {
  file read_end;
  file write_end;
};

pipe_ends make_pipe() {
  std::array<int, 2> ends{-1, -1};
  static_cast<void>(::pipe2(ends.data(), O_CLOEXEC));
  return {file(ends[0]), file(ends[1])};
}

class process {
 public:
  // -1 stands for no report.
  process(const std::string& program, const std::vector<std::string>& arguments,
          int standard_output, int report, const std::string& folder) {
    std::vector<char*> vector{const_cast<char*>(program.c_str())};
    for (const std::string& each : arguments) vector.push_back(const_cast<char*>(each.c_str()));
    vector.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, standard_output, STDOUT_FILENO);
    if (report >= 0) posix_spawn_file_actions_adddup2(&actions, report, report_file);
    if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    if (posix_spawnp(&id_, program.c_str(), &actions, nullptr, vector.data(), environ) != 0)
      id_ = 0;
    posix_spawn_file_actions_destroy(&actions);
  }
  process(const process&) = delete;
  process& operator=(const process&) = delete;
  ~process() {
    if (id_ == 0) return;
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  bool started() const { return id_ != 0; }

 private:
  pid_t id_ = 0;
};

// A line of the system's account of this process, in bytes.
double own_memory(std::string_view line_name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(line_name)) return 1024 * std::stod(line.substr(line_name.size() + 1));
  }
  return 0;
}

void report(double seconds, double bytes) { dprintf(report_file, "%.9f %.0f\n", seconds, bytes); }

int measure_load(std::string_view name, std::string_view who) {
  const contender_kind* const kind = find_contender(who);
  if (!kind) return 1;
  const workload& work = find_workload(name);
  const std::string text = work.text(kind->language, work.size);
  const auto host = kind->open();
  const double before = own_memory("VmRSS");
  const double start = processor_seconds();
  if (!host->load(text)) return 1;
  const double seconds = processor_seconds() - start;
  report(seconds, own_memory("VmHWM") - before);
  return 0;
}

file temporary_file() {
  const std::unique_ptr<FILE, decltype(&std::fclose)> stream(std::tmpfile(), std::fclose);
  return file(stream ? fcntl(fileno(stream.get()), F_DUPFD_CLOEXEC, 0) : -1);
}

// What the console logger writes for the script of the other contenders, without one.
void write_raw(std::size_t count) {
  constexpr std::string_view line = "[OUT] [1234567] > This is line 12345 of the output.\n";
  for (std::size_t k = 0; k < count; ++k) std::fwrite(line.data(), 1, line.size(), stdout);
}

int measure_print(std::string_view function, std::string_view who) {
  const contender_kind* const kind = find_contender(who);
  std::unique_ptr<contender> host;
  if (kind && kind->language == dialect::vornscript) {
    platform::buffer_console();  // as the host program does
    host = open_ours(std::make_shared<vrn_log_default>());
  } else if (kind) {
    host = kind->open();
  }
  const std::string_view line_end = function == "io.write" ? "\\n" : "";
  if (host && !host->load(lines(function, line_end, printed_lines))) return 1;
  std::fflush(nullptr);
  const double start = processor_seconds();
  if (host) {
    host->run();
  } else {
    write_raw(printed_lines);
  }
  std::fflush(nullptr);
  report(processor_seconds() - start, 0);
  return 0;
}

}  // namespace

child_report measure_in_child(const std::vector<std::string>& task, output target) {
  std::vector<std::string> arguments{child_flag};
  arguments.insert(arguments.end(), task.begin(), task.end());
  pipe_ends reports = make_pipe();
  pipe_ends outputs = make_pipe();
  if (target == output::file) outputs.write_end = temporary_file();
  const process child("/proc/self/exe", arguments, outputs.write_end.get(), reports.write_end.get(),
                      "");
  reports.write_end.close();
  outputs.write_end.close();
  outputs.read_end.skip_to_end();
  child_report found;
  found.valid = std::sscanf(reports.read_end.read_some().c_str(), "%lf %lf", &found.seconds,
                            &found.bytes) == 2;
  return found;
}

double seconds_to_output(const std::string& program, const std::vector<std::string>& arguments,
                         const std::string& folder) {
  pipe_ends outputs = make_pipe();
  const auto start = std::chrono::steady_clock::now();
  const process child(program, arguments, outputs.write_end.get(), -1, folder);
  outputs.write_end.close();
  outputs.read_end.read_some();
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  return child.started() ? passed.count() : -1;
}

bool is_child(int argc, char** argv) { return argc == 5 && std::strcmp(argv[1], child_flag) == 0; }

int child_main(char** argv) {
  return std::string_view(argv[2]) == "load" ? measure_load(argv[3], argv[4])
                                             : measure_print(argv[3], argv[4]);
}

}  // namespace vorn::bench
