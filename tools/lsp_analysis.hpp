// What the interpreter makes of a script, and what its names mean.
#pragma once

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <vornscript/vornscript.hpp>

#include "tools/lsp_files.hpp"
#include "tools/lsp_symbols.hpp"

namespace vorn::lsp {

// A mistake, in bytes of the file that it is in.
struct finding {
  std::string file;
  std::size_t offset;
  std::size_t length;
  std::string message;
  friend bool operator<(const finding& a, const finding& b) {
    const auto key = [](const finding& of) {
      return std::tie(of.file, of.offset, of.length, of.message);
    };
    return key(a) < key(b);
  }
};

struct analysis {
  // Those of included files too, and for each of these one where the script includes the file.
  std::vector<finding> findings;
  symbol_table symbols{{}};
  std::vector<std::string> files;  // the script, and what it includes
  std::set<std::string> asked;     // files that it depends on, there or not
};

// Has the thread's interpreter, one for all scripts. Nothing is run.
class analyser {
 public:
  explicit analyser(std::shared_ptr<const vrn_filesys> disk);

  // `name` is the file's path, or what reports call the text. Takes time in line with the text.
  analysis analyse(const std::string& text, const std::string& name);

  editor_files& files() { return *files_; }

 private:
  std::shared_ptr<editor_files> files_;
  vrn_report_callback on_report_;
  vrnscript script_;
};

}  // namespace vorn::lsp
