// What the fragments of the documents stand in.
#pragma once

#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vornscript/vornscript.hpp>

struct robot_type {
  std::int64_t x, y;
  void say(std::string_view, double) {}
};

// Of those that are statements.
#define FRAGMENT(number)                                                  \
  void fragment_##number([[maybe_unused]] robot_type& robot,              \
                         [[maybe_unused]] vorn::vrnscript_config& config, \
                         [[maybe_unused]] vorn::vrn_program_loader& loader)

extern vorn::vrnscript script;
extern vorn::vrn_program program;
extern vorn::vrn_ref<vorn::vrn_task> task;
extern std::multimap<std::string, vorn::vrn_ref<vorn::vrn_task>> waiting;
inline constexpr std::uint64_t forever = UINT64_MAX;

void use(std::int64_t number);
void wait_for_events(std::uint64_t milliseconds);
void show_in_console(const std::string& line);
