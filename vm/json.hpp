// The json container: a list of members, in the order in which they were added, and a map from key
// to member. Members without a key are in the list only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <vornscript/value.hpp>

#include "vm/text.hpp"
#include "vm/unaligned.hpp"

namespace vorn {

struct vrnjson {
  std::uint8_t& pool_slot() { return value.slot; }
  void pool_reset() noexcept {
    value.pool_reset();
    key.clear();
    word = 0;
  }

  vrnvar value;
  vrn_text key;
  std::uint64_t word = 0;  // carried along; read by nobody
};
static_assert(sizeof(void*) != 8 || sizeof(vrnjson) == 56);

// Needs no alignment. The first seven keyed members are found by looking at each; from the eighth
// on a hash table on the heap takes over.
class vrn_json_container {
 public:
  vrn_json_container() = default;
  vrn_json_container(const vrn_json_container&) = delete;
  vrn_json_container& operator=(const vrn_json_container&) = delete;
  ~vrn_json_container() { clear(); }

  std::size_t size() const { return count_; }
  vrnjson* at(std::size_t index) const { return entries()[index]; }

  // The member with this key, or null.
  vrnjson* find(std::string_view key) const;

  // Appends a member with the value none. Of several with one key the last is found.
  vrnjson* add(std::string_view key);

  // Hands all members back to their pool.
  void clear() noexcept;

  void swap(vrn_json_container& other) noexcept;

 private:
  static constexpr std::uint32_t inline_keys = 7;

  vrnjson** entries() const { return entries_; }
  void grow_entries();
  void enter_key(vrnjson* entry);
  void grow_table();
  static void insert(vrnjson** table, std::uint32_t capacity, vrnjson* entry);

  vrn_unaligned<vrnjson**> entries_;
  vrn_unaligned<std::uint32_t> count_;
  vrn_unaligned<std::uint32_t> capacity_;
  vrn_unaligned<vrnjson**> table_;
  vrn_unaligned<std::uint32_t> keyed_;
  vrn_unaligned<std::uint32_t> table_capacity_;  // 0 or a power of two
  vrn_unaligned<vrnjson*> keys_[inline_keys];
};
static_assert(sizeof(void*) != 8 || sizeof(vrn_json_container) == 88);
static_assert(alignof(vrn_json_container) == 1);

}  // namespace vorn
