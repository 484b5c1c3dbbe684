// What commands there are, with their options and their help. Kept apart from what they do: the
// header of CLI11 takes longer to compile than all of them.
#include "tools/command_line.hpp"

#include <memory>

#include <CLI/CLI.hpp>
#include <vornscript/version.hpp>

#include "tools/commands.hpp"
#include "tools/manual.hpp"

namespace vorn::tool {
namespace {

constexpr int wrong_usage = 2;

void add_search_paths(CLI::App& command, std::vector<std::string>& folders) {
  command.add_option("-I", folders, "Look for scripts in this folder too; may be repeated")
      ->type_name("FOLDER")
      ->allow_extra_args(false);
}

void add_run(CLI::App& program, int& status) {
  const auto options = std::make_shared<run_options>();
  CLI::App* const command = program.add_subcommand("run", "Load a script and run it to its end");
  CLI::Option* const file =
      command->add_option("FILE", options->file, "The script; - for standard input")->type_name("");
  command->add_option("-e", options->text, "Run this text instead of a file")
      ->type_name("TEXT")
      ->excludes(file);
  add_search_paths(*command, options->folders);
  command->add_flag("-v,--verbose", options->verbose, "Show the whole log on standard output");
  command->add_option("--timeout", options->timeout, "End a script that still sleeps then")
      ->type_name("SECONDS");
  command->footer(
      "What the script prints goes to standard output, reports to standard error.\n"
      "Status: 0 finished, 1 not loaded, 2 wrong usage, 3 a runtime error or failed\n"
      "task, 4 timed out, 128 + signal when interrupted.");
  command->callback([options, &status] {
    if (!options->file && !options->text) throw CLI::RequiredError("FILE or -e");
    if (!(options->timeout.value_or(0) >= 0)) {
      throw CLI::ValidationError("--timeout", "has to be 0 or more");
    }
    status = run(*options);
  });
}

void add_check(CLI::App& program, int& status) {
  const auto options = std::make_shared<check_options>();
  CLI::App* const command = program.add_subcommand("check", "Load scripts without running them");
  command->add_option("FILE", options->files, "The scripts")->type_name("")->required();
  add_search_paths(*command, options->folders);
  command->add_flag("--json", options->as_json, "One JSON object a line on standard output");
  command->footer(
      "Reports go to standard error.\n"
      "Status: 0 nothing to report, 1 a script did not load or had a report, 2 wrong\n"
      "usage.");
  command->callback([options, &status] { status = check(*options); });
}

void add_dump(CLI::App& program, int& status) {
  const auto options = std::make_shared<dump_options>();
  CLI::App* const command = program.add_subcommand("dump", "Show what a stage makes of a script");
  command->add_option("STAGE", options->stage, "tokens, commands, tree or code")
      ->type_name("")
      ->required()
      ->check(CLI::IsMember({"tokens", "commands", "tree", "code"}).description(""));
  command->add_option("FILE", options->file, "The script")->type_name("")->required();
  add_search_paths(*command, options->folders);
  command->footer("Status: 0 shown, 1 the script does not come so far, 2 wrong usage.");
  command->callback([options, &status] { status = dump(*options); });
}

void add_lsp(CLI::App& program, int& status) {
  const auto folders = std::make_shared<std::vector<std::string>>();
  CLI::App* const command =
      program.add_subcommand("lsp", "Serve editors, as the language server protocol says");
  add_search_paths(*command, *folders);
  command->footer(
      "Talks on standard input and output.\n"
      "Status: 0 shut down and ended by the editor, 1 ended otherwise, 2 wrong usage.");
  command->callback([folders, &status] { status = serve(*folders); });
}

}  // namespace

int run_command_line(const std::vector<std::string>& arguments) {
  CLI::App program("Runs, checks and shows vornscript scripts.", "vrn");
  program.get_formatter()->column_width(26);
  program.allow_windows_style_options(false);
  program.set_version_flag("--version", "vrn " VRN_VERSION_TEXT, "Print the version and exit");
  program.require_subcommand(1);
  add_manual_flag(program);

  int status = 0;
  add_run(program, status);
  add_check(program, status);
  add_dump(program, status);
  add_lsp(program, status);
  try {
    std::vector<const char*> texts;
    texts.reserve(arguments.size());
    for (const std::string& argument : arguments) texts.push_back(argument.c_str());
    program.parse(static_cast<int>(texts.size()), texts.data());
  } catch (const CLI::ParseError& end) {
    return program.exit(end) == 0 ? 0 : wrong_usage;
  }
  return status;
}

}  // namespace vorn::tool
