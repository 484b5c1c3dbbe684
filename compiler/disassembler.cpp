#include "compiler/disassembler.hpp"

#include <unordered_map>

#include <vornscript/log.hpp>

#include "compiler/instruction.hpp"
#include "vm/number_text.hpp"

namespace vorn {
namespace {

using value_names = std::unordered_map<const vrnvar*, std::string_view>;

value_names names_of_values(const vrn_program_block_routine& routine) {
  value_names found;
  if (!routine.names) return found;
  for (const auto& [name, entry] : *routine.names) {
    if (entry.index < routine.variables.size()) {
      found.emplace(routine.variables[entry.index].get(), name);
    }
  }
  return found;
}

void append_operands(std::string& line, const value_names& names, const std::byte* record,
                     vrn_operands operands) {
  switch (operands) {
    case vrn_operands::none:
    case vrn_operands::reserved:
      return;
    case vrn_operands::u32:
      return append_part(line, read_field<std::uint32_t>(record, 4));
    case vrn_operands::i64:
      return append_part(line, read_field<std::int64_t>(record, 8));
    case vrn_operands::f64: {
      vrn_number_buffer buffer;
      return append_part(line, number_text(read_field<double>(record, 8), buffer));
    }
    case vrn_operands::value: {
      const auto found = names.find(read_address<const vrnvar>(record, 8));
      line += found == names.end() ? "?" : found->second;
      return;
    }
    case vrn_operands::native:
      line += read_address<const vrn_std_function>(record, 8)->name;
      return;
    case vrn_operands::outer:
      append_part(line, read_field<std::uint32_t>(record, 4));
      line += ' ';
      return append_part(line, read_field<std::uint32_t>(record, 8));
  }
}

}  // namespace

void disassemble(vrn_program_block_routine& routine, const vrn_instruction_visitor& visit) {
  const value_names names = names_of_values(routine);
  const std::span<std::byte> code = routine.instructions();
  std::string operands;
  for (std::size_t at = 0; at < code.size();) {
    const std::size_t left = code.size() - at;
    const std::uint32_t opcode =
        left < sizeof opcode ? opcode_count : read_field<std::uint32_t>(&code[at], 0);
    if (opcode >= opcode_count || vrn_opcodes[opcode].size > left) return visit({at, "?", {}});
    const auto& row = vrn_opcodes[opcode];
    operands.clear();
    append_operands(operands, names, &code[at], row.operands);
    visit({at, row.name, operands});
    at += row.size;
  }
}

std::string disassemble(vrn_program_block_routine& routine) {
  std::string text;
  disassemble(routine, [&text](const vrn_instruction_text& instruction) {
    text += instruction.name;
    if (!instruction.operands.empty()) text += ' ';
    text.append(instruction.operands) += '\n';
  });
  return text;
}

}  // namespace vorn
