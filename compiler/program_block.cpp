#include <vornscript/program_block.hpp>

// The header holds all of it: there is no library to link.
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>

#include "compiler/instruction.hpp"
#include "vm/payload.hpp"
#include "vm/running_task.hpp"
#include "vm/value_access.hpp"

namespace vorn {
namespace {

template <class T>
T& made(std::shared_ptr<T>& table) {
  if (!table) table = std::make_shared<T>();
  return *table;
}

// Appends a record that consists of these fields.
template <class... Fields>
void append_record(vrn_program_block_routine& routine, Fields... fields) {
  std::array<std::byte, (sizeof fields + ...)> record;
  std::size_t offset = 0;
  ((write_field(record.data(), offset, fields), offset += sizeof fields), ...);
  auto& code = made(routine.code);
  code.insert(code.end(), record.begin(), record.end());
}

// Nested no deeper than definitions may be.
void rewind_routine(vrn_program_block_routine& routine) noexcept {
  if (routine.uses == 0) routine.saved_pc = 0;
  if (!routine.children) return;
  for (const auto& child : *routine.children) rewind_routine(*child);
}

// Apart from the way of short names, which needs to save no registers.
[[gnu::noinline]] std::uint64_t hash_of_long(std::string_view name) {
  return XXH3_64bits(name.data(), name.size());
}

}  // namespace

std::size_t vrn_hasher::operator()(std::string_view name) const {
  return static_cast<std::size_t>(name.size() > 16 ? hash_of_long(name)
                                                   : XXH3_64bits(name.data(), name.size()));
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

vrnptr<vrn_program_block_routine> vrn_program_block_routine::function(std::string_view name) const {
  const vrnvar_shared held = variable(name);
  const vrnvar* const value = deref_value(held.get());
  if (!value || value->type != vrn_type::function) return {};
  const auto& routine = value->as<vrnvar_ptr_function>()->routine;
  return routine.get() ? routine : vrnptr<vrn_program_block_routine>();
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

void vrn_program_block_routine::emit(std::uint32_t opcode) { append_record(*this, opcode); }

void vrn_program_block_routine::emit(std::uint32_t opcode, std::uint32_t operand) {
  append_record(*this, opcode, operand);
}

void vrn_program_block_routine::emit(std::uint32_t opcode, std::uint64_t operand) {
  append_record(*this, opcode, std::uint32_t{0}, operand);
}

void vrn_program_block_routine::emit(std::uint32_t opcode, std::uint32_t hops, std::uint32_t index,
                                     std::uint64_t cache) {
  append_record(*this, opcode, hops, index, std::uint32_t{0}, cache);
}

vrn_program_block_root::vrn_program_block_root()
    : vrn_program_block_base(vrn_block_kind::root, nullptr),
      main(std::make_shared<vrn_program_block_routine>(this)) {}

vrn_program_block_root::~vrn_program_block_root() {
  if (!main) return;
  if (vrn_running_task* const running = vrn_running_task::on_this_thread) running->keep(*this);
  if (main) main->parent = nullptr;
}

void program_rewind(const vrn_program& program) noexcept {
  if (program && program->main) rewind_routine(*program->main);
}

}  // namespace vorn
