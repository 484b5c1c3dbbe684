// The logger: where every message of the system goes.
//
// A host hands its interpreter a logger; all other code reaches it through get_log(). A call site
// tests the level's bit before it builds a message, so a disabled level costs one test. Loggers are
// called on the interpreter's thread; one that is shared by several interpreters has to bear calls
// from all of their threads.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

#include <vornscript/export.hpp>

namespace vorn {

enum class vrn_log_level : std::uint32_t {
#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) operation = bit,
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL
};

// The union of all levels' bits.
inline constexpr std::uint32_t vrn_log_all = 63;

// The logger interface. Used as it is, it is the silent logger.
class VRN_API vrn_log_base {
 public:
  vrn_log_base() = default;
  explicit vrn_log_base(std::uint32_t mask) : level_mask(mask) {}
  vrn_log_base(const vrn_log_base&) = delete;
  vrn_log_base& operator=(const vrn_log_base&) = delete;

  virtual void log(const std::string&) {}
  virtual void warning(const std::string&) {}
  virtual void error(const std::string&) {}
  virtual void verbose(const std::string&) {}
  virtual void debug(const std::string&) {}
  virtual void out(const std::string&) {}
  virtual ~vrn_log_base() = default;

  bool enabled(vrn_log_level level) const {
    return (level_mask & static_cast<std::uint32_t>(level)) != 0;
  }

  // Calls the operation of `level`, whatever the mask says.
  void write(vrn_log_level level, const std::string& message);

  // The enabled levels. Callers test it; the logger itself does not.
  std::uint32_t level_mask = vrn_log_all;
};

// The calling thread's logger: its `log_override` if set, else its interpreter's, else one silent
// logger for the whole process.
VRN_API vrn_log_base& get_log();

inline void append_part(std::string& line, std::string_view text) { line += text; }

template <std::integral Number>
void append_part(std::string& line, Number number) {
  char digits[24];
  line.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// Writes one message made of texts and whole numbers; builds it only when the level is enabled.
template <class... Parts>
void log_line(vrn_log_level level, const Parts&... parts) {
  vrn_log_base& logger = get_log();
  if (!logger.enabled(level)) return;
  std::string line;
  (append_part(line, parts), ...);
  logger.write(level, line);
}

}  // namespace vorn
