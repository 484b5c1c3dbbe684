// Generated scripts, the same in every run. Each is written in both dialects: for every statement
// of ours there is one of the peers' that does the same.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace vorn::bench {

enum class dialect { vornscript, lua };

struct workload {
  std::string_view name;
  std::string_view unit;  // what it has `size` of
  std::size_t size;
  std::string (*text)(dialect language, std::size_t size);
  bool has_peers = true;  // whether it can be written in Lua
};

std::span<const workload> workloads();
const workload& find_workload(std::string_view name);

// What every file holds that the workload "includes" includes.
std::string included_text();

// A script that writes so many lines by calls of the given function.
std::string lines(std::string_view function, std::string_view line_end, std::size_t count);

}  // namespace vorn::bench
