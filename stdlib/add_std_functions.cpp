#include "stdlib/add_std_functions.hpp"

#include <memory>
#include <utility>

#include <vornscript/language.hpp>
#include <vornscript/vrnscript.hpp>

#include "stdlib/builtins.hpp"

namespace vorn {

void release_last(vrn_std_function* function) noexcept {
  const std::unique_ptr<vrn_std_function> owned(function);
}

vrn_ref<vrn_std_function> make_std_function(std::string_view name, vrn_native callable,
                                            std::uint32_t min_arguments,
                                            std::uint32_t max_arguments) {
  auto function = std::make_unique<vrn_std_function>();
  function->callable = std::move(callable);
  function->min_arguments = min_arguments;
  function->max_arguments = max_arguments;
  function->name = name;
  return vrn_ref<vrn_std_function>(function.release());
}

void add_std_functions(vrnscript& script) {
#define VRN_BUILTIN(name, min, max, ...) \
  script.register_std_function(#name, builtin::name, min, max);
#include "stdlib/builtins.def"
#undef VRN_BUILTIN
}

std::span<const vrn_builtin> builtins() {
  static constexpr vrn_builtin table[] = {
#define VRN_BUILTIN(name, ...) {#name, __VA_ARGS__},
#include "stdlib/builtins.def"
#undef VRN_BUILTIN
  };
  return table;
}

}  // namespace vorn
