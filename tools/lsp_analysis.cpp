#include "tools/lsp_analysis.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace vorn::lsp {
namespace {

// So many strings and comments without an end do not keep the tokens behind them from being seen.
constexpr int repairs_max = 8;

// Collects the tokens of a script.
struct token_reader {
  void add(const vrn_inspected& item) {
    if (item.kind == "end_of_line") {
      if (!tokens.empty()) tokens.back().last_on_line = true;
      return;
    }
    token_kind kind = token_kind::symbol;
    if (item.kind == "word") kind = token_kind::word;
    if (item.kind == "string") kind = token_kind::string;
    if (item.kind == "include") kind = token_kind::include;
    const std::uint32_t file = number_of(item.place.file);
    tokens.push_back({.kind = kind,
                      .text = std::string(item.text),
                      .file = file,
                      .offset = item.offset,
                      .length = item.length});
  }

  std::uint32_t number_of(std::string_view file) {
    if (files[last_file] != file) {
      const auto next = static_cast<std::uint32_t>(files.size());
      const auto [found, is_new] = numbers.try_emplace(std::string(file), next);
      if (is_new) files.emplace_back(file);
      last_file = found->second;
    }
    return last_file;
  }

  explicit token_reader(const std::string& name) : files{name}, numbers{{name, 0}} {}

  std::vector<script_token> tokens;
  std::vector<std::string> files;
  std::map<std::string, std::uint32_t, std::less<>> numbers;
  std::uint32_t last_file = 0;
};

void blank_line_from(std::string& text, std::size_t offset) {
  for (; offset < text.size() && text[offset] != '\n'; ++offset) text[offset] = ' ';
}

}  // namespace

analyser::analyser(std::shared_ptr<const vrn_filesys> disk)
    : files_(std::make_shared<editor_files>(std::move(disk))),
      script_({.filesys = files_,
               .logger = std::make_shared<vrn_log_base>(0),
               .add_std_functions = true,
               .thread_name = "LSP",
               .clock = nullptr,
               .on_report = [this](const vrn_report& report) { on_report_(report); }}) {}

analysis analyser::analyse(const std::string& text, const std::string& name) {
  analysis result;
  // A string or a comment without an end ends the tokens; so its line is read as a blank one.
  std::optional<token_reader> reader;
  std::string repaired = text;
  for (int repairs = 0; repairs <= repairs_max; ++repairs) {
    reader.emplace(name);
    std::optional<std::size_t> broken_at;
    on_report_ = [&](const vrn_report& report) {
      if (report.place.file == name) broken_at = report.offset;
    };
    const bool complete = inspect(script_, vrn_inspect_stage::tokens, repaired, name,
                                  [&](const vrn_inspected& item) { reader->add(item); });
    if (complete || !broken_at) break;
    blank_line_from(repaired, *broken_at);
  }

  on_report_ = [&](const vrn_report& report) {
    result.findings.push_back({std::string(report.place.file), report.offset, report.length,
                               std::string(report.message)});
    if (report.included_from.empty()) return;
    const vrn_report_inclusion& operand = report.included_from.front();
    std::string message(report.place.file);
    message += ':' + std::to_string(report.place.line) + ':' + std::to_string(report.place.column);
    message.append(": ").append(report.message);
    result.findings.push_back({name, operand.offset, operand.length, std::move(message)});
  };
  vrn_program_loader(script_).create_program(text, name);

  on_report_ = nullptr;
  result.asked = files_->take_asked();
  result.files = std::move(reader->files);
  result.symbols = symbol_table(std::move(reader->tokens));
  return result;
}

}  // namespace vorn::lsp
