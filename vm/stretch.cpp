// Stretches: instructions in a row that are executed without a return to the loop in between.
//
// The code of a script is straight and mostly runs once, so the processor guesses nearly every
// indirect call of a handler wrong, and a statement has a dozen. A handler that is followed by
// enough of what a stretch may hold executes it along with its own instruction.
//
// What may be in it: pushes; loads of numbers, of texts and of the routine's own variables;
// arithmetic on two numbers; the joining of short texts and numbers; assignments where both sides
// are numbers or texts.
//
// Why nothing can tell: none of these sets the stop flag, reports, logs or calls out, and each is
// counted. Everything else (a ref, an empty slot, a type that does not fit, a number that is no
// index) ends the stretch in front of it and is left to its own handler, which finds the stacks as
// it always does.
//
// How it works: the topmost slots of the value stack are taken over as operands, more of them as
// they are needed. An operand has neither a count nor a value of its own from the pool. One that
// stands for a variable's value is read when it is used, because the variable may have been
// assigned since; the value is held by its block or by the slot for as long as the stretch lasts.
// What a slot held is let go only at the end, so slots are taken that hold numbers and texts, of
// whose release nobody hears.
//
// How it ends: the operands go back into the slots, which then share the same values, or have
// values of the same kind and content. Only which objects of the pool those are may differ. Memory
// that runs out ends the task, as it would elsewhere; the context then tells where that was.
#include "vm/stretch.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <vornscript/program_block.hpp>
#include <vornscript/task.hpp>

#include "memory/unfilled_array.hpp"
#include "vm/arithmetic.hpp"
#include "vm/payload.hpp"
#include "vm/value_access.hpp"

namespace vorn {
namespace {

bool is_number(vrn_type type) { return type == vrn_type::integer || type == vrn_type::floating; }

struct number {
  std::uint64_t bits;
  vrn_type type;

  std::int64_t as_integer() const { return static_cast<std::int64_t>(bits); }
  double as_float() const {
    return type == vrn_type::floating ? std::bit_cast<double>(bits)
                                      : static_cast<double>(as_integer());
  }
};

// What stands for a slot: a value that the slot shares, or a number or text that is only here; or
// nothing, with the type none.
struct operand {
  std::uint64_t bits;    // of the number, or the address of the value or of the text
  std::uint32_t length;  // of the text
  std::uint8_t reserved;
  bool shared;
  vrn_type type;  // of what is only here

  vrnvar* value() const { return object_at<vrnvar>(bits); }
  bool empty() const { return !shared && type == vrn_type::none; }

  // The type of what it stands for, and the number if it is one.
  number content() const {
    static_assert(offsetof(operand, bits) == offsetof(vrnvar, payload));
    static_assert(offsetof(operand, type) == offsetof(vrnvar, type));
    const auto* const from = object_at<const std::byte>(select(shared, bits, address_of(this)));
    number read;
    std::memcpy(&read.bits, from + offsetof(vrnvar, payload), sizeof read.bits);
    std::memcpy(&read.type, from + offsetof(vrnvar, type), sizeof read.type);
    return read;
  }

  std::string_view text(vrn_number_buffer& buffer) const {
    if (shared) return value_text(*value(), buffer);
    if (type == vrn_type::string) return {object_at<const char>(bits), length};
    if (type == vrn_type::floating) return number_text(std::bit_cast<double>(bits), buffer);
    if (type == vrn_type::integer) return number_text(static_cast<std::int64_t>(bits), buffer);
    return {};
  }
};
static_assert(sizeof(operand) == sizeof(vrnvar));
static_assert(std::is_trivially_default_constructible_v<operand>, "a room of them costs nothing");

constexpr operand only_here(std::uint64_t bits, vrn_type type, std::uint32_t length = 0) {
  return {bits, length, 0, false, type};
}

constexpr operand empty_operand = only_here(0, vrn_type::none);

operand of_slot(const vrnvar_shared& slot) {
  return slot ? operand{address_of(slot.get()), 0, 0, true, vrn_type::none} : empty_operand;
}

operand of_text(std::string_view text) {
  return only_here(address_of(text.data()), vrn_type::string,
                   static_cast<std::uint32_t>(text.size()));
}

// Room for the texts that a stretch puts together.
class text_room {
 public:
  // Makes the left operand the text of both; false when there is no room.
  [[gnu::noinline]] bool join(operand& left, const operand& right) {
    vrn_number_buffer left_buffer;
    vrn_number_buffer right_buffer;
    const std::string_view first = left.text(left_buffer);
    const std::string_view second = right.text(right_buffer);
    if (first.size() + second.size() > sizeof text_ - used_) return false;
    char* const place = text_ + used_;
    used_ += first.copy(place, first.size());
    used_ += second.copy(text_ + used_, second.size());
    left = of_text({place, text_ + used_});
    return true;
  }

 private:
  std::size_t used_ = 0;
  char text_[512];
};

void put_back(vrnvar_shared& slot, const operand& from) {
  if (from.shared) {
    if (slot.get() != from.value()) slot = vrnvar_shared(from.value());
  } else if (is_number(from.type)) {
    set_number(slot, from.bits, from.type);
  } else {
    vrn_number_buffer unused;
    slot = from.empty() ? vrnvar_shared() : var_string(from.text(unused));
  }
}

// The topmost slots of a value stack, taken over.
class operand_stack {
 public:
  // Apart, so that this object can live in registers.
  using room = std::array<operand, 64>;

  static bool can_take(const vrnvar_shared& slot) {
    return !slot || slot->type <= vrn_type::string;
  }

  operand_stack(std::vector<vrnvar_shared>& slots, room& operands)
      : slots_(slots),
        first_(slots.size() - 1),
        begin_(operands.data()),
        end_(begin_ + operands.size()),
        bottom_(begin_ + operands.size() / 2),
        top_(bottom_) {
    *top_ = of_slot(slots.back());
  }

