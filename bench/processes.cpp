// What is measured in fresh processes: a process's first load and its memory, printing, the start.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "bench/child.hpp"
#include "bench/contender.hpp"
#include "bench/suite.hpp"

namespace vorn::bench {
namespace {

void add_child(std::initializer_list<std::string_view> name, const std::vector<std::string>& task,
               output target, std::string_view unit, std::size_t items) {
  add(name,
      [=](benchmark::State& state) {
        for (auto _ : state) {
          const child_report measured = measure_in_child(task, target);
          if (!measured.valid) return state.SkipWithError("beyond the peer's limits");
          state.SetIterationTime(measured.seconds);
          state.counters["memory"] = measured.bytes;
        }
        set_items(state, unit, items);
      })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(10);
}

void add_first_load(std::string_view workload_name) {
  const workload& work = find_workload(workload_name);
  for (const contender_kind& kind : contenders()) {
    add_child({"first_load", work.name, kind.name},
              {"load", std::string(work.name), std::string(kind.name)}, output::pipe, work.unit,
              work.size);
  }
}

void add_print(std::string_view name, output target) {
  const auto add_one = [&](std::string_view function, std::string_view who,
                           std::string_view shown) {
    add_child({"print", name, shown}, {"print", std::string(function), std::string(who)}, target,
              "line", printed_lines);
  };
  for (const contender_kind& kind : contenders()) add_one("print", kind.name, kind.name);
  if (find_contender("Lua")) add_one("io.write", "Lua", "io.write");
  add_one("print", "fwrite", "fwrite");
}

// A folder with a script for each of the programs, neither of which does anything.
class start_folder {
 public:
  start_folder() {
    mkdtemp(path_.data());
    std::ofstream(path_ + "/test_simple.vrs") << "x = 1;\n";
    std::ofstream(path_ + "/empty.lua") << "";
  }
  ~start_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  start_folder(const start_folder&) = delete;
  start_folder& operator=(const start_folder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_ = (std::filesystem::temp_directory_path() / "vornscript.XXXXXX").string();
};

void add_start(std::string_view who, const char* program,
               const std::vector<std::string>& arguments) {
  add({"start", "first_output", who}, [=](benchmark::State& state) {
    const start_folder folder;
    for (auto _ : state) {
      const double seconds = seconds_to_output(program, arguments, folder.path());
      if (seconds < 0) return state.SkipWithError("cannot be started");
      state.SetIterationTime(seconds);
    }
    set_items(state, "process", 1);
  })->UseManualTime();
}

}  // namespace

void add_processes() {
  for (const char* name :
       {"arithmetic", "floats", "calls", "strings", "mixed", "names", "brackets"}) {
    add_first_load(name);
  }
  add_print("to_file", output::file);
  add_print("to_pipe", output::pipe);
  add_start("ours", VRN_BENCH_HOST, {});
  add_start("Lua", "lua5.4", {"empty.lua"});
}

}  // namespace vorn::bench
