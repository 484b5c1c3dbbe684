#include "frontend/source_file.hpp"

#include <vornscript/log.hpp>

#include "memory/unfilled_array.hpp"

namespace vorn {
namespace {

constexpr std::size_t read_chunk_size = 0x80000;

}  // namespace

std::optional<std::string> read_source(const vrn_filesys& filesys, const std::string& path) {
  try {
    return filesys.read_file(path);
  } catch (const vrn_file_too_large&) {
    report_source_too_large(path);
    return std::nullopt;
  }
}

void report_source_too_large(std::string_view name) {
  log_line(vrn_log_level::error, "Source file ", name, " is too large.");
}

bool append_stream(std::istream& stream, std::string& bytes, std::uint64_t size_max) {
  const std::size_t size_before = bytes.size();
  const auto chunk = make_unfilled_array<char>(read_chunk_size);
  while (stream) {
    stream.read(chunk.get(), read_chunk_size);
    const auto count = static_cast<std::size_t>(stream.gcount());
    if (count > size_max - (bytes.size() - size_before)) {
      bytes.resize(size_before);
      return false;
    }
    bytes.append(chunk.get(), count);
  }
  if (stream.bad()) bytes.resize(size_before);
  return true;
}

}  // namespace vorn
