// Operations on values, done to the values and to a model of them.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include <vornscript/vrnscript.hpp>

#include "fuzz/support/byte_source.hpp"
#include "fuzz/support/check.hpp"
#include "fuzz/support/checked_host.hpp"
#include "fuzz/targets.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/payload.hpp"

namespace vorn::fuzz {
namespace {

struct model_value;
using model_handle = std::shared_ptr<model_value>;

struct model_member {
  std::string key;
  std::shared_ptr<model_value> value;
};

// A value as it is meant to be. Handles to it are counted where those to the real one are.
struct model_value {
  explicit model_value(vrnvar* value) : real(value) {}

  vrnvar* real;
  vrn_type type = vrn_type::none;
  std::uint64_t bits = 0;
  std::string text;
  std::vector<model_member> members;   // of json
  std::vector<model_handle> elements;  // of a class
  std::pair<std::uint32_t, std::uint32_t> routine = {vrnptr_base::none, vrnptr_base::none};
  model_handle target;

  // What a value of this type owns, emptied. The elements of a class that stays one are kept.
  void set_type(vrn_type new_type) {
    auto kept = type == new_type ? std::move(elements) : std::vector<model_handle>();
    *this = model_value(real);
    type = new_type;
    elements = std::move(kept);
  }

  bool has_class() const {
    return type == vrn_type::class_ ||
           std::any_of(members.begin(), members.end(),
                       [](const model_member& each) { return each.value->has_class(); });
  }

  std::size_t size() const {
    std::size_t sum = 1;
    for (const model_member& member : members) sum += member.value->size();
    return sum;
  }
};

model_handle make_model(vrnvar* real) { return std::make_shared<model_value>(real); }

// A copy that has no real value yet.
model_value copy_of(const model_value& source) {
  model_value copy = source;
  for (model_member& member : copy.members) {
    member.value = std::make_shared<model_value>(copy_of(*member.value));
  }
  return copy;
}

std::int64_t int_of(const model_value& value) {
  switch (value.type) {
    case vrn_type::integer:
      return static_cast<std::int64_t>(value.bits);
    case vrn_type::floating: {
      const double number = std::bit_cast<double>(value.bits);
      return number >= -0x1p63 && number < 0x1p63 ? static_cast<std::int64_t>(number) : INT64_MIN;
    }
    case vrn_type::string:
      return std::atoll(value.text.c_str());
    default:
      return 0;
  }
}

double float_of(const model_value& value) {
  switch (value.type) {
    case vrn_type::integer:
      return static_cast<double>(static_cast<std::int64_t>(value.bits));
    case vrn_type::floating:
      return std::bit_cast<double>(value.bits);
    case vrn_type::string:
      return std::atof(value.text.c_str());
    default:
      return 0;
  }
}

std::string text_of(const model_value& value) {
  char buffer[400];
  switch (value.type) {
    case vrn_type::error:
      return "ERROR";
    case vrn_type::integer:
      return std::to_string(static_cast<std::int64_t>(value.bits));
    case vrn_type::floating:
      std::snprintf(buffer, sizeof buffer, "%f", std::bit_cast<double>(value.bits));
      return buffer;
    default:
      return value.text;
  }
}

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

class value_pair_set {
 public:
  explicit value_pair_set(byte_source& source) : source_(source) {}
  ~value_pair_set() {
    break_cycles();
    for (slot& each : slots_) each = {};
    give_back_misled();
  }
  value_pair_set(const value_pair_set&) = delete;
  value_pair_set& operator=(const value_pair_set&) = delete;

  void step() {
    slot& at = some_slot();
    slot& other = some_slot();
    operate(source_.below(20), at, other);
    compare(at);
  }

  void compare_all() {
    for (slot& each : slots_) compare(each);
  }

 private:
  struct slot {
    vrnvar_shared real;
    model_handle model;
  };

