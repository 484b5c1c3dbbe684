#include "compiler/disassembler.hpp"

#include <vornscript/log.hpp>

#include "compiler/instruction.hpp"
#include "vm/number_text.hpp"

namespace vorn {
namespace {

std::string name_of_value(const vrn_program_block_routine& routine, const vrnvar* value) {
  if (routine.names) {
    for (const auto& [name, entry] : *routine.names) {
      if (entry.index < routine.variables.size() && routine.variables[entry.index].get() == value) {
        return name;
      }
    }
  }
  return "?";
}

void append_operands(std::string& line, const vrn_program_block_routine& routine,
                     const std::byte* record, vrn_operands operands) {
  switch (operands) {
    case vrn_operands::none:
    case vrn_operands::reserved:
      return;
    case vrn_operands::u32:
      line += ' ';
      return append_part(line, read_field<std::uint32_t>(record, 4));
    case vrn_operands::i64:
      line += ' ';
      return append_part(line, read_field<std::int64_t>(record, 8));
    case vrn_operands::f64: {
      vrn_number_buffer buffer;
      line += ' ';
      return append_part(line, number_text(read_field<double>(record, 8), buffer));
    }
    case vrn_operands::value:
      line += ' ';
      line += name_of_value(routine, read_field<const vrnvar*>(record, 8));
      return;
    case vrn_operands::native:
      line += ' ';
      line += read_field<const vrn_std_function*>(record, 8)->name;
      return;
    case vrn_operands::outer:
      line += ' ';
      append_part(line, read_field<std::uint32_t>(record, 4));
      line += ' ';
      return append_part(line, read_field<std::uint32_t>(record, 8));
  }
}

}  // namespace

std::string disassemble(vrn_program_block_routine& routine) {
  std::string text;
  const std::span<std::byte> code = routine.instructions();
  for (std::size_t at = 0; at < code.size();) {
    const std::size_t left = code.size() - at;
    const std::uint32_t opcode =
        left < sizeof opcode ? opcode_count : read_field<std::uint32_t>(&code[at], 0);
    if (opcode >= opcode_count || vrn_opcodes[opcode].size > left) return text += "?\n";
    const auto& row = vrn_opcodes[opcode];
    text += row.name;
    append_operands(text, routine, &code[at], row.operands);
    text += '\n';
    at += row.size;
  }
  return text;
}

}  // namespace vorn
