// Measurements that need a process of their own.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vorn::bench {

struct child_report {
  double seconds = 0;  // of processor time
  double bytes = 0;    // by which the process has grown
  bool valid = false;
};

// Runs this executable again to measure something; its standard output is a file, or a pipe that is
// read at once. `task` is what child_main() understands.
enum class output { file, pipe };
child_report measure_in_child(const std::vector<std::string>& task, output target);

// The seconds from the start of a program in a folder to the first byte of its output, or to its
// end if it writes nothing; below 0 when it cannot be started. The program is then killed.
double seconds_to_output(const std::string& program, const std::vector<std::string>& arguments,
                         const std::string& folder);

bool is_child(int argc, char** argv);

// What a child does: "load WORKLOAD CONTENDER" or "print FUNCTION CONTENDER".
int child_main(char** argv);

inline constexpr std::size_t printed_lines = 50'000;

}  // namespace vorn::bench
