// Code.
#include <string>
#include <unordered_map>
#include <vector>

#include "compiler/disassembler.hpp"
#include "runtime/inspect_stages.hpp"
#include "vm/payload.hpp"

namespace vorn {
namespace {

// The line from a statement on; all of the line where the statement begins outside: with a string
// of several lines, or behind an escaped line end.
std::string_view line_from(const vrn_src_token& first) {
  const std::string_view line = first.source->line_text(first.line());
  const auto line_start = static_cast<std::size_t>(line.data() - first.source->text.data());
  const std::size_t at = first.index() - line_start;  // wraps before the line
  return at <= line.size() ? line.substr(at) : line;
}

// The name that a routine is defined by, and those of its parameters.
std::string signature(std::string_view name, const vrn_program_block_routine& routine) {
  std::vector<std::string_view> parameters(routine.parameter_count, "?");
  if (routine.names) {
    for (const auto& [parameter, entry] : *routine.names) {
      if (entry.index < parameters.size()) parameters[entry.index] = parameter;
    }
  }
  std::string text(name);
  text += '(';
  for (const std::string_view parameter : parameters) {
    if (text.back() != '(') text += ", ";
    text += parameter;
  }
  return text += ')';
}

// Definitions nest no deeper than frontend/nesting.hpp allows.
void visit_routine(vrn_program_block_routine& routine, const std::string& signature_text,
                   std::uint32_t depth, const vrn_inspect_visitor& visit) {
  visit({depth, "routine", signature_text, {}});
  std::size_t statement = 0;
  std::size_t end = 0;
  const auto visit_statements_to = [&](std::size_t at) {
    for (; statement < routine.statement_ends.size() && end <= at; ++statement) {
      const vrn_src_token& first = *routine.statements.get()[statement].first;
      vrn_inspected item = inspected(depth + 1, "statement", first);
      item.text = line_from(first);
      visit(item);
      end = routine.statement_ends[statement];
    }
  };
  disassemble(routine, [&](const vrn_instruction_text& instruction) {
    visit_statements_to(instruction.at);
    visit({depth + 2, instruction.name, instruction.operands, {}});
  });
  visit_statements_to(routine.instructions().size());
  if (!routine.children) return;

  std::unordered_map<const vrn_program_block_routine*, std::string_view> names;
  for (const auto& [name, entry] : *routine.names) {
    const vrnvar& value = *routine.variables[entry.index];
    if (value.type == vrn_type::function) {
      names.emplace(value.as<vrnvar_ptr_function>()->routine.get(), name);
    }
  }
  for (const auto& child : *routine.children) {
    visit_routine(*child, signature(names[child.get()], *child), depth + 1, visit);
  }
}

}  // namespace

void visit_code(const vrn_program_block_root& program, const vrn_inspect_visitor& visit) {
  visit_routine(*program.main, "main", 0, visit);
}

}  // namespace vorn
