// One of the Luas, as a library; built once for each.
extern "C" {
#include <lauxlib.h>
#include <lua.h>
#include <lualib.h>
#if __has_include(<luajit.h>)
#include <luajit.h>
#endif
}

#include "bench/contender.hpp"

namespace vorn::bench {
namespace {

class lua_contender final : public contender {
 public:
  explicit lua_contender(bool compiled) : state_(luaL_newstate(), lua_close) {
#ifdef LUAJIT_VERSION
    luaJIT_setmode(state_.get(), 0,
                   LUAJIT_MODE_ENGINE | (compiled ? LUAJIT_MODE_ON : LUAJIT_MODE_OFF));
#else
    static_cast<void>(compiled);
#endif
    luaL_openlibs(state_.get());
    // The functions of ours are global too.
    static_cast<void>(
        luaL_dostring(state_.get(), "for name, value in pairs(math) do _G[name] = value end"));
    collect();
  }

  bool load(const std::string& text) override {
    return luaL_loadbuffer(state_.get(), text.data(), text.size(), "bench") == 0;
  }
  // The function stays loaded, as a program of ours does.
  bool run() override {
    lua_pushvalue(state_.get(), -1);
    return lua_pcall(state_.get(), 0, 0, 0) == 0;
  }
  void unload() override { state_.reset(); }

 private:
  void collect() { lua_gc(state_.get(), LUA_GCCOLLECT, 0); }

  std::unique_ptr<lua_State, decltype(&lua_close)> state_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) contender* vrn_bench_open_peer(bool compiled) {
  return std::make_unique<lua_contender>(compiled).release();
}

}  // namespace vorn::bench
