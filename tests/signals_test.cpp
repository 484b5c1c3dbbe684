// Signals that come all the time, while a script is loaded, runs and writes into a pipe, and a pipe
// that does not block.
#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

void load_and_run() {
  const auto logger = std::make_shared<vrn_log_default>(
      vrn_log_all & ~static_cast<std::uint32_t>(vrn_log_level::verbose) &
      ~static_cast<std::uint32_t>(vrn_log_level::debug));
  vrnscript script(
      {std::make_shared<vrn_filesys_os>(), logger, true, "TEST", std::make_shared<manual_clock>()});
  std::string text = "#include \"" VRN_TESTS_DIR "/../examples/lib/shapes.vrs\"\n";
  for (int line = 0; line < 5000; ++line) text += "print(" + std::to_string(line) + " * 2);\n";
  const vrn_program program = vrn_program_loader(script).create_program(text, "");
  task_run(*task_create(program), 0);
  script.tick();
}

// What is written to standard output, here a small pipe that is mostly full: the thread that reads
// from it sends a signal (0 is none) each time it looks.
std::string output(int signal, int pipe_flags) {
  int ends[2];
  EXPECT_EQ(pipe2(ends, O_NONBLOCK), 0);
  EXPECT_EQ(fcntl(ends[1], F_SETFL, pipe_flags), 0);
  EXPECT_NE(fcntl(ends[1], F_SETPIPE_SZ, 4096), -1);
  std::fflush(stdout);
  const int before = dup(STDOUT_FILENO);
  dup2(ends[1], STDOUT_FILENO);
  close(ends[1]);
  std::string text;
  std::thread reader([&text, from = ends[0], signal, writer = pthread_self()] {
    char piece[512];
    for (ssize_t count = -1; count != 0; count = read(from, piece, sizeof piece)) {
      if (count > 0) text.append(piece, static_cast<std::size_t>(count));
      pthread_kill(writer, signal);
    }
  });
  load_and_run();
  dup2(before, STDOUT_FILENO);
  reader.join();
  close(before);
  close(ends[0]);
  return text;
}

std::atomic<int> received{0};

TEST(signals_test, output_is_the_same) {
  struct sigaction action {};
  action.sa_handler = [](int) { ++received; };
  action.sa_flags = SA_RESTART;
  sigaction(SIGUSR1, &action, nullptr);
  const std::string expected = output(0, 0);
  EXPECT_NE(expected.find("> 9998\n"), std::string::npos);
  EXPECT_EQ(output(SIGUSR1, 0), expected);
  EXPECT_EQ(output(SIGUSR1, O_NONBLOCK), expected);
  EXPECT_GT(received, 0);
}

}  // namespace
}  // namespace vorn::test
