// Any bytes at all, through every stage.
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "fuzz/support/checked_host.hpp"

namespace vorn::fuzz {
namespace {

// The first is the program; a byte of this value, which no script needs, begins the next.
constexpr char file_separator = '\x1e';
constexpr const char* file_names[] = {"main.vrs", "a.vrs", "lib/b.vrs", "lib/c.vrs"};

checked_host::files split_files(std::string_view text) {
  checked_host::files files;
  for (const char* name : file_names) {
    const std::size_t end = std::min(text.find(file_separator), text.size());
    files[name] = text.substr(0, end);
    if (end == text.size()) break;
    text.remove_prefix(end + 1);
  }
  return files;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  checked_host host(split_files({reinterpret_cast<const char*>(data), size}));
  if (vrn_program program = host.load()) host.run(std::exchange(program, {}));
  host.check_health();
  return 0;
}

}  // namespace vorn::fuzz
