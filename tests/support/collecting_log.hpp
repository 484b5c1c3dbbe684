// A logger that keeps what it is told.
#pragma once

#include <string>
#include <vector>

#include <vornscript/log.hpp>

namespace vorn::test {

struct log_record {
  vrn_log_level level;
  std::string text;

  bool operator==(const log_record&) const = default;
};

class collecting_log final : public vrn_log_base {
 public:
#define VRN_LOG_LEVEL(operation, bit, tag, attribute, marker) \
  void operation(const std::string& text) override {          \
    records.push_back({vrn_log_level::operation, text});      \
  }
#include <vornscript/log_levels.def>
#undef VRN_LOG_LEVEL

  // The texts of one level, in order.
  std::vector<std::string> texts(vrn_log_level level) const {
    std::vector<std::string> result;
    for (const log_record& record : records) {
      if (record.level == level) result.push_back(record.text);
    }
    return result;
  }

  std::vector<log_record> records;
};

}  // namespace vorn::test
