// Values written as literals, the display form of a measure, the extent of an attribute.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/parser/queries.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

using namespace std::string_literals;

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(StringLiteral, Quotes_and_backslashes_are_protected) {
  EXPECT_EQ(IxoMepParser::GetMepTextOfStrValue(""), "\"\"");
  EXPECT_EQ(IxoMepParser::GetMepTextOfStrValue("plain"), "\"plain\"");
  EXPECT_EQ(IxoMepParser::GetMepTextOfStrValue("a\"b\\c"), "\"a\\\"b\\\\c\"");
}

TEST(StringLiteral, Bytes_7_to_13_become_letters) {
  EXPECT_EQ(IxoMepParser::GetMepTextOfStrValue("\a\b\t\n\v\f\r"), "\"\\a\\b\\t\\n\\v\\f\\r\"");
}

TEST(StringLiteral, Every_other_byte_is_copied) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) {
    const bool is_written_otherwise = (byte >= 7 && byte <= 13) || byte == '"' || byte == '\\';
    if (!is_written_otherwise) bytes += static_cast<char>(byte);
  }
  EXPECT_EQ(IxoMepParser::GetMepTextOfStrValue(bytes), "\"" + bytes + "\"");
}

TEST(StringLiteral, Reading_gives_the_text_back) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  for (const std::string& text : {bytes, "a\"b\\c\td"s, "\\"s, "\""s, ""s}) {
    const Literal literal = ReadLiteralAt(IxoMepParser::GetMepTextOfStrValue(text));
    ASSERT_NE(literal.value, nullptr);
    EXPECT_EQ(literal.value->GetStr(), text);
  }
}

TEST(StringLiteral, Too_long_for_the_memory_is_empty) {
  const String text = String::Filled(100000, 'x');
  const ScopedMemoryLimit limit(1000);
  EXPECT_EQ(IxoMepParser::GetMepTextOfStrValue(text), "");
}

TEST(NumberLiteral, Has_twelve_digits_and_a_point_when_asked_for) {
  struct Row {
    double number;
    const char* with_period;
    const char* without;
  };
  constexpr Row kRows[] = {{0.0, "0.0", "0"},
                           {2.0, "2.0", "2"},
                           {-0.25, "-0.25", "-0.25"},
                           {1.0 / 3.0, "0.333333333333", "0.333333333333"},
                           {1e15, "1000000000000000.0", "1000000000000000"}};
  TestHost host;
  host.decimal_separator = ',';
  for (const Row& row : kRows) {
    EXPECT_EQ(IxoMepParser::GetMepTextOfNumValue(row.number, true), row.with_period);
    EXPECT_EQ(IxoMepParser::GetMepTextOfNumValue(row.number, false), row.without);
  }
}

struct TextRow {
  std::int32_t tenths;
  const char* text;
};

TEST(MeasureLiteral, In_centimetres) {
  constexpr TextRow kRows[] = {{0, "0cm"},
                               {125, "1.25cm"},
                               {150, "1.5cm"},
                               {105, "1.05cm"},
                               {100, "1cm"},
                               {50, ".5cm"},
                               {-50, "-.5cm"},
                               {-5, "-.05cm"},
                               {7, ".07cm"},
                               {10, ".1cm"},
                               {-125, "-1.25cm"},
                               {-100, "-1cm"},
                               {99, ".99cm"},
                               {1, ".01cm"},
                               {-105, "-1.05cm"},
                               {kMost, "21474836.47cm"},
                               {kLeast, "-21474836.48cm"}};
  for (const TextRow& row : kRows) {
    EXPECT_EQ(IxoMepParser::GetMepTextOfTMMValue(row.tenths), row.text);
  }
}

TEST(MeasureLiteral, Reading_gives_the_measure_back) {
  for (std::int32_t tenths = -3000; tenths <= 3000; ++tenths) {
    const String text = IxoMepParser::GetMepTextOfTMMValue(tenths);
    const Literal literal = ReadLiteralAt(text);
    ASSERT_NE(literal.value, nullptr) << text.c_str();
    EXPECT_EQ(literal.value->GetType(), IxoMepValueType::Measure);
    EXPECT_EQ(literal.value->GetTMM(), tenths) << text.c_str();
    EXPECT_EQ(literal.position, text.Len());
  }
}

TEST(MeasureLiteral, In_points) {
  constexpr TextRow kRows[] = {{125, "12.5pt"},
                               {5, "0.5pt"},
                               {0, "0.0pt"},
                               {-30, "-3.0pt"},
                               {1, "0.1pt"},
                               {-1, "-0.1pt"},
                               {10, "1.0pt"},
                               {-125, "-12.5pt"},
                               {kMost, "214748364.7pt"},
                               {kLeast, "-214748364.8pt"}};
  for (const TextRow& row : kRows) {
    EXPECT_EQ(IxoMepParser::GetMepTextOfTPtValue(row.tenths), row.text);
  }
}

