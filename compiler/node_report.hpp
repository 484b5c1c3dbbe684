// Compile errors: reports at the token of a syntax-tree node.
#pragma once

#include <string_view>

#include "frontend/report.hpp"
#include "parser/ast.hpp"

namespace vorn {

// Both give false, for a caller to return. A node that was built without a token gets a report that
// says so instead.
inline bool report_node(const vrn_ast_node& node, void (*reporter)(const vrn_src_token&)) {
  if (node.token) {
    reporter(*node.token);
  } else {
    report_node_without_token(vrn_src_place{});
  }
  return false;
}

inline bool report_node(const vrn_ast_node& node,
                        void (*reporter)(const vrn_src_token&, std::string_view),
                        std::string_view operand) {
  if (node.token) {
    reporter(*node.token, operand);
  } else {
    report_node_without_token(vrn_src_place{});
  }
  return false;
}

}  // namespace vorn
