// The insides of values that handlers and built-in functions work with.
#pragma once

#include <string_view>

#include <vornscript/value.hpp>

#include "vm/number_text.hpp"

namespace vorn {

// The value as text; lies in the value or in the buffer.
std::string_view value_text(const vrnvar& value, vrn_number_buffer& buffer);

// The end of a chain of refs that starts here; see vrnvar_shared::deref().
vrnvar* follow_refs(vrnvar* start);

inline vrnvar* deref_value(vrnvar* value) {
  return value && value->type == vrn_type::ref ? follow_refs(value) : value;
}

}  // namespace vorn
