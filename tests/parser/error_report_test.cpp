// Error texts: the context block, its line and its context, and the line read back.
#include <gtest/gtest.h>

#include <string>

#include "ixomep/values/error.h"
#include "tests/parser/queries.h"

namespace ixomep::test {
namespace {

constexpr std::int32_t kLineLabel = 33570582;
constexpr std::int32_t kContextLabel = 33570583;

// The block behind the text of the code.
std::string BlockOf(const String& error_text) {
  const std::string text(error_text.view());
  const std::size_t at = text.find("\n\n");
  return at == std::string::npos ? "no block" : text.substr(at);
}

// The block of the error of a text that cannot be read.
std::string BlockOfText(const String& text, const String& context = "file.mep") {
  return BlockOf(FailText(text, context)->GetErrorText());
}

TEST(ErrorText, Is_empty_after_a_successful_parse) {
  IxoMepParser parser("!", "test");
  EXPECT_EQ(parser.GetErrorText(), "");
  ASSERT_NE(parser.Parse(), IMEPERR_NONE);
  EXPECT_NE(parser.GetErrorText(), "");
  parser.SetText("A");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetErrorText(), "");
}

TEST(ErrorText, Is_the_text_of_the_code_an_empty_line_and_the_place) {
  const auto parser = FailText("A\nB !", "C:\\defs\\a.txt");
  String expected = IxoMepError::GetErrorText(IMEPERR_UNEXPECTED_CHARACTER);
  ASSERT_TRUE(expected.ReplaceFirst("%c", "!"));
  EXPECT_EQ(parser->GetErrorText(), expected + "\n\nLine 2 in C:\\defs\\a.txt");
}

TEST(ErrorText, A_placeholder_in_the_context_stays) {
  const auto parser = FailText("A !", "%c.mep");
  EXPECT_TRUE(parser->GetErrorText().view().find("\"!\"") != std::string_view::npos);
  EXPECT_EQ(BlockOf(parser->GetErrorText()), "\n\nin %c.mep");
}

TEST(ContextBlock, At_the_start_of_a_text_of_one_line_has_no_line) {
  EXPECT_EQ(BlockOfText("!"), "\n\nin file.mep");
}

TEST(ContextBlock, At_the_start_of_a_text_of_two_lines_has_line_1) {
  EXPECT_EQ(BlockOfText("!\nA"), "\n\nLine 1 in file.mep");
}

TEST(ContextBlock, A_line_feed_at_the_very_end_makes_no_second_line) {
  EXPECT_EQ(BlockOfText("A !\n"), "\n\nin file.mep");
  EXPECT_EQ(BlockOfText("A !\n\n"), "\n\nLine 1 in file.mep");
}

TEST(ContextBlock, After_the_third_line_feed_has_line_4) {
  EXPECT_EQ(BlockOfText("A\n\n\n!"), "\n\nLine 4 in file.mep");
  EXPECT_EQ(BlockOfText("A\n\nB !\n"), "\n\nLine 3 in file.mep");
}

TEST(ContextBlock, Carriage_returns_are_no_lines) {
  EXPECT_EQ(BlockOfText("A\r\rB\r\n!"), "\n\nLine 2 in file.mep");
}

TEST(ContextBlock, The_line_of_a_stretch_counts_from_the_start_of_the_complete_text) {
  const String text = "A\nB\nC !\n";
  IxoMepParser parser(text, 4, 4, 100, "file.mep");
  ASSERT_NE(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(BlockOf(parser.GetErrorText()), "\n\nLine 3 in file.mep");
}

TEST(ContextBlock, An_error_in_a_body_has_the_line_of_the_whole_text) {
  EXPECT_EQ(BlockOfText("A {\n B {\n C !\n}\n}"), "\n\nLine 3 in file.mep");
}

TEST(ContextBlock, A_context_made_of_name_and_kind) {
  IxoMepParser parser("!", "Rules", "library");
  ASSERT_NE(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(BlockOf(parser.GetErrorText()), "\n\nin \"Rules\" (library)");
}

TEST(ContextBlock, Labels_are_the_hosts) {
  TestHost host;
  host.resources[kLineLabel] = "Zeile";
  host.resources[kContextLabel] = "von";
  EXPECT_EQ(BlockOfText("A\n!"), "\n\nZeile 2 von file.mep");
}

TEST(ContextBlock, A_label_that_the_host_lacks_is_empty) {
  TestHost host;
  host.resources[kLineLabel] = "";
  host.resources[kContextLabel] = "";
  EXPECT_EQ(BlockOfText("A\n!"), "\n\n 2  file.mep");
}

TEST(ContextBlock, In_an_included_file_has_its_line_and_its_name) {
  TestHost host;
  host.files["b.txt"] = "B\n\nC !\n";
  EXPECT_EQ(BlockOfText("A\n@INCLUDE \"b.txt\"\nD"), "\n\nLine 3 in b.txt");
  host.files["b.txt"] = "B { C {\n! } }";
  EXPECT_EQ(BlockOfText("A\n@INCLUDE \"b.txt\"\nD"), "\n\nLine 2 in b.txt");
}

TEST(ContextBlock, Behind_an_include_goes_on_with_the_lines_of_the_outer_file) {
  TestHost host;
  host.files["b.txt"] = "B\nB\nB\nB\n";
  EXPECT_EQ(BlockOfText("A\n@INCLUDE \"b.txt\"\nD !"), "\n\nLine 3 in file.mep");
}

// --- The public form -----------------------------------------------------------------------------

String BlockForCurrent(const IxoMepParser& parser) {
  String text = "My text.";
  parser.MakeErrorText(text);
  return text;
}

TEST(MakeErrorText, Appends_the_block_of_the_current_element) {
  const auto parser = ReadText("A\n\nB\n", "file.mep");
  EXPECT_EQ(BlockForCurrent(*parser), "My text.\n\nLine 1 in file.mep");
  ASSERT_TRUE(parser->SetCurElemIndex(1));
  EXPECT_EQ(BlockForCurrent(*parser), "My text.\n\nLine 3 in file.mep");
}

TEST(MakeErrorText, Has_a_line_also_in_a_text_of_one_line) {
  EXPECT_EQ(BlockForCurrent(*ReadText("A", "file.mep")), "My text.\n\nLine 1 in file.mep");
}

TEST(MakeErrorText, Has_no_line_without_an_element) {
  EXPECT_EQ(BlockForCurrent(*ReadText("\n\n", "file.mep")), "My text.\n\nin file.mep");
}

TEST(MakeErrorText, Leaves_the_error_text_of_the_parser_alone) {
  const auto parser = FailText("A\n!", "file.mep");
  const String before = parser->GetErrorText();
  BlockForCurrent(*parser);
  EXPECT_EQ(parser->GetErrorText(), before);
  EXPECT_EQ(parser->GetErrorCode(), IMEPERR_UNEXPECTED_CHARACTER);
}

TEST(MakeErrorText, Names_the_file_in_which_the_element_stands) {
  TestHost host;
  host.files["b.txt"] = "\nB";
  const auto parser = ReadText("A\n@INCLUDE \"b.txt\"\nC", "file.mep");
  ASSERT_TRUE(parser->SetCurElemIndex(1));
  EXPECT_EQ(BlockForCurrent(*parser), "My text.\n\nLine 2 in b.txt");
  ASSERT_TRUE(parser->SetCurElemIndex(2));
  EXPECT_EQ(BlockForCurrent(*parser), "My text.\n\nLine 3 in file.mep");
}

TEST(MakeErrorText, Without_memory_leaves_the_text_as_it_was) {
  const auto parser = ReadText("A", String::Filled(10000, 'c'));
  String text = "My text.";
  const ScopedMemoryLimit limit(100);
  parser->MakeErrorText(text);
  EXPECT_EQ(text, "My text.");
}

// --- The line read back --------------------------------------------------------------------------

TEST(LineOfErrorText, Is_the_line_that_was_written) {
  EXPECT_EQ(IxoMepParser::GetLineOfErrorText(FailText("A\n\n\n!")->GetErrorText()), 4);
  EXPECT_EQ(IxoMepParser::GetLineOfErrorText(BlockForCurrent(*ReadText("A"))), 1);
}

TEST(LineOfErrorText, Without_a_line_is_not_found) {
  for (const char* text :
       {"", "some text", "Line 5 in x", "\nLine", "\nLine5", "\nline 5", "text\n\nin file.mep"}) {
    EXPECT_EQ(IxoMepParser::GetLineOfErrorText(text), String::kNotFound) << text;
  }
}

TEST(LineOfErrorText, Is_the_integer_behind_label_and_blank) {
  const std::pair<const char*, std::int32_t> rows[] = {
      {"x\nLine 12 in y", 12}, {"\nLine 7", 7},
      {"\nLine 12a", 12},      {"\nLine  3", 3},
      {"\nLine -4", -4},       {"\nLine x", 0},
      {"\nLine ", 0},          {"\nLine 99999999999", 2147483647}};
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(IxoMepParser::GetLineOfErrorText(text), expected) << text;
  }
}

TEST(LineOfErrorText, Uses_the_hosts_label) {
  TestHost host;
  host.resources[kLineLabel] = "Zeile";
  EXPECT_EQ(IxoMepParser::GetLineOfErrorText("x\nZeile 12 von y"), 12);
  EXPECT_EQ(IxoMepParser::GetLineOfErrorText("x\nLine 12 in y"), String::kNotFound);
}

}  // namespace
}  // namespace ixomep::test
