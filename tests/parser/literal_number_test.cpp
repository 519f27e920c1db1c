// Number and time literals.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <string_view>

#include "ixomep/values/value.h"
#include "ixomep/values/value_rep.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

struct Row {
  std::string_view text;
  std::string_view expected;
};

template <std::size_t kCount>
void CheckAll(const Row (&rows)[kCount]) {
  for (const Row& row : rows) EXPECT_EQ(LiteralOf(row.text), row.expected) << row.text;
}

double NumberOf(std::string_view text) {
  const Literal literal = ReadLiteralAt(text);
  return literal.value == nullptr ? std::nan("") : ValueAccess::Number(*literal.value);
}

TEST(LiteralNumber, Digits_give_an_integer) {
  CheckAll({{"12", "integer 12"},
            {"0", "integer 0"},
            {"007", "integer 7"},
            {"2147483647", "integer 2147483647"},
            {"12 x", "integer 12 @2"},
            {"12;", "integer 12 @2"}});
}

TEST(LiteralNumber, Minus_is_a_sign) {
  CheckAll({{"-12", "integer -12"}, {"-0", "integer 0"}, {"-$a", "integer -10"}});
}

TEST(LiteralNumber, Plus_is_no_sign) { EXPECT_EQ(LiteralOf("+12"), "error 5"); }

TEST(LiteralNumber, Minus_without_a_number_fails_with_5_behind_the_sign) {
  for (const std::string_view text : {"-", "-x", "--1", "- 1", "-\"a\"", "-(1)"}) {
    EXPECT_EQ(LiteralOf(text), "error 5") << text;
    EXPECT_EQ(ReadLiteralAt(text).position, 1) << text;
  }
}

TEST(LiteralNumber, Integer_that_wrapped_becomes_a_real) {
  CheckAll({{"2147483648", "real 2147483648"},
            {"-2147483648", "real -2147483648"},
            {"4294967296", "real 4294967296"},
            // Wraps to a larger number than before: told by the comparison with the real.
            {"9999999999", "real 9999999999"},
            {"100000000000000000000 ", "real 100000000000000000000 @21"}});
}

TEST(LiteralNumber, Number_of_400_digits_is_infinite) {
  EXPECT_EQ(LiteralOf(Repeated("9", 400)), "real inf");
  EXPECT_EQ(LiteralOf("-" + Repeated("9", 400) + " "), "real -inf @401");
}

TEST(LiteralNumber, Fraction_gives_a_real) {
  CheckAll({{"0.5", "real 0.5"},
            {".5", "real 0.5"},
            {"-.5", "real -0.5"},
            {"2.0", "real 2"},
            {"12.25 ", "real 12.25 @5"},
            {"1.2.3", "real 1.2 @3"}});
}

TEST(LiteralNumber, Point_without_digit_behind_it_is_left_unread) {
  CheckAll({{"5.", "integer 5 @1"},
            {"5.x", "integer 5 @1"},
            {"5. 5", "integer 5 @1"},
            {"5.cmx", "integer 5 @1"},
            {"5.e3", "integer 5 @1"},
            {"3000000000.", "real 3000000000 @10"}});
}

TEST(LiteralNumber, Point_as_first_character_is_a_decimal_point) {
  CheckAll({{".", "integer 0"}, {"-.", "integer 0"}, {".x", "error 6"}, {". ", "integer 0 @1"}});
}

TEST(LiteralNumber, Point_before_a_unit_is_stepped_over) {
  CheckAll({{"3.cm", "measure 3cm"},
            {"3.s ", "time 00:000:00:00:03 @3"},
            {"3.pt", "measure .1cm"},
            {"3.5cm", "measure 3.5cm"}});
  EXPECT_EQ(NumberOf("3.cm"), 300.0);
}

TEST(LiteralNumber, Exponent_gives_a_real) {
  CheckAll({{"1e2", "real 100"},
            {"1E2", "real 100"},
            {"1e+2", "real 100"},
            {"2.5e1 ", "real 25 @5"},
            {"5e1", "real 50"},
            {"5e0", "real 5"},
            {"5e-0", "real 5"},
            {"0e-5", "real 0"},
            {"-5e2", "real -500"}});
}

TEST(LiteralNumber, Letter_e_without_digits_is_no_exponent) {
  CheckAll({{"5e", "error 6"}, {"5e+", "error 6"}, {"5E", "integer 5 @1"}, {"5em", "error 6"}});
}

// The number becomes smaller, and that is what overflow means here.
TEST(LiteralNumber, Negative_exponent_counts_as_overflow) {
  CheckAll({{"5e-1", "error 19"}, {"5e-1 ", "error 19"}, {"1.5E-2cm", "error 19"}});
}

TEST(LiteralNumber, Huge_exponents_end_without_harm) {
  CheckAll({{"1e999999999999 ", "real inf @14"}, {"0e-999999999999", "real 0"}});
}

TEST(LiteralNumber, Overflow_text_holds_the_whole_text_being_read) {
  String expected;
  Raise(expected, IMEPERR_NUMBER_OVERFLOW, {{"%func", "xx 5e-1 yy"}});
  const Literal literal = ReadLiteralAt("xx 5e-1 yy", 3);
  EXPECT_EQ(literal.code, 19);
  EXPECT_EQ(literal.error_text, expected.view());
}

TEST(LiteralNumber, Real_is_converted_afresh_unless_the_text_ends_it) {
  // Step by step, 0.3 becomes 0.30000000000000004.
  EXPECT_EQ(NumberOf("0.3 "), 0.3);
  EXPECT_EQ(NumberOf("-0.3 "), -0.3);
  EXPECT_EQ(NumberOf("0.3"), 3 * 0.1);
  EXPECT_NE(NumberOf("0.3"), 0.3);
}

