// Equality and order: every pair of types, then the details of each.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(ValueEquality, Values_of_different_types_are_never_equal) {
  for (const Type a : kAllTypes) {
    for (const Type b : kAllTypes) {
      if (a == b) continue;
      EXPECT_FALSE(Sample(a) == Sample(b)) << NameOf(a) << " and " << NameOf(b);
      EXPECT_TRUE(Sample(a) != Sample(b)) << NameOf(a) << " and " << NameOf(b);
    }
  }
}

TEST(ValueEquality, Strings_numbers_measures_and_times_equal_their_like) {
  for (const Type type : {Type::String, Type::Integer, Type::Real, Type::Measure, Type::Time}) {
    EXPECT_TRUE(Sample(type) == Sample(type)) << NameOf(type);
    EXPECT_FALSE(Sample(type) != Sample(type)) << NameOf(type);
    EXPECT_FALSE(Sample(type) == Sample(type, 1)) << NameOf(type);
    EXPECT_TRUE(Sample(type) != Sample(type, 1)) << NameOf(type);
  }
}

TEST(ValueEquality, The_other_types_equal_nothing_not_even_themselves) {
  TestHost host;
  for (const Type type : {Type::Undefined, Type::Expression, Type::Array, Type::Map,
                          Type::Reference, Type::Lambda, Type::Object}) {
    const IxoMepValue value = Sample(type);
    EXPECT_FALSE(value == value) << NameOf(type);
    EXPECT_TRUE(value != value) << NameOf(type);
  }
  EXPECT_TRUE(host.assertions.empty());
}

TEST(ValueEquality, An_integer_is_not_equal_to_a_real) {
  EXPECT_FALSE(IxoMepValue(1) == IxoMepValue(1.0));
}

TEST(ValueEquality, A_reference_is_not_equal_to_what_it_refers_to) {
  IxoMepValue target(1);
  EXPECT_FALSE(IxoMepValue(&target) == target);
  EXPECT_FALSE(IxoMepValue(&target) == IxoMepValue(&target));
}

TEST(ValueEquality, Two_empty_arrays_are_not_equal) {
  EXPECT_FALSE(IxoMepValue(Type::Array) == IxoMepValue(Type::Array));
}

TEST(ValueEquality, Strings_compare_every_byte) {
  EXPECT_FALSE(IxoMepValue("a") == IxoMepValue("A"));
  EXPECT_FALSE(IxoMepValue(String("a\0b", 3)) == IxoMepValue(String("a\0c", 3)));
  EXPECT_TRUE(IxoMepValue(String("a\0b", 3)) == IxoMepValue(String("a\0b", 3)));
}

TEST(ValueEquality, Measures_compare_their_whole_tenths) {
  EXPECT_TRUE(IxoMepValue(Type::Measure, 12.3) == IxoMepValue(Type::Measure, 12.7));
  EXPECT_TRUE(IxoMepValue(Type::Measure, 12.999995) == IxoMepValue(Type::Measure, 13));
  EXPECT_FALSE(IxoMepValue(Type::Measure, 12.99) == IxoMepValue(Type::Measure, 13));
}

TEST(ValueEquality, Reals_and_times_compare_exactly) {
  EXPECT_FALSE(IxoMepValue(0.1 + 0.2) == IxoMepValue(0.3));
  EXPECT_FALSE(IxoMepValue(kNaN) == IxoMepValue(kNaN));
  EXPECT_FALSE(IxoMepValue(Type::Time, 1.0) == IxoMepValue(Type::Time, 1.0000001));
}

// The types in ascending order of their values; integers and reals compare by number.
TEST(ValueOrder, Types_stand_in_a_fixed_order) {
  const Type order[] = {Type::Undefined,  Type::Integer, Type::String, Type::Measure, Type::Time,
                        Type::Expression, Type::Array,   Type::Map,    Type::Lambda,  Type::Object};
  TestHost host;
  for (std::size_t a = 0; a < std::size(order); ++a) {
    for (std::size_t b = 0; b < std::size(order); ++b) {
      if (a == b) continue;
      const std::string pair = NameOf(order[a]) + " and " + NameOf(order[b]);
      EXPECT_EQ(Sample(order[a]) < Sample(order[b]), a < b) << pair;
      EXPECT_EQ(Sample(order[a]) > Sample(order[b]), a > b) << pair;
    }
  }
  EXPECT_TRUE(host.assertions.empty());
}

TEST(ValueOrder, A_real_stands_between_undefined_and_strings) {
  EXPECT_TRUE(IxoMepValue() < IxoMepValue(-1e300));
  EXPECT_TRUE(IxoMepValue(1e300) < IxoMepValue(""));
  EXPECT_TRUE(IxoMepValue(kNaN) < IxoMepValue(""));
}

