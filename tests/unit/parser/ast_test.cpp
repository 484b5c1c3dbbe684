// Trees that no script gives, and trees of great length.
#include "parser/ast.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "compiler/code_generator.hpp"
#include "frontend/command_map.hpp"
#include "frontend/lexer.hpp"
#include "parser/parser.hpp"
#include "tests/support/script_host.hpp"

namespace vorn::test {
namespace {

std::shared_ptr<vrn_ast> parsed(std::string text) {
  auto view = std::make_shared<vrn_src_token_view>();
  view->name = "main.vrs";
  view->text = std::move(text);
  tokenize(*view);
  const auto commands = create_command_map(view);
  return commands ? create_ast(*commands) : nullptr;
}

template <class Node>
const Node& as(const vrn_ast_node& node) {
  return static_cast<const Node&>(node);
}

struct example {
  const char* script;
  const char* message;
};

// Trees built by hand, compiled into blocks of any kind.
class hand_built_tree_test : public testing::Test {
 protected:
  struct class_block : vrn_program_block_base {
    explicit class_block(vrn_program_block_base* enclosing)
        : vrn_program_block_base(vrn_block_kind::class_, enclosing) {}
  };

  // The message of the report that compiling a node gives.
  std::string message_of(vrn_program_block_base& block, const vrn_ast_node& node) {
    host_.log->records.clear();
    EXPECT_FALSE(vrn_code_generator(host_.script, count_).compile(block, node));
    const auto errors = host_.log->texts(vrn_log_level::error);
    EXPECT_EQ(errors.size(), 1U);
    const std::size_t start = errors.at(0).rfind("\n*** ") + 5;
    return errors[0].substr(start, errors[0].rfind('\n') - start);
  }

  template <class Node>
  vrn_ref<Node> make() {
    return ast_.make<Node>({});
  }

  vrn_ref<vrn_ast_node_binary> binary(vrn_node left, vrn_node right) {
    auto node = make<vrn_ast_node_binary>();
    node->op = "+";
    node->left = std::move(left);
    node->right = std::move(right);
    return node;
  }

  script_host host_;
  std::uint32_t count_ = 0;
  vrn_ast ast_;
  vrn_program_block_root root_;
};

TEST_F(hand_built_tree_test, nodes_without_a_token) {
  constexpr auto message = "While handling an error, a token without AST was passed.";
  auto call = make<vrn_ast_node_function_call>();
  call->callee = make<vrn_ast_node_int>();
  auto assign = make<vrn_ast_node_assign>();
  assign->target = make<vrn_ast_node_json>();
  auto wrong_assign = make<vrn_ast_node_assign>();
  wrong_assign->target = make<vrn_ast_node_string>();
  const vrn_node nodes[] = {make<vrn_ast_node_binary>(),
                            make<vrn_ast_node_unary>(),
                            make<vrn_ast_node_return>(),
                            call,
                            assign,
                            wrong_assign};
  for (const vrn_node& node : nodes) EXPECT_EQ(message_of(*root_.main, *node), message);
  EXPECT_EQ(message_of(root_, *make<vrn_ast_node_function_def>()), message);
}

TEST_F(hand_built_tree_test, only_routines_take_code) {
  const example messages[] = {
      {"a + b", "Invalid binary operator '+'"},
      {"-5", "Invalid unary operator '-'"},
      {"x = 1", "Cannot compile instruction, not implemented."},
      {"print(1)", "Cannot resolve function call."},
      {"run() { }", "Cannot parse function definition."},
      {"x", "Invalid command type: 8"},
      {"1", "Invalid command type: 10"},
      {"1.5", "Invalid command type: 11"},
      {"'a'", "Invalid command type: 12"},
  };
  class_block class_of_main(&root_);
  for (const example& each : messages) {
    const auto ast = parsed(each.script);
    EXPECT_EQ(message_of(root_, *ast->nodes.at(0)), each.message);
    EXPECT_EQ(message_of(class_of_main, *ast->nodes.at(0)), each.message);
  }
  EXPECT_EQ(count_, 0U);
  const auto ast = parsed("print(1)");
  const auto& call = as<vrn_ast_node_function_call>(*ast->nodes.at(0));
  EXPECT_EQ(message_of(*root_.main, *call.params), "Invalid command type: 7");
}

TEST_F(hand_built_tree_test, long_trees_are_released) {
  constexpr int length = 1'000'000;
  vrn_node right;
  vrn_node left;
  vrn_node zigzag;
  vrn_node values;
  for (int i = 0; i < length; ++i) {
    right = binary(make<vrn_ast_node_json>(), std::move(right));
    left = binary(std::move(left), make<vrn_ast_node_json>());
    zigzag = i % 2 == 0 ? binary(std::move(zigzag), {}) : binary({}, std::move(zigzag));
    auto assign = make<vrn_ast_node_assign>();
    assign->value = std::move(values);
    values = std::move(assign);
  }
  const vrn_node kept = as<vrn_ast_node_binary>(*right).right;
  right.reset();
  EXPECT_TRUE(kept.unique());
  EXPECT_TRUE(as<vrn_ast_node_binary>(*kept).left.unique());
}

}  // namespace
}  // namespace vorn::test
