// Reports as data: what went wrong in a script, where, and in which task; see
// vrnscript_config::on_report.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>

namespace vorn {

struct vrn_task;

enum class vrn_report_kind : std::uint8_t {
  syntax,   // found while a script was loaded
  runtime,  // a fault in a running script, which goes on
  task,     // a task that has failed, or that cannot run
};

// As the log shows it. A string stands on the line of its last quote, in the column of its first.
struct vrn_report_place {
  std::string_view file;     // "<memory>" for a text without a name
  std::uint32_t line = 0;    // from 1; 0: there is no place
  std::uint32_t column = 0;  // from 0, in characters, a tab counted as the blanks up to its stop
};

// An include directive: its operand's place, and the same in bytes of the file as it was read.
struct vrn_report_inclusion : vrn_report_place {
  std::size_t offset = 0;
  std::size_t length = 0;
};

// A report that is being made. What it refers to is valid during the call only.
struct vrn_report {
  vrn_report_kind kind;
  // The text inside the frame, without a trace; of a failed task what the exception said.
  std::string_view message;
  // The offending token; of the other kinds the first token of the statement that was running.
  vrn_report_place place = {};
  // The same token in bytes of the file as it was read.
  std::size_t offset = 0;
  std::size_t length = 0;
  // Where the place's file was included, the main file first.
  std::span<const vrn_report_inclusion> included_from = {};
  vrn_task* task = nullptr;  // null for syntax reports
};

using vrn_report_callback = std::function<void(const vrn_report&)>;

}  // namespace vorn
