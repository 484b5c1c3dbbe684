#include "tools/files.hpp"

#include <iterator>

namespace vorn::tool {

std::shared_ptr<vrn_filesys_os> open_files(const std::vector<std::string>& folders) {
  auto files = std::make_shared<vrn_filesys_os>();
  for (const std::string& folder : folders) {
    files->search_paths.insert(std::prev(files->search_paths.end()), [folder] { return folder; });
  }
  return files;
}

}  // namespace vorn::tool
