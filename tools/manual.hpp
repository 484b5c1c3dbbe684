// The manual page.
#pragma once

namespace CLI {
class App;
}

namespace vorn::tool {

// Adds an option, which no help shows, that writes the program's manual page to standard output and
// ends it. The page is made from what the help of the program and its commands says.
void add_manual_flag(CLI::App& program);

}  // namespace vorn::tool
