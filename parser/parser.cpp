#include "parser/parser.hpp"

#include <algorithm>
#include <utility>

#include <vornscript/language.hpp>
#include <vornscript/log.hpp>

#include "frontend/nesting.hpp"
#include "frontend/report.hpp"
#include "parser/parser_state.hpp"

namespace vorn {
namespace {

// How much the defines of one program may expand to: so many replacements, and so many tokens put
// in or so many times the program's own, whichever is more.
constexpr std::uint64_t replacements_max = 1'000'000;
constexpr std::uint64_t replaced_tokens_max = 4'000'000;
constexpr std::uint64_t replaced_tokens_ratio = 32;

bool is_define(const vrn_src_command& command) { return command.kind == vrn_command_kind::define; }

enum class keyword { none, if_, else_, for_, return_ };

keyword keyword_of(const vrn_src_token& token) {
  if (token.kind != vrn_token_kind::word) return keyword::none;
  switch (token.extent) {
    case 2:
      return token.text() == words::if_ ? keyword::if_ : keyword::none;
    case 3:
      return token.text() == words::for_ ? keyword::for_ : keyword::none;
    case 4:
      return token.text() == words::else_ ? keyword::else_ : keyword::none;
    case 6:
      return token.text() == words::return_ ? keyword::return_ : keyword::none;
    default:
      return keyword::none;
  }
}

// Numbers are told by their characters alone, deliberately: fe and 1.2.3 are floats.
vrn_node_kind word_kind(std::string_view text) {
  auto kind = vrn_node_kind::int_node;
  for (const char character : text) {
    if (character >= '0' && character <= '9') continue;
    if (character != '.' && character != 'f' && character != 'e') {
      return vrn_node_kind::variable_node;
    }
    kind = vrn_node_kind::float_node;
  }
  return kind;
}

}  // namespace

std::size_t expressions_in(vrn_command_span list) {
  return list.size() - static_cast<std::size_t>(std::count_if(list.begin(), list.end(), is_define));
}

vrn_node vrn_parser::fail(vrn_reporter reporter, const vrn_src_token& at) {
  return failed_ ? nullptr : fail_loudly(reporter, at);
}

vrn_node vrn_parser::fail(vrn_operand_reporter reporter, const vrn_src_token& at,
                          std::string_view operand) {
  if (!failed_) reporter(at, operand);
  failed_ = true;
  return nullptr;
}

vrn_node vrn_parser::fail_loudly(vrn_reporter reporter, const vrn_src_token& at) {
  reporter(at);
  failed_ = true;
  return nullptr;
}

bool vrn_parser::parse_program() {
  const vrn_src_command* const failed = parse_list(commands_.top, ast_.nodes);
  if (!failed) return true;
  const vrn_src_token& first = commands_.view(*failed).front();
  fail(report_cannot_parse_command, first, first.text());
  return false;
}

vrn_node vrn_parser::parse(vrn_src_command_view range) {
  if (range.size() == 0) return nullptr;
  const nesting_level level(depth_);
  if (level.too_deep()) return fail(report_nesting_too_deep, range.front());
  const std::size_t outer = assigns_.size();
  vrn_node value = parse_value(range);
  if (assigns_.size() > outer) value = finish_assigns(outer, value);
  return value;
}

vrn_node vrn_parser::parse_value(vrn_src_command_view range) {
  for (;;) {
    if (is_simple(range)) return parse_simple(range);
    const auto sign = find_sign(range);
    if (!sign) return parse_operators(range);
    if (range.first < *sign && range.token(*sign - 1).is_symbol(":") && *sign + 1 < range.last) {
      return parse_list_addition(range, *sign);
    }
    if (!parse_target(range, *sign)) return nullptr;
    range.first = *sign + 1;
  }
}

bool vrn_parser::is_simple(vrn_src_command_view range) {
  return range.size() == 1 || keyword_of(range.front()) != keyword::none;
}

vrn_node vrn_parser::parse_simple(vrn_src_command_view range) {
  const vrn_src_token& first = range.front();
  switch (keyword_of(first)) {
    case keyword::if_:
    case keyword::else_:
      return parse_condition(range);
    case keyword::for_:
      return parse_loop(range);
    case keyword::return_:
      return parse_return(range);
    case keyword::none:
      break;
  }
  switch (first.kind) {
    case vrn_token_kind::word:
      return parse_word(first);
    case vrn_token_kind::string:
      return ast_.make<vrn_ast_node_string>(first);
    case vrn_token_kind::group_paren:
      return parse_paren_group(range);
    case vrn_token_kind::group_brace:
      return parse_brace_group(range);
    case vrn_token_kind::group_bracket:
      return parse_initializer_list(range);
    default:
      return fail(report_unknown_symbol, first);
  }
}

vrn_node vrn_parser::parse_word(const vrn_src_token& token) {
  if (!defines_.empty()) {
    const auto found = defines_.find(token.text());
    if (found != defines_.end() && !found->second.in_use) {
      return replace_define(found->second, token);
    }
  }
  switch (word_kind(token.text())) {
    case vrn_node_kind::int_node:
      return ast_.make<vrn_ast_node_int>(token);
    case vrn_node_kind::float_node:
      return ast_.make<vrn_ast_node_float>(token);
    default:
      return ast_.make<vrn_ast_node_variable>(token);
  }
}

void vrn_parser::add_define(const vrn_src_command& command) {
  defines_[commands_.view(command).front().text()].command = command;
}

vrn_node vrn_parser::replace_define(define& found, const vrn_src_token& token) {
  vrn_src_command_view body = commands_.view(found.command);
  ++body.first;
  replaced_tokens_ += found.command.body_size;
  const std::uint64_t tokens_max =
      std::max(replaced_tokens_max, replaced_tokens_ratio * commands_.source->tokens.size());
  if (++replacements_ > replacements_max || replaced_tokens_ > tokens_max) {
    return fail(report_expands_too_much, token);
  }
  log_line(vrn_log_level::log, "Replacing define...");
  found.in_use = true;
  vrn_node node = parse(body);
  found.in_use = false;
  return node;
}

vrn_node vrn_parser::parse_paren_group(vrn_src_command_view range) {
  const vrn_command_span list = commands_.group(range.front());
  if (expressions_in(list) > 1) return fail(report_too_many_expressions, range.front());
  return parse_only(list);
}

vrn_node vrn_parser::parse_brace_group(vrn_src_command_view range) {
  const vrn_command_span list = commands_.group(range.front());
  const auto expressions = expressions_in(list);
  auto* const block = ast_.make<vrn_ast_node_sub_block>(range.front());
  if (expressions <= 1) block->body = parse_only(list);
  if (expressions > 0 && !block->body) return fail(report_cannot_parse_sub_block, range.front());
  return block;
}

vrn_node vrn_parser::parse_only(vrn_command_span list) {
  vrn_node node = nullptr;
  for (const vrn_src_command& command : list) {
    if (is_define(command)) {
      add_define(command);
    } else {
      node = parse(commands_.view(command));
    }
  }
  return node;
}

const vrn_src_command* vrn_parser::parse_list(vrn_command_span list, vrn_statement_list& nodes) {
  nodes = ast_.make_list<vrn_ast_statement>(expressions_in(list));
  auto place = nodes.begin();
  for (const vrn_src_command& command : list) {
    if (is_define(command)) {
      add_define(command);
    } else if (const vrn_node node = parse(commands_.view(command))) {
      *place++ = {node, &commands_.view(command).front()};
    } else {
      nodes = nodes.first(static_cast<std::size_t>(place - nodes.begin()));
      return &command;
    }
  }
  return nullptr;
}

std::shared_ptr<vrn_ast> create_ast(const vrn_src_command_map& commands) {
  auto ast = std::make_shared<vrn_ast>(commands.source);
  return vrn_parser(commands, *ast).parse_program() ? ast : nullptr;
}

}  // namespace vorn
