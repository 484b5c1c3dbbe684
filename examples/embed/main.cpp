// A host of its own: a robot that lives in C++ is driven by a script that lives in memory.
//
// Shown here: a native function, a file system without files, a logger that keeps what it is given,
// a clock that never waits, and an end at which nothing is left over. The program checks its own
// result and exits with 1 if it is not what the script asked for.
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <vornscript/vornscript.hpp>

namespace {

// Scripts, by the name under which an include finds them.
class memory_filesys final : public vorn::vrn_filesys {
 public:
  explicit memory_filesys(std::map<std::string, std::string> files) : files_(std::move(files)) {}

  bool exists(const std::string& path) const override { return files_.contains(path); }

  void read(const std::string& path, std::string& bytes) const override {
    if (const auto file = files_.find(path); file != files_.end()) bytes += file->second;
  }

 private:
  std::map<std::string, std::string> files_;
};

// Keeps what scripts print and what goes wrong; the other levels are never even formatted.
class collecting_log final : public vorn::vrn_log_base {
 public:
  collecting_log()
      : vrn_log_base(static_cast<std::uint32_t>(vorn::vrn_log_level::out) |
                     static_cast<std::uint32_t>(vorn::vrn_log_level::error)) {}

  void out(const std::string& message) override { printed.push_back(message); }
  void error(const std::string& message) override { errors.push_back(message); }

  std::vector<std::string> printed;
  std::vector<std::string> errors;
};

// Stands still until the host moves it, so a script that sleeps costs no time.
class manual_clock final : public vorn::vrn_clock {
 public:
  std::uint64_t wall_ticks() const override { return milliseconds * 10'000; }
  std::uint64_t monotonic_ns() const override { return milliseconds * 1'000'000; }

  std::uint64_t milliseconds = 0;
};

struct robot {
  std::int64_t x = 0;
  std::int64_t y = 0;
};

constexpr const char* route = R"(
#define STEP_TIME 250

corner(corner_x, corner_y) {
  move(corner_x, corner_y);
  sleep(STEP_TIME);
  "corner reached"
}
)";

constexpr const char* program_text = R"(
#include "route"

print(corner(10, 0));
at = move(0, 5);
print("now at " + at);
)";

// Runs the script and gives the milliseconds that it took by its own clock; -1 if it did not load.
std::int64_t drive(robot& driven, const std::shared_ptr<collecting_log>& log) {
  const auto clock = std::make_shared<manual_clock>();

  vorn::vrnscript_config config;
  config.filesys =
      std::make_shared<memory_filesys>(std::map<std::string, std::string>{{"route.vrs", route}});
  config.logger = log;
  config.thread_name = "ROBOT";
  config.clock = clock;
  vorn::vrnscript script(std::move(config));

  script.register_std_function(
      "move",
      [&driven](vorn::vrn_vm_context&, std::vector<vorn::vrnvar_shared>& arguments) {
        driven.x += arguments[0]->get_int();
        driven.y += arguments[1]->get_int();
        return vorn::var_string(std::to_string(driven.x) + "/" + std::to_string(driven.y));
      },
      2, 2);

  // Program and task are made after the interpreter, so they are released before it.
  vorn::vrn_program_loader loader(script);
  const vorn::vrn_program program = loader.create_program(program_text, "robot.vrs");
  if (!program) return -1;

  const auto task = vorn::task_create(program);
  vorn::task_run(*task, 0);
  for (script.tick(); task->active; script.tick()) ++clock->milliseconds;
  return static_cast<std::int64_t>(clock->milliseconds);
}

}  // namespace

int main() {
  const auto log = std::make_shared<collecting_log>();
  robot driven;
  const std::int64_t taken = drive(driven, log);

  for (const std::string& line : log->printed) std::cout << line << '\n';
  for (const std::string& line : log->errors) std::cout << line << '\n';
  std::cout << "robot at " << driven.x << ", " << driven.y << " after " << taken << " ms\n";

  const std::vector<std::string> expected = {"corner reached", "now at 10/5"};
  const bool right = log->printed == expected && log->errors.empty() && driven.x == 10 &&
                     driven.y == 5 && taken == 250;
  return right ? 0 : 1;
}
