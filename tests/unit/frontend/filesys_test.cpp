#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>
#include <vornscript/vornscript.hpp>

#include "frontend/source_file.hpp"
#include "tests/support/collecting_log.hpp"
#include "tests/support/memory_filesys.hpp"

namespace vorn {
namespace {

namespace fs = std::filesystem;
using strings = std::vector<std::string>;

TEST(filesys, finds_along_the_search_paths) {
  test::memory_filesys files;
  files.search_paths_add("one\\");
  files.search_paths_add("two");
  files.search_paths_insert_begin("zero");
  for (const char* name : {"a", "own/b", "zero/b", "one/b", "two/b", "one/c", "two/c/d"}) {
    files.add(name, "");
  }
  const char* const rows[][2] = {
      {"a", "a"},   {"b", "own/b"}, {"c", "one/c"}, {"c\\d/", "two/c/d"}, {"c:\\x\\y/", "c:/x/y/"},
      {"none", ""}, {"", ""}};
  const std::string own = "own\\";
  for (const auto& [name, found] : rows) EXPECT_EQ(files.find_file(name, &own), found) << name;
  EXPECT_EQ(files.find_file("b"), "zero/b");

  test::memory_filesys other;
  other.search_paths = {[] { return "one"; }};
  for (const char* name : {"a", "b", "one/b"}) other.add(name, "");
  const std::string none;
  EXPECT_EQ(other.find_file("b", &none), "one/b");
  EXPECT_EQ(other.find_file("a", &none) + other.find_file("a"), "a");
  EXPECT_EQ(directory_of("\\a.vrs") + directory_of("a.vrs") + directory_of("/b/a.vrs"), "//b");
}

// Works in a folder of its own, which is the working directory meanwhile.
class filesys_os : public testing::Test {
 protected:
  filesys_os() {
    fs::create_directories(folder_);
    folder_ = fs::canonical(folder_);
    fs::current_path(folder_);
  }
  ~filesys_os() override {
    fs::current_path(before_);
    fs::remove_all(folder_);
  }
  std::string in_folder(const char* name) const { return (folder_ / name).string(); }

  vrn_filesys_os files_;

 private:
  fs::path before_ = fs::current_path();
  fs::path folder_ = fs::temp_directory_path() / ("vornscript_test." + std::to_string(getpid()));
};

TEST_F(filesys_os, finds_reads_and_writes) {
  EXPECT_EQ(files_.search_paths.at(1)(),
            fs::read_symlink("/proc/self/exe").parent_path().string() + "/include");
  files_.create_directory("sub/deep");
  std::string long_text(3 * 0x80000 + 7, 'x');
  long_text[5] = '\0';
  files_.write("sub/long.vrs", long_text);
  files_.write("a.vrs", "first");
  files_.write("a.vrs", "second");
  fs::create_symlink("a.vrs", "link.vrs");
  EXPECT_EQ(files_.read_file("sub/long.vrs"), long_text);
  EXPECT_EQ(files_.read_file("a.vrs"), "second");
  EXPECT_EQ(files_.find_file("sub\\deep/..//long.vrs"), in_folder("sub/long.vrs"));
  EXPECT_EQ(files_.find_file(in_folder("link.vrs")), in_folder("a.vrs"));
  EXPECT_EQ(files_.list("."), (strings{"./a.vrs", "./link.vrs", "./sub"}));
  EXPECT_EQ(files_.list_files("."), (strings{"./a.vrs", "./link.vrs"}));
  EXPECT_EQ(files_.list_recursive("sub"), (strings{"sub/deep", "sub/long.vrs"}));
  files_.remove_all("sub");
  EXPECT_FALSE(files_.exists("sub"));
}

TEST_F(filesys_os, refused_names_are_missing_and_unreadable_files_empty) {
  files_.write("a.vrs", "text");
  fs::create_symlink("loop", "loop");
  for (const std::string& name : {std::string("a.vrs\0.vrs", 10), std::string(100'000, 'x'),
                                  std::string("loop"), std::string("a.vrs/b")}) {
    EXPECT_EQ(files_.find_file(name) + files_.read_file(name), "") << name;
    EXPECT_FALSE(files_.exists(name)) << name;
    files_.canonical(name);  // whatever it is, it does not throw
  }
  EXPECT_EQ(files_.find_file("."), fs::current_path().string());
  EXPECT_EQ(files_.read_file(".") + files_.read_file("/dev/zero"), "");
  EXPECT_THROW(files_.write("/dev/full", "x"), std::exception);
  EXPECT_THROW(files_.list("none"), std::exception);
  EXPECT_THROW(files_.list_files("."), std::exception);
  EXPECT_FALSE(vrn_filesys().exists("a.vrs"));
}

// Where the whole path is too long for the system, as where a folder above may not be searched.
TEST_F(filesys_os, files_are_reached_below_the_working_directory) {
  fs::path deep = fs::current_path();
  while (deep.native().size() < 3900) deep /= std::string(100, 'd');
  fs::create_directories(deep);
  fs::current_path(deep);
  const std::string name(200, 'n');
  files_.write(name, "text");
  fs::create_symlink(name, "link");
  for (const std::string& each : {name, std::string("link"), "./x/../" + name}) {
    EXPECT_EQ(files_.canonical(each), (deep / name).string());
  }
  EXPECT_EQ(files_.read_file((deep / name).string()), "text");
}

TEST_F(filesys_os, files_of_more_than_4_gib_are_refused) {
  files_.write("large.vrs", "print(1);");
  fs::resize_file("large.vrs", vrn_source_size_max + 1);
  const auto log = std::make_shared<test::collecting_log>();
  vrnscript script({.filesys = std::make_shared<vrn_filesys_os>(), .logger = log});
  EXPECT_FALSE(vrn_program_loader(script).create_program("large.vrs"));
  EXPECT_TRUE(vrn_program_loader(script).create_program("#include \"large\"\n1;", ""));
  const std::string line = "Source file " + in_folder("large.vrs") + " is too large.";
  EXPECT_EQ(log->texts(vrn_log_level::error), (strings{line, line}));

  // One that does not tell its size is read no further than it may be long.
  std::ifstream endless("/dev/zero");
  std::string bytes = "kept";
  EXPECT_FALSE(append_stream(endless, bytes, 3'000'000));
  std::istringstream ending("12345");
  EXPECT_TRUE(append_stream(ending, bytes, 5));
  EXPECT_EQ(bytes, "kept12345");
}

}  // namespace
}  // namespace vorn
