// Any bytes at all, through every stage.
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "fuzz/support/check.hpp"
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

// What has a place lies in its file.
void inspect_main(vrnscript& script, vrn_inspect_stage stage,
                  const checked_host::files& files) try {
  inspect(script, stage, "main.vrs", [&files](const vrn_inspected& item) {
    if (item.place.line == 0) return;
    const auto file = files.find(std::string(item.place.file));
    check(file != files.end() && item.offset + item.length <= file->second.size(),
          "What is inspected lies in its file.", std::string(item.place.file));
  });
} catch (const std::bad_alloc&) {
  // Defines multiply.
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const checked_host::files files = split_files({reinterpret_cast<const char*>(data), size});
  checked_host host(files);
  inspect_main(host.host().script, static_cast<vrn_inspect_stage>(size % 4), files);
  host.host().log->records.clear();
  if (vrn_program program = host.load()) host.run(std::exchange(program, {}));
  host.check_health();
  return 0;
}

}  // namespace vorn::fuzz
