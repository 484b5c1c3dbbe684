// The console logger.
#pragma once

#include <vornscript/export.hpp>
#include <vornscript/log.hpp>

namespace vorn {

// Writes each message to standard output as one line: the level's tag, the thread's name (if it has
// one) and id, the level's marker and the text. Lines are coloured when standard output is a
// terminal and NO_COLOR is unset. Each line is handed over whole, with one call; it is not flushed.
class VRN_API vrn_log_default final : public vrn_log_base {
 public:
  using vrn_log_base::vrn_log_base;
  ~vrn_log_default() override;

  void log(const std::string& message) override;
  void warning(const std::string& message) override;
  void error(const std::string& message) override;
  void verbose(const std::string& message) override;
  void debug(const std::string& message) override;
  void out(const std::string& message) override;

  // Passes everything written so far on to the system; free when nothing has been written since.
  void flush();
};

}  // namespace vorn
