#include <vornscript/value.hpp>

#include <array>
#include <limits>
#include <utility>
#include <vector>

#include <vornscript/log.hpp>

#include "platform/platform.hpp"
#include "vm/detached_payload.hpp"
#include "vm/interpreter_state.hpp"
#include "vm/number_text.hpp"
#include "vm/value_access.hpp"

namespace vorn {
namespace {

constexpr std::array type_names = {
#define VRN_VALUE_TYPE(identifier, name) std::string_view(name),
#include <vornscript/value_types.def>
#undef VRN_VALUE_TYPE
};

std::uint64_t payload_of(const void* object) { return reinterpret_cast<std::uintptr_t>(object); }

// The payload of a fresh value of a type.
std::uint64_t acquire_payload(vrn_type type) {
  switch (type) {
    case vrn_type::string:
      return payload_of(vrn_value_pools::texts::take_from(own_pool<&vrn_value_pools::strings>()));
    case vrn_type::json:
      return payload_of(vrn_value_pools::containers::take_from(own_pool<&vrn_value_pools::json>()));
    case vrn_type::class_:
    case vrn_type::function:
      return payload_of(
          vrn_value_pools::callables::take_from(own_pool<&vrn_value_pools::functions>()));
    default:
      return 0;
  }
}

bool has_pooled_payload(vrn_type type) {
  return type == vrn_type::string || type == vrn_type::json || type == vrn_type::class_ ||
         type == vrn_type::function;
}

// Copies the members of a json container and of all that are nested in it.
void copy_members(const vrn_json_container& source, vrn_json_container& copy) {
  std::vector<std::pair<const vrn_json_container*, vrn_json_container*>> open = {{&source, &copy}};
  while (!open.empty()) {
    const auto [from, to] = open.back();
    open.pop_back();
    for (std::size_t k = 0; k < from->size(); ++k) {
      const vrnjson* member = from->at(k);
      vrnvar& value = to->add(member->key.view())->value;
      if (member->value.type != vrn_type::json) {
        value.copy_from(&member->value);
        continue;
      }
      value.set_type(vrn_type::json);
      open.emplace_back(&member->value.as<vrnvar_ptr_json>()->members,
                        &value.as<vrnvar_ptr_json>()->members);
    }
  }
}

template <class Number>
Number not_a_number(const char* operation, vrn_type type) {
  log_line(vrn_log_level::error, operation,
           "() not implemented for type: ", static_cast<unsigned>(type));
  return Number{};
}

std::int64_t truncate(double number) {
  // Written so that a NaN does not fit either.
  if (number >= -0x1p63 && number < 0x1p63) return static_cast<std::int64_t>(number);
  return std::numeric_limits<std::int64_t>::min();
}

}  // namespace

std::string_view type_name(vrn_type type) { return type_names[static_cast<std::size_t>(type)]; }

void vrnvar::become_none() noexcept {
  const vrn_detached_payload old(*this);
  marker = 0;
}

void vrnvar::set_type(vrn_type new_type) {
  if (type == new_type && has_pooled_payload(type)) {
    switch (type) {
      case vrn_type::string:
        return as<vrnvar_ptr_str>()->text.clear();
      case vrn_type::json:
        return as<vrnvar_ptr_json>()->members.clear();
      default:
        // The members of a class stay.
        return as<vrnvar_ptr_function>()->routine.clear();
    }
  }
  become_none();
  payload = acquire_payload(new_type);
  type = new_type;
}

void vrnvar::copy_from(const vrnvar* source) {
  if (!source || source == this) return;
  if (type < vrn_type::primitive_end && source->type < vrn_type::primitive_end) {
    marker = 0;
    payload = source->payload;
    type = source->type;
    return;
  }
  const bool reuse = type == source->type && has_pooled_payload(type);
  // The source may hang on what this value owns, so that is released last.
  const vrn_detached_payload old = reuse ? vrn_detached_payload() : vrn_detached_payload(*this);
  if (!reuse) {
    marker = 0;
    payload = acquire_payload(source->type);
    type = source->type;
  }
  switch (type) {
    case vrn_type::error:
    case vrn_type::none:
    case vrn_type::integer:
    case vrn_type::floating:
      payload = source->payload;
      return;
    case vrn_type::string:
      return as<vrnvar_ptr_str>()->text.assign(source->string_text());
    case vrn_type::json: {
      vrn_json_container copy;
      copy_members(source->as<vrnvar_ptr_json>()->members, copy);
      return as<vrnvar_ptr_json>()->members.swap(copy);
    }
    case vrn_type::class_: {
      auto* const to = as<vrnvar_ptr_function>();
      const auto* const from = source->as<vrnvar_ptr_function>();
      auto members = from->members;
      to->routine = from->routine;
      // The copy claims its source's slot, deliberately; the pool finds the right one again.
      to->slot = from->slot;
      return to->members.swap(members);
    }
    case vrn_type::function:
      as<vrnvar_ptr_function>()->routine = source->as<vrnvar_ptr_function>()->routine;
      return;
    case vrn_type::ref:
      payload = payload_of(vrnvar_shared(source->as<vrnvar>()).detach());
      return;
    case vrn_type::primitive_end:
    case vrn_type::object:
    case vrn_type::external:
      return;
  }
}

void vrnvar::set_int(std::int64_t number) {
  set_type(vrn_type::integer);
  payload = static_cast<std::uint64_t>(number);
}

void vrnvar::set_float(double number) {
  set_type(vrn_type::floating);
  payload = std::bit_cast<std::uint64_t>(number);
}

void vrnvar::set_string(std::string_view text) {
  // The text may be this value's own.
  const vrn_detached_payload old(*this);
  set_type(vrn_type::string);
  as<vrnvar_ptr_str>()->text.assign(text);
}

void vrnvar::set_ref(const vrnvar_shared& target) {
  vrnvar_shared held = target;
  set_type(vrn_type::ref);
  payload = payload_of(held.detach());
}

std::int64_t vrnvar::get_int() const {
  switch (type) {
    case vrn_type::integer:
      return as_int();
    case vrn_type::floating:
      return truncate(as_float());
    case vrn_type::string:
      return text_to_int(string_text());
    default:
      return not_a_number<std::int64_t>("get_int", type);
  }
}

double vrnvar::get_float() const {
  switch (type) {
    case vrn_type::integer:
      return static_cast<double>(as_int());
    case vrn_type::floating:
      return as_float();
    case vrn_type::string:
      return text_to_float(string_text());
    default:
      return not_a_number<double>("get_float", type);
  }
}

std::string vrnvar::to_text() const {
  vrn_number_buffer buffer;
  return std::string(value_text(*this, buffer));
}

std::string_view value_text(const vrnvar& value, vrn_number_buffer& buffer) {
  switch (value.type) {
    case vrn_type::error:
      return "ERROR";
    case vrn_type::integer:
      return number_text(value.as_int(), buffer);
    case vrn_type::floating:
      return number_text(value.as_float(), buffer);
    default:
      return value.string_text();
  }
}

std::string_view vrnvar::string_text() const {
  return type == vrn_type::string ? as<vrnvar_ptr_str>()->text.view() : std::string_view();
}

void vrnvar_shared::release_last(vrnvar* value) noexcept {
  vrn_value_pools::values_pool::release(value, own_pool<&vrn_value_pools::values>());
}

vrnvar_shared vrnvar_shared::deref() const { return vrnvar_shared(deref_value(value_)); }

// A loop that the start is not part of is met by a second finger, which goes at half the pace.
vrnvar* follow_refs(vrnvar* start) {
  vrnvar* slow = start;
  bool step = false;
  for (vrnvar* at = start;;) {
    auto* const next = at->as<vrnvar>();
    if (!next || next->type != vrn_type::ref) return next;
    if (next == at || next == start || next == slow) {
      platform::write_error("Warning: circular reference detected in deref().\n");
      return at;
    }
    at = next;
    if (step) slow = slow->as<vrnvar>();
    step = !step;
  }
}

vrnvar* var_new() {
  return vrn_value_pools::values_pool::take_from(own_pool<&vrn_value_pools::values>());
}

vrnvar_shared var_none() { return vrnvar_shared(var_new()); }

vrnvar_shared var_int(std::int64_t number) {
  vrnvar_shared value = var_none();
  value->type = vrn_type::integer;
  value->payload = static_cast<std::uint64_t>(number);
  return value;
}

vrnvar_shared var_float(double number) {
  vrnvar_shared value = var_none();
  value->type = vrn_type::floating;
  value->payload = std::bit_cast<std::uint64_t>(number);
  return value;
}

vrnvar_shared var_string(std::string_view text) {
  vrnvar_shared value = var_none();
  value->payload = acquire_payload(vrn_type::string);
  value->type = vrn_type::string;
  value->as<vrnvar_ptr_str>()->text.assign(text);
  return value;
}

}  // namespace vorn
