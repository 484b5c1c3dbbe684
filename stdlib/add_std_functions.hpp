// Native functions: their records, and the registration of the built-in ones.
#pragma once

#include <cstdint>
#include <string_view>

#include <vornscript/std_function.hpp>

namespace vorn {

class vrnscript;

vrn_ref<vrn_std_function> make_std_function(std::string_view name, vrn_native callable,
                                            std::uint32_t min_arguments,
                                            std::uint32_t max_arguments);

// Registers every row of stdlib/builtins.def.
void add_std_functions(vrnscript& script);

}  // namespace vorn
