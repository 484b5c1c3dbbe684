// How far a long command has come.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vorn::tool {

// A line on standard error, if that is a terminal and there is much to do. Goes with the object.
class progress {
 public:
  // `done` says what has been done with what was counted.
  progress(std::string_view done, std::size_t total);
  ~progress() { hide(); }
  progress(const progress&) = delete;
  progress& operator=(const progress&) = delete;

  // One more is done.
  void advance();
  // Called before anything else is written.
  void hide();

 private:
  std::string_view done_;
  std::size_t total_;
  bool enabled_;
  std::size_t count_ = 0;
  std::uint64_t shown_at_ns_ = 0;
  std::size_t shown_width_ = 0;
};

}  // namespace vorn::tool
