// What a fuzz target demands.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace vorn::fuzz {

inline void check(bool holds, std::string_view demand, std::string_view found = {}) {
  if (!holds) throw std::logic_error(std::string(demand).append("\n").append(found));
}

// The same where it takes some work to show what was found.
template <class Show>
requires std::is_invocable_r_v<std::string, Show>
void check(bool holds, std::string_view demand, const Show& show) {
  if (!holds) check(false, demand, std::string_view(show()));
}

}  // namespace vorn::fuzz
