// Tests of number texts: fixed notation with twelve digits, reading, the user-interface forms.
#include "ixomep/host/numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

#include "tests/support/test_host.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kLargest = std::numeric_limits<double>::max();

struct TextCase {
  double number;
  const char* period;
  const char* plain;
};

constexpr TextCase kTexts[] = {
    {0.0, "0.0", "0"},
    {-0.0, "0.0", "0"},
    {2.0, "2.0", "2"},
    {-2.0, "-2.0", "-2"},
    {0.5, "0.5", "0.5"},
    {-0.25, "-0.25", "-0.25"},
    {10.0, "10.0", "10"},
    {1000000.0, "1000000.0", "1000000"},
    {100.25, "100.25", "100.25"},
    {0.1, "0.1", "0.1"},
    {0.1 + 0.2, "0.3", "0.3"},
    {1.0 / 3.0, "0.333333333333", "0.333333333333"},
    {2.0 / 3.0, "0.666666666667", "0.666666666667"},
    {123456789012.0, "123456789012.0", "123456789012"},
    {1234567890123.0, "1234567890120.0", "1234567890120"},
    {1234567890125.0, "1234567890120.0", "1234567890120"},  // a tie goes to the even digit
    {1234567890135.0, "1234567890140.0", "1234567890140"},
    {999999999999.5, "1000000000000.0", "1000000000000"},
    {0.99999999999999, "1.0", "1"},
    {12345678901.25, "12345678901.2", "12345678901.2"},
    {1e-5, "0.00001", "0.00001"},
    {-1.5e-7, "-0.00000015", "-0.00000015"},
    {1e15, "1000000000000000.0", "1000000000000000"},
    {2147483648.0, "2147483648.0", "2147483648"},
    {kInfinity, "inf", "inf"},
    {-kInfinity, "-inf", "-inf"},
    {kNan, "nan", "nan"},
};

TEST(Numbers, Reals_are_written_in_fixed_notation_with_twelve_digits) {
  for (const TextCase& test : kTexts) {
    EXPECT_EQ(ixo_ftoa_period(test.number, 12), test.period);
    EXPECT_EQ(ixo_ftoa_no_locale(test.number, 12), test.plain);
  }
}

TEST(Numbers, A_negative_nan_is_written_as_nan) {
  EXPECT_EQ(ixo_ftoa_period(std::copysign(kNan, -1.0), 12), "nan");
  EXPECT_EQ(StringFromDouble(std::copysign(kNan, -1.0)), "nan");
}

TEST(Numbers, The_largest_power_of_ten_has_309_digits_and_no_exponent) {
  EXPECT_EQ(ixo_ftoa_no_locale(1e308, 12), "1" + String::Filled(308, '0'));
  EXPECT_EQ(ixo_ftoa_period(-1e308, 12), "-1" + String::Filled(308, '0') + ".0");
  EXPECT_EQ(ixo_ftoa_period(kLargest, 12), "179769313486" + String::Filled(297, '0') + ".0");
}

TEST(Numbers, The_smallest_reals_are_written_without_an_exponent) {
  EXPECT_EQ(ixo_ftoa_period(5e-324, 12), "0." + String::Filled(323, '0') + "494065645841");
  EXPECT_EQ(ixo_ftoa_period(-1e-300, 12), "-0." + String::Filled(299, '0') + "1");
}

TEST(Numbers, Every_result_fits_the_announced_buffer) {
  for (const double number : {-kLargest, -5e-324, -2.2250738585072014e-308, -1.23456789012e-310}) {
    for (const int precision : {12, 17, 99}) {
      char buffer[ixomep::kFormatRealSize];
      EXPECT_LE(ixomep::FormatReal(number, true, buffer, precision).size(), sizeof buffer);
    }
  }
}

TEST(Numbers, Precision_is_clamped_to_one_and_seventeen_digits) {
  EXPECT_EQ(ixo_ftoa_period(123.456, 0), "100.0");
  EXPECT_EQ(ixo_ftoa_period(123.456, -4), "100.0");
  EXPECT_EQ(ixo_ftoa_period(123.456, 4), "123.5");
  EXPECT_EQ(ixo_ftoa_period(0.1, 99), "0.10000000000000001");
}

// A real with random bits: every exponent is equally likely.
double RandomReal(std::mt19937_64& random) {
  for (;;) {
    const std::uint64_t bits = random();
    double number = 0.0;
    std::memcpy(&number, &bits, sizeof number);
    if (std::isfinite(number)) return number;
  }
}

// Twelve digits as the C library rounds them, for the comparison.
double RoundedByPrintf(double number) {
  char text[64];
  std::snprintf(text, sizeof text, "%.11e", number);
  return std::strtod(text, nullptr);
}

TEST(Numbers, Random_reals_are_correctly_rounded_and_read_back_as_the_rounded_number) {
  constexpr int kCount = 50000;
  std::mt19937_64 random(ixomep::test::RandomSeed(kCount));
  for (int i = 0; i < kCount; ++i) {
    const double number = RandomReal(random);
    const String text = ixo_ftoa_period(number, 12);
    ASSERT_EQ(text.Search('e'), String::kNotFound);
    ASSERT_NE(text.Search('.'), String::kNotFound);
    ASSERT_EQ(ixo_atof(text), RoundedByPrintf(number)) << text.c_str();
    ASSERT_EQ(std::strtod(text.c_str(), nullptr), RoundedByPrintf(number)) << text.c_str();
    ASSERT_EQ(ixo_atof(ixo_ftoa_no_locale(number, 12)), RoundedByPrintf(number));
    ASSERT_EQ(ixo_atof(ixo_ftoa_period(number, 17)), number);
  }
}

