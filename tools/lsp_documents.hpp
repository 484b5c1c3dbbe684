// The scripts that are open in the editor, and what is wrong with them.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "tools/lsp_analysis.hpp"
#include "tools/lsp_text.hpp"

namespace vorn::lsp {

using json = nlohmann::json;

struct document {
  std::string path;  // canonical; of a text that is no file, its URI
  std::int64_t version = 0;
  source_text text;
  bool changed = true;  // it, or what it includes, since it was analysed
  analysis result = {};
  json shown = {};  // the diagnostics that the editor has
};

json to_json(text_position position);
// The protocol's range of some bytes.
json range_in(const source_text& text, std::size_t offset, std::size_t length);

class open_documents {
 public:
  explicit open_documents(std::shared_ptr<const vrn_filesys> disk) : analyser_(std::move(disk)) {}

  // Opens it, or replaces it with another text.
  void open(const std::string& uri, std::string text, std::int64_t version);
  // The document changes: whoever depends on it is to be analysed again.
  void touch(document& changed);
  void close(const std::string& uri);

  // Null when it is not open.
  document* find(const std::string& uri);

  // Analyses what has changed. Gives the parameters of a publishDiagnostics notification for each
  // document that was analysed, or whose diagnostics are others since.
  std::vector<json> refresh();

  // The URI that the editor uses for a file, or the usual one.
  std::string uri_of(const std::string& path) const;
  // A file as it is open, else as it is on the disk.
  source_text text_of(const std::string& path);

 private:
  void touch_dependents(const std::string& path);
  json diagnostics_of(const document& shown, const std::vector<finding>& findings) const;

  analyser analyser_;
  std::map<std::string, document> documents_;  // by URI
  std::map<std::string, std::string> uris_;    // by path
};

}  // namespace vorn::lsp
