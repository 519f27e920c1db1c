// Tests of the time text: its layout, its value in seconds, and writing it.
#include "ixomep/host/core_time.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "tests/support/test_host.h"

namespace {

constexpr double kDay = 24.0 * 60.0 * 60.0;
constexpr double kYear = 365.0 * kDay;

struct TimeCase {
  const char* text;
  double seconds;
};

constexpr TimeCase kTimes[] = {
    {"00:000:00:00:00", 0.0},
    {"00:000:00:00:01", 1.0},
    {"00:000:00:01:00", 60.0},
    {"00:000:01:00:00", 3600.0},
    {"00:001:00:00:00", kDay},
    {"01:000:00:00:00", kYear},
    {"00:364:23:59:59", kYear - 1.0},
    {"99:364:23:59:59", 100.0 * kYear - 1.0},
    {"12:034:05:06:07", 12 * kYear + 34 * kDay + 5 * 3600 + 6 * 60 + 7},
};

TEST(CoreTime, Reads_the_layout_as_seconds) {
  for (const TimeCase& test : kTimes) {
    EXPECT_TRUE(IxoCoreTime::isTime(test.text)) << test.text;
    EXPECT_EQ(IxoCoreTime(String(test.text)).asDouble(), test.seconds) << test.text;
  }
}

TEST(CoreTime, Writes_seconds_in_the_layout) {
  for (const TimeCase& test : kTimes) {
    EXPECT_EQ(IxoCoreTime::_d2s(test.seconds), test.text);
    EXPECT_EQ(IxoCoreTime(test.seconds).asString(), test.text);
  }
}

TEST(CoreTime, Refuses_other_lengths_signs_and_fields_out_of_range) {
  for (const char* text :
       {"", "00:000:00:00:0", "00:000:00:00:000", "0:000:00:00:00", "00:365:00:00:00",
        "00:000:24:00:00", "00:000:00:60:00", "00:000:00:00:60", "00-000:00:00:00",
        "00:000:00:00.00", "a0:000:00:00:00", "00:0 0:00:00:00", "-1:000:00:00:00",
        "00:000:00:00:+1", "000:00:00:00:00", "               "}) {
    EXPECT_FALSE(IxoCoreTime::isTime(text)) << text;
    EXPECT_EQ(IxoCoreTime(String(text)).asDouble(), 0.0) << text;
  }
}

TEST(CoreTime, Writing_drops_fractions_of_a_second) {
  EXPECT_EQ(IxoCoreTime::_d2s(1.999), "00:000:00:00:01");
  EXPECT_EQ(IxoCoreTime::_d2s(0.5), "00:000:00:00:00");
  EXPECT_EQ(IxoCoreTime::_d2s(-0.5), "00:000:00:00:00");
}

TEST(CoreTime, Writing_puts_a_minus_in_front_of_a_negative_time) {
  EXPECT_EQ(IxoCoreTime::_d2s(-61.5), "-00:000:00:01:01");
}

TEST(CoreTime, Writing_gives_years_the_digits_they_need) {
  EXPECT_EQ(IxoCoreTime::_d2s(100.0 * kYear), "100:000:00:00:00");
  EXPECT_EQ(IxoCoreTime::_d2s(-12345.0 * kYear - kDay), "-12345:001:00:00:00");
}

TEST(CoreTime, Writing_is_total) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const String largest = IxoCoreTime::_d2s(std::numeric_limits<double>::max());
  EXPECT_EQ(largest.Len(), 301 + 13);
  EXPECT_EQ(IxoCoreTime::_d2s(kInfinity), largest);
  EXPECT_EQ(IxoCoreTime::_d2s(-kInfinity), "-" + largest);
  EXPECT_EQ(IxoCoreTime::_d2s(std::numeric_limits<double>::quiet_NaN()), "00:000:00:00:00");
}

TEST(CoreTime, Random_times_read_back) {
  constexpr int kCount = 10000;
  std::mt19937_64 random(ixomep::test::RandomSeed(kCount));
  std::uniform_int_distribution<std::int64_t> seconds(0,
                                                      static_cast<std::int64_t>(100 * kYear) - 1);
  for (int i = 0; i < kCount; ++i) {
    const auto time = static_cast<double>(seconds(random));
    const String text = IxoCoreTime::_d2s(time);
    ASSERT_TRUE(IxoCoreTime::isTime(text)) << text.c_str();
    ASSERT_EQ(IxoCoreTime(text).asDouble(), time) << text.c_str();
  }
}

}  // namespace
