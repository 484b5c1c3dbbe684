// Uses the interpreter that it finds, or makes one of its own where it has the library to itself.
#include <vornscript/vornscript.hpp>

// Both sides define it.
struct actor : vorn::vrnptr_register<actor, vorn::vrnptr_base> {
  int number = 42;
};

// The number of the host's actor, where the handle means something here.
extern "C" [[gnu::visibility("default")]] int plugin_main(const vorn::vrnptr_base& handle) {
  if (vorn::current_script) {
    const actor* const found = vorn::vrnptr<actor>(handle).get();
    return found ? found->number : -2;
  }
  const vorn::vrnscript script({});
  return -1;
}
