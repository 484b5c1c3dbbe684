// Those who are timed on the same scripts: this runtime, and Lua in several forms.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "bench/workload.hpp"

namespace vorn {
class vrn_log_base;
}

namespace vorn::bench {

// One interpreter, in which one script is loaded and run. The silent kinds write nothing but what
// their scripts print.
class contender {
 public:
  contender() = default;
  contender(const contender&) = delete;
  contender& operator=(const contender&) = delete;
  virtual ~contender() = default;

  // False when the script is beyond the interpreter's limits.
  virtual bool load(const std::string& text) = 0;

  // Runs what has been loaded, to its end.
  virtual bool run() = 0;

  // Releases what has been loaded; a peer closes, and is not used again.
  virtual void unload() = 0;

  // Of the script loaded last; 0 where that is not known.
  virtual std::size_t instruction_count() const { return 0; }
};

struct contender_kind {
  std::string_view name;
  dialect language;
  std::unique_ptr<contender> (*open)();
};

// Those that are there: ours first, then the peers that have been found.
std::span<const contender_kind> contenders();
const contender_kind* find_contender(std::string_view name);

std::unique_ptr<contender> open_ours(std::shared_ptr<vrn_log_base> logger);

// What the library of each peer exports under the name "vrn_bench_open_peer".
using open_peer = contender* (*)(bool compiled);

}  // namespace vorn::bench
