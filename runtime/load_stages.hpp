// A load, stage by stage.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <vornscript/clock.hpp>
#include <vornscript/program_block.hpp>

#include "frontend/command.hpp"
#include "frontend/token.hpp"
#include "parser/ast.hpp"

namespace vorn {

class vrnscript;

struct vrn_source_text {
  std::string path;
  std::string text;
};

// A script file, looked for along the search paths; nothing when it is not found or too large,
// which has been reported then.
std::optional<vrn_source_text> open_script(std::string_view file_name);

// Milliseconds since it was made; below 0 when the clock was set back.
class vrn_stopwatch {
 public:
  std::int64_t elapsed() const {
    return static_cast<std::int64_t>(current_clock().wall_ms() - start_);
  }

 private:
  std::uint64_t start_ = current_clock().wall_ms();
};

// Each stage logs its time, and gives an empty handle on failure, which has been reported then. It
// also fails when a report's callback has thrown. All times but that of reading run from the start
// of the load, deliberately.
class vrn_load_stages {
 public:
  // Fills a fresh view, which holds what was read before a failure too.
  bool create_tokens(vrn_src_token_view& view, std::string text, std::string source_name) const;
  std::shared_ptr<vrn_src_command_map> create_commands(
      std::shared_ptr<vrn_src_token_view> view) const;
  std::shared_ptr<vrn_ast> create_tree(const vrn_src_command_map& commands) const;
  static vrn_program create_code(vrnscript& script, std::shared_ptr<vrn_ast> ast,
                                 std::uint32_t& instruction_count);

 private:
  void tell_failure(std::string_view stage) const;

  vrn_stopwatch watch_;
};

}  // namespace vorn
