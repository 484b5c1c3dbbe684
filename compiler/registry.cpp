#include "compiler/registry.hpp"

#include <atomic>

#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

std::uint32_t next_generation() noexcept {
  static constinit std::atomic<std::uint32_t> last{0};
  std::uint32_t next = 0;
  do {
    next = last.fetch_add(1, std::memory_order_relaxed) + 1;
  } while (next == 0 || next == vrnptr_base::none);
  return next;
}

}  // namespace

vrnptr_base vrn_registry::enter(vrnptr_entry* object, const std::type_info& type) {
  if (free_.empty()) {
    // Leaving must not have to allocate.
    if (free_.capacity() == entries_.size()) free_.reserve(entries_.size() * 2 + 4);
    entries_.emplace_back();
    free_.push_back(static_cast<std::uint32_t>(entries_.size() - 1));
  }
  const std::uint32_t index = free_.back();
  free_.pop_back();
  entries_[index] = {object, &type, next_generation()};
  return {index, entries_[index].generation};
}

void vrn_registry::leave(const vrnptr_base& handle) noexcept {
  entries_[handle.index] = {};
  free_.push_back(handle.index);
}

vrnptr_entry* vrn_registry::resolve(const vrnptr_base& handle, const std::type_info& type) const {
  const vrn_interpreter_lock lock(*mutex_);
  if (handle.empty() || handle.index >= entries_.size()) return nullptr;
  const entry& place = entries_[handle.index];
  return place.generation == handle.generation && *place.type == type ? place.object : nullptr;
}

vrnptr_entry* vrnptr_base::resolve(const std::type_info& type) const {
  return current_script ? current_script->state().registry->resolve(*this, type) : nullptr;
}

vrnptr_entry::vrnptr_entry(const std::type_info& type) {
  if (!current_script) return;
  registry_ = current_script->state().registry;
  handle_ = registry_->enter(this, type);
}

vrnptr_entry::~vrnptr_entry() {
  if (registry_) registry_->leave(handle_);
}

}  // namespace vorn
