// Use of an interpreter on a thread that is not its own.
#pragma once

#include <string_view>

namespace vorn {

class vrnscript;

// Whether the interpreter is the calling thread's. If not, one error line names the operation that
// was called: in the thread's log, or on standard error when the thread has none.
bool check_thread(const vrnscript& script, std::string_view operation) noexcept;

}  // namespace vorn
