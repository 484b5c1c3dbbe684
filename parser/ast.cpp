#include "parser/ast.hpp"

namespace vorn {
namespace {

// What a node of a chain holds on to the rest by; null for a node that ends chains.
vrn_node* rest_of(vrn_ast_node& node) {
  switch (node.kind) {
    case vrn_node_kind::binary_node:
      return &static_cast<vrn_ast_node_binary&>(node).right;
    case vrn_node_kind::assign_node:
      return &static_cast<vrn_ast_node_assign&>(node).value;
    default:
      return nullptr;
  }
}

}  // namespace

// Long expressions group to the right; by recursion their release would overflow the stack.
void release_chain(vrn_node chain) noexcept {
  while (chain.unique()) {
    vrn_node* const rest = rest_of(*chain);
    if (!rest) return;
    vrn_node next = std::move(*rest);
    chain = std::move(next);
  }
}

}  // namespace vorn
