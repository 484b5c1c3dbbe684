#include "frontend/include_pass.hpp"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <vornscript/filesys.hpp>
#include <vornscript/language.hpp>
#include <vornscript/log.hpp>
#include <vornscript/vrnscript.hpp>

#include "frontend/nesting.hpp"
#include "frontend/report.hpp"
#include "frontend/source_file.hpp"

namespace vorn {
namespace {

std::string file_name_of(std::string_view operand) {
  std::string name(operand);
  if (name.find(".vrs") == std::string::npos) name += ".vrs";
  return name;
}

std::string find_file(const std::string& name, const vrn_src_token_view& includer) {
  if (!current_script) return {};
  return current_script->filesys().find_file(name, &includer.directory);
}

std::shared_ptr<vrn_src_token_view> open_view(const std::string& path, std::string text,
                                              const vrn_src_token_view& includer,
                                              const vrn_src_token& operand) {
  auto view = std::make_shared<vrn_src_token_view>();
  view->name = path;
  view->directory = directory_of(path);
  view->notes_places = includer.notes_places;
  view->set_text(std::move(text));
  view->parent = &includer;
  view->included_at = operand;
  return view;
}

// All files' tokens go straight to the one list of the main file, each once, however deep the
// inclusion.
class include_pass {
 public:
  explicit include_pass(vrn_src_token_view& main) : main_(main) {}

  std::uint32_t run() {
    spliced_.reserve(main_.tokens.size());
    const std::uint32_t lines = splice(main_);
    main_.tokens = std::move(spliced_);
    return lines;
  }

 private:
  std::uint32_t splice(vrn_src_token_view& view) {
    std::uint32_t lines = 0;
    const std::vector<vrn_src_token> tokens = std::exchange(view.tokens, {});
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      const bool is_directive = tokens[i].is_symbol("#") && i + 1 < tokens.size() &&
                                tokens[i + 1].is_word(words::include);
      if (!is_directive) {
        spliced_.push_back(tokens[i]);
        continue;
      }
      const std::size_t first = i + 2;
      for (i = first; i < tokens.size() && tokens[i].kind != vrn_token_kind::end_of_line; ++i) {
        if (tokens[i].kind != vrn_token_kind::string) report_invalid_include(tokens[i]);
      }
      // The text of an operand of a wrong kind is deliberately tried as a file name all the same.
      for (std::size_t k = first; k < i; ++k) lines += include(view, tokens[k]);
    }
    return lines;
  }

  std::uint32_t include(vrn_src_token_view& includer, const vrn_src_token& operand) {
    const std::string name = file_name_of(operand.text());
    const std::string path = find_file(name, includer);
    if (main_.notes_places) main_.operands.push_back({operand, spliced_.size(), path});
    if (path.empty()) {
      report_file_not_found(operand, name);
      return 0;
    }
    if (main_.included.contains(path)) {
      log_line(vrn_log_level::log, "Skipping include (again): ", path);
      return 0;
    }
    const nesting_level level(depth_);
    if (level.too_deep()) {
      report_nesting_too_deep(operand);
      return 0;
    }
    main_.included.emplace(path, std::make_shared<std::string>(path));
    log_line(vrn_log_level::log, "Include file: ", path);

    std::optional<std::string> text = read_source(current_script->filesys(), path);
    if (!text) return 0;
    const auto view = open_view(path, *std::move(text), includer, operand);
    const vrn_scan scan = scan_tokens(*view);
    if (scan.lines == 0) return 0;
    includer.includes.push_back(view);
    const std::size_t first = spliced_.size();
    const std::uint32_t lines = view->tokens.empty() ? 0 : scan.lines + splice(*view);
    if (spliced_.size() == first) {
      log_line(vrn_log_level::log, "Empty include file: ", path);
      return lines;
    }
    end_last_line(*view);
    return lines;
  }

  // The end of a file ends its last line, also one that a backslash continues.
  void end_last_line(vrn_src_token_view& view) {
    const vrn_src_token mark{.source = &view,
                             .begin = static_cast<std::uint32_t>(view.text.size()),
                             .extent = 0,
                             .column = 0,
                             .kind = vrn_token_kind::end_of_line};
    while (spliced_.back().kind != vrn_token_kind::end_of_line ||
           (spliced_.size() > 1 && spliced_[spliced_.size() - 2].is_symbol("\\"))) {
      spliced_.push_back(mark);
    }
  }

  vrn_src_token_view& main_;
  std::vector<vrn_src_token> spliced_;
  std::uint32_t depth_ = 0;
};

}  // namespace

std::uint32_t splice_includes(vrn_src_token_view& main) { return include_pass(main).run(); }

}  // namespace vorn
