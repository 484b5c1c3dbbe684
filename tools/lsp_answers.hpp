// What the language server answers when it is asked about a place in a script.
#pragma once

#include <cstddef>

#include "tools/lsp_documents.hpp"

namespace vorn::lsp {

// Each takes a document that has been analysed, and gives the protocol's result; null for nothing.
json hover_at(open_documents& documents, const document& at, std::size_t offset);
json signature_at(const document& at, std::size_t offset);
json completions_at(const document& at, std::size_t offset);
json definition_at(open_documents& documents, const document& at, std::size_t offset);
json outline_of(const document& of);

}  // namespace vorn::lsp
