// Writes programs that are valid by construction, with at most one fault planted on purpose.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/byte_source.hpp"
#include "fuzz/support/checked_host.hpp"

namespace vorn::fuzz {

// A command that is wrong, and what has to be reported of it.
struct fault {
  std::string_view text;
  std::string_view message;
  bool fails = true;  // or the load goes on
};

struct planted_fault {
  const fault* what;
  std::string file;
  std::uint32_t line;
};

class program_writer {
 public:
  explicit program_writer(byte_source& source) : source_(source) {}

  // Writes main.vrs and what it includes.
  checked_host::files write();

  // To be asked when the program has been written.
  const std::optional<planted_fault>& planted() const { return planted_; }

 private:
  struct file {
    std::string name;
    std::string text;
  };

  void write_statements();
  void write_statement();
  void write_function();
  void write_include();
  void write_define();
  void write_fault();

  void write_expression();
  void write_operand();
  void write_group();
  void write_call();
  void write_arguments(std::uint32_t count);
  void write_string();
  void write_variable();
  void write_gap();

  file& current() { return files_.back(); }
  void put(std::string_view text) { current().text += text; }

  byte_source& source_;
  std::vector<file> files_;  // those being written, each included by the one before it
  checked_host::files written_;
  std::uint32_t statements_left_ = 40;
  std::uint32_t depth_ = 0;
  std::uint32_t function_depth_ = 0;
  std::uint32_t function_count_ = 0;
  std::uint32_t include_count_ = 0;
  std::uint32_t define_count_ = 0;
  bool in_define_ = false;
  std::vector<std::string> functions_;  // those that can be called here
  const fault* fault_ = nullptr;        // still to be planted
  std::uint32_t fault_after_ = 0;       // so many statements
  std::optional<planted_fault> planted_;
};

}  // namespace vorn::fuzz
