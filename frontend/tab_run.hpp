// Where tabs stood before they became blanks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vorn {

// A run of tabs: where the blanks that stand for it end in the text, and where it ends in the file.
struct vrn_tab_run {
  std::uint32_t end;
  std::uint32_t end_in_file;
};

// As normalise_source(text); appends the runs of tabs, in order, unless `runs` is null.
std::string normalise_source(std::string text, std::vector<vrn_tab_run>* runs);

}  // namespace vorn
