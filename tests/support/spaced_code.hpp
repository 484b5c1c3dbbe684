// Code in which no instruction is executed along with another one's, to compare a run with.
#pragma once

#include <cstddef>
#include <string_view>

#include "compiler/instruction.hpp"
#include "tests/support/script_host.hpp"

namespace vorn::test {

// Puts an instruction that does nothing in front of each, in this routine and in those in it.
inline void space_out(vrn_program_block_routine& routine) {
  auto spaced = std::make_shared<std::vector<std::byte>>();
  const auto code = routine.instructions();
  for (std::size_t at = 0; at < code.size();) {
    const auto size = vrn_opcodes[read_field<std::uint32_t>(&code[at], 0)].size;
    spaced->resize(spaced->size() + size_of<op_skip40>);
    write_field<std::uint32_t>(&spaced->back() + 1 - size_of<op_skip40>, 0, op_skip40);
    spaced->insert(spaced->end(), &code[at], &code[at] + size);
    at += size;
  }
  if (routine.code) routine.code = std::move(spaced);
  if (!routine.children) return;
  for (const auto& child : *routine.children) space_out(*child);
}

// What runs have left, as lines: their log, but for addresses, and what tasks and variables hold.
class remains {
 public:
  // One of `every` instructions that have been executed counts.
  void add(const script_host& host, unsigned every) {
    constexpr std::string_view executed = "Executed ";
    for (const log_record& record : host.log->records) {
      const std::string& text = record.text;
      if (text.starts_with("TASK ")) continue;
      const bool counts = text.starts_with(executed);
      add(counts ? std::to_string(std::stoul(text.substr(executed.size())) / every) : text);
    }
    add(std::to_string(live_objects(host.script)));
  }
  void add(const vrn_program_block_routine& routine) {
    add(routine.variables);
    if (!routine.children) return;
    for (const auto& child : *routine.children) add(*child);
  }
  void add(const vrn_task& task) {
    add(task.value_stack);
    for (const auto& frame : task.argument_frames) add(frame);
    add(std::to_string(task.frame_depth));
  }

  std::vector<std::string> lines;

 private:
  void add(const std::vector<vrnvar_shared>& handles) {
    for (const vrnvar_shared& each : handles) {
      add(!each ? "empty"
                : std::string(type_name(each->type)) + " " + each->to_text() + " " +
                      std::to_string(each->refcount));
    }
  }
  // The sign of what is not a number is anyone's guess.
  void add(std::string line) {
    for (std::size_t at = 0; (at = line.find("-nan")) != std::string::npos;) line.erase(at, 1);
    lines.push_back(std::move(line));
  }
};

}  // namespace vorn::test
