// A little game without pictures: fifty actors, each with a script of its own, sixty frames a
// second.
//
// Shown here: functions of scripts that the host calls each frame, scripts that wait for events, a
// script that fails while the others go on, a file that is changed and loaded again in the middle,
// a clock that the host moves, and an end at which nothing is left over.
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "examples/game/scripts.hpp"

namespace {

class memory_filesys final : public vorn::vrn_filesys {
 public:
  memory_filesys() { search_paths_add(""); }

  bool exists(const std::string& path) const override { return files.contains(path); }
  void read(const std::string& path, std::string& bytes) const override {
    if (const auto file = files.find(path); file != files.end()) bytes += file->second;
  }

  std::map<std::string, std::string> files = scripts;
};

class game_clock final : public vorn::vrn_clock {
 public:
  std::uint64_t wall_ticks() const override { return milliseconds * 10'000; }
  std::uint64_t monotonic_ns() const override { return milliseconds * 1'000'000; }

  std::uint64_t milliseconds = 0;
};

// Keeps what goes wrong; the other levels are never even formatted.
class error_log final : public vorn::vrn_log_base {
 public:
  error_log() : vrn_log_base(static_cast<std::uint32_t>(vorn::vrn_log_level::error)) {}
  void error(const std::string& message) override { lines.push_back(message); }

  std::vector<std::string> lines;
};

struct actor {
  std::string name;
  std::string file;
  std::int64_t position = 0;
  vorn::vrn_program program = {};
  vorn::vrn_ref<vorn::vrn_task> life = {};  // its top-level code
  vorn::vrn_ref<vorn::vrn_task> call = {};  // the function that is called each frame
};

class game {
 public:
  explicit game(const std::shared_ptr<error_log>& log) : script_(config(log)) {
    add_functions();
    add_actors("guard", 20);
    add_actors("farmer", 28);
    add_actors("ringer", 1);
    add_actors("poet", 1);
  }

  // Tasks and programs go before the interpreter does, and what waits holds tasks.
  ~game() {
    for (actor& each : actors_) stop(each);
  }
  game(const game&) = delete;
  game& operator=(const game&) = delete;

  void run_frames(int count) {
    for (; count > 0; --count) run_frame();
    std::cout << "frame " << frame_ << ": guards at " << actors_.front().position << ", farmers at "
              << actors_[20].position << '\n';
  }

  // As if the file had been edited. One that does not load changes nothing.
  void edit(const std::string& file, std::string text) {
    files_->files[file] = std::move(text);
    std::cout << file << " has changed\n";
    for (actor& each : actors_) {
      if (each.file == file && !start(each)) return;
    }
  }

  // Lets everybody live on without frames until nobody has anything to do. Another host would sleep
  // till then.
  void run_to_rest() {
    while (const auto due = script_.next_due_ms()) {
      clock_->milliseconds = *due;
      script_.tick();
    }
    std::cout << "at rest after " << clock_->milliseconds << " ms\n";
  }

  // What the scripts say that the actors have earned.
  std::int64_t total_score(std::int64_t bonus) {
    std::int64_t total = 0;
    for (actor& each : actors_) call(each, "score", bonus);
    script_.tick();
    for (const actor& each : actors_) {
      if (const vorn::vrnvar_shared score = vorn::task_result(*each.call))
        total += score->get_int();
    }
    return total;
  }

 private:
  vorn::vrnscript_config config(const std::shared_ptr<error_log>& log) {
    vorn::vrnscript_config result;
    result.filesys = files_;
    result.logger = log;
    result.clock = clock_;
    result.on_report = [this](const vorn::vrn_report& report) { show(report); };
    return result;
  }

  void add_functions() {
    script_.register_function("move", [this](std::int64_t by) { current().position += by; });
    script_.register_function("position", [this] { return current().position; });
    script_.register_function("say", [this](std::string_view text) {
      std::cout << clock_->milliseconds << " ms: " << current().name << ' ' << text << '\n';
    });
    script_.register_function("pay", [](int, std::string_view what) {
      throw std::runtime_error("no money " + std::string(what));
    });
    script_.register_function(
        "wait_for", [this](const vorn::vrn_vm_context& context, const std::string& event) {
          waiting_[event].emplace_back(context.task);
          vorn::task_park(context);
        });
    // Who has been cancelled meanwhile is not woken.
    script_.register_function("event", [this](const std::string& event) {
      for (const auto& task : std::exchange(waiting_[event], {})) vorn::task_wake(*task);
    });
  }

  void add_actors(const std::string& role, int count) {
    for (int number = 1; number <= count; ++number) {
      actors_.push_back({.name = role + ' ' + std::to_string(number), .file = role + ".vrs"});
      start(actors_.back());
    }
  }

  // Loads the actor's script and lets it live by that from now on.
  bool start(actor& each) {
    vorn::vrn_program program = loader_.create_program(each.file);
    if (!program) return false;
    stop(each);
    each.program = std::move(program);
    each.life = vorn::task_create(each.program);
    vorn::task_run(*each.life, 0);
    return true;
  }

  static void stop(actor& each) {
    for (auto* const task : {&each.life, &each.call}) {
      if (*task) vorn::task_cancel(**task);
      *task = {};
    }
    each.program.reset();
  }

  // First those whose time has come, then everybody's frame: tasks that are due together run in any
  // order.
  void run_frame() {
    clock_->milliseconds = static_cast<std::uint64_t>(++frame_) * 1000 / 60;
    script_.tick();
    for (actor& each : actors_) call(each, "on_frame", frame_);
    script_.tick();
  }

  // Functions run once, unless their program is rewound. What the actor itself is in stays as it
  // is.
  static void call(actor& each, std::string_view function, std::int64_t argument) {
    vorn::program_rewind(each.program);
    each.call = vorn::task_create(each.program, function, {vorn::var_int(argument)});
    if (each.call) vorn::task_run(*each.call, 0);
  }

  actor& owner_of(const vorn::vrn_task* task) {
    for (actor& each : actors_) {
      if (each.life.get() == task || each.call.get() == task) return each;
    }
    throw std::out_of_range("a task without an actor");
  }
  actor& current() { return owner_of(vorn::current_task()); }

  void show(const vorn::vrn_report& report) {
    std::cout << report.place.file << ':' << report.place.line << ": " << report.message;
    if (report.task) std::cout << " (" << owner_of(report.task).name << ')';
    std::cout << '\n';
  }

  std::shared_ptr<memory_filesys> files_ = std::make_shared<memory_filesys>();
  std::shared_ptr<game_clock> clock_ = std::make_shared<game_clock>();
  std::int64_t frame_ = 0;
  vorn::vrnscript script_;
  vorn::vrn_program_loader loader_{script_};
  std::map<std::string, std::vector<vorn::vrn_ref<vorn::vrn_task>>> waiting_;  // by event
  std::vector<actor> actors_;
};

}  // namespace

int main() {
  const auto log = std::make_shared<error_log>();
  {
    game played(log);
    played.run_frames(10);
    played.edit("farmer.vrs", farmer_broken);
    played.run_frames(10);
    played.edit("farmer.vrs", farmer_mended);
    played.run_frames(10);
    std::cout << "the actors have earned " << played.total_score(100) << '\n';
    played.run_to_rest();
  }
  // Every line is one of a report that has been shown, and nothing has been left behind.
  for (const std::string& line : log->lines) {
    std::cout << "log: " << line.substr(0, line.find('\n')) << '\n';
  }
}
