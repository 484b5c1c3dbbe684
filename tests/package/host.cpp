// Opens the plugin beside an interpreter of its own: PLUGIN, and the kind of the library.
#include <dlfcn.h>

#include <iostream>
#include <memory>
#include <string>
#include <string_view>

#include <vornscript/vornscript.hpp>

// Both sides define it.
struct actor : vorn::vrnptr_register<actor, vorn::vrnptr_base> {
  int number = 42;
};

namespace {

struct endless_files : vorn::vrn_filesys {
  bool exists(const std::string&) const override { return true; }
  void read(const std::string&, std::string&) const override {
    throw vorn::vrn_file_too_large("endless");
  }
};

}  // namespace

int main(int, char** arguments) {
  vorn::vrnscript script({.filesys = std::make_shared<endless_files>()});
  // The library knows what it catches.
  if (vorn::vrn_program_loader(script).create_program("endless.vrs")) return 1;
  const actor one;
  void* const plugin = dlopen(arguments[1], RTLD_NOW);
  void* const symbol = plugin ? dlsym(plugin, "plugin_main") : nullptr;
  if (!symbol) {
    std::cerr << dlerror() << '\n';
    return 1;
  }
  const int number = reinterpret_cast<int (*)(const vorn::vrnptr_base&)>(symbol)(one.handle());
  const bool shared = arguments[2] == std::string_view("SHARED_LIBRARY");
  return number == (shared ? one.number : -1) ? 0 : 1;
}
