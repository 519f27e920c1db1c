// Units and the turn from doubles to whole numbers.
#include "ixomep/values/units.h"

#include <gtest/gtest.h>

#include <cmath>

namespace ixomep::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

struct SuffixRow {
  const char* suffix;
  IxoMepValueType type;
  double factor;
};

TEST(Units, Each_suffix_has_its_type_and_factor) {
  const SuffixRow rows[] = {{"m", IxoMepValueType::Measure, 10000},
                            {"cm", IxoMepValueType::Measure, 100},
                            {"mm", IxoMepValueType::Measure, 10},
                            {"pt", IxoMepValueType::Measure, 3.5277777778},
                            {"s", IxoMepValueType::Time, 1}};
  for (const SuffixRow& row : rows) {
    const Unit* const unit = FindUnit(row.suffix);
    ASSERT_NE(unit, nullptr) << row.suffix;
    EXPECT_EQ(unit->type, row.type);
    EXPECT_EQ(unit->factor, row.factor);
  }
  EXPECT_EQ(kUnits.size(), std::size(rows));
}

TEST(Units, Any_other_text_is_no_suffix) {
  for (const char* text : {"", "km", "CM", "c", "cmm", "pts", "M"}) {
    EXPECT_EQ(FindUnit(text), nullptr) << text;
  }
}

struct Row {
  double number;
  std::int32_t or_zero;
  std::int32_t saturating;
};

TEST(WholeNumbers, Truncate_in_range_and_give_zero_or_the_nearest_outside) {
  const Row rows[] = {
      {0, 0, 0},
      {2.9, 2, 2},
      {-2.9, -2, -2},
      {2147483647.9, kMax, kMax},
      {2147483648.0, 0, kMax},
      {-2147483648.0, kMin, kMin},
      {-2147483648.5, 0, kMin},
      {1e300, 0, kMax},
      {-1e300, 0, kMin},
      {kInfinity, 0, kMax},
      {-kInfinity, 0, kMin},
      {kNaN, 0, 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(ToInt32OrZero(row.number), row.or_zero) << row.number;
    EXPECT_EQ(ToInt32Saturating(row.number), row.saturating) << row.number;
  }
}

TEST(Tenths, Are_nudged_and_truncated) {
  EXPECT_EQ(WholeTenthsOf(12.999995), 13);
  EXPECT_EQ(WholeTenthsOf(12.99), 12);
  EXPECT_EQ(WholeTenthsOf(-12.999995), -13);
  EXPECT_EQ(WholeTenthsOf(-12.99), -12);
  EXPECT_EQ(WholeTenthsOf(0), 0);
  EXPECT_EQ(WholeTenthsOf(kNaN), 0);
}

TEST(PointTenths, Are_rounded_half_away_from_zero) {
  EXPECT_EQ(PointTenthsOf(10), 28);
  EXPECT_EQ(PointTenthsOf(-10), -28);
  EXPECT_EQ(PointTenthsOf(0), 0);
  EXPECT_EQ(PointTenthsOf(100), 283);
  EXPECT_EQ(PointTenthsOf(0.18), 1);  // 0.51
  EXPECT_EQ(PointTenthsOf(-0.18), -1);
  EXPECT_EQ(PointTenthsOf(kNaN), 0);
}

}  // namespace
}  // namespace ixomep::test
