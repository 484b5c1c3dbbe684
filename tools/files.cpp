#include "tools/files.hpp"

#include <iterator>

#include <CLI/CLI.hpp>

namespace vorn::tool {

void add_search_paths(CLI::App& command, std::vector<std::string>& folders) {
  command.add_option("-I", folders, "Look for scripts in this folder too; may be repeated")
      ->type_name("FOLDER")
      ->allow_extra_args(false);
}

std::shared_ptr<vrn_filesys_os> open_files(const std::vector<std::string>& folders) {
  auto files = std::make_shared<vrn_filesys_os>();
  for (const std::string& folder : folders) {
    files->search_paths.insert(std::prev(files->search_paths.end()), [folder] { return folder; });
  }
  return files;
}

}  // namespace vorn::tool
