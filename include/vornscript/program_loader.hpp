// From a script to a program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <vornscript/export.hpp>
#include <vornscript/program_block.hpp>

namespace vorn {

class vrnscript;

// Builds programs for an interpreter, on its thread. Every stage logs its time and reports what it
// finds wrong; the first that fails ends the build, and the result is empty.
class VRN_API vrn_program_loader {
 public:
  explicit vrn_program_loader(vrnscript& script) : script_(&script) {}

  // Loads a script file, looked for along the file system's search paths.
  vrn_program create_program(std::string_view file_name);

  // Loads a script from its text; `source_name` is what reports call it, "<memory>" when empty.
  vrn_program create_program(std::string text, std::string source_name);

  // The number of instructions of the program compiled last.
  std::uint32_t instruction_count() const { return instruction_count_; }

 private:
  vrnscript* script_;
  std::uint32_t instruction_count_ = 0;
};

}  // namespace vorn
