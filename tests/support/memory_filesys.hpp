// A file system in memory, which looks for a name as it stands.
#pragma once

#include <map>
#include <string>
#include <utility>

#include <vornscript/filesys.hpp>

namespace vorn::test {

class memory_filesys final : public vrn_filesys {
 public:
  memory_filesys() { search_paths_add(""); }

  void add(const std::string& path, std::string text) { files_[path] = std::move(text); }

  bool exists(const std::string& path) const override { return files_.contains(canonical(path)); }
  void read(const std::string& path, std::string& bytes) const override {
    if (const auto file = files_.find(canonical(path)); file != files_.end()) {
      bytes += file->second;
    }
  }

 private:
  std::map<std::string, std::string> files_;
};

}  // namespace vorn::test
