// Instruction records: an opcode in 32 bits, then its operands, in the machine's own byte order and
// without alignment. A record's size follows from its opcode alone.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vorn {

enum vrn_opcode : std::uint32_t {
#define VRN_OP(name, size, operands) name,
#include "compiler/opcodes.def"
#undef VRN_OP
  opcode_count
};

enum class vrn_operands : std::uint8_t { none, u32, reserved, i64, f64, value, native, outer };

struct vrn_opcode_row {
  const char* name;
  std::uint32_t size;
  vrn_operands operands;
};

inline constexpr std::array<vrn_opcode_row, opcode_count> vrn_opcodes = {{
#define VRN_OP(name, size, operands) {#name, size, vrn_operands::operands},
#include "compiler/opcodes.def"
#undef VRN_OP
}};
static_assert(opcode_count == 20);

template <vrn_opcode opcode>
inline constexpr std::uint32_t size_of = vrn_opcodes[opcode].size;

// The field of type T at an offset of a record.
template <class T>
T read_field(const std::byte* record, std::size_t offset) {
  T value;
  std::memcpy(&value, record + offset, sizeof value);
  return value;
}

template <class T>
void write_field(std::byte* record, std::size_t offset, T value) {
  std::memcpy(record + offset, &value, sizeof value);
}

// Addresses have 64 bits in records, whatever they have elsewhere.
inline std::uint64_t address_of(const void* object) {
  return reinterpret_cast<std::uintptr_t>(object);
}

template <class T>
T* object_at(std::uint64_t address) {
  return reinterpret_cast<T*>(static_cast<std::uintptr_t>(address));
}

// The object whose address stands at an offset of a record.
template <class T>
T* read_address(const std::byte* record, std::size_t offset) {
  return object_at<T>(read_field<std::uint64_t>(record, offset));
}

}  // namespace vorn
