// What a thread keeps for its log lines.
#pragma once

#include <string>

namespace vorn {

// Made when it is first needed, and freed when all of the thread's own objects have gone; one that
// is needed after that is made anew.
struct vrn_thread_record {
  std::string name;
  std::string sender;  // name and id as they stand in a line, "[NAME] [ID"; empty: to be made
  std::string line;    // the memory of the last line, for the next one
};

// The calling thread's; null when it has none yet.
vrn_thread_record* find_thread_record() noexcept;
vrn_thread_record& thread_record();

}  // namespace vorn
