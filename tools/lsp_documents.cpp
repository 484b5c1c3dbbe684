#include "tools/lsp_documents.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "tools/lsp_uri.hpp"

namespace vorn::lsp {
namespace {

constexpr int severity_error = 1;

}  // namespace

json to_json(text_position position) {
  return {{"line", position.line}, {"character", position.character}};
}

json range_in(const source_text& text, std::size_t offset, std::size_t length) {
  return {{"start", to_json(text.position_of(offset))},
          {"end", to_json(text.position_of(offset + length))}};
}

void open_documents::open(const std::string& uri, std::string text, std::int64_t version) {
  close(uri);
  const std::string path = path_of_uri(uri);
  std::string canonical = path == uri ? uri : analyser_.files().canonical(path);
  if (canonical.empty()) canonical = uri;
  document& opened =
      documents_.emplace(uri, document{std::move(canonical), version, source_text(std::move(text))})
          .first->second;
  analyser_.files().open(opened.path, opened.text.bytes());
  uris_[opened.path] = uri;
  touch(opened);
}

void open_documents::touch(document& changed) {
  changed.changed = true;
  touch_dependents(changed.path);
}

void open_documents::touch_dependents(const std::string& path) {
  for (auto& [uri, each] : documents_) {
    if (each.result.asked.contains(path)) each.changed = true;
  }
}

// Of two documents of one file, as links allow, the one that was opened last is what others see.
void open_documents::close(const std::string& uri) {
  const auto found = documents_.find(uri);
  if (found == documents_.end()) return;
  const std::string path = found->second.path;
  documents_.erase(found);
  if (const auto shown = uris_.find(path); shown != uris_.end() && shown->second == uri) {
    uris_.erase(shown);
    analyser_.files().close(path);
  }
  touch_dependents(path);
}

document* open_documents::find(const std::string& uri) {
  const auto found = documents_.find(uri);
  return found == documents_.end() ? nullptr : &found->second;
}

std::vector<json> open_documents::refresh() {
  std::set<std::string_view> analysed;
  for (auto& [uri, each] : documents_) {
    if (!each.changed) continue;
    each.result = analyser_.analyse(each.text.bytes(), each.path);
    each.changed = false;
    analysed.insert(uri);
  }
  if (analysed.empty()) return {};
  std::map<std::string_view, std::vector<finding>> findings;
  for (const auto& [uri, each] : documents_) {
    for (const finding& found : each.result.findings) findings[found.file].push_back(found);
  }
  std::vector<json> notifications;
  for (auto& [uri, each] : documents_) {
    json diagnostics = diagnostics_of(each, findings[each.path]);
    if (!analysed.contains(uri) && diagnostics == each.shown) continue;
    each.shown = std::move(diagnostics);
    notifications.push_back({{"uri", uri}, {"version", each.version}, {"diagnostics", each.shown}});
  }
  return notifications;
}

// In order, each once: other documents that include the file have found the same.
json open_documents::diagnostics_of(const document& shown,
                                    const std::vector<finding>& findings) const {
  json diagnostics = json::array();
  for (const finding& each : std::set(findings.begin(), findings.end())) {
    diagnostics.push_back({{"range", range_in(shown.text, each.offset, each.length)},
                           {"severity", severity_error},
                           {"source", "vrn"},
                           {"message", each.message}});
  }
  return diagnostics;
}

std::string open_documents::uri_of(const std::string& path) const {
  const auto found = uris_.find(path);
  return found == uris_.end() ? uri_of_path(path) : found->second;
}

source_text open_documents::text_of(const std::string& path) {
  return source_text(analyser_.files().read_file(path));
}

}  // namespace vorn::lsp
