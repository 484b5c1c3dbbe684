// Links, devices and limits as POSIX systems have them.
#include "tests/support/filesys_os.hpp"

TEST_F(filesys_os, links_are_followed) {
  EXPECT_EQ(files_.search_paths.at(1)(),
            fs::read_symlink("/proc/self/exe").parent_path().string() + "/include");
  files_.write("a.vrs", "");
  fs::create_symlink("a.vrs", "link.vrs");
  EXPECT_EQ(files_.find_file((folder_ / "link.vrs").string()), folder_ / "a.vrs");
  EXPECT_EQ(files_.list_files("."), (std::vector<std::string>{"./a.vrs", "./link.vrs"}));
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
  EXPECT_FALSE(vorn::vrn_filesys().exists("a.vrs"));
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
