// What vrn writes to its two streams. Standard output is flushed before anything goes to standard
// error, so that the order is kept where both end in one place.
#pragma once

#include <string>
#include <string_view>

#include <vornscript/log.hpp>

namespace vorn::tool {

// Writes a message of the log's error level to standard error, without the line's thread.
void write_error_line(std::string_view message);

// Shows what scripts print, as plain lines on standard output, and keeps the messages of the error
// level: a report is one of them, and others say why a load has failed.
class script_log final : public vrn_log_base {
 public:
  script_log();

  void error(const std::string& message) override;
  void out(const std::string& message) override;

  // Since the start, or since they were forgotten.
  const std::string& first_error() const { return first_error_; }
  const std::string& last_error() const { return last_error_; }
  void forget_errors();

 private:
  std::string first_error_;
  std::string last_error_;
  std::string line_;
};

}  // namespace vorn::tool