struct ReadCase {
  const char* text;
  double number;
};

constexpr ReadCase kReads[] = {
    {"", 0.0},
    {"x", 0.0},
    {"-", 0.0},
    {".", 0.0},
    {"-.", 0.0},
    {"12", 12.0},
    {"-12.5", -12.5},
    {"+3", 3.0},
    {".5", 0.5},
    {"5.", 5.0},
    {"-.5x", -0.5},
    {"1.2.3", 1.2},
    {"  \t7", 7.0},
    {"1e3", 1000.0},
    {"1E+3", 1000.0},
    {"2.5e-1", 0.25},
    {"1e", 1.0},
    {"1e+", 1.0},
    {"1ex", 1.0},
    {"3cm", 3.0},
    {"0.1", 0.1},
    {"0x10", 0.0},
    {"inf", 0.0},
    {"nan", 0.0},
    {"--1", 0.0},
    {"1,5", 1.0},
    {"$ff", 255.0},
    {"$FF", 255.0},
    {"-$10", -16.0},
    {"$", 0.0},
    {"$g", 0.0},
    {"$1.8", 1.0},
    {"$1p4", 1.0},
    {"$ffffffffff", 1099511627775.0},
    {"1e400", kInfinity},
    {"-1e400", -kInfinity},
    {"1e-400", 0.0},
    {"1e999999999999999999999", kInfinity},
    {"1e-999999999999999999999", 0.0},
    {"0e999999999999999999999", 0.0},
    {"0.0000001e320", kInfinity},
    {"9007199254740993", 9007199254740992.0},
};

TEST(Numbers, Atof_reads_the_longest_number_at_the_start) {
  for (const ReadCase& test : kReads) {
    EXPECT_EQ(ixo_atof(test.text), test.number) << test.text;
  }
}

TEST(Numbers, Atof_ends_at_a_zero_byte) {
  EXPECT_EQ(ixo_atof(std::string_view("12\0"
                                      "34",
                                      5)),
            12.0);
}

TEST(Numbers, Atof_of_very_long_numbers_is_the_nearest_real_or_beyond_range) {
  EXPECT_EQ(ixo_atof(String::Filled(400, '9')), kInfinity);
  EXPECT_EQ(ixo_atof("0." + String::Filled(400, '0') + "1"), 0.0);
  EXPECT_EQ(ixo_atof("0." + String::Filled(400, '0') + "1e401"), 1.0);
  EXPECT_EQ(ixo_atof(String::Filled(400, '9') + "e-400"), 1.0);
  EXPECT_EQ(ixo_atof("$" + String::Filled(300, 'f')), kInfinity);
  EXPECT_EQ(ixo_atof(String::Filled(400, '0') + "7"), 7.0);
}

TEST(Numbers, User_interface_text_has_six_decimals) {
  EXPECT_EQ(StringFromDouble(2.5), "2.500000");
  EXPECT_EQ(StringFromDouble(3.0), "3.000000");
  EXPECT_EQ(StringFromDouble(-0.125), "-0.125000");
  EXPECT_EQ(StringFromDouble(1.0 / 3.0), "0.333333");
  EXPECT_EQ(StringFromDouble(0.0), "0.000000");
  EXPECT_EQ(StringFromDouble(1e20), "100000000000000000000.000000");
  EXPECT_EQ(StringFromDouble(kInfinity), "inf");
  EXPECT_EQ(StringFromDouble(-kInfinity), "-inf");
  EXPECT_EQ(StringFromDouble(-kLargest).Len(), 1 + 309 + 7);
}

TEST(Numbers, User_interface_text_carries_the_separator_of_the_host) {
  ixomep::test::TestHost host;
  host.decimal_separator = ',';
  EXPECT_EQ(StringFromDouble(2.5), "2,500000");
  EXPECT_EQ(DoubleFromString("2,5"), 2.5);
  EXPECT_EQ(DoubleFromString("  -2,5 mm"), -2.5);
  EXPECT_EQ(DoubleFromString(",5"), 0.5);
  EXPECT_EQ(DoubleFromString("2.5"), 2.5);
  EXPECT_EQ(DoubleFromString("2.5,7"), 2.5);
  EXPECT_EQ(DoubleFromString("2,5,7"), 2.5);
  EXPECT_EQ(DoubleFromString("x,5"), 0.0);
  EXPECT_EQ(DoubleFromString(""), 0.0);
}

TEST(Numbers, User_interface_number_is_the_longest_number_after_blanks) {
  EXPECT_EQ(DoubleFromString("2.500000"), 2.5);
  EXPECT_EQ(DoubleFromString("  7 apples"), 7.0);
  EXPECT_EQ(DoubleFromString("apples"), 0.0);
  EXPECT_EQ(DoubleFromString("-1e2"), -100.0);
  EXPECT_EQ(DoubleFromString("1,5"), 1.0);
}

TEST(Numbers, Integers_are_decimal_digits_with_a_sign) {
  EXPECT_EQ(StringFromInteger(0), "0");
  EXPECT_EQ(StringFromInteger(-12), "-12");
  EXPECT_EQ(StringFromInteger(2147483647), "2147483647");
  EXPECT_EQ(StringFromInteger(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

}  // namespace
