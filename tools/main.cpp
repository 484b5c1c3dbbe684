// vrn: runs, checks and shows scripts.
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <vornscript/version.hpp>

#include "platform/platform.hpp"
#include "tools/commands.hpp"
#include "tools/manual.hpp"
#include "tools/output.hpp"

namespace {

constexpr int wrong_usage = 2;

int run(const std::vector<std::string>& arguments) {
  CLI::App program("Runs, checks and shows vornscript scripts.", "vrn");
  program.get_formatter()->column_width(26);
  program.allow_windows_style_options(false);
  program.set_version_flag("--version", "vrn " VRN_VERSION_TEXT, "Print the version and exit");
  program.require_subcommand(1);
  vorn::tool::add_manual_flag(program);

  int status = 0;
  vorn::tool::add_run(program, status);
  vorn::tool::add_check(program, status);
  vorn::tool::add_dump(program, status);
  vorn::tool::add_lsp(program, status);
  try {
    std::vector<const char*> texts;
    texts.reserve(arguments.size());
    for (const std::string& argument : arguments) texts.push_back(argument.c_str());
    program.parse(static_cast<int>(texts.size()), texts.data());
  } catch (const CLI::ParseError& end) {
    return program.exit(end) == 0 ? 0 : wrong_usage;
  }
  return status;
}

}  // namespace

int main(int argument_count, char** arguments) {
  vorn::platform::buffer_console();
  try {
    return run(vorn::platform::arguments(argument_count, arguments));
  } catch (const std::exception& failure) {
    vorn::tool::write_error_line(failure.what());
    return 1;
  }
}
