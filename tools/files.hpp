// The files that commands read scripts from.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vornscript/filesys.hpp>

namespace vorn::tool {

// The system's files, looked for as they stand, in the folders, then beside the executable.
std::shared_ptr<vrn_filesys_os> open_files(const std::vector<std::string>& folders);

}  // namespace vorn::tool
