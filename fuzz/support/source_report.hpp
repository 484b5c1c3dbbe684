// Syntax-error reports, read back from the log.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vorn::fuzz {

struct source_report {
  std::string file;
  std::size_t line = 0;
  std::size_t column = 0;
  std::string shown;    // what stands of the source line
  std::string message;  // and the include trace, where there is one
};

bool is_source_report(std::string_view logged);

// Takes the text of a report apart; a misshapen one does not pass.
source_report parse_source_report(std::string_view rest);

// Whether the text of its file has so many lines, and somewhere what is shown.
bool has_place(const source_report& report, std::string text);

}  // namespace vorn::fuzz
