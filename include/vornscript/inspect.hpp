// The stages of a load, looked at: for tools that show a script, or know their way in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include <vornscript/export.hpp>
#include <vornscript/report.hpp>

namespace vorn {

class vrnscript;

enum class vrn_inspect_stage : std::uint8_t {
  // Every token in the order in which the stages after this one read them: those of included files
  // stand where they were included, led by an item of kind "include" whose text is the path of the
  // file that was found, empty when there is none.
  tokens,
  // The commands, each followed by its tokens; a token that stands for a bracketed group, by the
  // commands in the group. Tokens of this stage are no line ends.
  commands,
  // The nodes, each followed by its parts. Items of kind "body" and "entry" hold together the parts
  // of a list; they have neither text nor place.
  tree,
  // The routines from the main one on ("routine", its text the name and the parameters), in each
  // its statements ("statement", the text being the line from there on), in each its instructions;
  // last the routines that are defined in it.
  code,
};

// One item of what a stage gives. What it refers to is valid during the call only.
struct vrn_inspected {
  std::uint32_t depth;     // how many items it lies in
  std::string_view kind;   // of a token, command or node; an instruction's name
  std::string_view text;   // of the token, a string's between its quotes; an instruction's operands
  vrn_report_place place;  // of the token, as reports show it; instructions have none
  // The token, with the quotes of a string, in bytes of the file as it was read; of a group its
  // first character.
  std::size_t offset = 0;
  std::size_t length = 0;
};

using vrn_inspect_visitor = std::function<void(const vrn_inspected&)>;

// Takes a script through the stages up to the wanted one and visits what that gives, in order. As a
// load it logs and reports; false when a stage has failed. Nothing is visited then, except the
// tokens that were read before. What the visitor throws comes through. On the interpreter's thread.
//
// The script is a file, looked for along the search paths, or a text with the name that reports
// call it by.
VRN_API bool inspect(vrnscript& script, vrn_inspect_stage stage, std::string_view file_name,
                     const vrn_inspect_visitor& visit);
VRN_API bool inspect(vrnscript& script, vrn_inspect_stage stage, std::string text,
                     std::string source_name, const vrn_inspect_visitor& visit);

}  // namespace vorn
