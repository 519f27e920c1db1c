// The comparison of numbers by twelve significant digits: the rule written out once more, plainly,
// as the judge of both implementations.
#include "ixomep/expr/decimal_compare.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "ixomep/host/numbers.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

// The rule, step by step, on the two texts.
bool IsGreater(const std::string& a, const std::string& b) {
  const bool a_negative = a.starts_with("-");
  const bool b_negative = b.starts_with("-");
  if (a_negative != b_negative) return b_negative;
  const auto length = [](const std::string& text) {
    const std::size_t point = text.find('.');
    return point == std::string::npos ? std::size_t{2147483647} : point;
  };
  if (length(a) != length(b)) return a_negative ? length(a) < length(b) : length(a) > length(b);
  return a_negative ? a < b : a > b;
}

std::string TextOf(double number) { return std::string(ixo_ftoa_period(number, 12).view()); }

std::strong_ordering Judge(double a, double b) {
  const std::string a_text = TextOf(a);
  const std::string b_text = TextOf(b);
  if (IsGreater(a_text, b_text)) return std::strong_ordering::greater;
  if (IsGreater(b_text, a_text)) return std::strong_ordering::less;
  EXPECT_EQ(a_text, b_text);
  return std::strong_ordering::equal;
}

void CheckPair(double a, double b) {
  const std::strong_ordering expected = Judge(a, b);
  const int side = Landmark(b).SideOf(a);
  if (side != 0) {
    EXPECT_EQ(side <=> 0, expected) << TextOf(a) << " and " << TextOf(b);
  }
  EXPECT_EQ(CompareDecimalTexts(a, b), expected) << TextOf(a) << " and " << TextOf(b);
  EXPECT_EQ(CompareDecimals(a, b), expected) << TextOf(a) << " and " << TextOf(b);
}

struct Row {
  double a;
  double b;
  std::strong_ordering order;
};

TEST(DecimalCompare, Pairs_of_the_manual) {
  const auto less = std::strong_ordering::less;
  const auto equal = std::strong_ordering::equal;
  const auto greater = std::strong_ordering::greater;
  const std::vector<Row> rows = {
      {0.1 + 0.2, 0.3, equal},
      {1.0, 1.0 + 1e-12, equal},
      {1.0, 1.0 + 2e-11, less},
      {123456789012.4, 123456789012.0, equal},
      {123456789012.6, 123456789012.0, greater},
      {9.5, 10.25, less},
      {-9.5, -10.25, greater},
      {-1.0, 1.0, less},
      {1.0, -1.0, greater},
      {0.0, -0.0, equal},
      {-0.0, 0.0, equal},
      {1.5, 1.25, greater},
      {-1.5, -1.25, less},
      {2.0, 2.05, less},
      {0.001, 0.0009, greater},
      {-0.001, -0.0009, less},
      {5e-324, 0.0, greater},
      {-5e-324, 0.0, less},
      {1e300, 1e299, greater},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(CompareDecimals(row.a, row.b), row.order) << row.a << " and " << row.b;
    EXPECT_EQ(CompareDecimalTexts(row.a, row.b), row.order) << row.a << " and " << row.b;
  }
}

TEST(DecimalCompare, Texts_without_a_point_stand_beyond_all_numbers_of_their_sign) {
  const auto greater = std::strong_ordering::greater;
  EXPECT_EQ(CompareDecimals(kInfinity, 1e308), greater);
  EXPECT_EQ(CompareDecimals(-1e308, -kInfinity), greater);
  EXPECT_EQ(CompareDecimals(kNan, 1e308), greater);
  EXPECT_EQ(CompareDecimals(kNan, kInfinity), greater) << "nan sorts behind inf";
  EXPECT_EQ(CompareDecimals(kInfinity, -kInfinity), greater);
  EXPECT_EQ(CompareDecimals(kNan, -kInfinity), greater);
}

TEST(DecimalCompare, Not_a_number_and_the_infinities_equal_themselves) {
  for (const double number : {kNan, kInfinity, -kInfinity}) {
    EXPECT_EQ(CompareDecimals(number, number), std::strong_ordering::equal) << number;
  }
}

