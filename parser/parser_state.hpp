// The parser's insides. It works on half-open ranges of tokens inside one command, tries the forms
// of the language in a fixed order, and calls itself on sub-ranges and on the commands of groups.
//
// A form that fails reports it and sets the error flag; while the flag is set nearly nothing more is
// reported, so the first error of a program is the one that is shown. An empty result without a
// report (nothing between brackets, say) is reported by the form that needed something there.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <vornscript/program_block.hpp>

#include "frontend/command.hpp"
#include "parser/ast.hpp"
#include "parser/operator_index.hpp"

namespace vorn {

using vrn_reporter = void (*)(const vrn_src_token&);
using vrn_operand_reporter = void (*)(const vrn_src_token&, std::string_view);

// An expression that is read from left to right: a chain of operators and assignments, each of which
// waits for the rest as its last part.
class vrn_node_chain {
 public:
  // Adds a node whose part `rest` is to come, and what is to be reported, at the node's token, when
  // it cannot be parsed.
  void add(vrn_node node, vrn_node& rest, vrn_reporter reporter);
  void add(vrn_node node, vrn_node& rest, vrn_operand_reporter reporter);

 private:
  friend class vrn_parser;

  vrn_node first_;
  vrn_node* open_ = &first_;
  vrn_ast_node* last_ = nullptr;
  vrn_reporter reporter_ = nullptr;
  vrn_operand_reporter operand_reporter_ = nullptr;
};

class vrn_parser {
 public:
  explicit vrn_parser(vrn_ast& ast) : ast_(ast) {}

  // Whether all commands could be parsed; their nodes become the tree's top level.
  bool parse_program(const vrn_command_list& commands);

 private:
  struct define {
    vrn_command command;
    bool in_use = false;  // being expanded just now
  };

  // parser.cpp: commands, single tokens, defines
  vrn_node parse(const vrn_src_command& command);
  vrn_node parse(vrn_src_command_view range);
  // What a form or a range gives that begins with a keyword, or has one token; nullopt for others.
  std::optional<vrn_node> parse_simple(const vrn_src_command_view& range);
  vrn_node parse_word(const vrn_token& token);
  vrn_node parse_paren_group(const vrn_src_command_view& range);
  vrn_node parse_brace_group(const vrn_src_command_view& range);
  void add_define(const vrn_command& command);
  vrn_node replace_define(define& found, const vrn_token& token);
  // The commands of a list in order, defines taken in on the way; false when one gives no node.
  bool parse_list(const vrn_command_list& list, vrn_reporter reporter, std::vector<vrn_node>& nodes);
  // The one expression among a list's commands.
  vrn_node parse_only(const vrn_command_list& list);

  // expression.cpp: assignments and operators
  static std::optional<std::uint32_t> find_sign(const vrn_src_command_view& range);
  bool parse_assignment(const vrn_src_command_view& range, std::uint32_t sign,
                        vrn_node_chain& chain);
  vrn_node parse_list_addition(const vrn_src_command_view& range, std::uint32_t sign);
  vrn_node parse_operators(const vrn_src_command_view& range);
  // A range without an assignment; `at` is the operator it splits at.
  vrn_node parse_split(vrn_src_command_view range, std::uint32_t at);
  // The same for a side of an operator, which may be of any form.
  vrn_node parse_operand(const vrn_src_command_view& range, std::uint32_t at);
  vrn_node parse_unary(const vrn_src_command_view& range, std::uint32_t at, bool postfix);

  // bracket_form.cpp: indexes, initializer lists, definitions, calls
  vrn_node parse_bracket_form(const vrn_src_command_view& range);
  vrn_node parse_index(const vrn_src_command_view& range);
  vrn_node parse_initializer_list(const vrn_src_command_view& range);
  bool parse_initializer_entries(const vrn_src_command_view& range,
                                 std::vector<std::vector<vrn_node>>& entries);
  vrn_node parse_function_def(const vrn_src_command_view& range);
  vrn_ref<vrn_ast_node_function_def_param> parse_param(const vrn_command& command);
  vrn_node parse_struct(const vrn_src_command_view& range);
  vrn_node parse_call(const vrn_src_command_view& range);

  // statement.cpp: conditions, loops, return
  vrn_node parse_condition(const vrn_src_command_view& range);
  bool parse_branch(const vrn_src_command_view& range, std::uint32_t at,
                    vrn_ast_condition_branch& branch);
  bool parse_body(const vrn_src_command_view& range, std::uint32_t at,
                  std::vector<vrn_node>& body);
  vrn_node parse_loop(const vrn_src_command_view& range);
  bool parse_loop_header(const vrn_src_command_view& range, vrn_ast_node_loop& loop);
  vrn_node parse_return(const vrn_src_command_view& range);

  // Report, unless an error has been reported before, and set the error flag. Always empty.
  vrn_node fail(vrn_reporter reporter, const vrn_token& at);
  vrn_node fail(vrn_operand_reporter reporter, const vrn_token& at, std::string_view operand);
  // Reports whatever has been reported before.
  vrn_node fail_loudly(vrn_reporter reporter, const vrn_token& at);
  // Hangs the last part onto a chain; gives the whole, or nothing when there is no last part.
  vrn_node finish(vrn_node_chain& chain, vrn_node last);

  vrn_ast& ast_;
  bool failed_ = false;  // the error flag
  std::uint32_t depth_ = 0;
  vrn_operator_index operators_;
  std::unordered_map<std::string_view, define, vrn_hasher, vrn_transparent_equal> defines_;
  std::uint64_t replacements_ = 0;
  std::uint64_t replaced_tokens_ = 0;
};

}  // namespace vorn
