// Errors in included files and behind them: which file, line and column they name.
#include <gtest/gtest.h>

#include <cstdint>

#include "ixomep/parser/parser.h"
#include "ixomep/values/error_code.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

TEST(IncludeErrors, Name_the_included_file_and_its_line) {
  TestHost host;
  host.files["dir\\b"] = "B\n\n c.d";
  const Definition definition("A\n\n\n\n@INCLUDE \"dir\\\\b\"\nE");
  EXPECT_EQ(definition.code, IMEPERR_BAD_ATTRIBUTE_NAME);
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_BAD_ATTRIBUTE_NAME, {}, 3, "dir\\b"));
  EXPECT_EQ(definition.parser.GetErrorContext(), "dir\\b");
  EXPECT_EQ(definition.parser.GetErrorLine(), 3);
  EXPECT_EQ(definition.parser.GetErrorColumn(), 3);
  EXPECT_EQ(definition.parser.GetErrorOffset(), 10);
  EXPECT_EQ(Shape(definition.parser), "A; B");
}

TEST(IncludeErrors, In_a_body_of_an_included_file_name_it_too) {
  TestHost host;
  host.files["b"] = "B {\n C {\n D ? } }";
  const Definition definition("A\n@INCLUDE \"b\"");
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "?"}}, 3, "b"));
}

TEST(IncludeErrors, In_a_file_included_by_a_body_name_it_too) {
  TestHost host;
  host.files["b"] = "B\nC ?";
  const Definition definition("A {\n X\n { \n @INCLUDE \"b\" } }");
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "?"}}, 2, "b"));
  // The outer text holds the directive, not the file.
  EXPECT_EQ(definition.parser.GetErrorOffset(), 12);
}

TEST(IncludeErrors, Behind_an_include_have_the_lines_of_the_outer_file) {
  TestHost host;
  host.files["b"] = "B\n\n\n\n\n";
  const Definition definition("A\n@INCLUDE \"b\"\n ?");
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "?"}}, 3, "test"));
}

TEST(IncludeErrors, What_a_file_leaves_open_is_an_error_in_that_file) {
  TestHost host;
  struct Row {
    const char* file;
    IxoMepErrorEnum code;
  };
  const Row rows[] = {
      {"B\n\"abc", IMEPERR_STRING_NOT_CLOSED}, {"B\n{", IMEPERR_CLOSER_EXPECTED},
      {"B\nc: {", IMEPERR_CLOSER_EXPECTED},    {"B\nc:", IMEPERR_VALUE_EXPECTED},
      {"B\nc: m:", IMEPERR_VALUE_EXPECTED},    {"B\n\"abc\\", IMEPERR_BACKSLASH_AT_END}};
  for (const Row& row : rows) {
    host.files["b"] = row.file;
    const Definition definition("@INCLUDE \"b\" 5 } \" x: 1");
    EXPECT_EQ(definition.code, row.code) << row.file;
    EXPECT_EQ(definition.parser.GetErrorContext(), "b") << row.file;
    EXPECT_EQ(definition.parser.GetErrorLine(), 2) << row.file;
  }
}

TEST(IncludeErrors, At_the_end_of_a_file_stand_in_that_file) {
  TestHost host;
  struct Row {
    const char* file;
    IxoMepErrorEnum code;
    std::int32_t line;
    std::int32_t column;
  };
  const Row rows[] = {{"A a:", IMEPERR_VALUE_EXPECTED, 1, 5},
                      {"A a: m:", IMEPERR_VALUE_EXPECTED, 1, 8},
                      {"A\n a:", IMEPERR_VALUE_EXPECTED, 2, 4},
                      {"A\na:\n", IMEPERR_VALUE_EXPECTED, 3, 1},
                      {"A (1+", IMEPERR_OPERAND_EXPECTED, 1, 6}};
  for (const Row& row : rows) {
    host.files["f"] = row.file;
    for (const char* const text : {"T\n@INCLUDE \"f\"", "T\n@INCLUDE \"f\" ",
                                   "T\n\n@INCLUDE \"f\"\nB c: 1", "T\n{ @INCLUDE \"f\"}"}) {
      const Definition definition(text);
      const IxoMepParser& parser = definition.parser;
      EXPECT_EQ(definition.code, row.code) << row.file << " in " << text;
      EXPECT_EQ(IxoMepParser::GetLineOfErrorText(parser.GetErrorText()), row.line)
          << row.file << " in " << text << ": " << parser.GetErrorText().view();
      EXPECT_TRUE(parser.GetErrorText().view().ends_with(" f")) << parser.GetErrorText().view();
      EXPECT_EQ(parser.GetErrorContext(), "f") << row.file << " in " << text;
      EXPECT_EQ(parser.GetErrorLine(), row.line) << row.file << " in " << text;
      EXPECT_EQ(parser.GetErrorColumn(), row.column) << row.file << " in " << text;
    }
  }
}

TEST(IncludeErrors, Overflow_text_holds_the_complete_text) {
  TestHost host;
  host.files["b"] = "B 5e-1 ";
  const Definition definition("A\n@INCLUDE \"b\" C");
  EXPECT_EQ(definition.parser.GetErrorText(),
            ErrorTextOf(IMEPERR_NUMBER_OVERFLOW, {{"%func", "A\nB 5e-1  C"}}, 1, "b"));
}

}  // namespace
}  // namespace ixomep::test
