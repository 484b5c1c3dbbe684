#include "tools/manual.hpp"

#include <string>

#include <CLI/CLI.hpp>

#include "platform/platform.hpp"

namespace vorn::tool {
namespace {

// A text of the page, in which nothing is taken for a request or an escape.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char character : text) {
    if (character == '\\') {
      result += "\\e";
    } else if (character == '-') {
      result += "\\-";
    } else if (character == '.' && (result.empty() || result.back() == '\n')) {
      result += "\\&.";
    } else {
      result += character;
    }
  }
  return result;
}

void append_options(std::string& page, const CLI::App& command) {
  for (const CLI::Option* const option : command.get_options()) {
    if (option->get_group().empty()) continue;
    page += ".TP\n.B " + escaped(option->get_name(true, true));
    if (option->get_items_expected_max() > 0) page += " " + escaped(option->get_type_name());
    page += '\n' + escaped(option->get_description()) + '\n';
  }
}

std::string page_of(const CLI::App& program) {
  std::string page = ".TH VRN 1 \"\" \"" + escaped(program.version()) + "\"\n.SH NAME\nvrn \\- " +
                     escaped(program.get_description()) + "\n.SH SYNOPSIS\n";
  const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
  for (const CLI::App* const command : commands) {
    page += ".B vrn " + command->get_name() + "\n[OPTIONS]";
    for (const CLI::Option* const option : command->get_options()) {
      if (option->get_positional()) page += ' ' + option->get_name(true);
    }
    page += "\n.br\n";
  }
  page += ".SH OPTIONS\n";
  append_options(page, program);
  for (const CLI::App* const command : commands) {
    page += ".SH VRN " + command->get_name() + '\n' + escaped(command->get_description()) + ".\n";
    append_options(page, *command);
    page += ".PP\n" + escaped(command->get_footer()) + '\n';
  }
  return page;
}

}  // namespace

void add_manual_flag(CLI::App& program) {
  program
      .add_flag_callback("--manual",
                         [&program] {
                           platform::write_console(page_of(program));
                           throw CLI::Success();
                         })
      ->group("");
}

}  // namespace vorn::tool
