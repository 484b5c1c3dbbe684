#include "frontend/lexer.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include "frontend/code_point.hpp"
#include "frontend/include_pass.hpp"
#include "frontend/operator_set.hpp"
#include "frontend/report.hpp"
#include "frontend/source_file.hpp"
#include "platform/platform.hpp"

namespace vorn {
namespace {

enum class character : std::uint8_t {
  symbol,  // first, so that it is what the table below leaves out
  newline,
  blank,
  quote,
  slash,
  dot,
  digit,
  letter,
};

constexpr std::array<character, 128> ascii_characters = [] {
  std::array<character, 128> table{};
  table['\n'] = character::newline;
  table['\t'] = table['\v'] = table['\f'] = table['\r'] = table[' '] = character::blank;
  table['"'] = table['\''] = character::quote;
  table['/'] = character::slash;
  table['.'] = character::dot;
  for (std::size_t digit = '0'; digit <= '9'; ++digit) table[digit] = character::digit;
  for (std::size_t letter = 'a'; letter <= 'z'; ++letter) {
    table[letter] = table[letter - 'a' + 'A'] = character::letter;
  }
  table['_'] = character::letter;
  return table;
}();

constexpr bool is_long_blank(std::uint32_t value) {
  switch (value) {
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x180E:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
    case 0xFEFF:
      return true;
    default:
      return value >= 0x2000 && value <= 0x200A;
  }
}

character character_of(std::uint32_t value) {
  if (value < ascii_characters.size()) return ascii_characters[value];
  return is_long_blank(value) ? character::blank : character::letter;
}

bool is_digit(std::uint32_t value) { return value >= '0' && value <= '9'; }
bool is_binary_digit(std::uint32_t value) { return value == '0' || value == '1'; }
bool is_octal_digit(std::uint32_t value) { return value >= '0' && value <= '7'; }
bool is_hexadecimal_digit(std::uint32_t value) {
  return is_digit(value) || (value >= 'a' && value <= 'f') || (value >= 'A' && value <= 'F');
}

// Blanks do not end a word when they are not ASCII.
bool is_word_part(std::uint32_t value) {
  if (value >= ascii_characters.size()) return true;
  const character kind = ascii_characters[value];
  return kind == character::letter || kind == character::digit;
}

// There is room for a token a byte, so the list does not move; what is not used costs addresses, no
// memory. Beyond this many it grows.
constexpr std::size_t reserved_tokens_max = std::size_t{1} << 24;

class lexer {
 public:
  explicit lexer(vrn_src_token_view& view)
      : view_(view), begin_(view.text.data()), at_(begin_), end_(begin_ + view.text.size()) {}

  vrn_scan run() {
    view_.tokens.reserve(std::min(view_.text.size(), reserved_tokens_max));
    platform::prefer_large_pages(view_.tokens.data(),
                                 view_.tokens.capacity() / 4 * sizeof(vrn_src_token));
    view_.lines.push_back(0);
    while (at_ < end_) {
      if (!read_token()) return {};
    }
    return {line_, has_directives_};
  }

 private:
  // Where a token begins.
  struct mark {
    const char* at;
    std::uint32_t line;
    std::uint32_t column;
  };

  mark here() const { return {at_, line_, column_}; }
  code_point peek() const { return read_code_point(at_, end_); }
  std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }

  void advance(std::uint32_t bytes, std::uint32_t columns = 1) {
    at_ += bytes;
    column_ += columns;
  }

  // Takes the next character if it is one of the wanted.
  template <class Wanted>
  bool take_if(Wanted wanted) {
    if (at_ == end_) return false;
    const code_point next = peek();
    if (!wanted(next.value)) return false;
    advance(next.length);
    return true;
  }

  template <class Wanted>
  void take_while(Wanted wanted) {
    const char* at = at_;
    std::uint32_t columns = 0;
    for (; at < end_; ++columns) {
      const code_point next = read_code_point(at, end_);
      if (!wanted(next.value)) break;
      at += next.length;
    }
    at_ = at;
    column_ += columns;
  }

  bool read_token() {
    const code_point next = peek();
    switch (character_of(next.value)) {
      case character::newline:
        read_line_end(next.length);
        return true;
      case character::blank:
        advance(next.length);
        space_before_ = true;
        return true;
      case character::quote:
        return read_string(next);
      case character::slash:
        if (rest().starts_with("//")) {
          skip_line_comment();
          return true;
        }
        if (rest().starts_with("/*")) return skip_block_comment();
        break;
      case character::dot:
        if (at_ + next.length < end_ && is_digit(read_code_point(at_ + next.length, end_).value)) {
          read_number();
          return true;
        }
        break;
      case character::digit:
        read_number();
        return true;
      case character::letter:
        read_word();
        return true;
      case character::symbol:
        break;
    }
    read_symbol(next);
    return true;
  }

  void read_line_end(std::uint32_t length) {
    const mark start = here();
    at_ += length;
    if (!view_.tokens.empty() && view_.tokens.back().kind != vrn_token_kind::end_of_line) {
      add_token(vrn_token_kind::end_of_line, start, start.at, at_);
    }
    begin_line();
    space_before_ = true;
  }

  // Counts a line that begins here.
  void begin_line() {
    ++line_;
    column_ = 0;
    if (at_ < end_) view_.lines.push_back(static_cast<std::uint32_t>(at_ - begin_));
  }

  // Comments are read by bytes, so that a stray lead byte swallows neither a line end nor the
  // comment's end.

  void skip_line_comment() {
    // The line ends here, so its column is not needed any more.
    at_ += std::min(rest().find('\n'), rest().size());
  }

