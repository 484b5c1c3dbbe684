#include "compiler/registry.hpp"

#include "vm/interpreter_state.hpp"

namespace vorn {

vrnptr_base vrn_registry::enter(void* object, const char* type) {
  if (free_.empty()) {
    // Leaving must not have to allocate.
    if (free_.capacity() == entries_.size()) free_.reserve(entries_.size() * 2 + 4);
    entries_.push_back({object, type, 1});
    return {static_cast<std::uint32_t>(entries_.size() - 1), 1};
  }
  const std::uint32_t index = free_.back();
  free_.pop_back();
  entry& place = entries_[index];
  place.object = object;
  place.type = type;
  return {index, place.generation};
}

void vrn_registry::leave(const vrnptr_base& handle) {
  entry& place = entries_[handle.index];
  place.object = nullptr;
  if (++place.generation == vrnptr_base::none) {
    ++retired_;
  } else {
    free_.push_back(handle.index);
  }
}

void* vrn_registry::resolve(const vrnptr_base& handle, const char* type) const {
  const vrn_interpreter_lock lock(*mutex_);
  if (handle.empty() || handle.index >= entries_.size()) return nullptr;
  const entry& place = entries_[handle.index];
  return place.generation == handle.generation && place.type == type ? place.object : nullptr;
}

void* vrnptr_base::resolve(const char* type) const {
  return current_script ? current_script->state().registry->resolve(*this, type) : nullptr;
}

vrnptr_entry::vrnptr_entry(void* object, const char* type) {
  if (!current_script) return;
  registry_ = current_script->state().registry;
  handle_ = registry_->enter(object, type);
}

vrnptr_entry::~vrnptr_entry() {
  if (registry_) registry_->leave(handle_);
}

}  // namespace vorn
