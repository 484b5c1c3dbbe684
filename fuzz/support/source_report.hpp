// Syntax-error reports, read back from the log.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vorn::fuzz {

struct source_report {
  std::string file;
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  std::string shown;    // what stands of the source line
  std::string message;  // and the include trace, where there is one
};

bool is_source_report(std::string_view logged);

// Takes a report apart; a misshapen one does not pass.
source_report parse_source_report(std::string_view logged);

// Whether the place exists in the text of its file, and the shown line stands there.
bool has_place(const source_report& report, std::string text);

// Whether a text holds nothing but blanks and comments, so that there is nothing to point at.
bool is_blank(std::string_view text);

}  // namespace vorn::fuzz
