#include "frontend/report.hpp"

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include <vornscript/log.hpp>

#include "frontend/code_point.hpp"
#include "frontend/report_callback.hpp"

namespace vorn {
namespace {

constexpr std::string_view rule = "------------------------------------------------------------";

// Lines that are longer are shown in part.
constexpr std::size_t shown_max = 1024;

struct message_text {
  std::string_view text;
  std::string_view operand;
  std::string_view ending;
};

// The line and column, however they are introduced.
void append_position(std::string& block, std::string_view before_line, std::uint32_t line,
                     std::string_view before_column, std::uint32_t column) {
  append_part(block, before_line);
  append_part(block, line);
  append_part(block, before_column);
  append_part(block, column);
}

// The shown line and, unless it would fall past the line's end, the caret below it.
void append_excerpt(std::string& block, const vrn_src_place& place, std::size_t caret,
                    std::size_t line_width) {
  std::string_view shown = place.excerpt;
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

// Where the file of an included token is included, the main file first, then the token's own line.
void append_include_trace(std::string& block, const vrn_src_place& place,
                          const vrn_src_token_view* source) {
  std::vector<const vrn_src_token_view*> chain;
  for (; source && source->parent; source = source->parent) chain.push_back(source);
  if (chain.empty()) return;

  for (auto view = chain.rbegin(); view != chain.rend(); ++view) {
    const vrn_src_token& included_at = (*view)->included_at;
    block.append("\n|-- ").append((*view)->parent->name);
    append_position(block, " --> Line ", included_at.line(), ", Index ", included_at.column);
  }
  block.append("\n`--> ").append(place.file_name);
  append_position(block, " --> Line ", place.line, ", Index ", place.column);
  const std::size_t indent = std::min(place.excerpt.find_first_not_of(' '), place.excerpt.size());
  block.append("\n>>> ").append(place.excerpt.substr(indent));
}

// The place's excerpt is what is shown; the caret is counted in it.
void write_report(vrn_log_base& logger, const vrn_src_place& place, std::size_t caret,
                  const message_text& message, const vrn_src_token_view* source) {
  const std::size_t line_width = std::to_string(place.line).size();
  std::string block = "Syntax Error ***\n";
  block.append(rule) += '\n';
  block.append(line_width, ' ').append("--> ").append(place.file_name);
  append_position(block, ":", place.line, ":", place.column);
  block += '\n';
  block.append(line_width + 2, ' ') += "|\n";
  append_excerpt(block, place, caret, line_width);
  block.append(line_width + 2, ' ') += "|\n\n";
  block.append("*** ").append(message.text).append(message.operand).append(message.ending);
  append_include_trace(block, place, source);
  block += '\n';
  block += rule;
  logger.error(block);
}

// What is shown of a long line from a position on, without the characters that an end would cut.
std::string_view shown_piece(std::string_view line, std::size_t begin) {
  std::size_t end = std::min(begin + shown_max, line.size());
  while (begin < end && continues_character(line[begin])) ++begin;
  while (begin < end && end < line.size() && continues_character(line[end])) --end;
  return line.substr(begin, end - begin);
}

// Where in its line a token stands, at most at the line's end. A string that begins on an earlier
// line stands where its column falls in its last.
std::size_t offset_in_line(std::string_view line, const vrn_src_token& token) {
  const auto line_start = static_cast<std::size_t>(line.data() - token.source->text.data());
  if (token.index() >= line_start) return std::min(token.index() - line_start, line.size());
  std::size_t offset = 0;
  for (std::uint32_t column = 0; offset < line.size(); ++offset) {
    if (!continues_character(line[offset]) && column++ == token.column) break;
  }
  return offset;
}

void tell_callback(const vrn_src_place& place, const message_text& message) {
  const vrn_report_callback* const callback = report_callback();
  if (!callback) return;
  const std::string text = std::string(message.text).append(message.operand).append(message.ending);
  try {
    call_back(*callback, vrn_report_kind::syntax, text, place, nullptr);
    return;
  } catch (const std::exception& exception) {
    log_line(vrn_log_level::error, exception.what());
  } catch (...) {
    log_line(vrn_log_level::error, "unknown exception");
  }
  throw vrn_load_stopped();
}

}  // namespace

void report(const vrn_src_place& place, std::string_view text, std::string_view operand,
            std::string_view ending) {
  const message_text message{text, operand, ending};
  vrn_log_base& logger = get_log();
  if (logger.enabled(vrn_log_level::error)) {
    // The line is searched no further than it is shown.
    std::string_view line = place.excerpt.substr(0, shown_max + 1);
    line = line.substr(0, line.find('\n'));
    vrn_src_place shown = place;
    shown.excerpt = line.size() > shown_max ? shown_piece(line, 0) : line;
    write_report(logger, shown, place.column, message, nullptr);
  }
  tell_callback(place, message);
}

void report(const vrn_src_token& token, std::string_view text, std::string_view operand,
            std::string_view ending) {
  const message_text message{text, operand, ending};
  vrn_log_base& logger = get_log();
  const bool shown = logger.enabled(vrn_log_level::error);
  if (!shown && !report_callback()) return;
  vrn_src_place place = place_of(token);
  if (shown) {
    std::size_t caret = token.column;
    if (place.excerpt.size() > shown_max) {
      const std::size_t at = offset_in_line(place.excerpt, token);
      const std::size_t begin = at - std::min(at, shown_max / 2);
      caret = count_characters(place.excerpt.substr(begin, at - begin));
      place.excerpt = shown_piece(place.excerpt, begin);
    }
    write_report(logger, place, caret, message, place.source);
  }
  tell_callback(place, message);
}

vrn_src_place place_of(const vrn_src_token& token) {
  const std::uint32_t line = token.line();
  return {token.source->name, line,          token.column, token.source->line_text(line),
          token.source,       token.index(), token.end()};
}

}  // namespace vorn