TEST(MeasureForDisplay, Has_the_separator_of_the_host_and_all_digits) {
  constexpr TextRow kRows[] = {{125, "1.25 cm"},
                               {5, "0.05 cm"},
                               {0, "0.00 cm"},
                               {100, "1.00 cm"},
                               {-50, "-0.50 cm"},
                               {-12345, "-123.45 cm"},
                               {kMost, "21474836.47 cm"},
                               {kLeast, "-21474836.48 cm"}};
  TestHost host;
  for (const TextRow& row : kRows) {
    EXPECT_EQ(IxoMepParser::GetUITextOfTMMValue(row.tenths), row.text);
  }
  host.decimal_separator = ',';
  EXPECT_EQ(IxoMepParser::GetUITextOfTMMValue(125), "1,25 cm");
  EXPECT_EQ(IxoMepParser::GetUITextOfTMMValue(0), "0,00 cm");
}

// --- The extent of an attribute ------------------------------------------------------------------

struct Extent {
  const char* text;
  std::int32_t position;
  std::int32_t length;
};

TEST(AttributeLength, Ends_at_the_first_white_space_outside_everything) {
  constexpr Extent kRows[] = {
      {"size", 0, 4},
      {"size ", 0, 4},
      {"size: 5 next", 0, 7},
      {"size:5\tnext", 0, 6},
      {"size: mod: 5 next", 0, 12},
      {"size:  \n 5\nnext", 0, 10},
      {"a: \"b c\" d", 0, 8},
      {"a: \"b \\\" c\" d", 0, 11},
      {"a: (1 + 2) b", 0, 10},
      {"a: (1 + \")\" (* ) *) ) b", 0, 21},
      {"a: {1, {2, 3}} b", 0, 14},
      {"a: { B c: 1 } d", 0, 13},
      {"list[1 + 2]: 5 b", 0, 14},
      {"a: (1 # )\n) b", 0, 11},
      {"a:5(* c d *)6 b", 0, 13},
      {"KEY a: 1 b: 2", 4, 4},
      {"KEY a: 1 b: 2", 9, 4},
      {"_x: 1 ", 0, 5},
      {"\xE4\xF6: 1 ", 0, 5},
      {"a: 1\xA0z", 0, 4},
  };
  for (const Extent& row : kRows) {
    EXPECT_EQ(IxoMepParser::GetAttrMepTextLen(row.text, row.position), row.length) << row.text;
  }
}

TEST(AttributeLength, Without_white_space_reaches_to_the_end_of_the_text) {
  EXPECT_EQ(IxoMepParser::GetAttrMepTextLen("a: (1 + 2", 0), 9);
  EXPECT_EQ(IxoMepParser::GetAttrMepTextLen("a: \"open end", 0), 12);
  EXPECT_EQ(IxoMepParser::GetAttrMepTextLen("a: ", 0), 3);
}

TEST(AttributeLength, Ends_at_a_bracket_that_closes_what_stands_around_it) {
  EXPECT_EQ(IxoMepParser::GetAttrMepTextLen("KEY { a: 1} b", 6), 4);
  EXPECT_EQ(IxoMepParser::GetAttrMepTextLen("a: (1} b", 0), 5);
}

TEST(AttributeLength, Is_not_found_where_no_attribute_starts) {
  for (const char* text : {"", " a", "A", "5", "\"a\"", ":a", "(a)", "-a", "@A", "#a", "\t"}) {
    EXPECT_EQ(IxoMepParser::GetAttrMepTextLen(text, 0), String::kNotFound) << text;
  }
  for (const std::int32_t position : {kLeast, -1, 4, 5, kMost}) {
    EXPECT_EQ(IxoMepParser::GetAttrMepTextLen("a: 1", position), String::kNotFound) << position;
  }
}

TEST(AttributeLength, Is_what_the_parser_takes) {
  const String text = "KEY a: mod: (x + \" ) \") list[2]: {1, 2} b: { C d: 1 } flag ";
  const auto parser = ReadText(text);
  std::int32_t position = 4;
  for (std::int32_t i = 0; i < parser->GetAttrCount(); ++i) {
    const std::int32_t length = IxoMepParser::GetAttrMepTextLen(text, position);
    ASSERT_NE(length, String::kNotFound) << i;
    const auto alone = ReadText("KEY " + text.Copy(position, length));
    EXPECT_EQ(alone->GetAttrCount(), 1);
    EXPECT_EQ(alone->GetAttrNameOfPos(0), parser->GetAttrNameOfPos(i));
    position += length + 1;
  }
  EXPECT_EQ(position, text.Len());
}

}  // namespace
}  // namespace ixomep::test
