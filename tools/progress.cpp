#include "tools/progress.hpp"

#include "platform/platform.hpp"

namespace vorn::tool {
namespace {

constexpr std::size_t many = 20;
constexpr std::uint64_t interval_ns = 100'000'000;

}  // namespace

progress::progress(std::string_view done, std::size_t total)
    : done_(done), total_(total), enabled_(total >= many && platform::error_is_terminal()) {}

void progress::advance() {
  ++count_;
  if (!enabled_) return;
  const std::uint64_t now_ns = platform::monotonic_ns();
  if (now_ns - shown_at_ns_ < interval_ns) return;
  shown_at_ns_ = now_ns;
  std::string line = "\r";
  line.append(done_).append(" ").append(std::to_string(count_));
  line.append(" of ").append(std::to_string(total_));
  shown_width_ = line.size() - 1;
  platform::write_error(line);
}

void progress::hide() {
  if (shown_width_ == 0) return;
  platform::write_error('\r' + std::string(shown_width_, ' ') + '\r');
  shown_width_ = 0;
}

}  // namespace vorn::tool
