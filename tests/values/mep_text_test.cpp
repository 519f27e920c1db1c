// Values written as literals, and the display form of a measure.
#include "ixomep/values/mep_text.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(MepTextOfString, Quotes_and_escapes) {
  EXPECT_EQ(Str(MepTextOfString("")), "\"\"");
  EXPECT_EQ(Str(MepTextOfString("abc")), "\"abc\"");
  EXPECT_EQ(Str(MepTextOfString("q\"b\\t\t")), "\"q\\\"b\\\\t\\t\"");
  EXPECT_EQ(Str(MepTextOfString("\a\b\t\n\v\f\r")), "\"\\a\\b\\t\\n\\v\\f\\r\"");
}

TEST(MepTextOfString, Every_byte_is_escaped_or_copied_by_the_rule) {
  const std::string letters = "abtnvfr";
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    std::string expected = "\"" + text + "\"";
    if (byte >= 7 && byte <= 13) {
      expected = std::string("\"\\") + letters[static_cast<std::size_t>(byte - 7)] + "\"";
    } else if (text == "\"" || text == "\\") {
      expected = "\"\\" + text + "\"";
    }
    EXPECT_EQ(Str(MepTextOfString(text)), expected) << byte;
  }
}

TEST(MepTextOfString, A_literal_beyond_the_maximum_length_is_refused) {
  const ScopedMemoryLimit limit(1000);
  String text;
  EXPECT_THROW(MepTextOfString(std::string(2000, 'x')), std::bad_alloc);
  EXPECT_THROW(AppendMepTextOfString(text, std::string(2000, 'x')), std::bad_alloc);
  EXPECT_TRUE(text.IsEmpty());
}

TEST(MepTextOfNumber, The_period_keeps_the_final_zero) {
  EXPECT_EQ(Str(MepTextOfNumber(2, true)), "2.0");
  EXPECT_EQ(Str(MepTextOfNumber(2, false)), "2");
  EXPECT_EQ(Str(MepTextOfNumber(-0.25, true)), "-0.25");
  EXPECT_EQ(Str(MepTextOfNumber(1.0 / 3, false)), "0.333333333333");
}

TEST(MepTextOfNumber, Has_a_point_whatever_the_users_separator) {
  TestHost host;
  host.decimal_separator = ',';
  EXPECT_EQ(Str(MepTextOfNumber(2.5, true)), "2.5");
  EXPECT_EQ(Str(MepTextOfNumber(2.5, false)), "2.5");
}

struct Row {
  std::int32_t value;
  const char* text;
};

TEST(MepTextOfTenths, Writes_centimetres_without_zeros_that_say_nothing) {
  const Row rows[] = {
      {0, "0cm"},
      {125, "1.25cm"},
      {150, "1.5cm"},
      {105, "1.05cm"},
      {100, "1cm"},
      {50, ".5cm"},
      {-50, "-.5cm"},
      {-5, "-.05cm"},
      {7, ".07cm"},
      {10, ".1cm"},
      {1, ".01cm"},
      {99, ".99cm"},
      {-100, "-1cm"},
      {-125, "-1.25cm"},
      {-105, "-1.05cm"},
      {1234, "12.34cm"},
      {10000, "100cm"},
      {kMax, "21474836.47cm"},
      {kMin, "-21474836.48cm"},
  };
  for (const Row& row : rows) EXPECT_EQ(Str(MepTextOfTenths(row.value)), row.text);
}

TEST(MepTextOfPoints, Keeps_one_digit_behind_the_point) {
  const Row rows[] = {
      {125, "12.5pt"},
      {5, "0.5pt"},
      {0, "0.0pt"},
      {-30, "-3.0pt"},
      {1, "0.1pt"},
      {10, "1.0pt"},
      {-5, "-0.5pt"},
      {kMax, "214748364.7pt"},
      {kMin, "-214748364.8pt"},
  };
  for (const Row& row : rows) EXPECT_EQ(Str(MepTextOfPoints(row.value)), row.text);
}

TEST(UITextOfTenths, Keeps_all_digits_and_uses_the_users_separator) {
  const Row rows[] = {
      {125, "1.25 cm"}, {5, "0.05 cm"},       {0, "0.00 cm"},           {-5, "-0.05 cm"},
      {100, "1.00 cm"}, {-1234, "-12.34 cm"}, {kMax, "21474836.47 cm"}, {kMin, "-21474836.48 cm"},
  };
  TestHost host;
  host.decimal_separator = '.';
  for (const Row& row : rows) EXPECT_EQ(Str(UITextOfTenths(row.value)), row.text);
  host.decimal_separator = ',';
  EXPECT_EQ(Str(UITextOfTenths(125)), "1,25 cm");
  EXPECT_EQ(Str(UITextOfTenths(0)), "0,00 cm");
}

}  // namespace
}  // namespace ixomep::test
