// The shape of syntax trees, and what becomes of trees that no script gives.
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

std::string shown(const vrn_ast_node* node);

template <class Handle>
std::string shown(const std::vector<Handle>& nodes) {
  std::string text = "[";
  for (const auto& node : nodes) text += (text.size() > 1 ? " " : "") + shown(node.get());
  return text + "]";
}

std::string texts(const std::vector<vrn_token>& tokens) {
  std::string text;
  for (const vrn_token& token : tokens) text.append(text.empty() ? "" : "_").append(token->text);
  return text;
}

std::string members(const vrn_ast_node& node) {
  using enum vrn_node_kind;
  switch (node.kind) {
    case assign_node: {
      const auto& assign = as<vrn_ast_node_assign>(node);
      std::string text;
      for (const auto& group : assign.keywords) text += " " + texts(group);
      return text + " " + shown(assign.target.get()) + " " + shown(assign.value.get());
    }
    case condition_node: {
      const auto& condition = as<vrn_ast_node_condition>(node);
      std::string text;
      for (const auto& branch : condition.branches) {
        text += " " + shown(branch.condition.get()) + " " + shown(branch.body);
      }
      return text + (condition.otherwise ? " " + shown(condition.otherwise.get()) : "");
    }
    case loop_node: {
      const auto& loop = as<vrn_ast_node_loop>(node);
      return " " + shown(loop.start.get()) + " " + shown(loop.condition.get()) + " " +
             shown(loop.end.get()) + " " + shown(loop.body);
    }
    case class_def_node:
      return " " + shown(as<vrn_ast_node_class_def>(node).entries);
    case function_def_node: {
      const auto& def = as<vrn_ast_node_function_def>(node);
      return " <" + texts(def.keywords) + "> " + std::string(def.name->text) + " " +
             shown(def.params) + " " + shown(def.body);
    }
    case function_def_param_node: {
      const auto& param = as<vrn_ast_node_function_def_param>(node);
      return " " + std::string(param.name->text) + " " + shown(param.default_value.get());
    }
    case function_call_node: {
      const auto& call = as<vrn_ast_node_function_call>(node);
      return " " + shown(call.callee.get()) + " " + shown(call.params);
    }
    case function_call_param_node:
      return " " + shown(as<vrn_ast_node_function_call_param>(node).value.get());
    case binary_node: {
      const auto& binary = as<vrn_ast_node_binary>(node);
      return " " + std::string(binary.op) + " " + shown(binary.left.get()) + " " +
             shown(binary.right.get());
    }
    case unary_node: {
      const auto& unary = as<vrn_ast_node_unary>(node);
      return (unary.postfix ? " postfix " : " ") + std::string(unary.op) + " " +
             shown(unary.operand.get());
    }
    case json_node:
      return " " + shown(as<vrn_ast_node_json>(node).entries);
    case json_literal_node: {
      const auto& literal = as<vrn_ast_node_json_literal>(node);
      return " " + shown(literal.key.get()) + " " + shown(literal.value.get());
    }
    case sub_block_node:
      return " " + shown(as<vrn_ast_node_sub_block>(node).body.get());
    case initializer_list_node:
    case initializer_list_add_node: {
      const auto& entries = node.kind == initializer_list_node
                                ? as<vrn_ast_node_initializer_list>(node).entries
                                : as<vrn_ast_node_initializer_list_add>(node).entries;
      std::string text;
      for (const auto& entry : entries) text += " " + shown(entry);
      return text;
    }
    case return_node:
      return " " + shown(as<vrn_ast_node_return>(node).value.get());
    default:
      return " " + std::string(node.token->text);
  }
}

// The node's kind and the column that it starts at, then its members; "-" for an empty handle.
std::string shown(const vrn_ast_node* node) {
  if (!node) return "-";
  return "(" + std::to_string(static_cast<std::uint32_t>(node->kind)) + "@" +
         std::to_string(node->token->column) + members(*node) + ")";
}

struct example {
  const char* script;
  const char* tree;
};

