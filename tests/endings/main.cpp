// What still works when a thread's and the process's own objects go: lines, and deep releases. Each
// case is a process of its own, "endings CASE static|thread"; its last object lies in static
// storage or is the thread's.
#include <memory>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include <vornscript/vornscript.hpp>

namespace {

using namespace vorn;

// The first to be made goes last, the program behind its interpreter.
struct last_objects {
  std::shared_ptr<vrn_log_default> logger = std::make_shared<vrn_log_default>();
  std::shared_ptr<void> end;
  vrn_program program;
  vrnvar_shared chain;
  std::optional<vrnscript> script;
};

// Does its work when the last copy goes.
template <class Work>
std::shared_ptr<void> at_end(Work work) {
  return {nullptr, [work](void*) { work(); }};
}

vrnvar_shared refs(int count) {
  vrnvar_shared chain = var_int(0);
  for (; count > 0; --count) {
    vrnvar_shared next = var_none();
    next->set_ref(chain);
    chain = std::move(next);
  }
  return chain;
}

void work(std::string_view name, last_objects& last) {
  if (name == "interpreter") {
    last.script.emplace(vrnscript_config{.logger = last.logger,
                                         .thread_name = "A NAME OF MORE THAN 15 CHARACTERS"});
    const auto say = [] { log_line(vrn_log_level::out, "captured: at the end"); };
    last.script->register_std_function(
        "kept", [capture = at_end(say)](auto&, auto&) { return var_none(); }, 0, 0);
    last.program = vrn_program_loader(*last.script).create_program("f(a) { a } print(1);", "text");
  } else if (name == "logger") {
    set_thread_name("A NAME OF MORE THAN 15 CHARACTERS");
    last.logger->out("first");
    last.end = at_end([logger = last.logger] {
      get_log().out("to nobody");
      logger->out("at the end");
    });
  } else if (name == "chain") {
    refs(500);
    last.chain = refs(500);
  }
}

}  // namespace

int main(int, char** arguments) {
  const std::string_view name = arguments[1];
  if (arguments[2] == std::string_view("static")) {
    static last_objects of_process;
    work(name, of_process);
  } else {
    std::thread([name] {
      thread_local last_objects of_thread;
      work(name, of_thread);
    }).join();
  }
}
