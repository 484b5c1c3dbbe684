// The files that commands read scripts from.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vornscript/filesys.hpp>

namespace CLI {
class App;
}

namespace vorn::tool {

// Adds the option for further search paths to a command.
void add_search_paths(CLI::App& command, std::vector<std::string>& folders);

// The system's files, looked for as they stand, in the folders, then beside the executable.
std::shared_ptr<vrn_filesys_os> open_files(const std::vector<std::string>& folders);

}  // namespace vorn::tool
