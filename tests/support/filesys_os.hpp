// The system's files, in a folder of the test's own, which is the working directory meanwhile.
#pragma once

#include <filesystem>
#include <random>

#include <gtest/gtest.h>
#include <vornscript/filesys.hpp>

namespace fs = std::filesystem;

class filesys_os : public testing::Test {
 protected:
  filesys_os() {
    std::random_device number;
    do {
      folder_ = fs::canonical(fs::temp_directory_path()) / ("vrn" + std::to_string(number()));
    } while (!fs::create_directory(folder_));
    fs::current_path(folder_);
  }
  ~filesys_os() override {
    fs::current_path(before_);
    fs::remove_all(folder_);
  }

  fs::path before_ = fs::current_path(), folder_;
  vorn::vrn_filesys_os files_;
};
