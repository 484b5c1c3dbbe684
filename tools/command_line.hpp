// The command line.
#pragma once

#include <string>
#include <vector>

namespace vorn::tool {

// Carries out what the arguments of main say, the program's name first; gives the process's status.
int run_command_line(const std::vector<std::string>& arguments);

}  // namespace vorn::tool