const example examples[] = {
    {"x1; 12; fe; 'a b'", "[(8@0 x1) (10@4 12) (11@8 fe) (12@12 a b)]"},
    {"a + b * c", "[(13@2 + (8@0 a) (13@6 * (8@4 b) (8@8 c)))]"},
    {"a == b < c ^ 2 && d || x",
     "[(13@20 || (13@15 && (13@2 == (8@0 a) (13@7 < (8@5 b) (13@11 ^ (8@9 c) (10@13 2)))) "
     "(8@18 d)) (8@23 x))]"},
    {"-x * y; i++; !--i",
     "[(14@0 - (13@3 * (8@1 x) (8@5 y))) (14@9 postfix ++ (8@8 i)) "
     "(14@13 ! (14@14 -- (8@16 i)))]"},
    {"int a-b x = y = 1", "[(0@10 int a_-_b (8@8 x) (0@14 (8@12 y) (10@16 1)))]"},
    {"print (1, (2))", "[(6@0 (8@0 print) [(7@7 (10@7 1)) (7@10 (10@11 2))])]"},
    {"(f)()(x)", "[(6@0 (6@0 (11@1 f) []) [(7@6 (8@6 x))])]"},
    {"static int add(a, b = 1) { a; b }",
     "[(4@11 <static_int> add [(5@15 a -) (5@18 b (10@22 1))] [(8@27 a) (8@30 b)])]"},
    {"class A { x; y() { } } struct B { }", "[(3@6 [(8@10 x) (4@13 <> y [] [])]) (3@30 [])]"},
    {"if (a) { b; c } else if (d) x; else { }",
     "[(1@0 (8@4 a) [(8@9 b) (8@12 c)] (8@25 d) [(8@28 x)] (1@31 - []))]"},
    {"for (a) { b } for (a; b) c; for (a = 1; b; c) { }",
     "[(2@0 - (8@5 a) - [(8@10 b)]) (2@14 (8@19 a) (8@22 b) - [(8@25 c)]) "
     "(2@28 (0@35 (8@33 a) (10@37 1)) (8@40 b) (8@43 c) [])]"},
    {"return x + 1", "[(20@0 (13@9 + (8@7 x) (10@11 1)))]"},
    {"{ x } {}", "[(17@0 (8@2 x)) (17@6 -)]"},
    {"a[1]['b']", "[(15@0 [(16@0 (15@0 [(16@0 (8@0 a) (10@2 1))]) (12@5 b))])]"},
    {"[1, k = x = 2; [3]()]",
     "[(18@0 [(10@1 1)] [(8@4 k) (0@10 (8@8 x) (10@12 2))] [(6@15 (18@15 [(10@16 3)]) [])])]"},
    {"list := [1]", "[(19@6 [(8@0 list) (18@8 [(10@9 1)])])]"},
    {"#define A x + 1\nA * (#define B 2\nB); #define A 3\nB; A",
     "[(13@2 * (13@12 + (8@10 x) (10@14 1)) (10@15 2)) (10@15 2) (10@14 3)]"},
};

TEST(ast_test, trees_of_scripts) {
  const script_host host;
  for (const example& each : examples) {
    const auto ast = parsed(each.script);
    if (ast) {
      EXPECT_EQ(shown(ast->nodes), each.tree) << each.script;
    } else {
      ADD_FAILURE() << each.script << "\n" << host.log->records.back().text;
    }
  }
}

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
    EXPECT_EQ(message_of(root_, *ast->nodes.at(0)), each.tree);
    EXPECT_EQ(message_of(class_of_main, *ast->nodes.at(0)), each.tree);
  }
  EXPECT_EQ(count_, 0U);
  const auto ast = parsed("print(1)");
  const auto& call = as<vrn_ast_node_function_call>(*ast->nodes.at(0));
  EXPECT_EQ(message_of(*root_.main, *call.params.at(0)), "Invalid command type: 7");
}

TEST_F(hand_built_tree_test, names_are_not_looked_up_in_classes) {
  using generator = vrn_code_generator;
  root_.main->add_variable("x");
  class_block class_of_main(root_.main.get());
  vrn_program_block_routine method(&class_of_main);
  vrn_program_block_routine inner(&method);
  method.add_variable("y");
  inner.add_variable("y");
  EXPECT_EQ(generator::find_var_in_parent(inner, "x"), std::nullopt);
  const auto found = generator::find_var_in_parent(inner, "y");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->hops, 1U);
  EXPECT_EQ(found->index, 0U);
  EXPECT_TRUE(generator(host_.script, count_).compile(method, *parsed("x")->nodes.at(0)));
  EXPECT_EQ(method.find_name("x"), 1U);
  const std::string note = "TODO: Implement class var lookup (find_var_in_parent).";
  EXPECT_EQ(host_.log->texts(vrn_log_level::log), (std::vector<std::string>{note, note, note}));
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

TEST(ast_test, long_scripts_are_released) {
  const script_host host;
  constexpr int length = 100'000;
  std::string operators = "a";
  std::string branches = "if (1) { }";
  for (int i = 0; i < length; ++i) {
    operators += i % 2 == 0 ? " * b" : " - b";
    branches += " else if (1) { x }";
  }
  EXPECT_EQ(as<vrn_ast_node_binary>(*parsed(operators)->nodes.at(0)).op, "-");
  EXPECT_EQ(as<vrn_ast_node_condition>(*parsed(branches)->nodes.at(0)).branches.size(),
            std::size_t{length} + 1);
  // What a failed parse has made so far.
  EXPECT_FALSE(parsed(operators + " +"));
  EXPECT_FALSE(parsed(branches + "else ()"));
}

}  // namespace
}  // namespace vorn::test
