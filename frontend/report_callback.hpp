// Reports for the interpreter's callback.
#pragma once

#include <string_view>

#include <vornscript/report.hpp>

#include "frontend/report.hpp"

namespace vorn {

// The callback of the calling thread's interpreter; null when there is none.
const vrn_report_callback* report_callback();

// Calls it with a report about a place, whose line is 0 when there is none. What it throws comes
// through.
void call_back(const vrn_report_callback& callback, vrn_report_kind kind, std::string_view message,
               const vrn_src_place& place, vrn_task* task);

}  // namespace vorn