std::vector<double> RemarkableNumbers() {
  std::vector<double> numbers = {0.0,
                                 1.0,
                                 0.1,
                                 0.3,
                                 0.5,
                                 1.5,
                                 2.0,
                                 9.0,
                                 10.0,
                                 99.5,
                                 1e11,
                                 1e12,
                                 1e15,
                                 1e22,
                                 1e280,
                                 1.1e280,
                                 1e-280,
                                 9e-281,
                                 1e-300,
                                 1e300,
                                 1e-11,
                                 1e-12,
                                 1e-320,
                                 5e-324,
                                 kNan,
                                 kInfinity,
                                 std::numeric_limits<double>::max(),
                                 std::numeric_limits<double>::min(),
                                 std::numeric_limits<double>::epsilon(),
                                 2147483647.0,
                                 2147483648.0,
                                 999999999999.0,
                                 999999999999.5,
                                 999999999999.4999,
                                 0.999999999999,
                                 0.9999999999995,
                                 0.99999999999949999};
  const std::size_t plain = numbers.size();
  for (std::size_t i = 0; i < plain; ++i) {
    numbers.push_back(-numbers[i]);
    numbers.push_back(std::nextafter(numbers[i], kInfinity));
    numbers.push_back(std::nextafter(numbers[i], -kInfinity));
    numbers.push_back(numbers[i] * (1 + 1e-11));
    numbers.push_back(numbers[i] * (1 + 1.1e-11));
    numbers.push_back(numbers[i] * (1 + 1e-12));
  }
  return numbers;
}

TEST(DecimalCompare, All_pairs_of_remarkable_numbers_follow_the_rule) {
  const std::vector<double> numbers = RemarkableNumbers();
  for (const double a : numbers) {
    for (const double b : numbers) CheckPair(a, b);
  }
}

// Doubles of all magnitudes, compared with neighbours around the limit of the twelfth digit.
TEST(DecimalCompare, Random_neighbours_follow_the_rule) {
  constexpr int kRounds = 20000;
  std::mt19937_64 random(RandomSeed(kRounds));
  std::uniform_real_distribution<double> exponent(-16.0, -9.0);
  for (int i = 0; i < kRounds; ++i) {
    double a = std::bit_cast<double>(random());
    if (i % 2 == 0) a = static_cast<double>(static_cast<std::int64_t>(random() >> 20)) * 1e-6;
    const double distance = std::pow(10.0, exponent(random));
    const double b = a * (i % 3 == 0 ? 1 - distance : 1 + distance);
    CheckPair(a, b);
    CheckPair(b, a);
  }
}

// A pair on both sides of a place where the twelfth digit is rounded.
TEST(DecimalCompare, Random_pairs_around_a_rounding_limit_follow_the_rule) {
  constexpr int kRounds = 5000;
  std::mt19937_64 random(RandomSeed(kRounds));
  for (int i = 0; i < kRounds; ++i) {
    const auto digits = static_cast<double>(100000000000 + random() % 900000000000);
    const double scale = std::pow(10.0, static_cast<double>(random() % 60) - 30.0);
    const double limit = (digits + 0.5) * scale;
    const double above = std::nextafter(limit, kInfinity);
    const double below = std::nextafter(limit, -kInfinity);
    CheckPair(limit, above);
    CheckPair(below, limit);
    CheckPair(below, above);
    CheckPair(-below, -above);
  }
}

TEST(DecimalCompare, A_landmark_tells_the_side_of_what_is_not_near_it) {
  const Landmark three(3.0);
  EXPECT_EQ(three.SideOf(3.001), 1);
  EXPECT_EQ(three.SideOf(2.999), -1);
  EXPECT_EQ(three.SideOf(-3.0), -1);
  EXPECT_EQ(Landmark(0.0).SideOf(1e-100), 1);
  EXPECT_EQ(Landmark(0.0).SideOf(-1e-100), -1);
}

TEST(DecimalCompare, A_landmark_leaves_open_what_the_texts_have_to_decide) {
  const Landmark three(3.0);
  for (const double near : {3.0, 3.0 * (1 + 1e-11), 3.0 * (1 - 1e-12)}) {
    EXPECT_EQ(three.SideOf(near), 0) << near;
  }
  for (const double odd : {kNan, kInfinity, -kInfinity}) {
    EXPECT_EQ(three.SideOf(odd), 0) << odd;
    EXPECT_EQ(Landmark(odd).SideOf(3.0), 0) << odd;
  }
}

}  // namespace
}  // namespace ixomep::test
