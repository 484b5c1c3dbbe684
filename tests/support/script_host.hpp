// An interpreter that has its files, its log and its time in memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "tests/support/collecting_log.hpp"
#include "tests/support/manual_clock.hpp"
#include "tests/support/memory_filesys.hpp"
#include "vm/interpreter_state.hpp"

namespace vorn::test {

// How many values, payloads and program blocks of an interpreter are held.
inline std::uint64_t live_objects(const vrnscript& script) {
  const vrn_value_pools& pools = script.state().pools;
  return pools.functions.live_count() + pools.values.live_count() + pools.json_values.live_count() +
         pools.json.live_count() + pools.strings.live_count() + script.state().registry->size();
}

struct script_host {
  // Loads a text as the file "main.vrs".
  vrn_program load(std::string text) {
    files->add("main.vrs", std::move(text));
    return loader.create_program("main.vrs");
  }

  // Starts each program as a task, in order, and ticks until all have ended or wait for longer than
  // a day. The clock jumps to the next due time, which is noted in the log under no level, as
  // milliseconds since the start. True when all tasks have ended.
  bool run(const std::vector<vrn_program>& programs) {
    constexpr std::uint64_t day_ms = 86'400'000;
    std::vector<vrn_ref<vrn_task>> tasks;
    for (const vrn_program& program : programs) {
      tasks.push_back(task_create(program));
      task_run(*tasks.back(), 0);
    }
    while (true) {
      script.tick();
      std::erase_if(tasks, [](const auto& task) { return !task->active; });
      if (tasks.empty()) return true;
      std::uint64_t next = UINT64_MAX;
      for (const auto& task : tasks) {
        if (task->scheduled) next = std::min(next, task->due_ms);
      }
      if (next > clock->ms + day_ms) return false;
      if (next <= clock->ms) continue;
      clock->ms = next;
      log->records.push_back({vrn_log_level{}, std::to_string(next - manual_clock::start_ms)});
    }
  }

  // Loads a text and runs it; the lines that it printed.
  std::vector<std::string> output_of(std::string text) {
    log->records.clear();
    if (const vrn_program program = load(std::move(text))) run({program});
    return log->texts(vrn_log_level::out);
  }

  vrn_report_callback on_report = {};
  std::shared_ptr<collecting_log> log = std::make_shared<collecting_log>();
  std::shared_ptr<memory_filesys> files = std::make_shared<memory_filesys>();
  std::shared_ptr<manual_clock> clock = std::make_shared<manual_clock>();
  vrnscript script{{files, log, true, "TEST", clock, on_report}};
  vrn_program_loader loader{script};
};

}  // namespace vorn::test