TEST(LiteralNumber, Number_behind_a_position_uses_its_own_characters) {
  const Literal literal = ReadLiteralAt("99 -0.75 1", 3);
  ASSERT_NE(literal.value, nullptr);
  EXPECT_EQ(ValueAccess::Number(*literal.value), -0.75);
  EXPECT_EQ(literal.position, 8);
}

TEST(LiteralNumber, Hexadecimal) {
  CheckAll({{"$ff", "integer 255"},
            {"$FF", "integer 255"},
            {"$0a9", "integer 169"},
            {"-$10", "integer -16"},
            {"$7fffffff", "integer 2147483647"},
            {"$ff ", "integer 255 @3"},
            {"$ffg", "error 6"},
            {"$10mm ", "measure 1.6cm @5"}});
}

TEST(LiteralNumber, Hexadecimal_needs_a_digit) {
  CheckAll({{"$", "error 5"}, {"$g", "error 5"}, {"-$", "error 5"}, {"$ 1", "error 5"}});
}

// $10c is the number, m the unit.
TEST(LiteralNumber, Hexadecimal_digits_come_before_units) {
  EXPECT_EQ(NumberOf("$10cm"), 268.0 * 10000.0);
}

TEST(LiteralNumber, Hexadecimal_that_wrapped_is_converted_afresh_wherever_it_ends) {
  CheckAll({{"$ffffffff", "real 4294967295"},
            {"-$ffffffff", "real -4294967295"},
            {"$80000000", "real 2147483648"},
            {"$100000000", "real 4294967296"},
            {"$ffffffff ", "real 4294967295 @9"},
            {"$ffffffff%", "real -0.01"}});
}

TEST(LiteralNumber, Percent_only_at_the_very_end_of_the_text) {
  CheckAll({{"50%", "real 0.5"},
            {"-50%", "real -0.5"},
            {"12.5%", "real 0.125"},
            {"50% ", "integer 50 @2"},
            {"50%x", "integer 50 @2"},
            {"$64%", "real 1"}});
}

TEST(LiteralNumber, Units) {
  struct Unit {
    std::string_view text;
    IxoMepValueType type;
    double number;
  };
  const Unit units[] = {
      {"1m", IxoMepValueType::Measure, 10000.0},    {"1cm", IxoMepValueType::Measure, 100.0},
      {"1mm", IxoMepValueType::Measure, 10.0},      {"1pt", IxoMepValueType::Measure, 3.5277777778},
      {"5s", IxoMepValueType::Time, 5.0},           {"12.5mm", IxoMepValueType::Measure, 125.0},
      {"-2.5cm", IxoMepValueType::Measure, -250.0}, {"0cm", IxoMepValueType::Measure, 0.0},
      {"1e2s", IxoMepValueType::Time, 100.0},       {".5s", IxoMepValueType::Time, 0.5}};
  for (const Unit& unit : units) {
    const Literal literal = ReadLiteralAt(unit.text);
    ASSERT_NE(literal.value, nullptr) << unit.text;
    EXPECT_EQ(literal.value->GetType(), unit.type) << unit.text;
    EXPECT_EQ(ValueAccess::Number(*literal.value), unit.number) << unit.text;
    EXPECT_EQ(literal.position, static_cast<std::int32_t>(unit.text.size())) << unit.text;
  }
}

TEST(LiteralNumber, Unknown_unit_fails_with_6_and_its_letters) {
  CheckAll({{"5km", "error 6"}, {"5MM", "integer 5 @1"}, {"5mmx", "error 6"}, {"5x1", "error 6"}});
  String expected;
  Raise(expected, IMEPERR_UNKNOWN_UNIT, {{"%s", "km"}});
  EXPECT_EQ(ReadLiteralAt("5km1").error_text, expected.view());
  EXPECT_EQ(ReadLiteralAt("5km1").position, 3);
}

TEST(LiteralNumber, Wrapped_number_with_a_unit_keeps_the_real) {
  EXPECT_EQ(NumberOf("3000000000s"), 3e9);
  EXPECT_EQ(NumberOf("3000000000cm"), 3e11);
}

TEST(LiteralTime, Fifteen_characters_in_the_layout) {
  CheckAll({{"01:002:03:04:05", "time 01:002:03:04:05"},
            {"00:000:00:00:00", "time 00:000:00:00:00"},
            {"00:000:00:00:07 x", "time 00:000:00:00:07 @15"},
            {"00:000:00:00:071", "time 00:000:00:00:07 @15"}});
  EXPECT_EQ(NumberOf("01:002:03:04:05"), ((365.0 + 2) * 24 + 3) * 3600 + 4 * 60 + 5);
}

TEST(LiteralTime, What_the_layout_rejects_is_read_as_a_number) {
  CheckAll({{"01:400:00:00:00", "integer 1 @2"},
            {"01:002:03:04:0x", "integer 1 @2"},
            {"1:002:03:04:056", "integer 1 @1"},
            {"-1:002:03:04:05", "integer -1 @2"},
            {"123456789000000 ", "real 123456789000000 @15"}});
}

TEST(LiteralTime, Fewer_than_fifteen_characters_are_read_as_a_number) {
  EXPECT_EQ(LiteralOf("01:002:03:04:0"), "integer 1 @2");
  EXPECT_EQ(LiteralOf("1:2:3:4:5"), "integer 1 @1");
}

}  // namespace
}  // namespace ixomep::test
