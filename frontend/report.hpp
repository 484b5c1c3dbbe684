// Syntax-error reports: framed text blocks that show a script's author what is wrong and where.
//
// A report is handed to the logger of the calling thread at the error level, as one message, and to
// the callback of its interpreter. The reporters are made from frontend/messages.def, two for each
// message: one takes the offending token, the other a place in a text.
#pragma once

#include <cstdint>
#include <string_view>

#include "frontend/token.hpp"

namespace vorn {

// A place in a source file. Of the excerpt, which begins at the place or at the start of its line,
// the first line is shown, in its first 1,024 bytes.
struct vrn_src_place {
  std::string_view file_name = {};
  std::uint32_t line = 0;
  std::uint32_t column = 0;
  std::string_view excerpt = {};
  // The token there, in bytes of the text that it lies in.
  const vrn_src_token_view* source = nullptr;
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
};

// A token's place, with its whole line.
vrn_src_place place_of(const vrn_src_token& token);

// What a reporter throws when the interpreter's callback has thrown, which has been logged then:
// the stage that is being gone through is over.
struct vrn_load_stopped {};

// What the generated reporters call; the operand and the ending complete the text. A token is shown
// in its line, in up to 1,024 bytes of it that lie around the token; one of an included file also
// with the chain of files that included it.
void report(const vrn_src_place& place, std::string_view text, std::string_view operand = {},
            std::string_view ending = {});
void report(const vrn_src_token& token, std::string_view text, std::string_view operand = {},
            std::string_view ending = {});

#define VRN_MESSAGE(reporter, text)                                                  \
  inline void report_##reporter(const vrn_src_place& place) { report(place, text); } \
  inline void report_##reporter(const vrn_src_token& token) { report(token, text); }
#define VRN_MESSAGE_OF(reporter, text, ending)                                          \
  inline void report_##reporter(const vrn_src_place& place, std::string_view operand) { \
    report(place, text, operand, ending);                                               \
  }                                                                                     \
  inline void report_##reporter(const vrn_src_token& token, std::string_view operand) { \
    report(token, text, operand, ending);                                               \
  }
#include "frontend/messages.def"
#undef VRN_MESSAGE
#undef VRN_MESSAGE_OF

}  // namespace vorn
