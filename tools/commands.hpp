// The commands of vrn. Each carries one out and gives the process's status.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vorn::tool {

// `folders` are further search paths.

struct run_options {
  std::optional<std::string> file;
  std::optional<std::string> text;
  std::vector<std::string> folders;
  bool verbose = false;
  std::optional<double> timeout;  // in seconds
};
int run(const run_options& options);

struct check_options {
  std::vector<std::string> files;
  std::vector<std::string> folders;
  bool as_json = false;
};
int check(const check_options& options);

struct dump_options {
  std::string stage;
  std::string file;
  std::vector<std::string> folders;
};
int dump(const dump_options& options);

// The language server.
int serve(const std::vector<std::string>& folders);

}  // namespace vorn::tool
