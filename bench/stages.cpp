// Each stage of a load alone.
#include <memory>
#include <string>

#include <vornscript/vornscript.hpp>

#include "bench/suite.hpp"
#include "bench/workload.hpp"
#include "compiler/code_generator.hpp"
#include "frontend/command_map.hpp"
#include "frontend/lexer.hpp"
#include "parser/parser.hpp"

namespace vorn::bench {
namespace {

std::shared_ptr<vrn_src_token_view> normalised(const std::string& text) {
  auto view = std::make_shared<vrn_src_token_view>();
  view->name = "bench";
  view->text = normalise_source(text);
  return view;
}

std::shared_ptr<vrn_src_token_view> lexed(const std::string& text) {
  auto view = normalised(text);
  tokenize(*view);
  return view;
}

// Registers a stage: what it makes of what the stages before it have made of a script.
template <class Prepare, class Stage>
void add_stage(std::string_view name, Prepare prepare, Stage stage) {
  add({"stage", name, "ours"}, [prepare, stage](benchmark::State& state) {
    vrnscript script({.logger = std::make_shared<vrn_log_base>(0U)});
    const workload& work = find_workload("mixed");
    const std::string text = work.text(dialect::vornscript, work.size);
    time_prepared(
        state, [&] { return prepare(text); },
        [&](auto& prepared) { return stage(script, prepared); });
    set_items(state, work.unit, work.size);
    state.counters["bytes"] = static_cast<double>(text.size());
    state.counters["tokens"] = static_cast<double>(lexed(text)->tokens.size());
  });
}

}  // namespace

void add_stages() {
  add_stage(
      "normalise", [](const std::string& text) { return text; },
      [](vrnscript&, std::string& text) { return normalise_source(std::move(text)); });
  add_stage("lex", normalised, [](vrnscript&, const auto& view) { return tokenize(*view); });
  add_stage("command_map", lexed,
            [](vrnscript&, const auto& view) { return create_command_map(view); });
  add_stage(
      "parse", [](const std::string& text) { return create_command_map(lexed(text)); },
      [](vrnscript&, const auto& commands) { return create_ast(*commands); });
  add_stage(
      "generate",
      [](const std::string& text) { return create_ast(*create_command_map(lexed(text))); },
      [](vrnscript& script, const auto& ast) {
        std::uint32_t count = 0;
        return create_bytecode(script, ast, count);
      });
}

}  // namespace vorn::bench