  slot& some_slot() { return slots_[source_.byte() % slots_.size()]; }

  void operate(std::uint32_t operation, slot& at, slot& other) {
    switch (operation) {
      case 0:
        return make(at);
      case 1:
        at.real = {};
        at.model = {};
        return;
      case 2:
        at.real = other.real;
        at.model = other.model;
        return;
      case 3:
        at.real = std::move(other.real);
        at.model = std::exchange(other.model, {});
        return;
      case 4:
        at.real.swap(other.real);
        std::swap(at.model, other.model);
        return;
      case 5:
        return other.model ? dereference(other) : make(other);
      default:
        if (!at.model) make(at);
        change(operation, at, other);
        note_payloads(*at.real);
    }
  }

  void change(std::uint32_t operation, slot& at, slot& other) {
    vrnvar& real = *at.real;
    model_value& model = *at.model;
    switch (operation) {
      case 6: {
        const auto type = static_cast<vrn_type>(source_.below(12));
        real.set_type(type);
        return model.set_type(type);
      }
      case 7:
        return set_number(real, model);
      case 8:
        return set_text(real, model);
      case 9:
        // A text that may be the value's own.
        if (!other.model) return;
        model = with_text(model, other.model->text);
        return real.set_string(other.real->string_text());
      case 10: {
        const model_handle target = other.model;
        real.set_ref(other.real);
        model.set_type(vrn_type::ref);
        model.target = target;
        return;
      }
      case 11:
      case 12:
        return add_member(real, model, other);
      case 13:
        return add_element(real, model, other);
      case 14:
        return set_routine(real, model);
      case 15:
        return copy_member(at, other);
      case 16:
        return change_member(at, other);
      default:
        return copy(real, model, other.real.get(), other.model.get());
    }
  }

  void make(slot& at) {
    at.real = var_none();
    at.model = make_model(at.real.get());
    all_.push_back(at.model);
  }

  void set_number(vrnvar& real, model_value& model) {
    const bool whole = source_.below(2) == 0;
    const std::uint64_t bits = source_.one_in(2) ? source_.word() : source_.byte();
    model.set_type(whole ? vrn_type::integer : vrn_type::floating);
    model.bits = bits;
    whole ? real.set_int(static_cast<std::int64_t>(bits))
          : real.set_float(std::bit_cast<double>(bits));
  }

  static model_value with_text(const model_value& model, std::string text) {
    model_value result(model.real);
    result.type = vrn_type::string;
    result.text = std::move(text);
    return result;
  }

  void set_text(vrnvar& real, model_value& model) {
    constexpr std::string_view texts[] = {
        "", "x", "-12", " +3.5e2z", "nan", "1e999", "99999999999999999999"};
    std::string text(source_.pick(texts));
    if (source_.one_in(4)) text.resize(source_.byte(), 'y');
    model = with_text(model, text);
    real.set_string(text);
  }

  void set_routine(vrnvar& real, model_value& model) {
    if (model.type != vrn_type::function && model.type != vrn_type::class_) return;
    model.routine = {source_.byte(), source_.byte()};
    real.as<vrnvar_ptr_function>()->routine =
        vrnptr<vrn_program_block_routine>(model.routine.first, model.routine.second);
  }

  void add_member(vrnvar& real, model_value& model, slot& other) {
    if (model.type != vrn_type::json || too_large(model, other)) return;
    const std::string key(source_.below(40), static_cast<char>('a' + source_.below(12)));
    vrnjson* const member = real.as<vrnvar_ptr_json>()->members.add(key);
    model.members.push_back({key, make_model(&member->value)});
    copy_to_member(model, *model.members.back().value, other);
  }

  void add_element(vrnvar& real, model_value& model, slot& other) {
    if (model.type != vrn_type::class_) return;
    real.as<vrnvar_ptr_function>()->members.push_back(other.real);
    model.elements.push_back(other.model);
  }

