#include "frontend/report_callback.hpp"

#include <algorithm>
#include <vector>

#include <vornscript/vrnscript.hpp>

#include "frontend/token.hpp"

namespace vorn {

const vrn_report_callback* report_callback() {
  if (!current_script) return nullptr;
  const vrn_report_callback& callback = current_script->on_report();
  return callback ? &callback : nullptr;
}

void call_back(const vrn_report_callback& callback, vrn_report_kind kind, std::string_view message,
               const vrn_src_place& place, vrn_task* task) {
  vrn_report report{kind, message, {place.file_name, place.line, place.column}, 0, 0, {}, task};
  std::vector<vrn_report_inclusion> chain;
  if (const vrn_src_token_view* source = place.source) {
    report.offset = source->offset_in_file(place.begin);
    report.length = source->offset_in_file(place.end) - report.offset;
    for (; source->parent; source = source->parent) {
      const vrn_src_token& operand = source->included_at;
      const vrn_src_token_view& includer = *source->parent;
      const std::size_t offset = includer.offset_in_file(operand.index());
      chain.push_back({{includer.name, operand.line(), operand.column},
                       offset,
                       includer.offset_in_file(operand.end()) - offset});
    }
    std::reverse(chain.begin(), chain.end());
    report.included_from = chain;
  }
  callback(report);
}

}  // namespace vorn
