#include <vornscript/filesys.hpp>

#include <algorithm>
#include <utility>
#include <vector>

#include "frontend/path_text.hpp"
#include "frontend/tab_run.hpp"

namespace vorn {
namespace {

constexpr std::size_t tab_width = 4;

std::string with_slashes(std::string_view path) {
  std::string result(path);
  std::replace(result.begin(), result.end(), '\\', '/');
  return result;
}

std::string join(std::string_view directory, std::string_view name) {
  std::string path = with_slashes(directory);
  if (!path.empty() && path.back() != '/') path += '/';
  return path += name;
}

std::function<std::string()> search_path(std::string directory) {
  return [directory = std::move(directory)] { return directory; };
}

}  // namespace

void vrn_filesys::read(const std::string&, std::string&) const {}
void vrn_filesys::write(const std::string&, std::string_view) {}
std::vector<std::string> vrn_filesys::list(const std::string&) const { return {}; }
std::vector<std::string> vrn_filesys::list_files(const std::string&) const { return {}; }
std::vector<std::string> vrn_filesys::list_recursive(const std::string&) const { return {}; }
bool vrn_filesys::exists(const std::string&) const { return false; }
void vrn_filesys::create_directory(const std::string&) {}
void vrn_filesys::remove_all(const std::string&) {}

std::string vrn_filesys::canonical(const std::string& path) const {
  return text_of(path_of(path).lexically_normal());
}

void vrn_filesys::search_paths_add(std::string directory) {
  search_paths.push_back(search_path(std::move(directory)));
}

void vrn_filesys::search_paths_insert_begin(std::string directory) {
  search_paths.insert(search_paths.begin(), search_path(std::move(directory)));
}

std::string vrn_filesys::find_file(std::string_view name,
                                   const std::string* first_directory) const {
  if (name.empty()) return canonical({});
  std::string wanted = with_slashes(name);
  // A drive path is taken on trust: whether there is such a file shows when it is read.
  if (wanted.size() >= 2 && wanted[1] == ':') return wanted;
  if (wanted.back() == '/') wanted.pop_back();

  const bool beside = first_directory && !first_directory->empty();
  if (beside) {
    if (const std::string path = join(*first_directory, wanted); exists(path)) {
      return canonical(path);
    }
  }
  for (const auto& directory : search_paths) {
    if (const std::string path = join(directory(), wanted); exists(path)) return canonical(path);
  }
  return first_directory && !beside && exists(wanted) ? canonical(wanted) : std::string();
}

std::string vrn_filesys::read_file(const std::string& path) const {
  std::string bytes;
  if (exists(path)) read(path, bytes);
  return bytes;
}

std::string directory_of(std::string_view path) {
  const std::size_t slash = path.find_last_of("/\\");
  if (slash == std::string_view::npos) return {};
  return slash == 0 ? "/" : with_slashes(path.substr(0, slash));
}

std::string normalise_source(std::string text) {
  return normalise_source(std::move(text), nullptr);
}

std::string normalise_source(std::string text, std::vector<vrn_tab_run>* runs) {
  std::size_t tab = text.find('\t');
  if (tab == std::string::npos) return text;

  std::string result;
  result.reserve(text.size() * tab_width);  // enough, were it all tabs
  std::size_t copied = 0;
  std::size_t line_start = 0;  // in the result
  for (; tab != std::string::npos; tab = text.find('\t', copied)) {
    const std::string_view piece = std::string_view(text).substr(copied, tab - copied);
    if (const std::size_t line_end = piece.rfind('\n'); line_end != std::string_view::npos) {
      line_start = result.size() + line_end + 1;
    }
    result += piece;
    result.append(tab_width - (result.size() - line_start) % tab_width, ' ');
    copied = tab + 1;
    if (!runs) continue;
    if (piece.empty() && !runs->empty()) runs->pop_back();  // the run goes on
    runs->push_back(
        {static_cast<std::uint32_t>(result.size()), static_cast<std::uint32_t>(copied)});
  }
  result.append(text, copied);
  result.shrink_to_fit();
  return result;
}

}  // namespace vorn