  // From a member of other, which may be one of its own.
  void copy_member(slot& at, slot& other) {
    if (!other.model || other.model->members.empty()) return;
    const std::uint32_t number = member_of(*other.model);
    copy(*at.real, *at.model, &other.real->as<vrnvar_ptr_json>()->members.at(number)->value,
         other.model->members[number].value.get());
  }

  void change_member(slot& at, slot& other) {
    if (at.model->members.empty() || too_large(*at.model, other)) return;
    copy_to_member(*at.model, *at.model->members[member_of(*at.model)].value, other);
  }

  // A copy of a json into its own member finds that emptied, unless it held a json before.
  void copy_to_member(const model_value& owner, model_value& member, slot& other) {
    vrnvar& real = *member.real;
    if (other.model.get() == &owner && member.type != vrn_type::json) {
      member.set_type(vrn_type::json);
    }
    copy(real, member, other.real.get(), other.model.get());
  }

  std::uint32_t member_of(const model_value& model) {
    return source_.below(static_cast<std::uint32_t>(model.members.size()));
  }

  static bool too_large(const model_value& model, const slot& other) {
    return model.size() + (other.model ? other.model->size() : 0) > 1000;
  }

  void copy(vrnvar& real, model_value& model, const vrnvar* source,
            const model_value* source_model) {
    if (source_model && source_model->has_class()) classes_copied_ = true;
    real.copy_from(source);
    if (source && source != &real) accept(model, copy_of(*source_model), &real);
  }

  static void accept(model_value& model, model_value copied, vrnvar* real) {
    copied.real = real;
    const model_value old = std::exchange(model, std::move(copied));
    bind_members(model);
  }

  // Tells the members of a copy where they are, as far as they are there.
  static void bind_members(model_value& model) {
    if (model.type != vrn_type::json || model.real->type != vrn_type::json) return;
    const vrn_json_container& members = model.real->as<vrnvar_ptr_json>()->members;
    for (std::size_t k = 0; k < std::min(members.size(), model.members.size()); ++k) {
      model.members[k].value->real = &members.at(k)->value;
      bind_members(*model.members[k].value);
    }
  }

  void dereference(const slot& at) const {
    const vrnvar_shared end = at.real.deref();
    std::vector<const model_value*> passed;
    const model_value* now = at.model.get();
    while (now && now->type == vrn_type::ref &&
           std::find(passed.begin(), passed.end(), now) == passed.end()) {
      passed.push_back(now);
      now = now->target.get();
    }
    if (!now || now->type != vrn_type::ref) {
      return check(end.get() == (now ? now->real : nullptr), "A chain of refs ends at its end.");
    }
    // A loop back to the start ends before it; of any other, some ref is given.
    const bool back_to_start = now == passed.front();
    const bool ends_there =
        back_to_start ? end.get() == passed.back()->real
                      : std::any_of(passed.begin(), passed.end(), [&](const model_value* each) {
                          return each->real == end.get();
                        });
    check(ends_there, "A loop of refs ends in the loop.");
  }

  void compare(const slot& at) const {
    check(!at.real == !at.model, "A handle is empty or not.");
    if (!at.model) return;
    check(at.real.get() == at.model->real, "A handle stays with its value.");
    // A copied class may be left alone by the pool, and hold on to its elements until the end.
    const auto handles = static_cast<std::uint32_t>(at.model.use_count());
    check(at.real->refcount == handles || (classes_copied_ && at.real->refcount > handles),
          "All handles are counted.");
    compare(*at.real, *at.model);
  }

