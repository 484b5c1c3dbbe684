#include "compiler/run_report.hpp"

#include <algorithm>
#include <string>

#include "frontend/report_callback.hpp"
#include "parser/ast.hpp"

namespace vorn {
namespace {

vrn_src_place statement_at(const vrn_program_block_routine& routine, std::size_t at) {
  const auto& ends = routine.statement_ends;
  const auto found = std::upper_bound(ends.begin(), ends.end(), at);
  if (found == ends.end()) return {};
  return place_of(*routine.statements.get()[found - ends.begin()].first);
}

}  // namespace

void report_run(vrn_report_kind kind, vrn_task& task, const vrn_program_block_routine* routine,
                std::size_t at, std::string_view message, std::string_view operand) {
  const vrn_report_callback* const callback = report_callback();
  if (!callback) return;
  call_back(*callback, kind, std::string(message).append(operand),
            routine ? statement_at(*routine, at) : vrn_src_place(), &task);
}

}  // namespace vorn
