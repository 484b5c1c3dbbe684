#include "frontend/report.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include <vornscript/log.hpp>

namespace vorn {
namespace {

constexpr std::string_view rule = "------------------------------------------------------------";

// The line and column, however they are introduced.
void append_position(std::string& block, std::string_view before_line, std::uint32_t line,
                     std::string_view before_column, std::uint32_t column) {
  append_part(block, before_line);
  append_part(block, line);
  append_part(block, before_column);
  append_part(block, column);
}

// The shown line and, unless it would fall past the line's end, the caret below it.
void append_excerpt(std::string& block, const vrn_src_place& place, std::size_t line_width) {
  std::string_view shown = place.excerpt.substr(0, place.excerpt.find('\n'));
  std::size_t caret = place.column;
  const std::size_t indent = shown.find_first_not_of(' ');
  if (indent != std::string_view::npos && caret >= indent) {
    shown.remove_prefix(indent);
    caret -= indent;
  }

  block += ' ';
  append_part(block, place.line);
  block.append(" | ").append(shown) += '\n';
  if (caret < shown.size()) {
    block.append(line_width + 2, ' ').append("| ").append(caret, ' ').append("^~~~~\n");
  }
}

void report_block(const vrn_src_place& place, std::string_view message, std::string_view trace) {
  vrn_log_base& logger = get_log();
  if (!logger.enabled(vrn_log_level::error)) return;

  const std::size_t line_width = std::to_string(place.line).size();
  std::string block = "Syntax Error ***\n";
  block.append(rule) += '\n';
  block.append(line_width, ' ').append("--> ").append(place.file_name);
  append_position(block, ":", place.line, ":", place.column);
  block += '\n';
  block.append(line_width + 2, ' ') += "|\n";
  append_excerpt(block, place, line_width);
  block.append(line_width + 2, ' ') += "|\n\n";
  block.append("*** ").append(message).append(trace) += '\n';
  block += rule;
  logger.error(block);
}

// Where the file of an included token is included, the main file first, then the token's own line.
std::string include_trace(const vrn_src_place& place, const vrn_src_token_view* source) {
  std::vector<const vrn_src_token_view*> chain;
  for (; source && source->parent; source = source->parent) chain.push_back(source);
  std::string trace;
  if (chain.empty()) return trace;

  for (auto view = chain.rbegin(); view != chain.rend(); ++view) {
    const vrn_src_token& included_at = *(*view)->included_at;
    trace.append("\n|-- ").append((*view)->parent->name);
    append_position(trace, " --> Line ", static_cast<std::uint32_t>(included_at.line), ", Index ",
                    included_at.column);
  }
  trace.append("\n`--> ").append(place.file_name);
  append_position(trace, " --> Line ", place.line, ", Index ", place.column);
  const std::size_t indent = std::min(place.excerpt.find_first_not_of(' '), place.excerpt.size());
  trace.append("\n>>> ").append(place.excerpt.substr(indent));
  return trace;
}

std::string completed(std::string_view text, std::string_view operand, std::string_view ending) {
  return std::string(text).append(operand).append(ending);
}

}  // namespace

void report(const vrn_src_place& place, std::string_view message) {
  report_block(place, message, {});
}

void report(const vrn_src_token& token, std::string_view message) {
  const vrn_src_token_view* source = token.source;
  vrn_src_place place{{}, static_cast<std::uint32_t>(token.line), token.column, {}};
  if (source) {
    place.file_name = source->name;
    place.excerpt = source->line_text(token.line);
  }
  report_block(place, message, include_trace(place, source));
}

void report(const vrn_src_place& place, std::string_view text, std::string_view operand,
            std::string_view ending) {
  report(place, completed(text, operand, ending));
}

void report(const vrn_src_token& token, std::string_view text, std::string_view operand,
            std::string_view ending) {
  report(token, completed(text, operand, ending));
}

}  // namespace vorn
