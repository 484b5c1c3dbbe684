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
  const auto show = [this] { return listing(); };
  vrn_program program;
  try {
    program = host_.loader.create_program("main.vrs");
  } catch (const std::bad_alloc&) {
    check(can_multiply(), "A load without defines has enough memory.", show);
    return {};
  }
  read_reports();
  check(program || !reports_.empty() || has_nothing_to_point_at(), "A load that fails says where.",
        show);
  check_pools_quiet();
  return program;
}

// Defines can multiply what a script says, within bounds of their own.
bool checked_host::can_multiply() const {
  return std::any_of(sources_.begin(), sources_.end(), [](const auto& source) {
    return source.second.find("define") != std::string::npos;
  });
}

// There is not one token.
bool checked_host::has_nothing_to_point_at() const {
  const auto errors = host_.log->texts(vrn_log_level::error);
  return !errors.empty() &&
         (errors[0] == "stage_1 failed." || errors[0] == "Source file main.vrs is empty.");
}

void checked_host::check_pools_quiet() const {
  constexpr std::string_view complaints[] = {
      "invalid pool magic num: ", "invalid variable pool memory! ", "unknown var encountered.",
      "Seems like variable ",     "Additionally, the variable ",    "There are still pool chunks "};
  for (const std::string& error : host_.log->texts(vrn_log_level::error)) {
    for (const std::string_view complaint : complaints) {
      check(!error.starts_with(complaint), "The pools are in order.", error);
    }
  }
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
  check_pools_quiet();
  check(host_.output_of(healthy_program) == std::vector<std::string>{"sum: 15", "-1.000000"} &&
            host_.log->texts(vrn_log_level::error).empty(),
        "The next program loads and runs.");
  check(test::live_objects(host_.script) == 0, "No value, payload or program block is left.");
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
