// What each thread knows of itself. One set per system thread, there before any interpreter is and
// to the thread's very end: objects of static and thread storage may use it in their destructors.
#pragma once

#include <cstdint>
#include <string_view>

#include <vornscript/export.hpp>

namespace vorn {

class vrnscript;
class vrn_log_base;

// The thread's interpreter; set and cleared by vrnscript.
VRN_API extern constinit thread_local vrnscript* current_script;

// When set, get_log() returns it instead of the interpreter's logger. Not owned.
VRN_API extern constinit thread_local vrn_log_base* log_override;

// The system's number of the calling thread, never 0.
VRN_API std::uint32_t thread_id() noexcept;

// The calling thread's name, shown in log lines when not empty; vrnscript sets it. The text stays
// valid until the name is set again.
VRN_API std::string_view thread_name() noexcept;
VRN_API void set_thread_name(std::string_view name);

}  // namespace vorn
