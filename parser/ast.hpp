// The syntax tree: what the parser makes and the code generator walks.
//
// Nodes are plain records that belong to their tree and go with it; whoever reads them switches on
// the kind. Each knows the token that it starts at (an operator or assignment: its operator; a
// definition or parameter: its name), which is where errors about it point. Nodes never copy text:
// they point at tokens of the token map, which the tree keeps alive.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include "frontend/token.hpp"
#include "memory/block_store.hpp"

namespace vorn {

enum class vrn_node_kind : std::uint32_t {
#define VRN_NODE_KIND(number, name) name##_node = number,
#include "parser/node_kinds.def"
#undef VRN_NODE_KIND
};

struct vrn_ast_node {
  const vrn_src_token* const token;
  const vrn_node_kind kind;

 protected:
  vrn_ast_node(vrn_node_kind node_kind, const vrn_src_token* at) : token(at), kind(node_kind) {}
};

using vrn_node = const vrn_ast_node*;
using vrn_node_list = std::span<vrn_node>;

// What a command of the program or of a body has become, and the token that the command begins
// with.
struct vrn_ast_statement {
  vrn_node node = nullptr;
  const vrn_src_token* first = nullptr;
};
using vrn_statement_list = std::span<vrn_ast_statement>;

// The base of the node class with a given kind; all of its members start empty.
template <vrn_node_kind node_kind>
struct vrn_ast_node_of : vrn_ast_node {
  explicit vrn_ast_node_of(const vrn_src_token* at = nullptr) : vrn_ast_node(node_kind, at) {}
};

struct vrn_ast_node_assign : vrn_ast_node_of<vrn_node_kind::assign_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::uint32_t keyword_count = 0;  // of the tokens before the target, which is one token then
  vrn_node target = nullptr;
  vrn_node value = nullptr;
};

// An "if"; an "else" has no condition.
struct vrn_ast_node_condition : vrn_ast_node_of<vrn_node_kind::condition_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node condition = nullptr;
  vrn_statement_list body;
  vrn_node otherwise = nullptr;  // a condition node
};

struct vrn_ast_node_loop : vrn_ast_node_of<vrn_node_kind::loop_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node start = nullptr;  // empty when the header has one part
  vrn_node condition = nullptr;
  vrn_node end = nullptr;  // empty when the header has one part or two
  vrn_statement_list body;
};

// Of "class", "struct" and "cstruct" alike.
struct vrn_ast_node_class_def : vrn_ast_node_of<vrn_node_kind::class_def_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_statement_list entries;
};

struct vrn_ast_node_function_def_param : vrn_ast_node_of<vrn_node_kind::function_def_param_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node default_value = nullptr;
};

struct vrn_ast_node_function_def : vrn_ast_node_of<vrn_node_kind::function_def_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::uint32_t keyword_count = 0;  // of the words before the name
  std::uint32_t node_count = 0;     // in the body
  std::span<const vrn_ast_node_function_def_param*> params;
  vrn_statement_list body;
};

struct vrn_ast_node_function_call_param : vrn_ast_node_of<vrn_node_kind::function_call_param_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node value = nullptr;
  vrn_ast_node_function_call_param* next = nullptr;
};

struct vrn_ast_node_function_call : vrn_ast_node_of<vrn_node_kind::function_call_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::uint32_t param_count = 0;
  vrn_ast_node_function_call_param* params = nullptr;  // the first, which leads to the next
  vrn_node callee = nullptr;
};

// These four say it all with their token.
struct vrn_ast_node_variable : vrn_ast_node_of<vrn_node_kind::variable_node> {
  using vrn_ast_node_of::vrn_ast_node_of;
};
struct vrn_ast_node_int : vrn_ast_node_of<vrn_node_kind::int_node> {
  using vrn_ast_node_of::vrn_ast_node_of;
};
struct vrn_ast_node_float : vrn_ast_node_of<vrn_node_kind::float_node> {
  using vrn_ast_node_of::vrn_ast_node_of;
};
struct vrn_ast_node_string : vrn_ast_node_of<vrn_node_kind::string_node> {
  using vrn_ast_node_of::vrn_ast_node_of;
};

struct vrn_ast_node_binary : vrn_ast_node_of<vrn_node_kind::binary_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node left = nullptr;
  vrn_node right = nullptr;
};

struct vrn_ast_node_unary : vrn_ast_node_of<vrn_node_kind::unary_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  bool postfix = false;
  vrn_node operand = nullptr;
};

// The key and value of an entry; of an index, what is indexed and by what.
struct vrn_ast_node_json_literal : vrn_ast_node_of<vrn_node_kind::json_literal_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node key = nullptr;
  vrn_node value = nullptr;
};

struct vrn_ast_node_json : vrn_ast_node_of<vrn_node_kind::json_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node_list entries;  // literals
};

struct vrn_ast_node_sub_block : vrn_ast_node_of<vrn_node_kind::sub_block_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node body = nullptr;
};

// Each entry holds its value, or its key and its value.
struct vrn_ast_node_initializer_list : vrn_ast_node_of<vrn_node_kind::initializer_list_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::span<vrn_node_list> entries;
};

// One entry: the target and what is added to it.
struct vrn_ast_node_initializer_list_add
    : vrn_ast_node_of<vrn_node_kind::initializer_list_add_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::span<vrn_node_list> entries;
};

struct vrn_ast_node_return : vrn_ast_node_of<vrn_node_kind::return_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node value = nullptr;
};

// The tree of one program. Owns its nodes and their lists.
class vrn_ast {
 public:
  explicit vrn_ast(std::shared_ptr<vrn_src_token_view> tokens)
      : source(std::move(tokens)), store_(source->tokens.size() * usual_token_share) {}

  // A node of a given class that starts at a token, with all else empty.
  template <class Node>
  Node* make(const vrn_src_token& at) {
    ++node_count;
    return store_.make<Node>(&at);
  }
  // A list of so many empty elements.
  template <class T>
  std::span<T> make_list(std::size_t size) {
    return store_.make_list<T>(size);
  }

  vrn_statement_list nodes;      // the top level, in source order
  std::uint32_t node_count = 0;  // of the top level, without the bodies of functions
  std::shared_ptr<vrn_src_token_view> source;
  std::string source_name;

 private:
  // The bytes of nodes that a token leads to.
  static constexpr std::size_t usual_token_share = 36;

  vrn_block_store store_;
};

}  // namespace vorn
