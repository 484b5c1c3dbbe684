// Memory that runs out at each single request of a load and a run, for that request or for good. It
// has an executable of its own, whose every allocation it counts.
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>

#include <gtest/gtest.h>

#include "tests/support/script_host.hpp"
#include "vm/payload.hpp"

namespace {

// One thread only: nothing here starts another.
constinit std::size_t requests_left = SIZE_MAX;  // before they fail
constinit std::size_t failures_left = 0;
constinit std::size_t blocks_out = 0;

void* obtain(std::size_t size, std::size_t alignment) noexcept {
  if (requests_left > 0) {
    --requests_left;
  } else if (failures_left > 0) {
    --failures_left;
    return nullptr;
  }
  // The address of the whole block stands in front.
  std::size_t room = size + alignment;
  void* const whole = std::malloc(room + sizeof whole);
  if (!whole) return nullptr;
  void* memory = static_cast<void**>(whole) + 1;
  std::align(alignment, size, memory, room);
  static_cast<void**>(memory)[-1] = whole;
  ++blocks_out;
  return memory;
}

// Not seen through: in front of what an operator new gives, there is nothing for the compiler.
[[gnu::noinline]] void give_back(void* memory) noexcept {
  if (!memory) return;
  --blocks_out;
  std::free(static_cast<void**>(memory)[-1]);
}

using std::align_val_t;
constexpr align_val_t plain{__STDCPP_DEFAULT_NEW_ALIGNMENT__};

}  // namespace

void* operator new(std::size_t size) { return operator new(size, plain); }
void* operator new(std::size_t size, align_val_t alignment) {
  if (void* const memory = obtain(size, static_cast<std::size_t>(alignment))) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return obtain(size, static_cast<std::size_t>(plain));
}
void operator delete(void* memory) noexcept { give_back(memory); }
void operator delete(void* memory, std::size_t) noexcept { give_back(memory); }
void operator delete(void* memory, align_val_t) noexcept { give_back(memory); }
void operator delete(void* memory, std::size_t, align_val_t) noexcept { give_back(memory); }

namespace vorn::test {
namespace {

using strings = std::vector<std::string>;

constexpr const char* library = R"(
#define FIRST "a text that is too long to stand inside of its value"
#define SECOND FIRST + 1
joined(left, right) { between = " and "; left + between + right })";
constexpr const char* whole_program = R"(#include "library"
print(joined(SECOND, abs(-3.5))); members = make(12); copy = make(1); copy = members;
wait(time) { sleep(time); time * 2 } print(wait(5)); wrong = copy - "one";
print(vtype(copy) + " and " + vtype(make(0)));)";
constexpr const char* broken_program = "#include \"library\"\n#define MORE (SECOND\nprint(MORE);\n";

// A json with so many members; without any a class.
vrnvar_shared make(int count) {
  vrnvar_shared made = var_none();
  made->set_type(count > 0 ? vrn_type::json : vrn_type::class_);
  if (count == 0) made->as<vrnvar_ptr_function>()->members.push_back(var_string("element"));
  for (; count > 0; --count) {
    const std::string key = "a member with a long name, number " + std::to_string(count);
    made->as<vrnvar_ptr_json>()->members.add(key)->value.set_string(key);
  }
  return made;
}

bool has_error(const script_host& host, const char* error) {
  return std::ranges::count(host.log->texts(vrn_log_level::error), error) > 0;
}

// Lets so many requests fail, from the given one on; false when there are not that many.
bool survives(std::size_t request, std::size_t failures) {
  const strings printed = {"a text that is too long to stand inside of its value1 and 3.500000",
                           "10", "json and class"};
  std::optional<script_host> host;
  vrn_program program;
  requests_left = request;
  failures_left = failures;
  try {
    host.emplace().files->add("library.vrs", library);
    host->script.register_function("make", make);
    EXPECT_FALSE(host->load(broken_program));
    program = host->load(whole_program);
    if (program) host->run({program});
    requests_left = SIZE_MAX;
    EXPECT_TRUE(host->log->texts(vrn_log_level::out) == printed ||
                has_error(*host, "Task failed: std::bad_alloc"));
  } catch (const std::bad_alloc&) {
    requests_left = SIZE_MAX;
  }
  const bool failed = failures_left < failures;
  if (!host) return failed;
  // What has not begun can still be begun, and the next program loads and runs.
  EXPECT_TRUE(!program || program->main->saved_pc > 0 || host->run({program}));
  EXPECT_FALSE(has_error(*host, "Cannot run task!"));
  program = {};
  EXPECT_EQ(host->output_of("add(a, b) { a + b } print(add(1, 2));"), strings{"3"});
  host->script.state().tasks = {};
  EXPECT_EQ(live_objects(host->script), 0U);
  // The interpreter ends without memory, and before its program.
  program = host->load("x = 1;");
  requests_left = 0;
  host.reset();
  requests_left = SIZE_MAX;
  return failed;
}

TEST(out_of_memory, at_each_request) {
  set_thread_name("TEST");  // what the thread keeps for it stays
  for (const std::size_t failures : {std::size_t{1}, SIZE_MAX}) {
    bool failed = true;
    for (std::size_t request = 0; failed; ++request) {
      const std::size_t before = blocks_out;
      failed = survives(request, failures);
      ASSERT_EQ(blocks_out, before) << request;
    }
  }
}

}  // namespace
}  // namespace vorn::test
