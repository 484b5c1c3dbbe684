#include <exception>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>
#include <vornscript/filesys.hpp>

namespace vorn {
namespace {

namespace fs = std::filesystem;
using strings = std::vector<std::string>;

// Files without contents that notes which of them were asked for.
class named_files final : public vrn_filesys {
 public:
  explicit named_files(std::set<std::string> names) : names_(std::move(names)) {}
  bool exists(const std::string& path) const override {
    asked.push_back(path);
    return names_.contains(path);
  }
  mutable strings asked;

 private:
  std::set<std::string> names_;
};

TEST(filesys, base_has_no_files) {
  vrn_filesys files;
  files.search_paths_add("");
  files.write("a", "text");
  files.create_directory("d");
  files.remove_all("d");
  EXPECT_FALSE(files.exists("a"));
  EXPECT_EQ(files.read_file("a"), "");
  EXPECT_EQ(files.find_file("a"), "");
  EXPECT_TRUE(files.list("").empty() && files.list_files("").empty() &&
              files.list_recursive("").empty());
  EXPECT_EQ(files.canonical("a/./b/../c"), "a/c");
}

TEST(filesys, finds_along_the_search_paths) {
  struct {
    const char* name;
    const char* found;
    strings asked;
  } const rows[] = {
      {"a.vrs", "two/a.vrs", {"zero/a.vrs", "one/a.vrs", "two/a.vrs"}},
      {"sub\\b.vrs", "one/sub/b.vrs", {"zero/sub/b.vrs", "one/sub/b.vrs"}},
      {"../up.vrs", "up.vrs", {"zero/../up.vrs", "one/../up.vrs"}},
      {"a.vrs/", "two/a.vrs", {"zero/a.vrs", "one/a.vrs", "two/a.vrs"}},
      {"none", "", {"zero/none", "one/none", "two/none", "none"}},
      {"c:\\x\\y/", "c:/x/y/", {}},
      {"::", "::", {}},
      {"", "", {}},
      {"/", "", {"zero/", "one/", "two/", ""}},
  };
  for (const auto& row : rows) {
    named_files files({"two/a.vrs", "one/sub/b.vrs", "one/../up.vrs"});
    files.search_paths_add("one\\");
    files.search_paths_add("two");
    files.search_paths_insert_begin("zero");
    files.search_paths.emplace_back([] { return std::string(); });
    EXPECT_EQ(files.find_file(row.name), row.found) << row.name;
    EXPECT_EQ(files.asked, row.asked) << row.name;
  }
}

TEST(filesys, looks_into_the_first_directory_before_all_others) {
  named_files files({"lib/a", "one/a", "one/b"});
  files.search_paths_add("one");
  const std::string lib = "lib\\";
  EXPECT_EQ(files.find_file("a", &lib), "lib/a");
  EXPECT_EQ(files.find_file("b", &lib), "one/b");
  const std::string nowhere;
  EXPECT_EQ(files.find_file("a", &nowhere), "one/a");
  EXPECT_EQ(files.asked, (strings{"lib/a", "lib/b", "one/b", "a", "one/a"}));
}

TEST(filesys, an_empty_search_entry_is_an_error) {
  vrn_filesys files;
  files.search_paths.emplace_back();
  EXPECT_THROW(files.find_file("a"), std::bad_function_call);
}

TEST(filesys, directory_of) {
  const char* const rows[][2] = {
      {"/a/b/c.vrs", "/a/b"}, {"a\\b\\c.vrs", "a/b"}, {"c.vrs", ""}, {"/c.vrs", ""},
      {"a/b", "a"},           {"a/b/", "a/b"},        {"", ""}};
  for (const auto& [path, directory] : rows) EXPECT_EQ(directory_of(path), directory) << path;
}

TEST(filesys, normalise_source) {
  const char* const rows[][2] = {
      {"", ""},
      {"no tabs\r\n", "no tabs\r\n"},
      {"a\tb", "a   b"},
      {"ab\tc", "ab  c"},
      {"abc\td", "abc d"},
      {"abcd\te", "abcd    e"},
      {"\n\tx", "\n    x"},
      {"\t\t", "        "},
      {"ab\nc\td\n\te\tf\n", "ab\nc   d\n    e   f\n"},
      {"\xC3\xA4\tb", "\xC3\xA4  b"},  // columns are bytes
      {"a\r\tb", "a\r  b"},
  };
  for (const auto& [text, normal] : rows) EXPECT_EQ(normalise_source(text), normal) << text;
  EXPECT_EQ(normalise_source(std::string("\0\t", 2)), std::string("\0   ", 4));
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

TEST_F(filesys_os, search_paths) {
  ASSERT_EQ(files_.search_paths.size(), 2U);
  EXPECT_EQ(files_.search_paths[0](), "");
  EXPECT_EQ(files_.search_paths[1](),
            fs::read_symlink("/proc/self/exe").parent_path().string() + "/include");
}

TEST_F(filesys_os, finds_reads_and_writes) {
  files_.create_directory("sub/deep");
  std::string long_text(3 * 0x80000 + 7, 'x');
  long_text[5] = '\0';
  files_.write("sub/long.vrs", long_text);
  files_.write("a.vrs", "first");
  files_.write("a.vrs", "second");
  fs::create_symlink("a.vrs", "link.vrs");

  EXPECT_EQ(files_.read_file("sub/long.vrs"), long_text);
  EXPECT_EQ(files_.read_file("a.vrs"), "second");
  EXPECT_EQ(files_.find_file("a.vrs"), in_folder("a.vrs"));
  EXPECT_EQ(files_.find_file("sub\\deep/..//long.vrs"), in_folder("sub/long.vrs"));
  EXPECT_EQ(files_.find_file(in_folder("a.vrs")), in_folder("a.vrs"));
  EXPECT_EQ(files_.find_file("link.vrs"), in_folder("a.vrs"));
  EXPECT_EQ(files_.find_file("long.vrs"), "");
  files_.search_paths_add("sub");
  EXPECT_EQ(files_.find_file("long.vrs"), in_folder("sub/long.vrs"));
  EXPECT_EQ(files_.canonical("missing/../a.vrs"), in_folder("a.vrs"));
  EXPECT_EQ(files_.canonical(""), "");
  EXPECT_EQ(files_.find_file(""), "");

  EXPECT_EQ(files_.list("."), (strings{"./a.vrs", "./link.vrs", "./sub"}));
  EXPECT_EQ(files_.list_files("."), (strings{"./a.vrs", "./link.vrs"}));
  EXPECT_EQ(files_.list_recursive("sub"), (strings{"sub/deep", "sub/long.vrs"}));
  files_.remove_all("sub");
  EXPECT_FALSE(files_.exists("sub"));
}

TEST_F(filesys_os, refused_names_are_missing_and_unreadable_files_empty) {
  files_.write("a.vrs", "text");
  fs::create_symlink("loop", "loop");
  fs::create_symlink("gone", "dangling");
  const std::string refused[] = {std::string("a.vrs\0.vrs", 10),
                                 std::string(100'000, 'x'),
                                 std::string(300, 'x'),
                                 "loop",
                                 "dangling",
                                 "a.vrs/b"};
  for (const std::string& name : refused) {
    EXPECT_EQ(files_.find_file(name), "") << name;
    EXPECT_FALSE(files_.exists(name)) << name;
    EXPECT_EQ(files_.read_file(name), "") << name;
    std::string bytes = "kept";
    files_.read(name, bytes);
    EXPECT_EQ(bytes, "kept") << name;
    files_.canonical(name);  // whatever it is, it does not throw
  }
  EXPECT_EQ(files_.find_file("."), fs::current_path().string());
  EXPECT_EQ(files_.read_file("."), "");
  EXPECT_EQ(files_.read_file("/dev/zero"), "");
}

TEST_F(filesys_os, failures_tell_the_operation) {
  files_.write("file", "");
  const std::string nul("a\0b", 3);
  const auto failure_of = [](auto operation) {
    try {
      operation();
    } catch (const std::exception& failure) {
      return std::string(failure.what());
    }
    return std::string("none");
  };
  const std::pair<std::string, const char*> rows[] = {
      {failure_of([&] { files_.write("no/such", "x"); }), "ios_base::failbit set"},
      {failure_of([&] { files_.write(nul, "x"); }), "ios_base::failbit set"},
      {failure_of([&] { files_.write("/dev/full", "x"); }), "set"},
      {failure_of([&] { files_.list("none"); }), "directory_iterator::directory_iterator"},
      {failure_of([&] { files_.list_files(nul); }), "directory_iterator::directory_iterator"},
      {failure_of([&] { files_.list_recursive("none"); }), "recursive_directory_iterator::"},
      {failure_of([&] { files_.create_directory("file/d"); }), "create_directories"},
      {failure_of([&] { files_.remove_all(nul); }), "remove_all"},
  };
  for (const auto& [text, expected] : rows) {
    EXPECT_NE(text.find(expected), std::string::npos) << text << ", expected: " << expected;
  }
}

}  // namespace
}  // namespace vorn
