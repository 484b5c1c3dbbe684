#include <vornscript/program_block.hpp>

#include <xxhash.h>

#include "compiler/instruction.hpp"

namespace vorn {
namespace {

template <class T>
T& made(std::shared_ptr<T>& table) {
  if (!table) table = std::make_shared<T>();
  return *table;
}

// Appends a record of `size` bytes and returns where it begins.
std::byte* append_record(vrn_program_block_routine& routine, std::size_t size) {
  auto& code = made(routine.code);
  const std::size_t at = code.size();
  code.resize(at + size);
  return code.data() + at;
}

}  // namespace

std::size_t vrn_hasher::operator()(std::string_view name) const {
  return static_cast<std::size_t>(XXH3_64bits(name.data(), name.size()));
}

vrn_program_block_routine::vrn_program_block_routine(vrn_program_block_base* enclosing)
    : vrn_program_block_base(vrn_block_kind::routine, enclosing) {}

vrn_program_block_routine::~vrn_program_block_routine() = default;

std::optional<std::uint32_t> vrn_program_block_routine::find_name(std::string_view name) const {
  if (!names) return std::nullopt;
  const auto found = names->find(name);
  if (found == names->end()) return std::nullopt;
  return found->second.index;
}

vrnvar_shared vrn_program_block_routine::variable(std::string_view name) const {
  const auto index = find_name(name);
  return index ? variables[*index] : vrnvar_shared();
}

std::uint32_t vrn_program_block_routine::add_variable(std::string_view name) {
  const auto index = static_cast<std::uint32_t>(variables.size());
  variables.push_back(var_none());
  insert_name(name, index);
  return index;
}

void vrn_program_block_routine::insert_name(std::string_view name, std::uint32_t index) {
  made(names).insert_or_assign(std::string(name), name_entry{index});
}

void vrn_program_block_routine::emit(std::uint32_t opcode) {
  write_field(append_record(*this, 4), 0, opcode);
}

void vrn_program_block_routine::emit(std::uint32_t opcode, std::uint32_t operand) {
  write_field(append_record(*this, 8), 0, std::uint64_t{operand} << 32 | opcode);
}

void vrn_program_block_routine::emit(std::uint32_t opcode, std::uint64_t operand) {
  std::byte* const record = append_record(*this, 16);
  write_field(record, 0, std::uint64_t{opcode});
  write_field(record, 8, operand);
}

void vrn_program_block_routine::emit(std::uint32_t opcode, std::uint32_t hops, std::uint32_t index,
                                     std::uint64_t cache) {
  std::byte* const record = append_record(*this, 24);
  write_field(record, 0, std::uint64_t{hops} << 32 | opcode);
  write_field(record, 8, std::uint64_t{index});
  write_field(record, 16, cache);
}

vrn_program_block_root::vrn_program_block_root()
    : vrn_program_block_base(vrn_block_kind::root, nullptr),
      main(std::make_shared<vrn_program_block_routine>(this)) {}

vrn_program_block_root::~vrn_program_block_root() = default;

}  // namespace vorn
