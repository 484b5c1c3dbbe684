// The commands of vrn.
#pragma once

namespace CLI {
class App;
}

namespace vorn::tool {

// Each adds a command to the program, which leaves the process's status when it has been carried
// out.
void add_run(CLI::App& program, int& status);
void add_check(CLI::App& program, int& status);
void add_dump(CLI::App& program, int& status);
void add_lsp(CLI::App& program, int& status);

}  // namespace vorn::tool
