// A text whose places are counted in two ways: in bytes, as the interpreter does, and in lines and
// UTF-16 units, as editors do.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::lsp {

// Both count from 0.
struct text_position {
  std::size_t line = 0;
  std::size_t character = 0;  // in UTF-16 units
};

// UTF-8; a byte that belongs to no character is taken as one, or as a part of the one before. Lines
// end in "\n", "\r\n" or "\r". Places beyond the end mean the end, of the line or of the text.
class source_text {
 public:
  explicit source_text(std::string bytes);

  const std::string& bytes() const { return bytes_; }
  std::size_t offset_of(text_position position) const;
  text_position position_of(std::size_t offset) const;

  // The line that holds the offset, without its end and the blanks around it.
  std::string_view line_at(std::size_t offset) const;

  // Puts a text in the place of the bytes between two offsets.
  void replace(std::size_t begin, std::size_t end, std::string_view text);

 private:
  // A place known in both ways: the begin of each line, and one every so many bytes.
  struct mark {
    std::size_t offset;
    text_position position;
  };

  void place_marks();

  std::string bytes_;
  std::vector<mark> marks_;
};

}  // namespace vorn::lsp
