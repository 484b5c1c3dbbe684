// The forms that end in brackets: indexes, initializer lists, definitions and calls.
#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include <vornscript/language.hpp>
#include <vornscript/log.hpp>

#include "frontend/nesting.hpp"
#include "frontend/report.hpp"
#include "parser/parser_state.hpp"

namespace vorn {
namespace {

bool is_bracket(const vrn_src_token& token) { return token.kind == vrn_token_kind::group_bracket; }
bool is_paren(const vrn_src_token& token) { return token.kind == vrn_token_kind::group_paren; }
bool is_brace(const vrn_src_token& token) { return token.kind == vrn_token_kind::group_brace; }

// The position of the first such symbol; the range's end when there is none.
std::uint32_t find_symbol(vrn_src_command_view range, std::string_view symbol) {
  std::uint32_t at = range.first;
  while (at < range.last && !range.token(at).is_symbol(symbol)) ++at;
  return at;
}

bool is_ordinary(const vrn_src_command& command) {
  return command.kind == vrn_command_kind::ordinary;
}

}  // namespace

vrn_node vrn_parser::parse_bracket_form(vrn_src_command_view range) {
  std::uint32_t first_index = range.first + 1;
  while (first_index < range.last && !is_bracket(range.token(first_index))) ++first_index;
  return parse_last_group(range, first_index);
}

vrn_node vrn_parser::parse_last_group(vrn_src_command_view range, std::uint32_t first_index) {
  if (first_index < range.last) return parse_index(range, first_index);
  const vrn_src_token& last = range.back();
  if (is_brace(last)) {
    return is_paren(range.token(range.last - 2)) ? parse_function_def(range) : parse_struct(range);
  }
  if (is_paren(last)) return parse_call(range);
  return fail(report_cannot_parse_whatever, range.front());
}

// There is no sign, operator or index in here that has not been looked for, so a chain of groups is
// not searched again for each of them.
vrn_node vrn_parser::parse_before_group(vrn_src_command_view range, std::uint32_t first_index) {
  --range.last;
  const nesting_level level(depth_);
  if (level.too_deep()) return fail(report_nesting_too_deep, range.front());
  return is_simple(range) ? parse_simple(range) : parse_last_group(range, first_index);
}

// Behind the first index nothing but further ones may stand.
vrn_node vrn_parser::parse_index(vrn_src_command_view range, std::uint32_t first_index) {
  for (std::uint32_t at = first_index; at < range.last; ++at) {
    if (!is_bracket(range.token(at))) return fail(report_invalid_after_bracket, range.front());
  }
  const vrn_command_span list = commands_.group(range.back());
  if (expressions_in(list) > 1) return fail(report_too_many_expressions, range.front());
  auto* const entry = ast_.make<vrn_ast_node_json_literal>(range.front());
  entry->key = parse_before_group(range, first_index);
  if (entry->key) entry->value = parse_only(list);
  if (!entry->value) return fail(report_invalid_index, range.front());
  auto* const node = ast_.make<vrn_ast_node_json>(range.front());
  node->entries = make_list({entry});
  return node;
}

vrn_node vrn_parser::parse_initializer_list(vrn_src_command_view range) {
  std::vector<vrn_node_list> entries;
  for (const vrn_src_command& command : commands_.group(range.front())) {
    if (command.kind == vrn_command_kind::define) {
      add_define(command);
    } else if (!parse_initializer_entries(commands_.view(command), entries)) {
      return fail(report_cannot_parse_initializer_list, range.front());
    }
  }
  if (entries.empty()) return fail_loudly(report_no_expression, range.front());
  auto* const node = ast_.make<vrn_ast_node_initializer_list>(range.front());
  node->entries = ast_.make_list<vrn_node_list>(entries.size());
  std::copy(entries.begin(), entries.end(), node->entries.begin());
  return node;
}

// Entries stand between commas; "=" parts an entry's key from its value.
bool vrn_parser::parse_initializer_entries(vrn_src_command_view range,
                                           std::vector<vrn_node_list>& entries) {
  for (const std::uint32_t end = range.last;; range = {range.tokens, range.last + 1, end}) {
    range.last = find_symbol(range, ",");
    const std::uint32_t sign = find_symbol(range, "=");
    vrn_node key = nullptr;
    if (sign < range.last) {
      key = parse({range.tokens, range.first, sign});
      if (!key) return false;
      range.first = sign + 1;
    }
    const vrn_node value = parse(range);
    if (!value) return false;
    entries.push_back(key ? make_list({key, value}) : make_list({value}));
    if (range.last == end) return true;
  }
}

vrn_node_list vrn_parser::make_list(std::initializer_list<vrn_node> nodes) {
  const vrn_node_list list = ast_.make_list<vrn_node>(nodes.size());
  std::copy(nodes.begin(), nodes.end(), list.begin());
  return list;
}

vrn_node vrn_parser::parse_function_def(vrn_src_command_view range) {
  const std::uint32_t group = range.last - 2;
  if (group == range.first) return fail(report_unknown_token_in_def, range.token(group));
  auto* const node = ast_.make<vrn_ast_node_function_def>(range.token(group - 1));
  if (!parse_def_words({range.tokens, range.first, group}, *node)) return nullptr;
  const vrn_command_span params = commands_.group(range.token(group));
  node->params = ast_.make_list<const vrn_ast_node_function_def_param*>(params.size());
  for (std::size_t i = 0; i < params.size(); ++i) {
    node->params[i] = parse_param(params[i]);
    if (!node->params[i]) return nullptr;
  }
  const vrn_command_span body = commands_.group(range.back());
  const std::uint32_t outer_count = std::exchange(ast_.node_count, 0);
  if (const vrn_src_command* const failed = parse_list(body, node->body)) {
    return fail(report_cannot_parse_function_body, commands_.view(*failed).front());
  }
  node->node_count = std::exchange(ast_.node_count, outer_count);
  return node;
}

// Any number of words; the last one is the name.
bool vrn_parser::parse_def_words(vrn_src_command_view range, vrn_ast_node_function_def& node) {
  for (std::uint32_t at = range.first; at < range.last; ++at) {
    const vrn_src_token& token = range.token(at);
    if (token.kind != vrn_token_kind::word) {
      fail(report_unknown_token_in_def, token);
      return false;
    }
    if (at + 1 == range.last) break;
    log_line(vrn_log_level::log, "FN KW: ", token.text());
    ++node.keyword_count;
  }
  return true;
}

// A name, or a name, "=" and a default value.
const vrn_ast_node_function_def_param* vrn_parser::parse_param(const vrn_src_command& command) {
  const vrn_src_command_view range = commands_.view(command);
  const vrn_src_token& name = range.front();
  const bool named = is_ordinary(command) && name.kind == vrn_token_kind::word &&
                     (range.size() == 1 || range.token(range.first + 1).is_symbol("="));
  if (!named) {
    fail(report_invalid_parameters, name);
    return nullptr;
  }
  auto* const param = ast_.make<vrn_ast_node_function_def_param>(name);
  if (range.size() == 1) return param;
  param->default_value = parse({range.tokens, range.first + 2, range.last});
  if (param->default_value) return param;
  fail(report_cannot_parse_default, name);
  return nullptr;
}

// The word in front says what it is; a word before the braces is its name.
vrn_node vrn_parser::parse_struct(vrn_src_command_view range) {
  const vrn_src_token& first = range.front();
  const bool is_class = first.is_word(words::class_);
  if (!is_class && !first.is_word(words::struct_) && !first.is_word(words::cstruct_)) {
    return fail(report_unknown_struct, first);
  }
  if (is_class) log_line(vrn_log_level::log, "class def!");
  auto* const node = ast_.make<vrn_ast_node_class_def>(range.token(range.last - 2));
  const vrn_command_span body = commands_.group(range.back());
  if (parse_list(body, node->entries)) return fail(report_cannot_parse_class_body, first);
  return node;
}

vrn_node vrn_parser::parse_call(vrn_src_command_view range) {
  const vrn_src_token& first = range.front();
  auto* const node = ast_.make<vrn_ast_node_function_call>(first);
  node->callee = parse_before_group(range, range.last);
  if (!node->callee) return fail(report_cannot_parse_call, first);
  auto* place = &node->params;
  for (const vrn_src_command& command : commands_.group(range.back())) {
    if (!is_ordinary(command)) return fail(report_invalid_arguments, first, first.text());
    auto* const param =
        ast_.make<vrn_ast_node_function_call_param>(commands_.view(command).front());
    param->value = parse(commands_.view(command));
    if (!param->value) return fail(report_cannot_parse_argument, first);
    *place = param;
    place = &param->next;
    ++node->param_count;
  }
  return node;
}

}  // namespace vorn
