// The files that the language server loads scripts from: what is open in the editor, as it stands
// there, and the disk's files for all else.
#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include <vornscript/filesys.hpp>

namespace vorn::lsp {

class editor_files final : public vrn_filesys {
 public:
  explicit editor_files(std::shared_ptr<const vrn_filesys> disk) : disk_(std::move(disk)) {
    search_paths = disk_->search_paths;
  }

  void read(const std::string& path, std::string& bytes) const override;
  bool exists(const std::string& path) const override;
  std::string canonical(const std::string& path) const override { return disk_->canonical(path); }

  // A file that is open, by its canonical path. The text is referred to until the file is closed.
  void open(const std::string& path, const std::string& text) { open_[path] = &text; }
  void close(const std::string& path) { open_.erase(path); }

  // The canonical paths that were asked for since this was called last, whether there is such a
  // file or not.
  std::set<std::string> take_asked() const { return std::exchange(asked_, {}); }

 private:
  std::shared_ptr<const vrn_filesys> disk_;
  std::map<std::string, const std::string*> open_;
  mutable std::set<std::string> asked_;
};

}  // namespace vorn::lsp