  operand& top() { return *top_; }
  operand& left() { return top_[-1]; }

  void push() {
    if (top_ + 1 == end_) grow();
    *++top_ = empty_operand;
  }
  void pop() { --top_; }

  // Whether there is an operand below the top.
  bool has_left() {
    if (top_ != bottom_) return true;
    if (bottom_ == begin_ || first_ == 0 || !can_take(slots_[first_ - 1])) return false;
    *--bottom_ = of_slot(slots_[--first_]);
    return true;
  }

  void put_all_back() {
    const auto count = static_cast<std::size_t>(top_ - bottom_) + 1;
    if (slots_.size() != first_ + count) slots_.resize(first_ + count);
    for (std::size_t k = 0; k < count; ++k) put_back(slots_[first_ + k], bottom_[k]);
  }

 private:
  // Long expressions are as deep as they are long.
  void grow() {
    const auto count = static_cast<std::size_t>(end_ - bottom_);
    auto larger = make_unfilled_array<operand>(2 * count);
    begin_ = std::copy(bottom_, end_, larger.get()) - count;
    larger_ = std::move(larger);
    bottom_ = begin_;
    top_ = begin_ + count - 1;
    end_ = begin_ + 2 * count;
  }

  std::vector<vrnvar_shared>& slots_;
  std::size_t first_;  // the slot that the bottom stands for
  operand* begin_;     // of the room
  operand* end_;
  operand* bottom_;
  operand* top_;
  std::unique_ptr<operand[]> larger_;
};

// What some of the instructions do; false when that is none of a stretch.

bool calculate(operand_stack& operands, std::uint32_t opcode, text_room& texts) {
  if (!operands.has_left()) return false;
  const number left = operands.left().content();
  const number right = operands.top().content();
  if (left.type == vrn_type::integer && right.type == vrn_type::integer) {
    operands.left() =
        only_here(of_integers(opcode, left.as_integer(), right.as_integer()), left.type);
  } else if (is_number(left.type) && is_number(right.type)) {
    operands.left() =
        only_here(of_floats(opcode, left.as_float(), right.as_float()), vrn_type::floating);
  } else if (opcode != op_add || std::max(left.type, right.type) != vrn_type::string ||
             !texts.join(operands.left(), operands.top())) {
    return false;
  }
  operands.pop();
  return true;
}

// Where not both are numbers.
[[gnu::noinline]] bool copy(vrnvar& target, const operand& source) {
  const vrn_type type = source.content().type;
  if (source.empty() || std::max(target.type, type) > vrn_type::string) return false;
  if (source.shared) {
    target.copy_from(source.value());
    return true;
  }
  if (target.type != type) target.set_type(type);
  if (type == vrn_type::string) {
    vrn_number_buffer unused;
    target.as<vrnvar_ptr_str>()->text.assign(source.text(unused));
  } else {
    write_number(target, source.bits, type);
  }
  return true;
}

bool assign(operand_stack& operands) {
  if (!operands.has_left() || !operands.left().shared) return false;
  vrnvar& target = *operands.left().value();
  const number source = operands.top().content();
  // A value may be its own source, which changes nothing.
  if (is_number(source.type) && target.type < vrn_type::primitive_end &&
      operands.top().bits != operands.left().bits) {
    write_number(target, source.bits, source.type);
  } else if (!copy(target, operands.top())) {
    return false;
  }
  operands.pop();
  return true;
}

[[gnu::noinline]] bool load_text(operand& top, const vrn_vm_context& context, std::uint32_t index) {
  const auto* const strings = context.block->strings.get();
  if (!strings || index >= strings->size()) return false;
  top = of_text((*strings)[index]);
  return true;
}

// Executes the record, which it goes past; false when that is none of a stretch.
bool execute(operand_stack& operands, text_room& texts, const vrn_vm_context& context,
             const std::byte*& at) {
  const auto opcode = read_field<std::uint32_t>(at, 0);
  if (opcode == op_push) {
    operands.push();
    at += size_of<op_push>;
  } else if (is_one_of(opcode, {op_load_value, op_load_int, op_load_float})) {
    operands.top() = {read_field<std::uint64_t>(at, 8), 0, 0, opcode == op_load_value,
                      opcode == op_load_float ? vrn_type::floating : vrn_type::integer};
    at += size_of<op_load_value>;
  } else if (is_one_of(opcode, {op_add, op_sub, op_mul, op_div})) {
    if (!calculate(operands, opcode, texts)) return false;
    at += size_of<op_add>;
  } else if (opcode == op_assign) {
    if (!assign(operands)) return false;
    at += size_of<op_assign>;
  } else {
    if (opcode != op_load_string) return false;
    if (!load_text(operands.top(), context, read_field<std::uint32_t>(at, 4))) return false;
    at += size_of<op_load_string>;
  }
  return true;
}

}  // namespace

std::uint32_t run_stretch(vrn_run_context& context, std::byte* const record) {
  std::vector<vrnvar_shared>& slots = context.task->value_stack;
  if (!operand_stack::can_take(slots.back())) return 0;
  operand_stack::room room;
  operand_stack operands(slots, room);
  text_room texts;
  const std::byte* const end = context.end;
  const std::byte* at = record;
  std::uint32_t count = 0;
  try {
    while (at < end && execute(operands, texts, context, at)) ++count;
  } catch (...) {
    context.thrower = at;
    throw;
  }
  context.thrower = at - 1;
  operands.put_all_back();
  context.thrower = nullptr;
  context.stretched += count;
  return static_cast<std::uint32_t>(at - record);
}

}  // namespace vorn
