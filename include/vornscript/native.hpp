// Native functions from plain ones: what vrnscript::register_function makes of a C++ function's
// signature. Nothing here is called by a host.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <vornscript/std_function.hpp>
#include <vornscript/value.hpp>

namespace vorn::detail {

template <class T>
inline constexpr bool is_native_optional = false;
template <class T>
inline constexpr bool is_native_optional<std::optional<T>> = true;

// The types that a script's value can become, and that can become one.
template <class T>
inline constexpr bool is_native_plain =
    !std::is_const_v<T> &&
    (std::is_arithmetic_v<T> || std::is_same_v<T, std::string> ||
     std::is_same_v<T, std::string_view> || std::is_same_v<T, vrnvar_shared>);
template <class T>
inline constexpr bool is_native_value = is_native_plain<T>;
template <class T>
inline constexpr bool is_native_value<std::optional<T>> = is_native_plain<T>;

template <class T>
T to_integral(const vrnvar& given) {
  using limits = std::numeric_limits<T>;
  if constexpr (std::is_same_v<T, bool>) {
    return given.get_int() != 0;
  } else if (given.type == vrn_type::floating) {
    const double number = given.as_float();
    // The end is one more than the largest, which a double need not be able to hold.
    constexpr auto half = limits::max() / 2 + 1;
    constexpr double end = 2.0 * static_cast<double>(half);
    if (number >= end) return limits::max();
    // A NaN is not greater either.
    return number > static_cast<double>(limits::min()) ? static_cast<T>(number) : limits::min();
  } else {
    const auto number = given.type == vrn_type::integer ? given.as_int() : given.get_int();
    if (std::is_unsigned_v<T> && number < 0) return 0;
    using wide = std::conditional_t<std::is_unsigned_v<T>, std::uint64_t, std::int64_t>;
    return static_cast<T>(
        std::clamp(static_cast<wide>(number), wide{limits::min()}, wide{limits::max()}));
  }
}

// Keeps the text of an argument that has none itself.
struct native_no_buffer {};
template <class T>
using native_buffer = std::conditional_t<std::is_same_v<T, std::string_view>,
                                         std::optional<std::string>, native_no_buffer>;

// What is passed for an argument: a value of type T, or what one can be made from without a copy.
template <class T>
decltype(auto) native_value(const vrnvar_shared& given, [[maybe_unused]] native_buffer<T>& buffer) {
  if constexpr (std::is_same_v<T, vrnvar_shared>) {
    return given;
  } else if constexpr (std::is_same_v<T, std::string>) {
    return given->to_text();
  } else if constexpr (std::is_same_v<T, std::string_view>) {
    if (given->type == vrn_type::string) return given->string_text();
    return std::string_view(buffer.emplace(given->to_text()));
  } else if constexpr (std::is_integral_v<T>) {
    return to_integral<T>(*given);
  } else {
    const bool is_float = given->type == vrn_type::floating;
    return static_cast<T>(is_float ? given->as_float() : given->get_float());
  }
}

// The argument at a position; an optional one is empty when the call has less.
template <class T, std::size_t position>
struct native_argument {
  explicit native_argument(const std::vector<vrnvar_shared>& given)
      : value(native_value<T>(given[position], buffer)) {}
  [[no_unique_address]] native_buffer<T> buffer;
  decltype(native_value<T>(std::declval<const vrnvar_shared&>(), buffer)) value;
};

template <class T, std::size_t position>
struct native_argument<std::optional<T>, position> {
  explicit native_argument(const std::vector<vrnvar_shared>& given) {
    if (position < given.size()) value.emplace(native_value<T>(given[position], buffer));
  }
  [[no_unique_address]] native_buffer<T> buffer;
  std::optional<T> value;
};

// Bases are made one after the other: conversions complain in the order of the arguments.
template <class Positions, class... Values>
struct native_arguments;
template <std::size_t... positions, class... Values>
struct native_arguments<std::index_sequence<positions...>, Values...>
    : native_argument<Values, positions>... {
  explicit native_arguments([[maybe_unused]] const std::vector<vrnvar_shared>& given)
      : native_argument<Values, positions>(given)... {}

  template <class Call>
  decltype(auto) pass_to(const Call& call) {
    return call(std::move(static_cast<native_argument<Values, positions>&>(*this).value)...);
  }
};

template <class T>
vrnvar_shared native_result(T&& result) {
  using type = std::remove_cvref_t<T>;
  if constexpr (is_native_optional<type>) {
    return result ? native_result(*std::forward<T>(result)) : var_none();
  } else if constexpr (std::is_same_v<type, vrnvar_shared>) {
    return std::forward<T>(result);
  } else if constexpr (std::is_floating_point_v<type>) {
    return var_float(static_cast<double>(result));
  } else if constexpr (std::is_unsigned_v<type>) {
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    return var_int(static_cast<std::int64_t>(std::min(std::uint64_t{result}, largest)));
  } else if constexpr (std::is_integral_v<type>) {
    return var_int(result);
  } else {
    return var_string(result);
  }
}

template <class Parameter>
inline constexpr bool is_native_parameter =
    is_native_value<std::remove_cvref_t<Parameter>> &&
    (std::is_same_v<Parameter, std::remove_cvref_t<Parameter>> ||
     std::is_same_v<Parameter, const std::remove_cvref_t<Parameter>&>);
template <class Result>
inline constexpr bool is_native_result =
    std::is_void_v<Result> || is_native_value<std::remove_cvref_t<Result>>;

template <class Parameter>
constexpr void check_native_parameter() {
  static_assert(is_native_parameter<Parameter>,
                "A parameter of a function that scripts call has to be of an arithmetic type, "
                "std::string, std::string_view, vrnvar_shared or std::optional of these, or a "
                "const reference to one; vrn_vm_context& may come first.");
}

template <class Result>
constexpr void check_native_result() {
  static_assert(is_native_result<Result>,
                "The result of a function that scripts call has to be void or of an arithmetic "
                "type, std::string, std::string_view, vrnvar_shared or std::optional of these.");
}

template <bool has_context, class Result, class... Parameters>
struct native_signature {
  static constexpr auto max_arguments = static_cast<std::uint32_t>(sizeof...(Parameters));
  static constexpr std::uint32_t min_arguments =
      (0U + ... + (is_native_optional<std::remove_cvref_t<Parameters>> ? 0U : 1U));
  static constexpr std::initializer_list<bool> are_optional = {
      is_native_optional<std::remove_cvref_t<Parameters>>...};
  static constexpr bool optionals_come_last =
      std::is_sorted(are_optional.begin(), are_optional.end());
  static constexpr bool valid =
      is_native_result<Result> && (optionals_come_last && ... && is_native_parameter<Parameters>);

