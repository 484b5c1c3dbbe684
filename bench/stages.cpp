// Every stage alone, whole loads and runs, and printing, on generated scripts.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include <vornscript/vornscript.hpp>

#include "bench/workload.hpp"
#include "compiler/code_generator.hpp"
#include "frontend/command_map.hpp"
#include "frontend/lexer.hpp"
#include "parser/parser.hpp"

namespace vorn::bench {
namespace {

// An interpreter that says nothing.
struct silent_script {
  vrnscript script{{.logger = std::make_shared<vrn_log_base>(0U)}};
  vrn_program_loader loader{script};
};

std::shared_ptr<vrn_src_token_view> lexed(const std::string& text) {
  auto view = std::make_shared<vrn_src_token_view>();
  view->name = "bench";
  view->text = normalise_source(text);
  tokenize(*view);
  return view;
}

// Runs `stage` on what `prepare` makes of the script anew for each round, which is not timed.
template <class Prepare, class Stage>
void time_stage(benchmark::State& state, Prepare prepare, Stage stage) {
  silent_script host;
  const std::string text = arithmetic(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    {
      auto input = prepare(text);
      state.ResumeTiming();
      auto result = stage(host, input);
      benchmark::DoNotOptimize(result);
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void lex(benchmark::State& state) {
  time_stage(
      state, [](const std::string& text) { return text; },
      [](silent_script&, const std::string& text) { return lexed(text); });
}
BENCHMARK(lex)->Arg(10'000)->Arg(100'000);

void map_commands(benchmark::State& state) {
  time_stage(state, lexed,
             [](silent_script&, const auto& view) { return create_command_map(view); });
}
BENCHMARK(map_commands)->Arg(10'000)->Arg(100'000);

void parse(benchmark::State& state) {
  time_stage(
      state, [](const std::string& text) { return create_command_map(lexed(text)); },
      [](silent_script&, const auto& commands) { return create_ast(*commands); });
}
BENCHMARK(parse)->Arg(10'000)->Arg(100'000);

void generate(benchmark::State& state) {
  time_stage(
      state, [](const std::string& text) { return create_ast(*create_command_map(lexed(text))); },
      [](silent_script& host, const auto& ast) {
        std::uint32_t count = 0;
        return create_bytecode(host.script, ast, count);
      });
}
BENCHMARK(generate)->Arg(10'000)->Arg(100'000);

std::string workload(const std::string& name, std::size_t size) {
  if (name == "arithmetic") return arithmetic(size);
  if (name == "calls") return calls(size);
  if (name == "strings") return strings(size, "+");
  return functions(size);
}

void load(benchmark::State& state, const std::string& name) {
  silent_script host;
  const std::string text = workload(name, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(host.loader.create_program(text, "bench"));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void run(benchmark::State& state, const std::string& name) {
  silent_script host;
  const std::string text = workload(name, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    state.PauseTiming();
    {
      const vrn_program program = host.loader.create_program(text, "bench");
      const auto task = task_create(program);
      task_run(*task, 0);
      state.ResumeTiming();
      while (task->active) host.script.tick();
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * host.loader.instruction_count());
}

const int registered = [] {
  for (const char* name : {"arithmetic", "calls", "strings", "functions"}) {
    for (auto* each :
         {benchmark::RegisterBenchmark((std::string("load/") + name).c_str(), load, name),
          benchmark::RegisterBenchmark((std::string("run/") + name).c_str(), run, name)}) {
      each->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
    }
  }
  return 0;
}();

}  // namespace
}  // namespace vorn::bench

BENCHMARK_MAIN();
