// vrn check
#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>
#include <vornscript/vornscript.hpp>

#include "platform/platform.hpp"
#include "tools/commands.hpp"
#include "tools/disk_places.hpp"
#include "tools/files.hpp"
#include "tools/output.hpp"
#include "tools/progress.hpp"

namespace vorn::tool {
namespace {

using json = nlohmann::ordered_json;

json json_place(disk_places& disk, std::string_view file, std::size_t offset) {
  const disk_place place = disk.find(std::string(file), offset);
  return {{"file", file}, {"line", place.line}, {"column", place.column}, {"offset", offset}};
}

// Characters that are not valid are replaced.
void write_json(const json& object) {
  platform::write_console(object.dump(-1, ' ', false, json::error_handler_t::replace) + '\n');
}

void write_json(const vrn_report& report, disk_places& disk) {
  json object = json_place(disk, report.place.file, report.offset);
  object["length"] = report.length;
  object["message"] = report.message;
  object["chain"] = json::array();
  for (const vrn_report_inclusion& at : report.included_from) {
    object["chain"].push_back(json_place(disk, at.file, at.offset));
  }
  write_json(object);
}

// A load that has failed without a report has no place.
void write_json(const std::string& file, const std::string& message) {
  write_json({{"file", file},
              {"line", 0},
              {"column", 0},
              {"offset", 0},
              {"length", 0},
              {"message", message},
              {"chain", json::array()}});
}

}  // namespace

int check(const check_options& options) {
  const auto files = open_files(options.folders);
  const auto log = std::make_shared<script_log>();
  progress shown("checked", options.files.size());
  disk_places disk(*files);
  bool any_report = false;
  vrnscript script({.filesys = files, .logger = log, .on_report = [&](const vrn_report& report) {
                      any_report = true;
                      shown.hide();
                      if (options.as_json) {
                        write_json(report, disk);
                      } else {
                        write_error_line(log->last_error());
                      }
                    }});
  int status = 0;
  for (const std::string& file : options.files) {
    any_report = false;
    log->forget_errors();
    const bool loaded = vrn_program_loader(script).create_program(file) != nullptr;
    disk.forget();
    if (!loaded || any_report) status = 1;
    if (!loaded && !any_report) {
      shown.hide();
      if (options.as_json) {
        write_json(file, log->first_error());
      } else {
        write_error_line(log->first_error());
      }
    }
    shown.advance();
  }
  return status;
}

}  // namespace vorn::tool
