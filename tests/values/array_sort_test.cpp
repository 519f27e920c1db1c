// array.sort without a lambda: the outcome is that of the exchanges of neighbours, fast.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <random>

#include "ixomep/values/array_sort.h"
#include "ixomep/values/string_address_map.h"
#include "ixomep/values/value_compare.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

void Sort(IxoMepValue& array) {
  IxoMepValue* result = nullptr;
  String error;
  EXPECT_EQ(array.EvaluateMethodCall(Intern("sort"), {}, result, error, false), 0);
  EXPECT_EQ(result, nullptr);
}

std::string Sorted(IxoMepValue array) {
  Sort(array);
  return TextOf(array);
}

TEST(ArraySort, Sorts_ascending_in_place) {
  EXPECT_EQ(Sorted(Array({3, 1, 2})), "{1, 2, 3}");
  EXPECT_EQ(Sorted(Array({"b", "a", "B", "ab"})), "{\"B\", \"a\", \"ab\", \"b\"}");
  EXPECT_EQ(Sorted(Array({2.5, 1, -3, 2})), "{-3, 1, 2, 2.5}");
}

TEST(ArraySort, Fewer_than_two_elements_are_left_alone) {
  TestHost host;
  EXPECT_EQ(Sorted(Array({})), "{}");
  EXPECT_EQ(Sorted(Array({Array({2, 1})})), "{{2, 1}}");
  EXPECT_TRUE(host.assertions.empty());
}

TEST(ArraySort, Moves_the_elements_themselves) {
  IxoMepValue array = Array({2, 1});
  IxoMepValue* const two = array.GetValue(0);
  Sort(array);
  EXPECT_EQ(array.GetValue(1), two);
}

TEST(ArraySort, Leaves_the_result_slot_as_it_was) {
  IxoMepValue array = Array({2, 1});
  const ValuePtr place = MakeValue("kept");
  IxoMepValue* slot = place.get();
  String error;
  EXPECT_EQ(array.EvaluateMethodCall(Intern("sort"), {}, slot, error, false), 0);
  EXPECT_EQ(TextOf(*slot), "\"kept\"");
}

TEST(ArraySort, Does_not_show_in_a_copy) {
  IxoMepValue array = Array({2, 1});
  const IxoMepValue copy(array);
  Sort(array);
  EXPECT_EQ(TextOf(copy), "{2, 1}");
  EXPECT_EQ(TextOf(array), "{1, 2}");
}

TEST(ArraySort, Equal_elements_keep_their_order) {
  EXPECT_EQ(Sorted(Array({2, 1, 2.0, 1.0})), Sorted(Array({1, 1.0, 2, 2.0})));
  IxoMepValue array = Array({5.0, 5, 1, 5.0});
  Sort(array);
  EXPECT_EQ(array.GetValue(1)->GetType(), Type::Real);
  EXPECT_EQ(array.GetValue(2)->GetType(), Type::Integer);
  EXPECT_EQ(array.GetValue(3)->GetType(), Type::Real);
}

TEST(ArraySort, Measures_with_the_same_whole_tenths_keep_their_order) {
  IxoMepValue array = Array({{Type::Measure, 12.9}, {Type::Measure, 12.1}, {Type::Measure, 3.0}});
  Sort(array);
  EXPECT_EQ(ValueAccess::Number(*array.GetValue(1)), 12.9);
  EXPECT_EQ(ValueAccess::Number(*array.GetValue(2)), 12.1);
}

TEST(ArraySort, Nothing_passes_a_not_a_number) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(Sorted(Array({3, 2, nan, 1, 0})), "{2, 3, nan, 0, 1}");
  EXPECT_EQ(Sorted(Array({nan, nan})), "{nan, nan}");
  EXPECT_EQ(Sorted(Array({"s", nan, 3, "a", 1})), "{nan, 1, 3, \"a\", \"s\"}");
}

TEST(ArraySort, Types_stand_by_rank_and_types_without_order_as_they_came) {
  TestHost host;
  EXPECT_EQ(Sorted(Array({Map({}), "b", Array({2}), IxoMepValue(), 1.5, Array({1}), "a"})),
            "{(undefined), 1.5, \"a\", \"b\", {2}, {1}, {}}");
  EXPECT_EQ(host.assertions.size(), 1u);
}

// The exchanges as the language describes them.
void ExchangeUntilSettled(std::vector<const IxoMepValue*>& items) {
  std::size_t passes = items.size();
  for (bool exchanged = true; exchanged && passes > 0; --passes) {
    exchanged = false;
    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
      if (!(*items[i + 1] < *items[i])) continue;
      std::swap(items[i], items[i + 1]);
      exchanged = true;
    }
  }
}

TEST(ArraySort, Agrees_with_the_exchanges_on_random_mixtures) {
  TestHost host;
  std::mt19937 random(12345);
  IxoMepValue number(2), text("r");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<IxoMepValue> pool = {1,
                                         2,
                                         3,
                                         1.5,
                                         2.0,
                                         nan,
                                         "a",
                                         "b",
                                         "",
                                         {Type::Measure, 3},
                                         {Type::Measure, 1.5},
                                         {Type::Time, 9},
                                         {Type::Time, nan},
                                         {Type::Time, 1},
                                         Array({1}),
                                         Map({}),
                                         IxoMepValue(),
                                         &number,
                                         &text};
  for (int round = 0; round < 3000; ++round) {
    const std::size_t kinds = round % 3 == 0 ? 6 : round % 3 == 1 ? pool.size() - 2 : pool.size();
    IxoMepValue array(Type::Array);
    for (std::size_t n = random() % 9; n > 0; --n) {
      ValueAccess::AppendOwned(array, MakeValue(pool[random() % kinds]));
    }
    const ElementList& items = ValueAccess::Items(array);
    std::vector<const IxoMepValue*> expected(items.begin(), items.end());
    ExchangeUntilSettled(expected);
    const std::string before = TextOf(array);
    Sort(array);
    const ElementList& sorted = ValueAccess::Items(array);
    EXPECT_TRUE(std::equal(sorted.begin(), sorted.end(), expected.begin(), expected.end()))
        << "round " << round << ": " << before;
  }
}

TEST(ArraySort, An_order_that_is_a_circle_ends) {
  // 5 behind a reference < 10 < the string < the reference.
  IxoMepValue five(5);
  IxoMepValue array = Array({&five, 10, "s", &five, 10, "s"});
  Sort(array);
  EXPECT_EQ(array.GetSize(), 6);
}

TEST(ArraySort, Empty_slots_count_as_undefined) {
  TestHost host;
  IxoMepValue array = Array({2, 1, 3});
  array.SetValue(1, nullptr);
  EXPECT_EQ(Sorted(array), "{(undefined), 2, 3}");
}

TEST(ArraySort, A_hundred_thousand_numbers_take_well_under_a_second) {
  std::mt19937 random(1);
  IxoMepValue array(Type::Array);
  for (int i = 0; i < 100000; ++i) {
    ValueAccess::AppendOwned(array, MakeValue(static_cast<int>(random() >> 1)));
  }
  const auto start = std::chrono::steady_clock::now();
  Sort(array);
  const auto took = std::chrono::steady_clock::now() - start;
  const ElementList& items = ValueAccess::Items(array);
  EXPECT_TRUE(std::is_sorted(items.begin(), items.end(), IxoMepValueLess()));
  EXPECT_LT(std::chrono::duration<double>(took).count(), 1.0);
}

}  // namespace
}  // namespace ixomep::test
