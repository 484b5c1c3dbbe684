#include "tools/lsp_server.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <stdexcept>
#include <utility>

#include "tools/lsp_answers.hpp"

namespace vorn::lsp {
namespace {

// The protocol's numbers.
constexpr int parse_error = -32700;
constexpr int invalid_request = -32600;
constexpr int method_not_found = -32601;
constexpr int invalid_params = -32602;
constexpr int internal_error = -32603;
constexpr int not_initialized = -32002;
constexpr int incremental_sync = 2;

// Deeper than any message of the protocol; what lies deeper is dropped while it is read.
constexpr int json_depth_max = 64;

struct protocol_error : std::runtime_error {
  protocol_error(int number, const char* text) : std::runtime_error(text), code(number) {}
  int code;
};

[[noreturn]] void refuse_params() { throw protocol_error(invalid_params, "Invalid params"); }

std::int64_t whole_number(const json& value) {
  if (!value.is_number_integer()) refuse_params();
  return value.get<std::int64_t>();
}

std::size_t natural_number(const json& value) {
  if (!value.is_number_unsigned()) refuse_params();
  constexpr std::uint64_t largest = std::numeric_limits<std::size_t>::max();
  return static_cast<std::size_t>(std::min(value.get<std::uint64_t>(), largest));
}

text_position position_in(const json& value) {
  return {natural_number(value.at("line")), natural_number(value.at("character"))};
}

const std::string& uri_in(const json& params) {
  return params.at("textDocument").at("uri").get_ref<const std::string&>();
}

json capabilities() {
  return {{"textDocumentSync",
           {{"openClose", true}, {"change", incremental_sync}, {"save", {{"includeText", false}}}}},
          {"hoverProvider", true},
          {"signatureHelpProvider", {{"triggerCharacters", {"(", ","}}}},
          {"completionProvider", {{"triggerCharacters", {"#"}}}},
          {"definitionProvider", true},
          {"documentSymbolProvider", true}};
}

json error_message(json id, int code, const char* text) {
  return {{"id", std::move(id)}, {"error", {{"code", code}, {"message", text}}}};
}

// Runs what a message asks for; gives the error that it leads to, if any.
template <class Action>
json attempt(const json& id, const Action& action) {
  try {
    action();
    return nullptr;
  } catch (const protocol_error& failure) {
    return error_message(id, failure.code, failure.what());
  } catch (const json::exception&) {
    return error_message(id, invalid_params, "Invalid params");
  } catch (const std::exception& failure) {
    return error_message(id, internal_error, failure.what());
  }
}

}  // namespace

void server::receive(std::string_view message) {
  const auto is_shallow = [](int depth, json::parse_event_t, const json&) {
    return depth <= json_depth_max;
  };
  json parsed = json::parse(message, is_shallow, false);
  if (parsed.is_discarded()) return send(error_message(nullptr, parse_error, "Parse error"));
  handle(parsed);
}

void server::handle(json& message) {
  static const json no_params = json::object();
  const auto invalid = [&] { send(error_message(nullptr, invalid_request, "Invalid Request")); };
  if (!message.is_object()) return invalid();
  const bool has_id = message.contains("id");
  if (!message.contains("method")) {
    // Nothing is asked of the editor, so an answer from it means nothing.
    const bool is_answer = has_id && (message.contains("result") || message.contains("error"));
    return is_answer ? void() : invalid();
  }
  const json& method = message["method"];
  const json& params = message.contains("params") ? message["params"] : no_params;
  const json& id = message["id"];
  const bool names_itself = id.is_null() || id.is_string() || id.is_number_integer();
  if (!method.is_string() || !params.is_structured() || !names_itself) return invalid();

  const auto& name = method.get_ref<const std::string&>();
  if (!has_id) {
    attempt(nullptr, [&] { notify(name, params); });
    return;
  }
  json result;
  const json error = attempt(id, [&] { result = answer(name, params); });
  send(error.is_null() ? json{{"id", id}, {"result", std::move(result)}} : error);
}

json server::answer(std::string_view method, const json& params) {
  if (method == "initialize") {
    if (phase_ != phase::created) throw protocol_error(invalid_request, "Initialized already");
    phase_ = phase::running;
    return {{"capabilities", capabilities()}, {"serverInfo", {{"name", "vrn"}}}};
  }
  if (phase_ == phase::created) throw protocol_error(not_initialized, "Not initialized");
  if (phase_ == phase::shut_down) throw protocol_error(invalid_request, "Shut down");
  if (method == "shutdown") {
    phase_ = phase::shut_down;
    return nullptr;
  }
  if (method == "textDocument/documentSymbol") return outline_of(refreshed(params));
  const auto place = [&](const document& in) {
    return in.text.offset_of(position_in(params.at("position")));
  };
  if (method == "textDocument/hover") {
    const document& at = refreshed(params);
    return hover_at(documents_, at, place(at));
  }
  if (method == "textDocument/signatureHelp") {
    const document& at = refreshed(params);
    return signature_at(at, place(at));
  }
  if (method == "textDocument/completion") {
    const document& at = refreshed(params);
    return completions_at(at, place(at));
  }
  if (method == "textDocument/definition") {
    const document& at = refreshed(params);
    return definition_at(documents_, at, place(at));
  }
  throw protocol_error(method_not_found, "Method not found");
}

void server::notify(std::string_view method, const json& params) {
  if (method == "exit") exit_status_ = phase_ == phase::shut_down ? 0 : 1;
  if (phase_ != phase::running) return;
  if (method == "textDocument/didOpen") {
    const json& opened = params.at("textDocument");
    documents_.open(uri_in(params), opened.at("text").get<std::string>(),
                    whole_number(opened.at("version")));
  } else if (method == "textDocument/didChange") {
    change(params);
  } else if (method == "textDocument/didSave") {
    // Files that are not open may have changed meanwhile.
    if (document* const saved = documents_.find(uri_in(params))) documents_.touch(*saved);
  } else if (method == "textDocument/didClose") {
    if (!documents_.find(uri_in(params))) return;
    documents_.close(uri_in(params));
    send({{"method", "textDocument/publishDiagnostics"},
          {"params", {{"uri", uri_in(params)}, {"diagnostics", json::array()}}}});
  }
}

void server::change(const json& params) {
  document* const changed = documents_.find(uri_in(params));
  if (!changed) return;
  for (const json& each : params.at("contentChanges")) {
    const auto& text = each.at("text").get_ref<const std::string&>();
    if (each.contains("range")) {
      const std::size_t begin = changed->text.offset_of(position_in(each["range"].at("start")));
      const std::size_t end = changed->text.offset_of(position_in(each["range"].at("end")));
      changed->text.replace(begin, end, text);
    } else {
      changed->text.replace(0, changed->text.bytes().size(), text);
    }
    documents_.touch(*changed);
  }
  changed->version = whole_number(params.at("textDocument").at("version"));
}

const document& server::refreshed(const json& params) {
  const document* const found = documents_.find(uri_in(params));
  if (!found) refuse_params();
  publish();
  return *found;
}

void server::refresh() {
  attempt(nullptr, [this] { publish(); });
}

void server::publish() {
  for (json& params : documents_.refresh()) {
    send({{"method", "textDocument/publishDiagnostics"}, {"params", std::move(params)}});
  }
}

// A text that is no UTF-8, as a message that quotes one may be, gets signs in place of what is not.
void server::send(json message) {
  message["jsonrpc"] = "2.0";
  send_(message.dump(-1, ' ', false, json::error_handler_t::replace));
}

}  // namespace vorn::lsp
