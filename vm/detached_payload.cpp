#include "vm/detached_payload.hpp"

#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

constexpr int depth_max = 100;

constinit thread_local int depth = 0;
constinit thread_local vrnvar_ptr_json* json_aside = nullptr;
constinit thread_local vrnvar_ptr_function* functions_aside = nullptr;

}  // namespace

void vrn_detached_payload::let_go() noexcept {
  // A string releases nothing else.
  if (type_ == vrn_type::string) return release();
  if (depth >= depth_max) return put_aside();
  ++depth;
  release();
  // Only the outermost one looks at what was put aside: the depth stays while it does.
  if (depth == 1) release_aside();
  --depth;
}

void vrn_detached_payload::release() noexcept {
  switch (type_) {
    case vrn_type::string:
      return vrn_value_pools::texts::release(as<vrnvar_ptr_str>(),
                                             own_pool<&vrn_value_pools::strings>());
    case vrn_type::json:
      return vrn_value_pools::containers::release(as<vrnvar_ptr_json>(),
                                                  own_pool<&vrn_value_pools::json>());
    case vrn_type::class_:
    case vrn_type::function:
      return vrn_value_pools::callables::release(as<vrnvar_ptr_function>(),
                                                 own_pool<&vrn_value_pools::functions>());
    case vrn_type::ref:
      vrnvar_shared::adopt(as<vrnvar>());
      return;
    default:
      return;
  }
}

void vrn_detached_payload::put_aside() noexcept {
  while (type_ == vrn_type::ref) {
    auto* const target = as<vrnvar>();
    const bool is_last = target->refcount == 1 && vrn_value_pools::values_pool::takes_back(
                                                      target, own_pool<&vrn_value_pools::values>());
    if (!is_last) return release();
    // The target goes with this handle, so what it owns can be looked at in its place.
    take_from(*target);
    vrnvar_shared::adopt(target);
  }
  if (type_ == vrn_type::json && as<vrnvar_ptr_json>()->members.size() > 0) {
    as<vrnvar_ptr_json>()->set_next(std::exchange(json_aside, as<vrnvar_ptr_json>()));
  } else if ((type_ == vrn_type::class_ || type_ == vrn_type::function) &&
             !as<vrnvar_ptr_function>()->members.empty()) {
    as<vrnvar_ptr_function>()->set_next(std::exchange(functions_aside, as<vrnvar_ptr_function>()));
  } else {
    release();
  }
}

void vrn_detached_payload::release_aside() noexcept {
  while (json_aside || functions_aside) {
    if (json_aside) {
      const vrn_detached_payload next(json_aside, vrn_type::json);
      json_aside = json_aside->next();
    } else {
      const vrn_detached_payload next(functions_aside, vrn_type::function);
      functions_aside = functions_aside->next();
    }
  }
}

}  // namespace vorn
