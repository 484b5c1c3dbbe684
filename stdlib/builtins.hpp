// The built-in functions, one for each row of stdlib/builtins.def. They read their arguments by
// position and leave the number of arguments to the compiler.
#pragma once

#include <vector>

#include <vornscript/std_function.hpp>

namespace vorn::builtin {

using arguments = std::vector<vrnvar_shared>;

#define VRN_BUILTIN(name, ...) vrnvar_shared name(vrn_vm_context& context, arguments& given);
#include "stdlib/builtins.def"
#undef VRN_BUILTIN

}  // namespace vorn::builtin
