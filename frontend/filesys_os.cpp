#include <vornscript/filesys.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ios>
#include <stdexcept>
#include <system_error>

#include "frontend/path_text.hpp"
#include "frontend/source_file.hpp"
#include "platform/platform.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;

constexpr int links_max = 40;  // as many as systems follow

// The system ends a name at its first NUL, and would take what is before it for the whole.
bool names_nothing(const std::string& path) {
  return path.find('\0') != std::string::npos || path_of(path).empty() != path.empty();
}

void check(const std::error_code& failure, const char* operation, const fs::path& path) {
  if (failure) throw fs::filesystem_error(operation, path, failure);
}

void check_name(const std::string& path, const char* operation) {
  if (!names_nothing(path)) return;
  check(make_error_code(std::errc::invalid_argument), operation, path_of(path));
}

// A name by which the system gets to the file. Below a folder that may not be searched, or that
// lies too deep, it does so from the working directory only.
fs::path reachable(const fs::path& path) {
  std::error_code failure;
  if (fs::status(path, failure).type() != fs::file_type::none) return path;
  const fs::path below = path.lexically_relative(fs::current_path(failure));
  return below.empty() || *below.begin() == ".." ? path : below;
}

// The name without links, for a file that cannot be looked for from the root folder on.
fs::path resolved_below(fs::path name) {
  std::error_code failure;
  for (int links = 0; links < links_max; ++links) {
    fs::path front;
    auto part = name.begin();
    while (part != name.end() && !fs::is_symlink(front / *part, failure)) front /= *part++;
    if (part == name.end()) break;
    front /= fs::read_symlink(front / *part, failure);
    while (++part != name.end()) front /= *part;
    name = reachable(front);
  }
  return name;
}

// The paths of the entries that are wanted, in order.
template <class Iterator, class Wanted>
std::vector<std::string> entries(const std::string& name, const char* opening,
                                 const char* advancing, Wanted wanted) {
  check_name(name, opening);
  const fs::path path = path_of(name);
  std::error_code failure;
  std::vector<std::string> found;
  Iterator entry(path, failure);
  check(failure, opening, path);
  while (entry != Iterator()) {
    if (wanted(*entry)) found.push_back(text_of(entry->path()));
    entry.increment(failure);
    check(failure, advancing, path);
  }
  std::sort(found.begin(), found.end());
  return found;
}

bool any_entry(const fs::directory_entry&) { return true; }

bool regular_file(const fs::directory_entry& entry) {
  std::error_code failure;
  const fs::file_status status = entry.status(failure);
  if (status.type() == fs::file_type::none) check(failure, "directory_entry::status", entry.path());
  return fs::is_regular_file(status);
}

}  // namespace

vrn_filesys_os::vrn_filesys_os() {
  const std::string executable = platform::executable_path();
  if (executable.empty()) throw std::runtime_error("GetModuleFileNameA failed");
  search_paths_add("");
  search_paths_add(text_of(path_of(directory_of(executable)) / "include"));
}

void vrn_filesys_os::read(const std::string& path, std::string& bytes) const {
  if (names_nothing(path)) return;
  std::error_code failure;
  const fs::path name = reachable(path_of(path));
  if (!fs::is_regular_file(name, failure)) return;
  // Of some files the size is told as 0 though they hold something.
  const std::uintmax_t size = fs::file_size(name, failure);
  const bool says_too_large = !failure && size > vrn_source_size_max;
  std::ifstream file(name, std::ios::binary);
  if (says_too_large || !append_stream(file, bytes, vrn_source_size_max)) {
    throw vrn_file_too_large(path);
  }
}

void vrn_filesys_os::write(const std::string& path, std::string_view bytes) {
  std::ofstream file;
  if (names_nothing(path)) {
    file.setstate(std::ios::failbit);
  } else {
    file.open(path_of(path), std::ios::binary);
  }
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (file.bad()) throw std::ios_base::failure("ios_base::badbit set");
  if (file.fail()) throw std::ios_base::failure("ios_base::failbit set");
}

std::vector<std::string> vrn_filesys_os::list(const std::string& path) const {
  return entries<fs::directory_iterator>(path, "directory_iterator::directory_iterator",
                                         "directory_iterator::operator++", any_entry);
}

std::vector<std::string> vrn_filesys_os::list_files(const std::string& path) const {
  return entries<fs::directory_iterator>(path, "directory_iterator::directory_iterator",
                                         "directory_iterator::operator++", regular_file);
}

std::vector<std::string> vrn_filesys_os::list_recursive(const std::string& path) const {
  return entries<fs::recursive_directory_iterator>(
      path, "recursive_directory_iterator::recursive_directory_iterator",
      "recursive_directory_iterator::operator++", any_entry);
}

bool vrn_filesys_os::exists(const std::string& path) const {
  std::error_code failure;
  return !names_nothing(path) && fs::exists(reachable(path_of(path)), failure);
}

void vrn_filesys_os::create_directory(const std::string& path) {
  check_name(path, "create_directories");
  std::error_code failure;
  fs::create_directories(path_of(path), failure);
  check(failure, "create_directories", path_of(path));
}

void vrn_filesys_os::remove_all(const std::string& path) {
  check_name(path, "remove_all");
  std::error_code failure;
  fs::remove_all(path_of(path), failure);
  check(failure, "remove_all", path_of(path));
}

std::string vrn_filesys_os::canonical(const std::string& path) const {
  if (path.empty() || names_nothing(path)) return {};
  const fs::path name = path_of(path);
  std::error_code failure;
  fs::path absolute = fs::absolute(name, failure);
  if (failure) return text_of(name.lexically_normal());  // no folder is the working one
  const fs::path resolved = fs::weakly_canonical(absolute, failure);
  if (!failure) return text_of(resolved);
  absolute = fs::absolute(resolved_below(reachable(name)), failure);
  return text_of(absolute.lexically_normal());
}

}  // namespace vorn