  bool skip_block_comment() {
    const mark start = here();
    const std::size_t length = rest().substr(2).find("*/");
    if (length == std::string_view::npos) {
      at_ = end_;
      report_unterminated_comment(place(start));
      return false;
    }
    const char* const end = at_ + 2 + length + 2;
    while (const void* line_end = std::memchr(at_, '\n', static_cast<std::size_t>(end - at_))) {
      at_ = static_cast<const char*>(line_end) + 1;
      begin_line();
    }
    column_ += count_characters({at_, end});
    at_ = end;
    return true;
  }

  // The length in bytes of the next two characters if both are the wanted one, else 0. A character
  // can be spelt in several ways.
  std::uint32_t match_two(std::uint32_t wanted) const {
    std::uint32_t length = 0;
    for (int i = 0; i < 2; ++i) {
      if (at_ + length == end_) return 0;
      const code_point next = read_code_point(at_ + length, end_);
      if (next.value != wanted) return 0;
      length += next.length;
    }
    return length;
  }

  bool read_string(code_point quote) {
    const mark start = here();
    advance(quote.length);
    const std::uint32_t two_quotes = match_two(quote.value);
    const bool is_triple = two_quotes > 0;
    advance(two_quotes, is_triple ? 2 : 0);

    const char* const text = at_;
    while (at_ < end_) {
      const code_point next = peek();
      const char* const next_at = at_;
      advance(next.length);
      if (next.value == quote.value) {
        if (is_triple) {
          const std::uint32_t last_quotes = match_two(quote.value);
          if (last_quotes == 0) continue;
          advance(last_quotes, 2);
        }
        vrn_src_token& string = add_token(vrn_token_kind::string, start, text, next_at);
        string.symbol = static_cast<std::uint16_t>(text - start.at);
        space_before_ = false;
        return true;
      }
      if (next.value == '\\') {
        // A line end taken here is deliberately not counted.
        if (at_ < end_) advance(peek().length);
      } else if (next.value == '\n') {
        if (!is_triple) {
          at_ = next_at;
          break;
        }
        begin_line();
      }
    }
    report_unterminated_string(place(start));
    return false;
  }

  void read_number() {
    const mark start = here();
    const std::uint32_t first = peek().value;
    advance(peek().length);
    if (first != '0' || !read_prefixed_digits()) read_decimal_rest(start);
    add_token(vrn_token_kind::word, start, start.at, at_);
    space_before_ = false;
  }

  // After a leading zero; a prefix needs no digits.
  bool read_prefixed_digits() {
    if (take_if([](std::uint32_t value) { return value == 'x' || value == 'X'; })) {
      take_while(is_hexadecimal_digit);
    } else if (take_if([](std::uint32_t value) { return value == 'b' || value == 'B'; })) {
      take_while(is_binary_digit);
    } else if (take_if([](std::uint32_t value) { return value == 'o' || value == 'O'; })) {
      take_while(is_octal_digit);
    } else {
      return false;
    }
    return true;
  }

  // A leading "." is deliberately not counted as the literal's one ".".
  void read_decimal_rest(const mark& start) {
    take_while(is_digit);
    if (take_if([](std::uint32_t value) { return value == '.'; })) {
      take_while(is_digit);
    }
    if (take_if([](std::uint32_t value) { return value == 'f' || value == 'F'; })) return;
    if (!take_if([](std::uint32_t value) { return value == 'e' || value == 'E'; })) return;
    take_if([](std::uint32_t value) { return value == '+' || value == '-'; });
    if (!take_if(is_digit)) report_malformed_exponent(place(start));
    take_while(is_digit);
  }

  void read_word() {
    const mark start = here();
    take_while(is_word_part);
    take_blank(add_token(vrn_token_kind::word, start, start.at, at_));
  }

  void read_symbol(code_point next) {
    const mark start = here();
    const std::size_t matched = operators.match(rest());
    const auto length = matched > 0 ? static_cast<std::uint32_t>(matched) : next.length;
    if (next.value == '#') has_directives_ = true;
    advance(length, length);
    vrn_src_token& symbol = add_token(vrn_token_kind::symbol, start, start.at, at_);
    symbol.symbol = symbol_code({start.at, length});
    take_blank(symbol);
  }

  vrn_src_token& add_token(vrn_token_kind kind, const mark& start, const char* text,
                           const char* text_end) {
    return view_.tokens.emplace_back(vrn_src_token{
        .source = &view_,
        .begin = static_cast<std::uint32_t>(text - begin_),
        .extent = static_cast<std::uint32_t>(text_end - text),
        .column = start.column,
        .kind = kind,
    });
  }

  // Notes whether there is a blank before a token.
  void take_blank(vrn_src_token& token) {
    token.space_before = std::exchange(space_before_, false);
  }

  // That of the token read so far.
  vrn_src_place place(const mark& start) const {
    return {view_.name,
            start.line,
            start.column,
            {start.at, static_cast<std::size_t>(end_ - start.at)},
            &view_,
            static_cast<std::uint32_t>(start.at - begin_),
            static_cast<std::uint32_t>(at_ - begin_)};
  }

  vrn_src_token_view& view_;
  const char* const begin_;
  const char* at_;
  const char* const end_;
  std::uint32_t line_ = 1;
  std::uint32_t column_ = 0;
  bool space_before_ = true;
  bool has_directives_ = false;
};

}  // namespace

vrn_scan scan_tokens(vrn_src_token_view& view) {
  // Tokens hold their position in 32 bits.
  if (view.text.size() > vrn_source_size_max) {
    report_source_too_large(view.name);
    return {};
  }
  return lexer(view).run();
}

std::uint32_t tokenize(vrn_src_token_view& view) {
  const vrn_scan scan = scan_tokens(view);
  if (scan.lines == 0 || view.tokens.empty()) return 0;
  return scan.lines + (scan.has_directives ? splice_includes(view) : 0);
}

}  // namespace vorn
