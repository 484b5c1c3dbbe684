// vrn dump
#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "platform/platform.hpp"
#include "tools/commands.hpp"
#include "tools/files.hpp"
#include "tools/output.hpp"

namespace vorn::tool {
namespace {

vrn_inspect_stage stage_of(std::string_view name) {
  if (name == "tokens") return vrn_inspect_stage::tokens;
  if (name == "commands") return vrn_inspect_stage::commands;
  return name == "tree" ? vrn_inspect_stage::tree : vrn_inspect_stage::code;
}

// Deeper items are indented no further, so that the text grows in line with their number.
constexpr std::uint32_t deepest_indent = 40;

// Of a line that holds many statements each shows so much.
constexpr std::size_t statement_width = 80;

std::string_view cut(std::string_view text, std::size_t size) {
  if (text.size() <= size) return text;
  while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
  return text.substr(0, size);
}

// Appends a text as one line: control characters and backslashes as they are written in C.
void append_escaped(std::string& line, std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (character == '\n') {
      line += "\\n";
    } else if (character == '\\') {
      line += "\\\\";
    } else if (byte < 0x20 || byte == 0x7F) {
      ((line += "\\x") += digits[byte / 16]) += digits[byte % 16];
    } else {
      line += character;
    }
  }
}

// Writes one line for each item, and one for each change of the file; paths are shown as seen from
// the script's folder.
class dump_writer {
 public:
  explicit dump_writer(std::string_view folder) : folder_(path_of(folder)) {}

  void write(const vrn_inspected& item) {
    line_.clear();
    if (item.place.line != 0 && item.place.file != file_) {
      file_ = item.place.file;
      line_ += "-- ";
      append_path(file_);
      line_ += '\n';
    }
    line_.append(std::size_t{2} * std::min(item.depth, deepest_indent), ' ');
    if (item.depth > deepest_indent) {
      append_part(line_, item.depth);
      line_ += "> ";
    }
    if (item.place.line != 0) {
      append_part(line_, item.place.line);
      line_ += ':';
      append_part(line_, item.place.column);
      line_ += ' ';
    }
    line_ += item.kind;
    append_text(item);
    line_ += '\n';
    platform::write_console(line_);
  }

 private:
  static std::filesystem::path path_of(std::string_view text) {
    return std::u8string(text.begin(), text.end());
  }

  void append_path(std::string_view path) {
    const std::u8string shown = path_of(path).lexically_proximate(folder_).generic_u8string();
    append_escaped(line_, std::string(shown.begin(), shown.end()));
  }

  void append_text(const vrn_inspected& item) {
    if (item.text.empty() || item.kind == "end_of_line") return;
    line_ += ' ';
    if (item.kind == "include") {
      append_path(item.text);
    } else {
      append_escaped(line_, item.kind == "statement" ? cut(item.text, statement_width) : item.text);
    }
  }

  std::filesystem::path folder_;
  std::string file_;
  std::string line_;
};

}  // namespace

int dump(const dump_options& options) {
  const auto files = open_files(options.folders);
  const auto log = std::make_shared<script_log>();
  bool any_report = false;
  vrnscript script({.filesys = files, .logger = log, .on_report = [&](const vrn_report&) {
                      any_report = true;
                      write_error_line(log->last_error());
                    }});
  dump_writer writer(directory_of(files->find_file(options.file)));
  if (inspect(script, stage_of(options.stage), options.file,
              [&writer](const vrn_inspected& item) { writer.write(item); })) {
    return 0;
  }
  if (!any_report) write_error_line(log->first_error());
  return 1;
}

}  // namespace vorn::tool
