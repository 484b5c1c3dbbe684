// vrn lsp
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.hpp"
#include "tools/commands.hpp"
#include "tools/files.hpp"
#include "tools/lsp_server.hpp"
#include "tools/lsp_transport.hpp"

namespace vorn::tool {

// Until the editor ends it, or its messages do.
int serve(const std::vector<std::string>& folders) {
  // Only then does the stream tell how much has come.
  std::ios::sync_with_stdio(false);
  lsp::server server(open_files(folders), [](std::string_view message) {
    platform::write_console(lsp::framed(message));
    platform::flush_console();
  });
  while (!server.exit_status()) {
    if (std::cin.rdbuf()->in_avail() <= 0) server.refresh();
    const std::optional<std::string> message = lsp::read_message(std::cin);
    if (!message) return 1;
    server.receive(*message);
  }
  return *server.exit_status();
}

}  // namespace vorn::tool
