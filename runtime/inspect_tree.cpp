// The syntax tree.
#include <span>
#include <vector>

#include "runtime/inspect_stages.hpp"

namespace vorn {
namespace {

std::string_view kind_name(vrn_node_kind kind) {
  switch (kind) {
#define VRN_NODE_KIND(number, name) \
  case vrn_node_kind::name##_node:  \
    return #name;
#include "parser/node_kinds.def"
#undef VRN_NODE_KIND
  }
  return {};
}

// Chains of operators make trees of any depth, so what is still to be visited waits on a stack.
class tree_walk {
 public:
  explicit tree_walk(const vrn_inspect_visitor& visit) : visit_(visit) {}

  void run(vrn_statement_list statements) {
    add(0, statements);
    while (!waiting_.empty()) {
      const part next = waiting_.back();
      waiting_.pop_back();
      if (next.node) {
        visit_node(next.depth, *next.node);
      } else if (next.is_body) {
        visit_({next.depth, "body", {}, {}});
        add(next.depth + 1, next.body);
      } else {
        visit_({next.depth, "entry", {}, {}});
        add(next.depth + 1, next.entry);
      }
    }
  }

 private:
  // A node, or a list that is held together by an item of its own.
  struct part {
    std::uint32_t depth;
    vrn_node node;
    bool is_body = false;
    vrn_statement_list body = {};
    vrn_node_list entry = {};
  };

  // Parts are added from the last to the first.

  void add(std::uint32_t depth, vrn_node node) {
    if (node) waiting_.push_back({depth, node});
  }
  void add(std::uint32_t depth, vrn_statement_list statements) {
    for (auto at = statements.rbegin(); at != statements.rend(); ++at) add(depth, at->node);
  }
  void add(std::uint32_t depth, vrn_node_list nodes) {
    for (auto at = nodes.rbegin(); at != nodes.rend(); ++at) add(depth, *at);
  }
  void add(std::uint32_t depth, std::span<vrn_node_list> entries) {
    for (auto at = entries.rbegin(); at != entries.rend(); ++at) {
      waiting_.push_back({.depth = depth, .node = nullptr, .entry = *at});
    }
  }
  void add_body(std::uint32_t depth, vrn_statement_list statements) {
    waiting_.push_back({.depth = depth, .node = nullptr, .is_body = true, .body = statements});
  }

  void visit_node(std::uint32_t depth, const vrn_ast_node& node) {
    if (node.token) {
      visit_(inspected(depth, kind_name(node.kind), *node.token));
    } else {
      visit_({depth, kind_name(node.kind), {}, {}});
    }
    add_parts(depth + 1, node);
  }

  template <class Node>
  static const Node& as(const vrn_ast_node& node) {
    return static_cast<const Node&>(node);
  }

  void add_parts(std::uint32_t depth, const vrn_ast_node& node) {
    switch (node.kind) {
      case vrn_node_kind::assign_node:
        add(depth, as<vrn_ast_node_assign>(node).value);
        return add(depth, as<vrn_ast_node_assign>(node).target);
      case vrn_node_kind::condition_node:
        add(depth, as<vrn_ast_node_condition>(node).otherwise);
        add_body(depth, as<vrn_ast_node_condition>(node).body);
        return add(depth, as<vrn_ast_node_condition>(node).condition);
      case vrn_node_kind::loop_node:
        add_body(depth, as<vrn_ast_node_loop>(node).body);
        add(depth, as<vrn_ast_node_loop>(node).end);
        add(depth, as<vrn_ast_node_loop>(node).condition);
        return add(depth, as<vrn_ast_node_loop>(node).start);
      case vrn_node_kind::class_def_node:
        return add_body(depth, as<vrn_ast_node_class_def>(node).entries);
      case vrn_node_kind::function_def_node: {
        const auto& definition = as<vrn_ast_node_function_def>(node);
        add_body(depth, definition.body);
        for (auto at = definition.params.rbegin(); at != definition.params.rend(); ++at) {
          add(depth, *at);
        }
        return;
      }
      case vrn_node_kind::function_def_param_node:
        return add(depth, as<vrn_ast_node_function_def_param>(node).default_value);
      case vrn_node_kind::function_call_node:
        add(depth, as<vrn_ast_node_function_call>(node).params);
        return add(depth, as<vrn_ast_node_function_call>(node).callee);
      case vrn_node_kind::function_call_param_node:
        // The next one lies beside it.
        add(depth - 1, as<vrn_ast_node_function_call_param>(node).next);
        return add(depth, as<vrn_ast_node_function_call_param>(node).value);
      case vrn_node_kind::variable_node:
      case vrn_node_kind::int_node:
      case vrn_node_kind::float_node:
      case vrn_node_kind::string_node:
        return;
      case vrn_node_kind::binary_node:
        add(depth, as<vrn_ast_node_binary>(node).right);
        return add(depth, as<vrn_ast_node_binary>(node).left);
      case vrn_node_kind::unary_node:
        return add(depth, as<vrn_ast_node_unary>(node).operand);
      case vrn_node_kind::json_node:
        return add(depth, as<vrn_ast_node_json>(node).entries);
      case vrn_node_kind::json_literal_node:
        add(depth, as<vrn_ast_node_json_literal>(node).value);
        return add(depth, as<vrn_ast_node_json_literal>(node).key);
      case vrn_node_kind::sub_block_node:
        return add(depth, as<vrn_ast_node_sub_block>(node).body);
      case vrn_node_kind::initializer_list_node:
        return add(depth, as<vrn_ast_node_initializer_list>(node).entries);
      case vrn_node_kind::initializer_list_add_node:
        return add(depth, as<vrn_ast_node_initializer_list_add>(node).entries);
      case vrn_node_kind::return_node:
        return add(depth, as<vrn_ast_node_return>(node).value);
    }
  }

  const vrn_inspect_visitor& visit_;
  std::vector<part> waiting_;
};

}  // namespace

void visit_tree(const vrn_ast& ast, const vrn_inspect_visitor& visit) {
  tree_walk(visit).run(ast.nodes);
}

}  // namespace vorn
