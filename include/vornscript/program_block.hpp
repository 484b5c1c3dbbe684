// Programs: what a script is compiled into.
//
// A root block is the program. It owns the main routine, into which the top-level code goes; every
// routine owns the routines defined in it, its code, its variables and their names. Blocks are made
// and used on their interpreter's thread, take no locks, and are released before the interpreter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <vornscript/export.hpp>
#include <vornscript/std_function.hpp>
#include <vornscript/value.hpp>
#include <vornscript/vrnptr.hpp>

namespace vorn {

class vrn_ast;
struct vrn_ast_statement;

// The hash of every table keyed by name: 64-bit XXH3, seed 0, the library's default secret.
struct VRN_API vrn_hasher {
  using is_transparent = void;
  // Without noexcept, deliberately: GCC's library keeps hashes in the tables of a hasher that may
  // throw, and else works them out anew while it searches.
  std::size_t operator()(std::string_view name) const;
};

struct vrn_transparent_equal {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept { return a == b; }
};

enum class vrn_block_kind : std::uint32_t {
  root = 1,
  routine = 2,  // the only kind that code is compiled into and run in
  class_ = 3,   // reserved: class definitions have no code yet
};

class VRN_API vrn_program_block_base {
 public:
  vrn_program_block_base(const vrn_program_block_base&) = delete;
  vrn_program_block_base& operator=(const vrn_program_block_base&) = delete;

  const vrn_block_kind kind;
  // Null for a root, and for a main routine that has outlived its root; all others outlive this.
  vrn_program_block_base* parent;

 protected:
  vrn_program_block_base(vrn_block_kind block_kind, vrn_program_block_base* enclosing)
      : kind(block_kind), parent(enclosing) {}
  ~vrn_program_block_base() = default;
};

class VRN_API vrn_program_block_routine final
    : public vrn_program_block_base,
      public vrnptr_register<vrn_program_block_routine, vrnptr_base> {
 public:
  struct name_entry {
    std::uint32_t index;
  };
  using name_map = std::unordered_map<std::string, name_entry, vrn_hasher, vrn_transparent_equal>;

  explicit vrn_program_block_routine(vrn_program_block_base* enclosing);
  ~vrn_program_block_routine();

  // The index of a variable of this block by its name.
  std::optional<std::uint32_t> find_name(std::string_view name) const;

  // The value of a variable of this block by its name; empty when there is none.
  vrnvar_shared variable(std::string_view name) const;

  // The function that a variable of this block holds at present, as a call of it finds it; empty
  // when there is no such variable, or it holds no function that is alive.
  vrnptr<vrn_program_block_routine> function(std::string_view name) const;

  // Appends a fresh variable under a name; gives its index.
  std::uint32_t add_variable(std::string_view name);
  // Gives a name an index; a name that is there already gets the new one.
  void insert_name(std::string_view name, std::uint32_t index);

  // Append one instruction of the emitter's width: opcode, then its operands.
  void emit(std::uint32_t opcode);
  void emit(std::uint32_t opcode, std::uint32_t operand);
  void emit(std::uint32_t opcode, std::uint64_t operand);
  void emit(std::uint32_t opcode, std::uint32_t hops, std::uint32_t index, std::uint64_t cache);

  // The instructions so far. Running them may write into them.
  std::span<std::byte> instructions() { return code ? std::span(*code) : std::span<std::byte>(); }

  // The tables below are made when they are first needed.
  std::shared_ptr<std::vector<std::byte>> code;
  std::shared_ptr<std::vector<std::shared_ptr<vrn_program_block_routine>>> children;
  std::shared_ptr<std::vector<std::string>> strings;
  std::shared_ptr<name_map> names;

  // Where the code of each statement ends, and the statements themselves, which keep their tree.
  // Empty unless reports go to a callback, or the program is being inspected.
  std::vector<std::uint32_t> statement_ends;
  std::shared_ptr<const vrn_ast_statement> statements;

  // A variable's value is made once and never replaced: instructions carry its address.
  std::vector<vrnvar_shared> variables;
  std::uint32_t parameter_count = 0xFFFFFFFF;  // all ones for a main routine
  std::uint32_t saved_pc = 0;                  // offset into the code
  bool active = false;                         // entered, and not yet run to its end
  // On how many places of the call stacks of tasks that have started and not ended.
  std::uint32_t uses = 0;

  // The start of a task (see vrn_task) that entered this routine last, and how deep that task's
  // stacks were when it stopped in the middle.
  std::uint64_t entered_by = 0;
  std::size_t stopped_values = 0;
  std::uint32_t stopped_frames = 0;

  // The native functions whose addresses stand in the code.
  std::set<vrn_ref<vrn_std_function>> natives;
};

class VRN_API vrn_program_block_root final
    : public vrn_program_block_base,
      public vrnptr_register<vrn_program_block_root, vrnptr_base> {
 public:
  vrn_program_block_root();
  ~vrn_program_block_root();

  std::shared_ptr<vrn_ast> ast;
  std::shared_ptr<vrn_program_block_routine> main;

 private:
  friend class vrn_running_task;
  // Ready to keep the main routine, so that keeping it needs no memory.
  std::list<std::shared_ptr<vrn_program_block_routine>> keeper_{1};
};

// A whole program, as the loader returns it. May be released at any time on its interpreter's
// thread. While one of its routines is being run, that goes on to where the task waits or ends.
using vrn_program = std::shared_ptr<vrn_program_block_root>;

// Lets every routine of the program begin at its first instruction the next time it is entered,
// where it would otherwise run only once. Variables keep their values. Routines in use are left as
// they are: those on the call stack of a task that has started and not ended. Takes time in line
// with the number of routines; throws nothing. On the interpreter's thread, also within a run.
VRN_API void program_rewind(const vrn_program& program) noexcept;

}  // namespace vorn
