// The words of the language, for tools that complete, describe or highlight them.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include <vornscript/export.hpp>

namespace vorn {

namespace words {
inline constexpr std::string_view if_ = "if";
inline constexpr std::string_view else_ = "else";
inline constexpr std::string_view for_ = "for";
inline constexpr std::string_view return_ = "return";
inline constexpr std::string_view class_ = "class";
inline constexpr std::string_view struct_ = "struct";
inline constexpr std::string_view cstruct_ = "cstruct";
inline constexpr std::string_view define = "define";
inline constexpr std::string_view include = "include";
}  // namespace words

// The words that are no names where they stand, and those that follow a "#".
inline constexpr std::array vrn_keywords = {words::if_,     words::else_,  words::for_,
                                            words::return_, words::class_, words::struct_,
                                            words::cstruct_};
inline constexpr std::array vrn_directives = {words::define, words::include};

// A built-in function, as docs/language.md shows it.
struct vrn_builtin {
  std::string_view name;
  std::uint32_t min_arguments;
  std::uint32_t max_arguments;
  std::string_view parameters;  // "x, low, high"; "..." stands for as many more as are wanted
  std::string_view result;      // "float"
  std::string_view description;
};

// All of them, in the order of their registration. Callable from any thread.
VRN_API std::span<const vrn_builtin> builtins();

}  // namespace vorn
