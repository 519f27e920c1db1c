// Arrays whose elements are inserted and erased anywhere: what they hold is what a vector would,
// and those used as queues or filled from the front take a constant time a step.
#include "ixomep/values/element_list.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

std::vector<int> NumbersOf(const IxoMepValue& array) {
  std::vector<int> numbers;
  for (std::size_t i = 0; i < ValueAccess::Count(array); ++i) {
    numbers.push_back(ValueAccess::Element(array, i).GetInt());
  }
  return numbers;
}

enum class Where { Front, Back, Anywhere };

// Changes an array and a vector alike, at random, and compares them after every change.
void ChangeAtRandom(IxoMepValue& array, unsigned seed, Where inserts, Where erases) {
  std::mt19937 random(seed);
  std::vector<int> expected = NumbersOf(array);
  const auto pick = [&random](Where where, std::size_t count) -> std::size_t {
    if (where == Where::Front) return 0;
    return where == Where::Back ? count : random() % (count + 1);
  };
  for (int step = 0; step < 600; ++step) {
    // Grows first and shrinks then, again and again.
    const bool grows = step / 100 % 2 == 0 ? random() % 4 != 0 : random() % 4 == 0;
    if (grows || expected.empty()) {
      const std::size_t at = pick(inserts, expected.size());
      ValueAccess::InsertOwned(array, at, MakeValue(step));
      expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(at), step);
    } else {
      const std::size_t at = pick(erases, expected.size() - 1);
      const ValuePtr taken = ValueAccess::TakeAt(array, at);
      EXPECT_EQ(taken->GetInt(), expected[at]);
      expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
    }
    ASSERT_EQ(NumbersOf(array), expected) << "step " << step;
  }
}

TEST(ElementList, Insertions_and_erasures_anywhere_leave_what_they_leave_in_a_vector) {
  constexpr Where kPlaces[] = {Where::Front, Where::Back, Where::Anywhere};
  unsigned seed = 1;
  for (const Where inserts : kPlaces) {
    for (const Where erases : kPlaces) {
      IxoMepValue array(Type::Array);
      ChangeAtRandom(array, seed++, inserts, erases);
    }
  }
}

TEST(ElementList, The_same_holds_for_an_array_whose_elements_are_known_outside) {
  IxoMepValue array = Array({1, 2, 3});
  static_cast<void>(array.GetValue(0));
  ChangeAtRandom(array, 7, Where::Anywhere, Where::Anywhere);
}

TEST(ElementList, A_slot_known_outside_stays_that_of_its_index) {
  IxoMepValue array = Array({1, 2, 3, 4, 5, 6});
  IxoMepValue** const second = array.GetpValue(1);
  array.Erase(0);
  EXPECT_EQ((*second)->GetInt(), 3);
  EXPECT_EQ(array.GetpValue(1), second);
}

TEST(ElementList, A_copy_does_not_see_what_is_erased_from_the_front) {
  IxoMepValue array = Array({1, 2, 3, 4, 5, 6});
  const IxoMepValue copy = array;
  ValueAccess::EraseAt(array, 0);
  ValueAccess::InsertOwned(array, 0, MakeValue(9));
  ValueAccess::InsertOwned(array, 0, MakeValue(8));
  EXPECT_EQ(TextOf(array), "{8, 9, 2, 3, 4, 5, 6}");
  EXPECT_EQ(TextOf(copy), "{1, 2, 3, 4, 5, 6}");
}

TEST(ElementList, A_queue_needs_no_more_room_than_what_it_holds_at_most) {
  const std::size_t before = MemoryBudget::InUse();
  IxoMepValue array = Array({0, 1, 2, 3, 4, 5, 6, 7});
  for (int i = 0; i < 10000; ++i) {
    ValueAccess::AppendOwned(array, MakeValue(i));
    ValueAccess::EraseAt(array, 0);
  }
  EXPECT_LE(ValueAccess::Items(array).Capacity(), 32U);
  array = IxoMepValue();
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(ElementList, Two_hundred_thousand_steps_at_the_front_take_well_under_a_second) {
  constexpr int kCount = 200000;
  const auto start = std::chrono::steady_clock::now();
  IxoMepValue array(Type::Array);
  for (int i = 0; i < kCount; ++i) ValueAccess::InsertOwned(array, 0, MakeValue(i));
  for (int i = 0; i < kCount / 2; ++i) {
    ValueAccess::EraseAt(array, 0);
    ValueAccess::AppendOwned(array, MakeValue(i));
  }
  for (int i = 0; i < kCount; ++i) ValueAccess::EraseAt(array, 0);
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(ValueAccess::Count(array), 0U);
  EXPECT_LT(std::chrono::duration<double>(took).count(), 1.0);
}

}  // namespace
}  // namespace ixomep::test
