#include "tools/lsp_files.hpp"

namespace vorn::lsp {

void editor_files::read(const std::string& path, std::string& bytes) const {
  const auto found = open_.find(canonical(path));
  if (found == open_.end()) return disk_->read(path, bytes);
  bytes += *found->second;
}

bool editor_files::exists(const std::string& path) const {
  const std::string name = canonical(path);
  asked_.insert(name);
  return open_.contains(name) || disk_->exists(path);
}

}  // namespace vorn::lsp
