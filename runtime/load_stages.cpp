#include "runtime/load_stages.hpp"

#include <utility>

#include <vornscript/filesys.hpp>
#include <vornscript/log.hpp>
#include <vornscript/vrnscript.hpp>

#include "compiler/code_generator.hpp"
#include "frontend/command_map.hpp"
#include "frontend/lexer.hpp"
#include "frontend/report.hpp"
#include "frontend/source_file.hpp"
#include "parser/parser.hpp"

namespace vorn {
namespace {

template <class Stage>
auto run_stage(const Stage& stage) -> decltype(stage()) {
  try {
    return stage();
  } catch (const vrn_load_stopped&) {
    return {};
  }
}

// Later stages find the lines of an error report, and the includes of what was read, in the view.
bool read_tokens(vrn_src_token_view& view, std::string text) {
  const vrn_stopwatch watch;
  if (text.empty()) {
    log_line(vrn_log_level::error, "Source file ", view.name, " is empty.");
    return false;
  }
  log_line(vrn_log_level::log, "Loading ", view.name);
  view.directory = directory_of(view.name);
  view.included.emplace(view.name, std::make_shared<std::string>(view.name));
  view.set_text(std::move(text));
  const std::uint32_t lines = run_stage([&] { return tokenize(view); });
  if (lines == 0) {
    log_line(vrn_log_level::error, "stage_1 failed.");
    return false;
  }
  log_line(vrn_log_level::log, "Read ", lines, " lines in ", watch.elapsed(), " ms.");
  return true;
}

}  // namespace

std::optional<vrn_source_text> open_script(std::string_view file_name) {
  const vrn_filesys* const filesys = current_script ? &current_script->filesys() : nullptr;
  std::string path = filesys ? filesys->find_file(file_name) : std::string();
  if (path.empty()) {
    log_line(vrn_log_level::error, "Cannot find script file ", file_name);
    return {};
  }
  std::optional<std::string> text = read_source(*filesys, path);
  if (!text) return {};
  return vrn_source_text{std::move(path), *std::move(text)};
}

bool vrn_load_stages::create_tokens(vrn_src_token_view& view, std::string text,
                                    std::string source_name) const {
  view.name = source_name.empty() ? "<memory>" : std::move(source_name);
  if (read_tokens(view, std::move(text))) return true;
  tell_failure("token_map");
  return false;
}

std::shared_ptr<vrn_src_command_map> vrn_load_stages::create_commands(
    std::shared_ptr<vrn_src_token_view> view) const {
  auto commands = run_stage([&] { return create_command_map(std::move(view)); });
  if (!commands) tell_failure("command_map");
  return commands;
}

std::shared_ptr<vrn_ast> vrn_load_stages::create_tree(const vrn_src_command_map& commands) const {
  auto ast = run_stage([&] { return create_ast(commands); });
  if (!ast) {
    tell_failure("AST");
    return {};
  }
  ast->source_name = ast->source->name;
  log_line(vrn_log_level::log, "AST creation took ", watch_.elapsed(), " ms.");
  return ast;
}

vrn_program vrn_load_stages::create_code(vrnscript& script, std::shared_ptr<vrn_ast> ast,
                                         std::uint32_t& instruction_count) {
  return run_stage([&] { return create_bytecode(script, std::move(ast), instruction_count); });
}

void vrn_load_stages::tell_failure(std::string_view stage) const {
  log_line(vrn_log_level::error, stage, " creation failed in ", watch_.elapsed(), " ms.");
}

}  // namespace vorn