  static constexpr void check() {
    static_assert(
        optionals_come_last,
        "The std::optional parameters of a function that scripts call have to come last.");
    (check_native_parameter<Parameters>(), ...);
    check_native_result<Result>();
  }

  template <class Callable>
  static vrn_native wrap(Callable callable) {
    return [callable = std::move(callable)](vrn_vm_context& context,
                                            std::vector<vrnvar_shared>& given) mutable {
      native_arguments<std::index_sequence_for<Parameters...>, std::remove_cvref_t<Parameters>...>
          arguments(given);
      const auto call = [&](auto&&... values) -> Result {
        if constexpr (has_context) {
          return callable(context, std::forward<decltype(values)>(values)...);
        } else {
          return callable(std::forward<decltype(values)>(values)...);
        }
      };
      if constexpr (std::is_void_v<Result>) {
        arguments.pass_to(call);
        return var_none();
      } else {
        return native_result(arguments.pass_to(call));
      }
    };
  }
};

template <class Result, class... Parameters>
native_signature<false, Result, Parameters...> signature_of(
    const std::function<Result(Parameters...)>&);
template <class Result, class... Parameters>
native_signature<true, Result, Parameters...> signature_of(
    const std::function<Result(vrn_vm_context&, Parameters...)>&);
template <class Result, class... Parameters>
native_signature<true, Result, Parameters...> signature_of(
    const std::function<Result(const vrn_vm_context&, Parameters...)>&);

// What a wrong signature leads to, behind the one message that says what is wrong.
struct no_native_signature {
  static constexpr bool valid = false;
};

template <class Callable>
consteval auto native_signature_of() {
  constexpr bool copyable = std::is_copy_constructible_v<Callable>;
  constexpr bool callable = requires(Callable object) { std::function(object); };
  static_assert(copyable, "A function that scripts call has to be copyable.");
  static_assert(callable || !copyable,
                "What scripts call has to be a function or an object with one operator(), without "
                "parameters of type auto.");
  if constexpr (copyable && callable) {
    using signature = decltype(signature_of(std::function(std::declval<Callable>())));
    signature::check();
    return std::conditional_t<signature::valid, signature, no_native_signature>();
  } else {
    return no_native_signature();
  }
}

}  // namespace vorn::detail
