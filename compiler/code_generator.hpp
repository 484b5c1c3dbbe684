// The code generator: from the syntax tree to program blocks.
//
// One recursive pass over the tree, in source order. An expression leaves its result in the top
// slot of the value stack without pushing; operators and assignments push the one slot more that
// they need. Names are resolved and slots allotted on the way. The first error ends it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <vornscript/program_block.hpp>

#include "compiler/instruction.hpp"
#include "parser/ast.hpp"

namespace vorn {

class vrnscript;

// Compiles the tree into a new program and counts its instructions; empty on failure, which has
// been reported then.
vrn_program create_bytecode(vrnscript& script, std::shared_ptr<vrn_ast> ast,
                            std::uint32_t& instruction_count);

class vrn_code_generator {
 public:
  // `node_count`, that of the top level, says how much room its code needs. With a tree, routines
  // note where their statements end and keep it.
  vrn_code_generator(vrnscript& script, std::uint32_t& instruction_count,
                     std::uint32_t node_count = 0, std::shared_ptr<const vrn_ast> noted_tree = {})
      : script_(script),
        count_(instruction_count),
        node_count_(node_count),
        noted_tree_(std::move(noted_tree)) {}

  // Compile a node, or a list of nodes in order, into a block; false on the first failure. Only
  // routine blocks take code.
  bool compile_list(vrn_program_block_base& block, vrn_statement_list statements);
  bool compile(vrn_program_block_base& block, const vrn_ast_node& node);

  // Where a variable lies, seen from a block: so many parent links up, at that index.
  struct location {
    std::uint32_t hops;
    std::uint32_t index;
  };

  // Looks for a name in a block and the blocks around it. The outermost that has it wins,
  // deliberately: a script's top-level variables hide the parameters and locals of its functions.
  static std::optional<location> find_var_in_parent(const vrn_program_block_base& block,
                                                    std::string_view name);

 private:
  // An operator or assignment of which a part is being compiled.
  struct waiting {
    vrn_opcode opcode;
    const vrn_ast_node* rest;  // its last part; null while that is compiled
  };
  using string_index = std::unordered_map<std::string_view, std::uint32_t>;

  // code_generator.cpp
  // Set an operator or assignment aside; give the part to be compiled first, null on failure.
  const vrn_ast_node* open_binary(const vrn_program_block_base& block,
                                  const vrn_ast_node_binary& node);
  const vrn_ast_node* open_assign(const vrn_program_block_base& block,
                                  const vrn_ast_node_assign& node);
  bool compile_single(vrn_program_block_base& block, const vrn_ast_node& node);
  bool compile_unary(vrn_program_block_base& block, const vrn_ast_node_unary& node);
  bool compile_string(vrn_program_block_routine& block, std::string_view text);
  bool compile_variable(vrn_program_block_routine& block, std::string_view name);
  static std::optional<location> resolve(const vrn_program_block_routine& block,
                                         std::string_view name);
  void load(vrn_program_block_routine& block, const location& at);

  // code_generator_function.cpp
  bool compile_call(vrn_program_block_base& block, const vrn_ast_node_function_call& node);
  bool compile_script_call(vrn_program_block_routine& block, const vrn_ast_node_function_call& node,
                           const location& callee);
  bool compile_native_call(vrn_program_block_routine& block,
                           const vrn_ast_node_function_call& node);
  bool compile_arguments(vrn_program_block_routine& block, const vrn_ast_node_function_call& node,
                         vrn_opcode store);
  bool compile_function_def(vrn_program_block_base& block, const vrn_ast_node_function_def& node);
  std::shared_ptr<vrn_program_block_routine> make_routine(vrn_program_block_routine& block,
                                                          const vrn_ast_node_function_def& node);

  // Appends an instruction and counts it.
  template <class... Operands>
  void emit(vrn_program_block_routine& block, vrn_opcode opcode, Operands... operands) {
    if (!block.code) make_code(block);
    block.emit(opcode, operands...);
    ++count_;
  }
  void make_code(vrn_program_block_routine& block) const;

  vrnscript& script_;
  std::uint32_t& count_;
  std::uint32_t node_count_;  // of the routine that is being compiled
  std::shared_ptr<const vrn_ast> noted_tree_;
  std::vector<waiting> waiting_;
  // Beside each block's string table, so that finding a literal does not search it.
  std::unordered_map<const vrn_program_block_routine*, string_index> string_indexes_;
};

}  // namespace vorn
