// The parser's insides. It works on half-open ranges of tokens inside one command, tries the forms
// of the language in a fixed order, and calls itself on sub-ranges and on the commands of groups.
//
// A form that fails reports it and sets the error flag; while the flag is set nearly nothing more
// is reported, so the first error of a program is the one that is shown. An empty result without a
// report (nothing between brackets, say) is reported by the form that needed something there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
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

// A list of commands.
using vrn_command_span = std::span<const vrn_src_command>;

// How many commands of a list are no defines.
std::size_t expressions_in(vrn_command_span list);

class vrn_parser {
 public:
  vrn_parser(const vrn_src_command_map& commands, vrn_ast& ast) : commands_(commands), ast_(ast) {}

  // Whether all commands could be parsed; their nodes become the tree's top level.
  bool parse_program();

 private:
  struct define {
    vrn_src_command command;
    bool in_use = false;  // being expanded just now
  };

  // An operator that waits for one of its sides.
  struct open_split {
    vrn_ast_node_binary* node;
    vrn_src_command_view rest;  // the right side
    std::uint32_t at;           // the operator that the right side splits at
  };

  // parser.cpp: commands, single tokens, defines
  vrn_node parse(vrn_src_command_view range);
  vrn_node parse_value(vrn_src_command_view range);
  // Whether a range begins with a keyword or has one token, and what it gives then.
  static bool is_simple(vrn_src_command_view range);
  vrn_node parse_simple(vrn_src_command_view range);
  vrn_node parse_word(const vrn_src_token& token);
  vrn_node parse_paren_group(vrn_src_command_view range);
  vrn_node parse_brace_group(vrn_src_command_view range);
  void add_define(const vrn_src_command& command);
  vrn_node replace_define(define& found, const vrn_src_token& token);
  // The commands of a list in order, defines taken in on the way; what they give becomes `nodes`.
  // Gives the command that gave no node, which ends it; null when there is none.
  const vrn_src_command* parse_list(vrn_command_span list, vrn_statement_list& nodes);
  // The one expression among a list's commands.
  vrn_node parse_only(vrn_command_span list);

  // expression.cpp: assignments and operators
  static std::optional<std::uint32_t> find_sign(vrn_src_command_view range);
  // Adds an assignment, which waits for its value; false on failure.
  bool parse_target(vrn_src_command_view range, std::uint32_t sign);
  vrn_node finish_assigns(std::size_t outer, vrn_node value);
  vrn_node parse_list_addition(vrn_src_command_view range, std::uint32_t sign);
  vrn_node parse_operators(vrn_src_command_view range);
  // A range without an assignment; `at` is the operator it splits at.
  vrn_node parse_split(vrn_src_command_view range, std::uint32_t at);
  void add_split(vrn_src_command_view range, std::uint32_t at);
  vrn_node finish_splits(std::size_t outer, vrn_node side);
  // Whether a range does not split into two sides, and what it gives then.
  bool is_operand(vrn_src_command_view range, std::uint32_t at) const;
  vrn_node parse_operand(vrn_src_command_view range, std::uint32_t at);
  vrn_node parse_unary(vrn_src_command_view range, std::uint32_t at, bool postfix);

  // bracket_form.cpp: indexes, initializer lists, definitions, calls
  vrn_node parse_bracket_form(vrn_src_command_view range);
  // `first_index` is the first position behind the front at which an index stands, or the end.
  vrn_node parse_last_group(vrn_src_command_view range, std::uint32_t first_index);
  // What stands before the last group: what is called or indexed.
  vrn_node parse_before_group(vrn_src_command_view range, std::uint32_t first_index);
  vrn_node parse_index(vrn_src_command_view range, std::uint32_t first_index);
  vrn_node parse_initializer_list(vrn_src_command_view range);
  bool parse_initializer_entries(vrn_src_command_view range, std::vector<vrn_node_list>& entries);
  vrn_node_list make_list(std::initializer_list<vrn_node> nodes);
  vrn_node parse_function_def(vrn_src_command_view range);
  bool parse_def_words(vrn_src_command_view range, vrn_ast_node_function_def& node);
  const vrn_ast_node_function_def_param* parse_param(const vrn_src_command& command);
  vrn_node parse_struct(vrn_src_command_view range);
  vrn_node parse_call(vrn_src_command_view range);

  // statement.cpp: conditions, loops, return
  vrn_node parse_condition(vrn_src_command_view range);
  bool parse_branch(vrn_src_command_view range, std::uint32_t at, vrn_ast_node_condition& branch);
  bool parse_body(vrn_src_command_view range, std::uint32_t at, const vrn_src_token& keyword,
                  vrn_statement_list& body);
  vrn_node parse_loop(vrn_src_command_view range);
  bool parse_loop_header(vrn_src_command_view range, vrn_ast_node_loop& loop);
  vrn_node parse_return(vrn_src_command_view range);

  // Report, unless an error has been reported before, and set the error flag. Always empty.
  vrn_node fail(vrn_reporter reporter, const vrn_src_token& at);
  vrn_node fail(vrn_operand_reporter reporter, const vrn_src_token& at, std::string_view operand);
  // Reports whatever has been reported before.
  vrn_node fail_loudly(vrn_reporter reporter, const vrn_src_token& at);

  const vrn_src_command_map& commands_;
  vrn_ast& ast_;
  bool failed_ = false;  // the error flag
  std::uint32_t depth_ = 0;
  // What waits in the expressions being parsed, those of the inner ones behind the outer ones'.
  std::vector<vrn_ast_node_assign*> assigns_;
  std::vector<open_split> splits_;
  vrn_operator_index operators_;
  std::unordered_map<std::string_view, define, vrn_hasher, vrn_transparent_equal> defines_;
  std::uint64_t replacements_ = 0;
  std::uint64_t replaced_tokens_ = 0;
};

}  // namespace vorn
