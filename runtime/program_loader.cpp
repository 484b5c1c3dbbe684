#include <vornscript/program_loader.hpp>

#include <memory>
#include <optional>
#include <utility>

#include <vornscript/clock.hpp>
#include <vornscript/filesys.hpp>
#include <vornscript/log.hpp>
#include <vornscript/vrnscript.hpp>

#include "compiler/code_generator.hpp"
#include "frontend/command_map.hpp"
#include "frontend/lexer.hpp"
#include "frontend/report.hpp"
#include "frontend/source_file.hpp"
#include "parser/parser.hpp"
#include "runtime/thread_check.hpp"

namespace vorn {
namespace {

// Milliseconds since it was made; below 0 when the clock was set back.
class stopwatch {
 public:
  std::int64_t elapsed() const {
    return static_cast<std::int64_t>(current_clock().wall_ms() - start_);
  }

 private:
  std::uint64_t start_ = current_clock().wall_ms();
};

// Runs a stage, which also fails when a report's callback has thrown.
template <class Stage>
auto run_stage(const Stage& stage) -> decltype(stage()) {
  try {
    return stage();
  } catch (const vrn_load_stopped&) {
    return {};
  }
}

// Later stages find the lines of an error report, and the includes of what was read, in the view.
std::shared_ptr<vrn_src_token_view> create_token_map(std::string text, std::string source_name) {
  const stopwatch watch;
  if (source_name.empty()) source_name = "<memory>";
  if (text.empty()) {
    log_line(vrn_log_level::error, "Source file ", source_name, " is empty.");
    return {};
  }
  log_line(vrn_log_level::log, "Loading ", source_name);
  auto view = std::make_shared<vrn_src_token_view>();
  view->name = std::move(source_name);
  view->directory = directory_of(view->name);
  view->included.emplace(view->name, std::make_shared<std::string>(view->name));
  view->set_text(std::move(text));
  const std::uint32_t lines = run_stage([&] { return tokenize(*view); });
  if (lines == 0) {
    log_line(vrn_log_level::error, "stage_1 failed.");
    return {};
  }
  log_line(vrn_log_level::log, "Read ", lines, " lines in ", watch.elapsed(), " ms.");
  return view;
}

// All times run from the start of the first stage, deliberately.
std::shared_ptr<vrn_ast> create_tree(std::string text, std::string source_name) {
  const stopwatch watch;
  const auto fail = [&watch](std::string_view stage) {
    log_line(vrn_log_level::error, stage, " creation failed in ", watch.elapsed(), " ms.");
    return std::shared_ptr<vrn_ast>();
  };
  const auto view = create_token_map(std::move(text), std::move(source_name));
  if (!view) return fail("token_map");
  const auto commands = run_stage([&] { return create_command_map(view); });
  if (!commands) return fail("command_map");
  auto ast = run_stage([&] { return create_ast(*commands); });
  if (!ast) return fail("AST");
  ast->source_name = view->name;
  log_line(vrn_log_level::log, "AST creation took ", watch.elapsed(), " ms.");
  return ast;
}

}  // namespace

vrn_program vrn_program_loader::create_program(std::string_view file_name) {
  // A thread without an interpreter has no files either, and gets the line for that.
  if (current_script && !check_thread(*script_, "create_program()")) return {};
  const vrn_filesys* const filesys = current_script ? &current_script->filesys() : nullptr;
  std::string path = filesys ? filesys->find_file(file_name) : std::string();
  if (path.empty()) {
    log_line(vrn_log_level::error, "Cannot find script file ", file_name);
    return {};
  }
  std::optional<std::string> text = read_source(*filesys, path);
  return text ? create_program(*std::move(text), std::move(path)) : vrn_program();
}

vrn_program vrn_program_loader::create_program(std::string text, std::string source_name) {
  if (!check_thread(*script_, "create_program()")) return {};
  auto ast = create_tree(std::move(text), std::move(source_name));
  if (!ast) return {};
  return run_stage([&] { return create_bytecode(*script_, std::move(ast), instruction_count_); });
}

}  // namespace vorn
