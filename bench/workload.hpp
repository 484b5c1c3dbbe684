// Generated scripts, the same in every run. Each is valid in vornscript and, where that has the
// same syntax, in Lua.
#pragma once

#include <cstddef>
#include <string>

namespace vorn::bench {

// Assignments of expressions with four operands, over 50 variables.
std::string arithmetic(std::size_t statements);

// Built-in functions called inside each other.
std::string calls(std::size_t statements);

// Strings and numbers joined, by the given operator.
std::string strings(std::size_t statements, const char* joining);

// Functions that are defined and called once.
std::string functions(std::size_t count);

}  // namespace vorn::bench