TEST(ValueOrder, Numbers_compare_by_number_whatever_their_type) {
  IxoMepValue three(3);
  IxoMepValue to_three(&three);
  EXPECT_TRUE(IxoMepValue(1) < IxoMepValue(1.5));
  EXPECT_FALSE(IxoMepValue(1) < IxoMepValue(1.0));
  EXPECT_FALSE(IxoMepValue(1) > IxoMepValue(1.0));
  EXPECT_TRUE(IxoMepValue(2.5) < IxoMepValue(3));
  EXPECT_TRUE(IxoMepValue(2.5) < IxoMepValue(&to_three));
  EXPECT_TRUE(IxoMepValue(&three) < IxoMepValue(4));
  EXPECT_FALSE(IxoMepValue(&three) > IxoMepValue(&Target()));
}

TEST(ValueOrder, A_reference_to_anything_else_goes_by_its_own_type) {
  IxoMepValue text("zzz");
  const IxoMepValue reference(&text);
  EXPECT_TRUE(reference > text);
  EXPECT_TRUE(reference > IxoMepValue(Type::Map));
  EXPECT_TRUE(reference < Sample(Type::Lambda));
  EXPECT_TRUE(reference > IxoMepValue(5));
}

TEST(ValueOrder, Two_references_without_numbers_are_reported) {
  TestHost host;
  IxoMepValue text("a");
  EXPECT_FALSE(IxoMepValue(&text) < IxoMepValue(&text));
  EXPECT_EQ(host.assertions.size(), 1u);
}

TEST(ValueOrder, A_not_a_number_is_neither_smaller_nor_greater) {
  EXPECT_FALSE(IxoMepValue(kNaN) < IxoMepValue(1));
  EXPECT_FALSE(IxoMepValue(kNaN) > IxoMepValue(1));
  EXPECT_FALSE(IxoMepValue(1) < IxoMepValue(kNaN));
}

TEST(ValueOrder, Strings_compare_by_unsigned_bytes) {
  EXPECT_TRUE(IxoMepValue("10") < IxoMepValue("9"));
  EXPECT_TRUE(IxoMepValue("a") < IxoMepValue("ab"));
  EXPECT_TRUE(IxoMepValue("B") < IxoMepValue("a"));
  EXPECT_TRUE(IxoMepValue("z") < IxoMepValue("\xe4"));
  const IxoMepValue text("a");
  EXPECT_FALSE(text < text);
  EXPECT_FALSE(text > text);
}

TEST(ValueOrder, An_integer_is_smaller_than_every_string) {
  EXPECT_TRUE(IxoMepValue(2) < IxoMepValue("a"));
  EXPECT_TRUE(IxoMepValue(5) < IxoMepValue(""));
  EXPECT_TRUE(IxoMepValue("zzz") < IxoMepValue(Type::Array));
}

TEST(ValueOrder, Measures_compare_by_whole_tenths_and_times_by_seconds) {
  EXPECT_FALSE(IxoMepValue(Type::Measure, 12.3) < IxoMepValue(Type::Measure, 12.7));
  EXPECT_TRUE(IxoMepValue(Type::Measure, 12.3) < IxoMepValue(Type::Measure, 13));
  EXPECT_TRUE(IxoMepValue(Type::Time, 1.25) < IxoMepValue(Type::Time, 1.5));
  EXPECT_TRUE(IxoMepValue(Type::Time, 1.5) > IxoMepValue(Type::Time, 1.25));
}

TEST(ValueOrder, Two_values_of_a_type_without_order_are_reported) {
  for (const Type type :
       {Type::Undefined, Type::Expression, Type::Array, Type::Map, Type::Lambda, Type::Object}) {
    TestHost host;
    EXPECT_FALSE(Sample(type) < Sample(type, 1)) << NameOf(type);
    EXPECT_FALSE(Sample(type) > Sample(type, 1)) << NameOf(type);
    EXPECT_EQ(host.assertions.size(), 2u) << NameOf(type);
  }
}

TEST(ValueOrder, Greater_is_the_mirror_of_less) {
  TestHost host;
  for (const Type a : kAllTypes) {
    for (const Type b : kAllTypes) {
      EXPECT_EQ(Sample(a) < Sample(b, 1), Sample(b, 1) > Sample(a)) << NameOf(a) << NameOf(b);
    }
  }
}

TEST(ValueLess, Holds_when_the_second_is_greater) {
  const IxoMepValueLess less;
  const IxoMepValue one(1), two(2);
  EXPECT_TRUE(less(&one, &two));
  EXPECT_FALSE(less(&two, &one));
  EXPECT_FALSE(less(&one, &one));
}

TEST(ValueLess, A_null_key_stands_first_and_is_not_read) {
  const IxoMepValueLess less;
  const IxoMepValue one(1);
  EXPECT_TRUE(less(nullptr, &one));
  EXPECT_FALSE(less(&one, nullptr));
  EXPECT_FALSE(less(nullptr, nullptr));
}

}  // namespace
}  // namespace ixomep::test
