#include "frontend/include_pass.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include <vornscript/vrnscript.hpp>

#include "frontend/lexer.hpp"
#include "frontend/nesting.hpp"
#include "tests/support/collecting_log.hpp"
#include "tests/support/memory_filesys.hpp"

namespace vorn::test {
namespace {

class include_pass : public testing::Test {
 protected:
  // Reads a main file; the texts of all its tokens, line ends as "$".
  std::string tokens_of(std::string text) {
    view_.text = std::move(text);
    view_.name = "main.vrs";
    view_.included.emplace(view_.name, nullptr);
    files_->add(view_.name, view_.text);
    lines_ = tokenize(view_);
    std::string result;
    for (const vrn_token& token : view_.tokens) {
      if (!result.empty()) result += ' ';
      result += token->kind == vrn_token_kind::end_of_line ? "$" : std::string(token->text);
    }
    return result;
  }

  std::shared_ptr<memory_filesys> files_ = std::make_shared<memory_filesys>();
  std::shared_ptr<collecting_log> log_ = std::make_shared<collecting_log>();
  vrnscript script_{{files_, log_, false, "", nullptr}};
  vrn_src_token_view view_;
  std::uint32_t lines_ = 0;
};

TEST_F(include_pass, splices_tokens_where_the_directive_stood) {
  files_->add("d/one.vrs", "one\n#include 'two' 'lost' 'main'\n1\n");
  files_->add("d/two.vrs", "\n\n'''2\n''' #include 'one'");
  files_->add("broken.vrs", "x\n#include 'never'\n/*");
  files_->add("blank.vrs", "\n//\n");
  files_->add("hollow.vrs", "#include 'blank'\n#include");
  EXPECT_EQ(tokens_of("a # include 'd/one' 'broken'\n#include 'hollow'\nz #include"),
            "a one $ 2\n $ 1 $ z");
  EXPECT_EQ(lines_, 3u + 4u + 4u + 2u);
  ASSERT_EQ(view_.includes.size(), 1u);
  const vrn_src_token_view& one = *view_.includes[0];
  EXPECT_EQ(one.name + ' ' + one.directory, "d/one.vrs d");
  EXPECT_EQ(one.parent, &view_);
  EXPECT_EQ(one.included_at->index, 12u);
  EXPECT_EQ(view_.tokens[1]->source, &one);
  EXPECT_EQ(view_.tokens[3]->source, one.includes.at(0).get());

  const std::vector<std::string> log = {"Include file: d/one.vrs",
                                        "Include file: d/two.vrs",
                                        "Skipping include (again): d/one.vrs",
                                        "Skipping include (again): main.vrs",
                                        "Include file: broken.vrs",
                                        "Include file: hollow.vrs",
                                        "Include file: blank.vrs",
                                        "Empty include file: blank.vrs",
                                        "Empty include file: hollow.vrs"};
  EXPECT_EQ(log_->texts(vrn_log_level::log), log);
  EXPECT_EQ(log_->texts(vrn_log_level::error).size(), 2u);
}

TEST_F(include_pass, ends_the_last_line_of_a_file) {
  files_->add("a.vrs", "1");
  files_->add("b.vrs", "2\n");
  files_->add("c.vrs", "3 \\\n");
  files_->add("d.vrs", "4 \\");
  EXPECT_EQ(tokens_of("#include 'a' 'b' 'c' 'd'\nz"), "1 $ 2 $ 3 \\ $ $ 4 \\ $ $ z");
}

TEST_F(include_pass, limits_the_depth) {
  const auto name = [](std::uint32_t number) {
    return std::string("f").append(std::to_string(number));
  };
  for (std::uint32_t i = 1; i <= max_nesting + 1; ++i) {
    files_->add(name(i) + ".vrs", "#include 'main' '" + name(i + 1) + "'\n x");
  }
  tokens_of("#include 'f1'");
  EXPECT_EQ(view_.tokens.size(), 2 * max_nesting);
  EXPECT_EQ(lines_, 1 + 2 * max_nesting);
  const auto errors = log_->texts(vrn_log_level::error);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_NE(errors[0].find(" --> f1000.vrs:1:16\n"), std::string::npos);
  EXPECT_NE(errors[0].find("\n*** Nesting is too deep.\n|-- main.vrs --> Line 1, Index 9\n"),
            std::string::npos);
}

TEST(include_pass_alone, finds_nothing_without_an_interpreter) {
  collecting_log log;
  log_override = &log;
  vrn_src_token_view view;
  view.text = "#include <a>\nb";
  EXPECT_EQ(tokenize(view), 2u);
  log_override = nullptr;
  EXPECT_EQ(view.tokens.size(), 1u);
  EXPECT_EQ(log.records.size(), 6u);
}

}  // namespace
}  // namespace vorn::test
