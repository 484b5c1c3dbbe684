#include <vornscript/inspect.hpp>

#include <memory>
#include <utility>

#include <vornscript/vrnscript.hpp>

#include "runtime/inspect_stages.hpp"
#include "runtime/load_stages.hpp"
#include "runtime/thread_check.hpp"

namespace vorn {

bool inspect(vrnscript& script, vrn_inspect_stage stage, std::string_view file_name,
             const vrn_inspect_visitor& visit) {
  if (!check_thread(script, "inspect()")) return false;
  auto source = open_script(file_name);
  return source && inspect(script, stage, std::move(source->text), std::move(source->path), visit);
}

bool inspect(vrnscript& script, vrn_inspect_stage stage, std::string text, std::string source_name,
             const vrn_inspect_visitor& visit) {
  if (!check_thread(script, "inspect()")) return false;
  const vrn_load_stages stages;
  const auto view = std::make_shared<vrn_src_token_view>();
  view->notes_places = true;
  const bool complete = stages.create_tokens(*view, std::move(text), std::move(source_name));
  if (stage == vrn_inspect_stage::tokens) visit_tokens(*view, visit);
  if (!complete || stage == vrn_inspect_stage::tokens) return complete;

  auto commands = stages.create_commands(view);
  if (commands && stage == vrn_inspect_stage::commands) visit_commands(*commands, visit);
  if (!commands || stage == vrn_inspect_stage::commands) return commands != nullptr;

  auto ast = stages.create_tree(*std::exchange(commands, {}));
  if (ast && stage == vrn_inspect_stage::tree) visit_tree(*ast, visit);
  if (!ast || stage == vrn_inspect_stage::tree) return ast != nullptr;

  std::uint32_t instruction_count = 0;
  const auto program =
      vrn_load_stages::create_code(script, std::exchange(ast, {}), instruction_count);
  if (program) visit_code(*program, visit);
  return program != nullptr;
}

}  // namespace vorn
