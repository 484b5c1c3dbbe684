#include "vm/json.hpp"

#include <algorithm>
#include <memory>
#include <utility>

#include <vornscript/program_block.hpp>

#include "vm/interpreter_state.hpp"

namespace vorn {
namespace {

std::size_t hash_of(std::string_view key) { return vrn_hasher()(key); }

}  // namespace

vrnjson* vrn_json_container::find(std::string_view key) const {
  if (table_capacity_ == 0) {
    for (std::uint32_t k = 0; k < keyed_; ++k) {
      vrnjson* entry = keys_[k];
      if (entry->key.view() == key) return entry;
    }
    return nullptr;
  }
  const std::size_t mask = table_capacity_ - 1;
  vrnjson** const table = table_;
  for (std::size_t at = hash_of(key) & mask; table[at]; at = (at + 1) & mask) {
    if (table[at]->key.view() == key) return table[at];
  }
  return nullptr;
}

vrnjson* vrn_json_container::add(std::string_view key) {
  grow_entries();
  vrnjson* entry = vrn_value_pools::entries::take_from(own_pool<&vrn_value_pools::json_values>());
  entries()[count_] = entry;
  count_ = count_ + 1;
  if (!key.empty()) {
    entry->key.assign(key);
    enter_key(entry);
  }
  return entry;
}

void vrn_json_container::clear() noexcept {
  auto* const pool = own_pool<&vrn_value_pools::json_values>();
  for (std::uint32_t k = 0; k < count_; ++k) vrn_value_pools::entries::release(at(k), pool);
  std::allocator<vrnjson*> allocator;
  if (capacity_ > 0) allocator.deallocate(entries_, capacity_);
  if (table_capacity_ > 0) allocator.deallocate(table_, table_capacity_);
  count_ = capacity_ = keyed_ = table_capacity_ = 0;
}

void vrn_json_container::swap(vrn_json_container& other) noexcept {
  std::swap(entries_, other.entries_);
  std::swap(count_, other.count_);
  std::swap(capacity_, other.capacity_);
  std::swap(table_, other.table_);
  std::swap(keyed_, other.keyed_);
  std::swap(table_capacity_, other.table_capacity_);
  std::swap(keys_, other.keys_);
}

void vrn_json_container::grow_entries() {
  if (count_ < capacity_) return;
  const std::uint32_t capacity = capacity_ * 2 + 4;
  vrnjson** grown = std::allocator<vrnjson*>().allocate(capacity);
  if (capacity_ > 0) {
    std::copy_n(entries(), std::uint32_t{count_}, grown);
    std::allocator<vrnjson*>().deallocate(entries_, capacity_);
  }
  entries_ = grown;
  capacity_ = capacity;
}

void vrn_json_container::enter_key(vrnjson* entry) {
  if (table_capacity_ == 0) {
    for (std::uint32_t k = 0; k < keyed_; ++k) {
      if (static_cast<vrnjson*>(keys_[k])->key.view() == entry->key.view()) {
        keys_[k] = entry;
        return;
      }
    }
    if (keyed_ < inline_keys) {
      keys_[keyed_] = entry;
      keyed_ = keyed_ + 1;
      return;
    }
  }
  if ((keyed_ + 1) * 2 > table_capacity_) grow_table();
  insert(table_, table_capacity_, entry);
  keyed_ = keyed_ + 1;
}

void vrn_json_container::grow_table() {
  const std::uint32_t capacity = table_capacity_ == 0 ? 32 : table_capacity_ * 2;
  vrnjson** grown = std::allocator<vrnjson*>().allocate(capacity);
  std::fill_n(grown, capacity, nullptr);
  if (table_capacity_ == 0) {
    for (vrnjson* entry : keys_) insert(grown, capacity, entry);
  } else {
    vrnjson** const table = table_;
    for (std::uint32_t k = 0; k < table_capacity_; ++k) {
      if (table[k]) insert(grown, capacity, table[k]);
    }
    std::allocator<vrnjson*>().deallocate(table, table_capacity_);
  }
  table_ = grown;
  table_capacity_ = capacity;
}

void vrn_json_container::insert(vrnjson** table, std::uint32_t capacity, vrnjson* entry) {
  const std::size_t mask = capacity - 1;
  std::size_t at = hash_of(entry->key.view()) & mask;
  while (table[at] && table[at]->key.view() != entry->key.view()) at = (at + 1) & mask;
  table[at] = entry;
}

}  // namespace vorn
