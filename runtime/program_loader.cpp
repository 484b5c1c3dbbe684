#include <vornscript/program_loader.hpp>

#include <memory>
#include <optional>
#include <utility>

#include <vornscript/vrnscript.hpp>

#include "runtime/load_stages.hpp"
#include "runtime/thread_check.hpp"

namespace vorn {
namespace {

std::shared_ptr<vrn_ast> create_tree(std::string text, std::string source_name, bool notes_places) {
  const vrn_load_stages stages;
  auto view = std::make_shared<vrn_src_token_view>();
  view->notes_places = notes_places;
  if (!stages.create_tokens(*view, std::move(text), std::move(source_name))) return {};
  const auto commands = stages.create_commands(std::move(view));
  return commands ? stages.create_tree(*commands) : nullptr;
}

}  // namespace

vrn_program vrn_program_loader::create_program(std::string_view file_name) {
  // A thread without an interpreter has no files either, and gets the line for that.
  if (current_script && !check_thread(*script_, "create_program()")) return {};
  auto source = open_script(file_name);
  return source ? create_program(std::move(source->text), std::move(source->path)) : vrn_program();
}

vrn_program vrn_program_loader::create_program(std::string text, std::string source_name) {
  if (!check_thread(*script_, "create_program()")) return {};
  const bool notes_places = script_->on_report() != nullptr;
  auto ast = create_tree(std::move(text), std::move(source_name), notes_places);
  if (!ast) return {};
  return vrn_load_stages::create_code(*script_, std::move(ast), instruction_count_);
}

}  // namespace vorn
