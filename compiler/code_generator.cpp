#include "compiler/code_generator.hpp"

#include <bit>
#include <string>
#include <utility>

#include <vornscript/log.hpp>
#include <vornscript/vrnscript.hpp>

#include "compiler/node_report.hpp"
#include "platform/platform.hpp"
#include "vm/number_text.hpp"

namespace vorn {
namespace {

// Positions in the code of a routine have 32 bits.
constexpr std::size_t code_size_max = 0xFFFF'FFFF;

// The block as one that takes code, or null.
vrn_program_block_routine* code_block(vrn_program_block_base& block) {
  return block.kind == vrn_block_kind::routine ? static_cast<vrn_program_block_routine*>(&block)
                                               : nullptr;
}

void note_class_lookup() {
  log_line(vrn_log_level::log, "TODO: Implement class var lookup (find_var_in_parent).");
}

std::optional<vrn_opcode> binary_opcode(const vrn_src_token& sign) {
  if (sign.is_symbol("+")) return op_add;
  if (sign.is_symbol("-")) return op_sub;
  if (sign.is_symbol("*")) return op_mul;
  if (sign.is_symbol("/")) return op_div;
  return std::nullopt;
}

std::uint64_t int_bits(const vrn_ast_node& literal) {
  return static_cast<std::uint64_t>(text_to_int(literal.token->text()));
}

std::uint64_t float_bits(const vrn_ast_node& literal) {
  return std::bit_cast<std::uint64_t>(text_to_float(literal.token->text()));
}

}  // namespace

bool vrn_code_generator::compile_list(vrn_program_block_base& block,
                                      vrn_statement_list statements) {
  vrn_program_block_routine* const routine = code_block(block);
  const bool noting = routine && noted_tree_;
  if (noting) {
    routine->statements = {noted_tree_, statements.data()};
    routine->statement_ends.reserve(statements.size());
  }
  for (const vrn_ast_statement& statement : statements) {
    if (!compile(block, *statement.node)) return false;
    if (!noting) continue;
    routine->statement_ends.push_back(static_cast<std::uint32_t>(routine->instructions().size()));
  }
  if (!routine || !routine->code || routine->code->size() <= code_size_max) return true;
  log_line(vrn_log_level::error, "Program is too large.");
  return false;
}

// Operators and assignments wait on a stack while their two parts are compiled, so neither long nor
// left-leaning expressions cost recursion.
bool vrn_code_generator::compile(vrn_program_block_base& block, const vrn_ast_node& node) {
  const std::size_t outer = waiting_.size();
  const vrn_ast_node* at = &node;
  for (;;) {
    if (at->kind == vrn_node_kind::binary_node) {
      at = open_binary(block, static_cast<const vrn_ast_node_binary&>(*at));
      if (!at) return false;
      continue;
    }
    if (at->kind == vrn_node_kind::assign_node) {
      at = open_assign(block, static_cast<const vrn_ast_node_assign&>(*at));
      if (!at) return false;
      continue;
    }
    if (!compile_single(block, *at)) return false;
    for (; waiting_.size() > outer && !waiting_.back().rest; waiting_.pop_back()) {
      emit(*code_block(block), waiting_.back().opcode);
    }
    if (waiting_.size() == outer) return true;
    emit(*code_block(block), op_push, 1u);
    at = std::exchange(waiting_.back().rest, nullptr);
  }
}

const vrn_ast_node* vrn_code_generator::open_binary(const vrn_program_block_base& block,
                                                    const vrn_ast_node_binary& node) {
  const auto opcode = binary_opcode(*node.token);
  if (block.kind != vrn_block_kind::routine || !opcode) {
    report_node(node, report_invalid_binary_operator, node.token->text());
    return nullptr;
  }
  waiting_.push_back({*opcode, node.right});
  return node.left;
}

const vrn_ast_node* vrn_code_generator::open_assign(const vrn_program_block_base& block,
                                                    const vrn_ast_node_assign& node) {
  if (block.kind != vrn_block_kind::routine || node.target->kind == vrn_node_kind::json_node) {
    report_node(node, report_not_implemented);
    return nullptr;
  }
  if (node.target->kind != vrn_node_kind::variable_node) {
    report_node(node, report_cannot_assign);
    return nullptr;
  }
  waiting_.push_back({op_assign, node.value});
  return node.target;
}

bool vrn_code_generator::compile_single(vrn_program_block_base& block, const vrn_ast_node& node) {
  switch (node.kind) {
    case vrn_node_kind::unary_node:
      return compile_unary(block, static_cast<const vrn_ast_node_unary&>(node));
    case vrn_node_kind::function_call_node:
      return compile_call(block, static_cast<const vrn_ast_node_function_call&>(node));
    case vrn_node_kind::function_def_node:
      return compile_function_def(block, static_cast<const vrn_ast_node_function_def&>(node));
    default:
      break;
  }
  if (vrn_program_block_routine* const routine = code_block(block)) {
    switch (node.kind) {
      case vrn_node_kind::int_node:
        emit(*routine, op_load_int, int_bits(node));
        return true;
      case vrn_node_kind::float_node:
        emit(*routine, op_load_float, float_bits(node));
        return true;
      case vrn_node_kind::string_node:
        return compile_string(*routine, node.token->text());
      case vrn_node_kind::variable_node:
        return compile_variable(*routine, node.token->text());
      default:
        break;
    }
  }
  const auto number = static_cast<std::uint32_t>(node.kind);
  return report_node(node, report_invalid_command_type, std::to_string(number));
}

// Only "-" in front; on a number it changes the number itself.
bool vrn_code_generator::compile_unary(vrn_program_block_base& block,
                                       const vrn_ast_node_unary& node) {
  vrn_program_block_routine* const routine = code_block(block);
  if (!routine || node.postfix || !node.token->is_symbol("-")) {
    return report_node(node, report_invalid_unary_operator, node.token->text());
  }
  if (node.operand->kind == vrn_node_kind::float_node) {
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    emit(*routine, op_load_float, float_bits(*node.operand) ^ sign);
    return true;
  }
  if (node.operand->kind == vrn_node_kind::int_node) {
    emit(*routine, op_load_int, 0 - int_bits(*node.operand));
    return true;
  }
  if (!compile(block, *node.operand)) return false;
  emit(*routine, op_negate);
  return true;
}

bool vrn_code_generator::compile_string(vrn_program_block_routine& block, std::string_view text) {
  if (!block.strings) block.strings = std::make_shared<std::vector<std::string>>();
  const auto next = static_cast<std::uint32_t>(block.strings->size());
  const auto [entry, is_new] = string_indexes_[&block].try_emplace(text, next);
  if (is_new) block.strings->emplace_back(text);
  emit(block, op_load_string, entry->second);
  return true;
}

// A name that was never assigned gets a variable all the same.
bool vrn_code_generator::compile_variable(vrn_program_block_routine& block, std::string_view name) {
  const auto found = resolve(block, name);
  load(block, found ? *found : location{0, block.add_variable(name)});
  return true;
}

void vrn_code_generator::load(vrn_program_block_routine& block, const location& at) {
  if (at.hops > 0) {
    emit(block, op_load_outer_var, at.hops, at.index, std::uint64_t{0});
  } else {
    const vrnvar* const value = block.variables[at.index].get();
    emit(block, op_load_value, address_of(value));
  }
}

// With room for what so many nodes usually compile to.
void vrn_code_generator::make_code(vrn_program_block_routine& block) const {
  constexpr std::size_t bytes_per_node = 16;
  block.code = std::make_shared<std::vector<std::byte>>();
  block.code->reserve(node_count_ * bytes_per_node);
  platform::prefer_large_pages(block.code->data(), block.code->capacity() / 4 * 3);
}

std::optional<vrn_code_generator::location> vrn_code_generator::resolve(
    const vrn_program_block_routine& block, std::string_view name) {
  const vrn_program_block_base* const parent = block.parent;
  if (parent && parent->kind == vrn_block_kind::routine) {
    if (const auto found = find_var_in_parent(*parent, name)) {
      return location{found->hops + 1, found->index};
    }
  } else if (parent && parent->kind == vrn_block_kind::class_) {
    note_class_lookup();
  }
  const auto index = block.find_name(name);
  return index ? std::optional(location{0, *index}) : std::nullopt;
}

std::optional<vrn_code_generator::location> vrn_code_generator::find_var_in_parent(
    const vrn_program_block_base& block, std::string_view name) {
  std::optional<location> outermost;
  const vrn_program_block_base* at = &block;
  for (std::uint32_t hops = 0; at && at->kind == vrn_block_kind::routine; ++hops) {
    const auto index = static_cast<const vrn_program_block_routine*>(at)->find_name(name);
    if (index) outermost = location{hops, *index};
    at = at->parent;
  }
  if (at && at->kind == vrn_block_kind::class_) note_class_lookup();
  return outermost;
}

vrn_program create_bytecode(vrnscript& script, std::shared_ptr<vrn_ast> ast,
                            std::uint32_t& instruction_count) {
  const std::uint64_t start = script.clock().wall_ms();
  auto program = std::make_shared<vrn_program_block_root>();
  program->ast = std::move(ast);
  instruction_count = 0;
  vrn_code_generator generator(script, instruction_count, program->ast->node_count,
                               program->ast->source->notes_places ? program->ast : nullptr);
  if (!generator.compile_list(*program->main, program->ast->nodes)) return {};
  const auto elapsed = static_cast<std::int64_t>(script.clock().wall_ms() - start);
  log_line(vrn_log_level::log, "Bytecode creation took ", elapsed, " ms (", instruction_count,
           " instructions).");
  return program;
}

}  // namespace vorn
