#include "tools/disk_places.hpp"

#include <algorithm>

namespace vorn::tool {

disk_place disk_places::find(const std::string& file, std::size_t offset) {
  const auto [entry, is_new] = line_begins_.try_emplace(file, 1, std::size_t{0});
  std::vector<std::size_t>& begins = entry->second;
  if (is_new) {
    const std::string text = files_.read_file(file);
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) {
      begins.push_back(++at);
    }
  }
  const auto next = std::upper_bound(begins.begin(), begins.end(), offset);
  return {static_cast<std::size_t>(next - begins.begin()), offset - *std::prev(next) + 1};
}

}  // namespace vorn::tool
