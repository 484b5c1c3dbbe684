// Programs with meaning, whole and damaged.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "fuzz/support/check.hpp"
#include "fuzz/support/checked_host.hpp"
#include "fuzz/support/program_writer.hpp"

namespace vorn::fuzz {
namespace {

constexpr std::string_view pieces[] = {
    "(",  ")",  "[", "]", "{", "}", ";",  ",",  "=",      "+",    "-",       "#",  "\"",  "'",
    "\\", "\n", ".", ":", "e", "1", "//", "/*", "if (1)", "else", "return ", "D0", "fn0("};

// Puts a piece in, takes some text out, or writes it twice.
void damage(byte_source& source, std::string& text) {
  const std::size_t at = source.below(static_cast<std::uint32_t>(text.size()) + 1);
  const std::size_t length = std::min<std::size_t>(source.below(32), text.size() - at);
  switch (source.below(3)) {
    case 0:
      text.insert(at, source.pick(pieces));
      return;
    case 1:
      text.erase(at, length);
      return;
    default:
      text.insert(at, text.substr(at, length));
  }
}

// What the load of an undamaged program has to come to.
void check_outcome(const program_writer& writer, const checked_host& host, bool loaded) {
  const auto all = [&host] { return host.listing(); };
  const auto& reports = host.reports();
  if (!writer.planted()) {
    check(reports.empty(), "A valid program has no errors.", all);
    return check(loaded, "A valid program loads.", all);
  }
  const fault& what = *writer.planted()->what;
  check(loaded != what.fails, "A fault ends the load, or does not.", all);
  check(reports.size() == 1, "A fault is reported once.", all);
  const source_report& report = reports[0];
  check(report.message.substr(0, report.message.find("\n|-- ")) == what.message,
        "A fault is reported as what it is.", all);
  check(report.file == writer.planted()->file && report.line == writer.planted()->line,
        "A fault is reported where it is.", all);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  byte_source source({data, size});
  const std::uint32_t damages = source.below(8) < 6 ? 0 : 1 + source.below(3);
  program_writer writer(source);
  checked_host::files files = writer.write();
  for (std::uint32_t k = 0; k < damages; ++k) damage(source, files["main.vrs"]);

  checked_host host(std::move(files));
  vrn_program program = host.load();
  if (damages == 0) check_outcome(writer, host, program != nullptr);
  if (program) host.run(std::exchange(program, {}));
  host.check_health();
  return 0;
}

}  // namespace vorn::fuzz
