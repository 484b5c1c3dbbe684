// A folder of a test's own, which is the working directory meanwhile.
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace vorn::test {

class own_folder : public testing::Test {
 protected:
  own_folder() {
    namespace fs = std::filesystem;
    do {
      folder_ = fs::canonical(fs::temp_directory_path()) /
                ("vornscript_test." + std::to_string(std::random_device()()));
    } while (!fs::create_directory(folder_));
    fs::current_path(folder_);
  }
  ~own_folder() override {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }

  std::filesystem::path before_ = std::filesystem::current_path(), folder_;
};

}  // namespace vorn::test
