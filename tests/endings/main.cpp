// What still works when a thread's and the process's own objects go: lines, and deep releases.
// "endings static|thread": the last objects lie in static storage or are the thread's.
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

vrnvar_shared refs(int count) {
  vrnvar_shared chain = var_int(0);
  for (; count > 0; --count) {
    vrnvar_shared next = var_none();
    next->set_ref(chain);
    chain = std::move(next);
  }
  return chain;
}

void fill(last_objects& last) {
  refs(500);
  last.chain = refs(500);
  const auto say = [](void*) { log_line(vrn_log_level::out, "captured: at the end"); };
  last.script.emplace(
      vrnscript_config{.logger = last.logger, .thread_name = "A NAME OF MORE THAN 15 CHARACTERS"});
  last.script->register_function("kept", [capture = std::shared_ptr<void>(nullptr, say)] {});
  last.program = vrn_program_loader(*last.script).create_program("f(a) { a } print(1);", "text");
  last.logger->out("first");
  last.end = {nullptr, [logger = last.logger](void*) {
                get_log().out("to nobody");
                logger->out("at the end");
              }};
}

}  // namespace

int main(int, char** arguments) {
  if (arguments[1] == std::string_view("static")) {
    static last_objects of_process;
    fill(of_process);
  } else {
    std::thread([] {
      thread_local last_objects of_thread;
      fill(of_thread);
    }).join();
  }
}
