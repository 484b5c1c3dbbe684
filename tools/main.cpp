// vrn: runs, checks and shows scripts.
#include <exception>

#include "platform/platform.hpp"
#include "tools/command_line.hpp"
#include "tools/output.hpp"

int main(int argument_count, char** arguments) {
  vorn::platform::buffer_console();
  try {
    return vorn::tool::run_command_line(vorn::platform::arguments(argument_count, arguments));
  } catch (const std::exception& failure) {
    vorn::tool::write_error_line(failure.what());
    return 1;
  }
}
