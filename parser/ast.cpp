#include "parser/ast.hpp"

namespace vorn {
namespace {

// The two parts of an operator or assignment; null for any other node.
struct parts {
  vrn_node* first = nullptr;
  vrn_node* last = nullptr;
};

parts parts_of(vrn_ast_node& node) {
  if (node.kind == vrn_node_kind::binary_node) {
    auto& binary = static_cast<vrn_ast_node_binary&>(node);
    return {&binary.left, &binary.right};
  }
  if (node.kind == vrn_node_kind::assign_node) {
    auto& assign = static_cast<vrn_ast_node_assign&>(node);
    return {&assign.target, &assign.value};
  }
  return {};
}

}  // namespace

// Long or deep expressions would overflow the stack, were they released by recursion. A first part
// that has parts itself changes places with the node above it, until all hang on last parts.
void release_chain(vrn_node chain) noexcept {
  while (chain.unique()) {
    const parts own = parts_of(*chain);
    if (!own.last) return;
    const parts inner = own.first->unique() ? parts_of(**own.first) : parts();
    vrn_node next = std::move(inner.last ? *own.first : *own.last);
    if (inner.last) {
      *own.first = std::move(*inner.last);
      *inner.last = std::move(chain);
    }
    chain = std::move(next);
  }
}

}  // namespace vorn
