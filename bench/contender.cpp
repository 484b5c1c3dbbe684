#include "bench/contender.hpp"

#include <dlfcn.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <vornscript/vornscript.hpp>

namespace vorn::bench {
namespace {

// Has every file, all with the same contents.
class part_files final : public vrn_filesys {
 public:
  part_files() { search_paths_add(""); }
  bool exists(const std::string&) const override { return true; }
  void read(const std::string&, std::string& bytes) const override { bytes += text_; }

 private:
  std::string text_ = included_text();
};

class vornscript_contender final : public contender {
 public:
  explicit vornscript_contender(std::shared_ptr<vrn_log_base> logger)
      : script_({.filesys = std::make_shared<part_files>(), .logger = std::move(logger)}) {}

  bool load(const std::string& text) override {
    program_ = loader_.create_program(text, "bench");
    return program_ != nullptr;
  }
  bool run() override {
    const auto task = task_create(program_);
    task_run(*task, 0);
    while (task->active) script_.tick();
    return true;
  }
  void unload() override { program_.reset(); }
  std::size_t instruction_count() const override { return loader_.instruction_count(); }

 private:
  vrnscript script_;
  vrn_program_loader loader_{script_};
  vrn_program program_;
};

// Both Luas have the same symbols, so each peer is a library that keeps its own to itself.
template <bool compiled, const char* const& library>
std::unique_ptr<contender> open_peer_of() {
  static const auto open = [] {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    return handle ? reinterpret_cast<open_peer>(dlsym(handle, "vrn_bench_open_peer")) : nullptr;
  }();
  return std::unique_ptr<contender>(open ? open(compiled) : nullptr);
}

#ifndef VRN_BENCH_LUA
#define VRN_BENCH_LUA ""
#endif
#ifndef VRN_BENCH_LUAJIT
#define VRN_BENCH_LUAJIT ""
#endif
constexpr const char* lua_library = VRN_BENCH_LUA;
constexpr const char* luajit_library = VRN_BENCH_LUAJIT;

std::vector<contender_kind> found_contenders() {
  const contender_kind all[] = {
      {"ours", dialect::vornscript, [] { return open_ours(std::make_shared<vrn_log_base>(0U)); }},
      {"Lua", dialect::lua, open_peer_of<false, lua_library>},
      {"LuaJIT_off", dialect::lua, open_peer_of<false, luajit_library>},
      {"LuaJIT_on", dialect::lua, open_peer_of<true, luajit_library>},
  };
  std::vector<contender_kind> found;
  std::copy_if(std::begin(all), std::end(all), std::back_inserter(found),
               [](const contender_kind& kind) { return kind.open() != nullptr; });
  return found;
}

}  // namespace

std::span<const contender_kind> contenders() {
  static const std::vector<contender_kind> found = found_contenders();
  return found;
}

const contender_kind* find_contender(std::string_view name) {
  for (const contender_kind& kind : contenders()) {
    if (kind.name == name) return &kind;
  }
  return nullptr;
}

std::unique_ptr<contender> open_ours(std::shared_ptr<vrn_log_base> logger) {
  return std::make_unique<vornscript_contender>(std::move(logger));
}

}  // namespace vorn::bench
