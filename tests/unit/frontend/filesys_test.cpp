#include <sstream>

#include "frontend/path_text.hpp"
#include "frontend/source_file.hpp"
#include "tests/support/filesys_os.hpp"
#include "tests/support/script_host.hpp"

namespace vorn {
namespace {

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

TEST_F(filesys_os, finds_reads_and_writes) {
  const std::string sub = "s\u00fcb";
  const std::string name = sub + "/l\u00e4ng\u65e5.vrs";
  files_.create_directory(sub + "/deep");
  std::string long_text(3 * 0x80000 + 7, 'x');
  long_text[5] = '\0';
  files_.write(name, long_text);
  for (const char* text : {"first", "second"}) files_.write("a.vrs", text);
  EXPECT_EQ(fs::file_size(u8"s\u00fcb/l\u00e4ng\u65e5.vrs"), long_text.size());
  EXPECT_EQ(files_.read_file(name), long_text);
  EXPECT_EQ(files_.read_file("a.vrs"), "second");
  EXPECT_EQ(files_.find_file(sub + "\\deep/..//l\u00e4ng\u65e5.vrs"),
            text_of(folder_) + "/" + name);
  EXPECT_EQ(files_.list("."), (strings{"./a.vrs", "./" + sub}));
  EXPECT_EQ(files_.list_files("."), strings{"./a.vrs"});
  EXPECT_EQ(files_.list_recursive(sub), (strings{sub + "/deep", name}));
  files_.remove_all(sub);
  EXPECT_FALSE(files_.exists(sub));
}

TEST_F(filesys_os, files_of_more_than_4_gib_are_refused) {
  files_.write("large.vrs", "print(1);");
  fs::resize_file("large.vrs", vrn_source_size_max + 1);
  const auto log = std::make_shared<test::collecting_log>();
  vrnscript script({.filesys = std::make_shared<vrn_filesys_os>(), .logger = log});
  EXPECT_FALSE(vrn_program_loader(script).create_program("large.vrs"));
  EXPECT_TRUE(vrn_program_loader(script).create_program("#include \"large\"\n1;", ""));
  const std::string line = "Source file " + text_of(folder_) + "/large.vrs is too large.";
  EXPECT_EQ(log->texts(vrn_log_level::error), (strings{line, line}));

  // One that does not tell its size is read no further than it may be long.
  std::istringstream longer(std::string(4'000'000, 'x'));
  std::string bytes = "kept";
  EXPECT_FALSE(append_stream(longer, bytes, 3'000'000));
  std::istringstream ending("12345");
  EXPECT_TRUE(append_stream(ending, bytes, 5));
  EXPECT_EQ(bytes, "kept12345");
}

}  // namespace
}  // namespace vorn
