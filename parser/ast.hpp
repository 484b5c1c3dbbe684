// The syntax tree: what the parser makes and the code generator walks.
//
// Nodes are plain records held by counted handles; whoever reads them switches on the kind. Each
// knows the token that it starts at (an operator or assignment: its operator; a definition: its
// name), which is where errors about it point. Nodes never copy text: they point at tokens of the
// token map, which the tree keeps alive.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/token.hpp"
#include "memory/block_store.hpp"

namespace vorn {

enum class vrn_node_kind : std::uint32_t {
#define VRN_NODE_KIND(number, name) name##_node = number,
#include "parser/node_kinds.def"
#undef VRN_NODE_KIND
};

struct vrn_ast_node {
  virtual ~vrn_ast_node() = default;
  vrn_ast_node(const vrn_ast_node&) = delete;
  vrn_ast_node& operator=(const vrn_ast_node&) = delete;

  const vrn_node_kind kind;
  std::uint32_t reference_count = 0;
  vrn_token token;

 protected:
  vrn_ast_node(vrn_node_kind node_kind, vrn_token at) : kind(node_kind), token(std::move(at)) {}
};

inline void release_last(vrn_ast_node* node) noexcept { vrn_block_store::destroy(node); }

using vrn_node = vrn_ref<vrn_ast_node>;

// The base of the node class with a given kind; all of its members start empty.
template <vrn_node_kind node_kind>
struct vrn_ast_node_of : vrn_ast_node {
  explicit vrn_ast_node_of(const vrn_token& at = {}) : vrn_ast_node(node_kind, at) {}
};

// Releases an operator or assignment, and those below it one after the other.
void release_chain(vrn_node chain) noexcept;

struct vrn_ast_node_assign : vrn_ast_node_of<vrn_node_kind::assign_node> {
  using vrn_ast_node_of::vrn_ast_node_of;
  ~vrn_ast_node_assign() override {
    release_chain(std::move(target));
    release_chain(std::move(value));
  }

  std::vector<std::vector<vrn_token>> keywords;  // the word groups before the target
  vrn_node target;
  vrn_node value;
};

struct vrn_ast_condition_branch {
  vrn_node condition;  // empty in an else branch
  std::vector<vrn_node> body;
};

struct vrn_ast_node_condition : vrn_ast_node_of<vrn_node_kind::condition_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::vector<vrn_ast_condition_branch> branches;  // if, then each else if
  vrn_node otherwise;                              // a condition node with the else branch alone
};

struct vrn_ast_node_loop : vrn_ast_node_of<vrn_node_kind::loop_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node start;  // empty when the header has one part
  vrn_node condition;
  vrn_node end;  // empty when the header has one part or two
  std::vector<vrn_node> body;
};

// Of "class", "struct" and "cstruct" alike.
struct vrn_ast_node_class_def : vrn_ast_node_of<vrn_node_kind::class_def_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::vector<vrn_node> entries;
};

struct vrn_ast_node_function_def_param : vrn_ast_node_of<vrn_node_kind::function_def_param_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_token name;
  vrn_node default_value;
  std::vector<vrn_token> keywords;
};

struct vrn_ast_node_function_def : vrn_ast_node_of<vrn_node_kind::function_def_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_token name;
  std::vector<vrn_ref<vrn_ast_node_function_def_param>> params;
  std::vector<vrn_node> body;
  std::vector<vrn_token> keywords;  // the words before the name
};

struct vrn_ast_node_function_call_param : vrn_ast_node_of<vrn_node_kind::function_call_param_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node value;
  vrn_ref<vrn_ast_node_function_call_param> next;
};

struct vrn_ast_node_function_call : vrn_ast_node_of<vrn_node_kind::function_call_node> {
  using vrn_ast_node_of::vrn_ast_node_of;
  ~vrn_ast_node_function_call() override {
    while (params.unique()) params = std::exchange(params->next, {});
  }

  vrn_ref<vrn_ast_node_function_call_param> params;  // the first, which leads to the next
  std::uint32_t param_count = 0;
  vrn_node callee;
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
  ~vrn_ast_node_binary() override {
    release_chain(std::move(left));
    release_chain(std::move(right));
  }

  std::string_view op;  // lies in the source text
  vrn_node left;
  vrn_node right;
};

struct vrn_ast_node_unary : vrn_ast_node_of<vrn_node_kind::unary_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::string_view op;
  bool postfix = false;
  vrn_node operand;
};

// The key and value of an entry; of an index, what is indexed and by what.
struct vrn_ast_node_json_literal : vrn_ast_node_of<vrn_node_kind::json_literal_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node key;
  vrn_node value;
};

struct vrn_ast_node_json : vrn_ast_node_of<vrn_node_kind::json_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::vector<vrn_ref<vrn_ast_node_json_literal>> entries;
};

struct vrn_ast_node_sub_block : vrn_ast_node_of<vrn_node_kind::sub_block_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node body;
};

// Each entry holds its value, or its key and its value.
struct vrn_ast_node_initializer_list : vrn_ast_node_of<vrn_node_kind::initializer_list_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::vector<std::vector<vrn_node>> entries;
};

// One entry: the target and what is added to it.
struct vrn_ast_node_initializer_list_add
    : vrn_ast_node_of<vrn_node_kind::initializer_list_add_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  std::vector<std::vector<vrn_node>> entries;
};

struct vrn_ast_node_return : vrn_ast_node_of<vrn_node_kind::return_node> {
  using vrn_ast_node_of::vrn_ast_node_of;

  vrn_node value;
};

// The tree of one program.
class vrn_ast {
 public:
  // A node of a given class that starts at a token, with all else empty.
  template <class Node>
  vrn_ref<Node> make(const vrn_token& at) {
    return store_.make<Node>(at);
  }

  std::vector<vrn_node> nodes;  // the top level, in source order
  std::shared_ptr<vrn_src_token_view> source;
  std::string source_name;

 private:
  vrn_block_store store_;
};

}  // namespace vorn
