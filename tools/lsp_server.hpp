// The language server: answers an editor's messages.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/lsp_documents.hpp"

namespace vorn::lsp {

class server {
 public:
  // Files that are not open are read from `disk`. Each message to the editor is handed to `send`.
  server(std::shared_ptr<const vrn_filesys> disk,
         std::function<void(std::string_view message)> send)
      : send_(std::move(send)), documents_(std::move(disk)) {}

  // Takes a message of whatever content; what is wrong with it is answered as the protocol says.
  void receive(std::string_view message);

  // Sends what is wrong with the documents that have changed. Called when no message waits, so that
  // of many changes only the last costs an analysis.
  void refresh();

  // Set by the message that ends the server.
  std::optional<int> exit_status() const { return exit_status_; }

 private:
  enum class phase { created, running, shut_down };

  void handle(json& message);
  json answer(std::string_view method, const json& params);
  void notify(std::string_view method, const json& params);
  void change(const json& params);
  void publish();
  const document& refreshed(const json& params);
  void send(json message);

  std::function<void(std::string_view)> send_;
  open_documents documents_;
  phase phase_ = phase::created;
  std::optional<int> exit_status_;
};

}  // namespace vorn::lsp
