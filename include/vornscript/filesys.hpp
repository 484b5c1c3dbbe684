// The file system that scripts are loaded from.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <vornscript/export.hpp>

namespace vorn {

// The most bytes that a source file may hold: 4 GiB.
inline constexpr std::uint64_t vrn_source_size_max = std::uint64_t{1} << 32;

// What `read` may throw for a file that holds more. A load that meets it writes an error line: the
// main file ends it, an included one adds nothing.
class VRN_API vrn_file_too_large : public std::length_error {
 public:
  using std::length_error::length_error;
};

// A complete file system without files, and the base of all others. A derived class needs
// `exists` and `read`, and `canonical` where a file can go by several names. Every operation is
// called on the interpreter's thread.
class VRN_API vrn_filesys {
 public:
  vrn_filesys() = default;
  vrn_filesys(const vrn_filesys&) = delete;
  vrn_filesys& operator=(const vrn_filesys&) = delete;

  // Appends the file's bytes to `bytes`; appends nothing when the file cannot be read.
  virtual void read(const std::string& path, std::string& bytes) const;
  // Replaces the file's contents.
  virtual void write(const std::string& path, std::string_view bytes);
  // The entries of a folder: all of them, the regular files only, or all at any depth.
  virtual std::vector<std::string> list(const std::string& path) const;
  virtual std::vector<std::string> list_files(const std::string& path) const;
  virtual std::vector<std::string> list_recursive(const std::string& path) const;
  virtual bool exists(const std::string& path) const;
  // Creates the folder and those above it.
  virtual void create_directory(const std::string& path);
  // Removes the file, or the folder with all that it holds.
  virtual void remove_all(const std::string& path);
  virtual ~vrn_filesys() = default;
  // The one name that stands for all names of the file at `path`.
  virtual std::string canonical(const std::string& path) const;

  // Appends a folder to the search paths, or puts one before all others.
  void search_paths_add(std::string directory);
  void search_paths_insert_begin(std::string directory);

  // The canonical path of the file `name`: looked for in `first_directory` when one is given, then
  // along the search paths; where that directory is empty, along the search paths, then as the name
  // stands. Empty when it is nowhere.
  std::string find_file(std::string_view name, const std::string* first_directory = nullptr) const;

  // The file's whole contents; empty when there is no such file. Throws what `read` throws.
  std::string read_file(const std::string& path) const;

  // Called in order for the folders to look in; an entry may compute its answer at each look-up.
  std::vector<std::function<std::string()>> search_paths;
};

// The operating system's files. Looks for a name as it stands (relative to the working directory),
// then in the folder "include" beside the running executable.
class VRN_API vrn_filesys_os final : public vrn_filesys {
 public:
  // Throws std::runtime_error when the executable's path cannot be had.
  vrn_filesys_os();

  // Only regular files are read; anything else counts as empty. Throws vrn_file_too_large, before
  // anything is read where the file's size tells.
  void read(const std::string& path, std::string& bytes) const override;
  // Throws std::ios_base::failure.
  void write(const std::string& path, std::string_view bytes) override;
  // These throw std::filesystem::filesystem_error.
  std::vector<std::string> list(const std::string& path) const override;
  std::vector<std::string> list_files(const std::string& path) const override;
  std::vector<std::string> list_recursive(const std::string& path) const override;
  void create_directory(const std::string& path) override;
  void remove_all(const std::string& path) override;
  // A name that the system refuses counts as missing.
  bool exists(const std::string& path) const override;
  // Absolute, also where links cannot be resolved; empty for a name that can be no file's.
  std::string canonical(const std::string& path) const override;
};

// The part of a path before its last slash (backslashes count as slashes): "/" in the root folder,
// empty without a slash.
VRN_API std::string directory_of(std::string_view path);

// The text with each tab replaced by spaces up to the next column that is a multiple of 4; columns
// are counted in bytes from the line's start.
VRN_API std::string normalise_source(std::string text);

}  // namespace vorn
