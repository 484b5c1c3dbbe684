// An interpreter whose every load and run is checked.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/source_report.hpp"
#include "tests/support/script_host.hpp"

namespace vorn::fuzz {

class checked_host {
 public:
  // The files that there are; "main.vrs" is the program.
  using files = std::map<std::string, std::string>;

  explicit checked_host(files sources);

  // Loads main.vrs. Every report points at a place that exists, and there is one if the load fails.
  // Only defines, which multiply, can make memory run out; empty also then.
  vrn_program load();

  // The files as one text, to be shown when something is wrong with them.
  std::string listing() const;

  // The reports of the load, in order.
  const std::vector<source_report>& reports() const { return reports_; }

  // Runs the program to its end, or until it waits for very long. Only what scripts can do wrong
  // may be complained about.
  void run(const vrn_program& program);

  // Whatever happened, the next program loads and runs, and then nothing is left in the pools. To
  // be called when all programs and values have been let go.
  void check_health();

  test::script_host& host() { return host_; }

 private:
  bool can_multiply() const;
  bool has_nothing_to_point_at() const;
  void check_pools_quiet() const;
  void read_reports();

  files sources_;
  test::script_host host_;
  std::vector<source_report> reports_;
};

// Whether running code may log this error, whatever the code is.
bool is_runtime_error(std::string_view logged);

}  // namespace vorn::fuzz
