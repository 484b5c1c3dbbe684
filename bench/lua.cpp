// The same scripts in Lua 5.4, loaded and run.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

extern "C" {
#include <lauxlib.h>
#include <lua.h>
#include <lualib.h>
}

#include "bench/workload.hpp"

namespace vorn::bench {
namespace {

using lua = std::unique_ptr<lua_State, decltype(&lua_close)>;

lua make_lua() {
  lua state(luaL_newstate(), lua_close);
  luaL_openlibs(state.get());
  luaL_dostring(state.get(), "for name, value in pairs(math) do _G[name] = value end");
  return state;
}

std::string workload(const std::string& name, std::size_t size) {
  if (name == "arithmetic") return arithmetic(size);
  if (name == "calls") return calls(size);
  return strings(size, "..");
}

void load(benchmark::State& state, const std::string& name) {
  const std::string text = workload(name, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const lua script = make_lua();
    if (luaL_loadbuffer(script.get(), text.data(), text.size(), "bench") != 0) {
      state.SkipWithError(lua_tostring(script.get(), -1));
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void run(benchmark::State& state, const std::string& name) {
  const std::string text = workload(name, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    {
      const lua script = make_lua();
      luaL_loadbuffer(script.get(), text.data(), text.size(), "bench");
      state.ResumeTiming();
      lua_call(script.get(), 0, 0);
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

const int registered = [] {
  for (const char* name : {"arithmetic", "calls", "strings"}) {
    for (auto* each :
         {benchmark::RegisterBenchmark((std::string("lua/load/") + name).c_str(), load, name),
          benchmark::RegisterBenchmark((std::string("lua/run/") + name).c_str(), run, name)}) {
      each->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
    }
  }
  return 0;
}();

}  // namespace
}  // namespace vorn::bench
