// Places in files as they lie on the disk.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include <vornscript/filesys.hpp>

namespace vorn::tool {

struct disk_place {
  std::size_t line;    // from 1
  std::size_t column;  // from 1, in bytes
};

// Reads a file once, to find where its lines begin.
class disk_places {
 public:
  explicit disk_places(const vrn_filesys& files) : files_(files) {}

  // The place of a byte, counted from the file's begin.
  disk_place find(const std::string& file, std::size_t offset);

  // Files are read again from here on.
  void forget() { line_begins_.clear(); }

 private:
  const vrn_filesys& files_;
  std::unordered_map<std::string, std::vector<std::size_t>> line_begins_;
};

}  // namespace vorn::tool
