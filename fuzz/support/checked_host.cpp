#include "fuzz/support/checked_host.hpp"

#include <algorithm>
#include <new>
#include <utility>

#include "fuzz/support/check.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn::fuzz {
namespace {

constexpr const char* healthy_program =
    "#define TEN 10\n"
    "add(left, right) { left + right }\n"
    "print(\"sum: \" + add(TEN, 5), sign(-1));\n";

}  // namespace

checked_host::checked_host(files sources) : sources_(std::move(sources)) {
  for (const auto& [name, text] : sources_) host_.files->add(name, text);
  // A million defines may be replaced, and each would be kept as a line.
  host_.log->level_mask = vrn_log_all & ~static_cast<std::uint32_t>(vrn_log_level::log);
}

vrn_program checked_host::load() {
  vrn_program program;
  try {
    program = host_.loader.create_program("main.vrs");
  } catch (const std::bad_alloc&) {
    return {};
  }
  read_reports();
  const auto show = [this] { return listing(); };
  check(program || !reports_.empty() || is_blank(sources_["main.vrs"]),
        "A load that fails says where.", show);
  return program;
}

std::string checked_host::listing() const {
  std::string all;
  for (const auto& [name, text] : sources_) all.append("--- " + name + "\n").append(text) += '\n';
  for (const source_report& report : reports_) {
    all.append(report.file + ":" + std::to_string(report.line) + ":" +
               std::to_string(report.column) + " " + report.message + "\n" + report.shown + "\n");
  }
  return all;
}

void checked_host::read_reports() {
  const auto show = [this] { return listing(); };
  for (const std::string& error : host_.log->texts(vrn_log_level::error)) {
    if (!is_source_report(error)) continue;
    reports_.push_back(parse_source_report(error));
    const auto source = sources_.find(reports_.back().file);
    check(source != sources_.end(), "The file of a report exists.", show);
    check(has_place(reports_.back(), source->second), "The place of a report exists.", show);
  }
}

void checked_host::run(const vrn_program& program) {
  host_.log->records.clear();
  host_.run({program});
  for (const std::string& error : host_.log->texts(vrn_log_level::error)) {
    check(is_runtime_error(error), "A run makes no other errors.", error);
  }
}

void checked_host::check_health() {
  host_.script.state().tasks = {};
  check(host_.output_of(healthy_program) == std::vector<std::string>{"sum: 15", "-1.000000"},
        "The next program loads and runs.");
  check_released(host_.script);
}

void check_released(vrnscript& script) {
  const vrn_value_pools& pools = script.state().pools;
  check(pools.functions.live_count() == 0, "No function is left.");
  check(pools.values.live_count() == 0, "No value is left.");
  check(pools.json_values.live_count() == 0, "No json member is left.");
  check(pools.json.live_count() == 0, "No json is left.");
  check(pools.strings.live_count() == 0, "No string is left.");
  check(script.state().registry->size() == 0, "No program block is left.");
}

bool is_runtime_error(std::string_view logged) {
  constexpr std::string_view expected[] = {
      "Runtime Error ***\n",
      "get_int() not implemented for type: ",
      "get_float() not implemented for type: ",
      "Parallelism not implemented yet!",
      "Runtime error not a function!",
      "Task failed: std::bad_alloc",
  };
  return std::any_of(std::begin(expected), std::end(expected),
                     [logged](std::string_view each) { return logged.starts_with(each); });
}

}  // namespace vorn::fuzz