  static void compare(const vrnvar& real, const model_value& model) {
    check(real.type == model.type, "The type is right.");
    check(real.marker == 0, "The marker is clear.");
    check(real.get_int() == int_of(model), "The whole number is right.");
    check(same(real.get_float(), float_of(model)), "The float is right.");
    check(real.to_text() == text_of(model), "The text is right.");
    if (model.type == vrn_type::ref) {
      check(real.as<vrnvar>() == (model.target ? model.target->real : nullptr),
            "The target is right.");
    } else if (model.type == vrn_type::json) {
      compare_members(real.as<vrnvar_ptr_json>()->members, model);
    } else if (model.type == vrn_type::class_ || model.type == vrn_type::function) {
      const auto& payload = *real.as<vrnvar_ptr_function>();
      check(payload.routine.index == model.routine.first &&
                payload.routine.generation == model.routine.second,
            "The routine is right.");
      check(std::equal(payload.members.begin(), payload.members.end(), model.elements.begin(),
                       model.elements.end(),
                       [](const vrnvar_shared& a, const model_handle& b) {
                         return a.get() == (b ? b->real : nullptr);
                       }),
            "The elements are right.");
    }
  }

  static void compare_members(const vrn_json_container& members, const model_value& model) {
    check(members.size() == model.members.size(), "No member is missing.");
    for (std::size_t k = 0; k < members.size(); ++k) {
      const model_member& expected = model.members[k];
      check(members.at(k)->key.view() == expected.key, "The key is right.");
      check(&members.at(k)->value == expected.value->real, "A member stays where it is.");
      compare(members.at(k)->value, *expected.value);
      if (expected.key.empty()) continue;
      const auto last =
          std::find_if(model.members.rbegin(), model.members.rend(),
                       [&](const model_member& each) { return each.key == expected.key; });
      check(&members.find(expected.key)->value == last->value->real, "The last of a key is found.");
    }
    check(!members.find("no such key"), "Nothing else is found.");
  }

  void break_cycles() {
    for (const std::weak_ptr<model_value>& each : all_) {
      const model_handle model = each.lock();
      if (!model) continue;
      const vrnvar_shared held(model->real);
      held->set_type(vrn_type::none);
      const model_value old = std::exchange(*model, model_value(model->real));
    }
  }

  void note_payloads(const vrnvar& value) {
    if (value.type == vrn_type::class_) payloads_.insert(value.as<vrnvar_ptr_function>());
    if (value.type != vrn_type::json) return;
    const vrn_json_container& members = value.as<vrnvar_ptr_json>()->members;
    for (std::size_t k = 0; k < members.size(); ++k) note_payloads(members.at(k)->value);
  }

  // A copied class claims its source's place in the pool. Where that is free when the copy goes
  // back, the pool leaves it alone; it can still be put where it belongs, and what it owns let go.
  void give_back_misled() {
    using region = vrn_pool_region<vrnvar_ptr_function, vrn_pool_chunk_static>;
    if (!current_script) return;
    const auto is_out = [](vrnvar_ptr_function* payload) {
      const auto& chunk = region::of(payload)->chunk;
      return !chunk.is_free(chunk.slot_of(payload), chunk.free_count);
    };
    std::erase_if(payloads_, [&](auto* payload) { return !is_out(payload); });
    for (auto* payload : payloads_) payload->slot = region::of(payload)->chunk.slot_of(payload);
    for (auto* payload : payloads_) std::exchange(payload->members, {});
    for (auto* payload : payloads_) {
      if (is_out(payload)) current_script->state().pools.functions.give_back(payload);
    }
  }

  byte_source& source_;
  std::array<slot, 8> slots_;
  bool classes_copied_ = false;
  std::vector<std::weak_ptr<model_value>> all_;
  std::unordered_set<vrnvar_ptr_function*> payloads_;  // of all classes that there were
};

}  // namespace

void fuzz_values(input bytes) {
  byte_source source(bytes);
  // Without an interpreter, values come from the general heap.
  std::optional<vrnscript> script;
  if (!source.one_in(4)) script.emplace(vrnscript_config{});
  {
    value_pair_set values(source);
    while (!source.empty()) values.step();
    values.compare_all();
  }
  if (script) check_released(*script);
}

}  // namespace vorn::fuzz
