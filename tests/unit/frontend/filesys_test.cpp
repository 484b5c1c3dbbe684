#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "frontend/source_file.hpp"
#include "tests/support/script_host.hpp"

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
  const std::string none;
  for (const auto& [name, found] : rows) EXPECT_EQ(files.find_file(name, &own), found) << name;
  EXPECT_EQ(files.find_file("b"), "zero/b");
  files.search_paths = {[] { return "one"; }};
  EXPECT_EQ(files.find_file("own/b", &none), "own/b");
  EXPECT_EQ(files.find_file("b", &none), "one/b");
  EXPECT_EQ(files.find_file("own/b"), "");
  EXPECT_EQ(directory_of("\\a.vrs") + directory_of("a.vrs") + directory_of("/b/a.vrs"), "//b");
}

// Works in a folder of its own, which is the working directory meanwhile.
class filesys_os : public testing::Test {
 protected:
  filesys_os() {
    std::string folder = fs::canonical(fs::temp_directory_path()) / "vornscript_test.XXXXXX";
    fs::current_path(folder_ = mkdtemp(folder.data()));
  }
  ~filesys_os() override {
    fs::current_path(before_);
    fs::remove_all(folder_);
  }

  fs::path before_ = fs::current_path(), folder_;
  vrn_filesys_os files_;
};

TEST_F(filesys_os, finds_reads_and_writes) {
  EXPECT_EQ(files_.search_paths.at(1)(),
            fs::read_symlink("/proc/self/exe").parent_path().string() + "/include");
  files_.create_directory("sub/deep");
  std::string long_text(3 * 0x80000 + 7, 'x');
  long_text[5] = '\0';
  files_.write("sub/long.vrs", long_text);
  for (const char* text : {"first", "second"}) files_.write("a.vrs", text);
  fs::create_symlink("a.vrs", "link.vrs");
  EXPECT_EQ(files_.read_file("sub/long.vrs"), long_text);
  EXPECT_EQ(files_.read_file("a.vrs"), "second");
  EXPECT_EQ(files_.find_file("sub\\deep/..//long.vrs"), folder_ / "sub/long.vrs");
  EXPECT_EQ(files_.find_file((folder_ / "link.vrs").string()), folder_ / "a.vrs");
  EXPECT_EQ(files_.list("."), (strings{"./a.vrs", "./link.vrs", "./sub"}));
  EXPECT_EQ(files_.list_files("."), (strings{"./a.vrs", "./link.vrs"}));
  EXPECT_EQ(files_.list_recursive("sub"), (strings{"sub/deep", "sub/long.vrs"}));
  files_.remove_all("sub");
  EXPECT_FALSE(files_.exists("sub"));
}

TEST_F(filesys_os, refused_names_are_missing_and_unreadable_files_empty) {
  files_.write("a.vrs", "text");
  fs::create_symlink("loop", "loop");
  using namespace std::string_literals;
  for (const auto& name : {"a.vrs\0.vrs"s, std::string(100'000, 'x'), "loop"s, "a.vrs/b"s}) {
    EXPECT_EQ(files_.find_file(name) + files_.read_file(name), "") << name;
    EXPECT_FALSE(files_.exists(name)) << name;
    files_.canonical(name);  // whatever it is, it does not throw
  }
  EXPECT_EQ(files_.find_file("."), folder_);
  EXPECT_EQ(files_.read_file(".") + files_.read_file("/dev/zero"), "");
  EXPECT_THROW(files_.write("/dev/full", "x"), std::exception);
  EXPECT_THROW(files_.list("none"), std::exception);
  EXPECT_THROW(files_.list_files("."), std::exception);
  EXPECT_FALSE(vrn_filesys().exists("a.vrs"));
}

// Where the whole path is too long for the system, as where a folder above may not be searched.
TEST_F(filesys_os, files_are_reached_below_the_working_directory) {
  fs::path deep = folder_;
  while (deep.native().size() < 3900) deep /= std::string(100, 'd');
  fs::create_directories(deep);
  fs::current_path(deep);
  const std::string name(200, 'n');
  files_.write(name, "text");
  fs::create_symlink(name, "link");
  for (const char* start : {"", "./x/../"}) EXPECT_EQ(files_.canonical(start + name), deep / name);
  EXPECT_EQ(files_.canonical("link"), deep / name);
  EXPECT_EQ(files_.read_file((deep / name).string()), "text");
}

TEST_F(filesys_os, files_of_more_than_4_gib_are_refused) {
  files_.write("large.vrs", "print(1);");
  fs::resize_file("large.vrs", vrn_source_size_max + 1);
  const auto log = std::make_shared<test::collecting_log>();
  vrnscript script({.filesys = std::make_shared<vrn_filesys_os>(), .logger = log});
  EXPECT_FALSE(vrn_program_loader(script).create_program("large.vrs"));
  EXPECT_TRUE(vrn_program_loader(script).create_program("#include \"large\"\n1;", ""));
  const std::string line = "Source file " + folder_.string() + "/large.vrs is too large.";
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
