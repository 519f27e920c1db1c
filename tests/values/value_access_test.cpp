// The typed accessors: conversions, neutral answers to wrong types, references, the slots that
// hosts write through.
#include <gtest/gtest.h>

#include <limits>

#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(ValueTypeNames, Each_number_has_its_name) {
  const char* const names[] = {"undefined",  "string", "integer", "real",      "measure", "time",
                               "expression", "array",  "map",     "reference", "lambda",  "object"};
  for (int number = 0; number < 12; ++number) {
    EXPECT_EQ(NameOf(static_cast<Type>(number)), names[number]);
  }
}

TEST(ValueTypeNames, Any_other_number_is_undefined) {
  for (const int number : {12, 13, 1000, -1, -2147483647}) {
    EXPECT_EQ(NameOf(static_cast<Type>(number)), "undefined");
  }
}

struct RealToInt {
  double real;
  std::int32_t integer;
};

TEST(ValueGetInt, Truncates_reals_toward_zero_within_32_bits) {
  const RealToInt rows[] = {
      {2147483648.0, 0},
      {2147483647.9, 2147483647},
      {2147483647.0, 2147483647},
      {-2.9, -2},
      {2.9, 2},
      {-2147483648.0, std::numeric_limits<std::int32_t>::min()},
      {-2147483649.0, 0},
      {kNaN, 0},
      {kInfinity, 0},
      {-kInfinity, 0},
  };
  for (const RealToInt& row : rows)
    EXPECT_EQ(IxoMepValue(row.real).GetInt(), row.integer) << row.real;
}

struct NeutralRow {
  Type type;
  std::int32_t integer;
  double real;
  double seconds;
  std::int32_t tenths;
  std::int32_t points;
  bool is_number;
  std::int32_t size;
};

TEST(ValueAccessors, Each_type_answers_its_own_and_neutrally_to_all_others) {
  const NeutralRow rows[] = {
      {Type::Undefined, 0, 0, 0, 0, 0, false, 0},   {Type::String, 0, 0, 0, 0, 0, false, 0},
      {Type::Integer, 7, 7, 0, 0, 0, true, 0},      {Type::Real, 2, 2.5, 0, 0, 0, true, 0},
      {Type::Measure, 0, 0, 0, 125, 354, false, 0}, {Type::Time, 0, 0, 90, 0, 0, false, 0},
      {Type::Expression, 0, 0, 0, 0, 0, false, 0},  {Type::Array, 0, 0, 0, 0, 0, false, 2},
      {Type::Map, 0, 0, 0, 0, 0, false, 1},         {Type::Reference, 41, 41, 0, 0, 0, true, 0},
      {Type::Lambda, 0, 0, 0, 0, 0, false, 0},      {Type::Object, 0, 0, 0, 0, 0, false, 0},
  };
  for (const NeutralRow& row : rows) {
    const IxoMepValue value = Sample(row.type);
    EXPECT_EQ(value.GetInt(), row.integer) << NameOf(row.type);
    EXPECT_EQ(value.GetReal(), row.real) << NameOf(row.type);
    EXPECT_EQ(value.GetSec(), row.seconds) << NameOf(row.type);
    EXPECT_EQ(value.GetTMM(), row.tenths) << NameOf(row.type);
    EXPECT_EQ(value.GetTPt(), row.points) << NameOf(row.type);
    EXPECT_EQ(value.IsNum(), row.is_number) << NameOf(row.type);
    EXPECT_EQ(value.GetSize(), row.size) << NameOf(row.type);
    EXPECT_EQ(value.GetObject() != nullptr, row.type == Type::Object) << NameOf(row.type);
    EXPECT_EQ(value.GetExpr(), nullptr);
    EXPECT_EQ(value.GetLambda(), nullptr);
  }
}

TEST(ValueAccessors, Read_through_chains_of_references) {
  IxoMepValue measure(Type::Measure, 30);
  IxoMepValue time(Type::Time, 5);
  IxoMepValue real(1.5);
  IxoMepValue object = ObjectWith("a", 1);
  IxoMepValue to_measure(&measure), to_time(&time), to_real(&real), to_object(&object);
  EXPECT_EQ(IxoMepValue(&to_measure).GetTMM(), 30);
  EXPECT_EQ(IxoMepValue(&to_measure).GetTPt(), 85);
  EXPECT_EQ(IxoMepValue(&to_time).GetSec(), 5.0);
  EXPECT_EQ(IxoMepValue(&to_real).GetReal(), 1.5);
  EXPECT_EQ(IxoMepValue(&to_real).GetInt(), 1);
  EXPECT_TRUE(IxoMepValue(&to_real).IsNum());
  EXPECT_EQ(IxoMepValue(&to_object).GetObject(), object.GetObject());
}

TEST(ValueAccessors, A_circle_of_references_is_neutral_and_ends) {
  for (int length = 1; length <= 5; ++length) {
    std::vector<IxoMepValue> circle(static_cast<std::size_t>(length));
    for (std::size_t i = 0; i < circle.size(); ++i) {
      circle[i] = IxoMepValue(&circle[(i + 1) % circle.size()]);
    }
    IxoMepValue entry(&circle[0]);
    for (const IxoMepValue* value : {&entry, &circle[0]}) {
      EXPECT_EQ(value->GetInt(), 0);
      EXPECT_EQ(value->GetReal(), 0.0);
      EXPECT_FALSE(value->IsNum());
      EXPECT_TRUE(value->GetStr().IsEmpty());
      EXPECT_EQ(value->GetObject(), nullptr);
    }
  }
}

TEST(ValueAccessors, A_long_chain_of_references_is_followed_to_its_end) {
  IxoMepValue end(9);
  std::vector<IxoMepValue> chain(1000);
  chain[0] = IxoMepValue(&end);
  for (std::size_t i = 1; i < chain.size(); ++i) chain[i] = IxoMepValue(&chain[i - 1]);
  EXPECT_EQ(chain.back().GetInt(), 9);
}

TEST(ValueGetTMM, Nudges_and_truncates) {
  EXPECT_EQ(IxoMepValue(Type::Measure, 12.999995).GetTMM(), 13);
  EXPECT_EQ(IxoMepValue(Type::Measure, 12.7).GetTMM(), 12);
  EXPECT_EQ(IxoMepValue(Type::Measure, -12.999995).GetTMM(), -13);
  EXPECT_EQ(IxoMepValue(Type::Measure, -12.7).GetTMM(), -12);
  EXPECT_EQ(IxoMepValue(Type::Measure, 0.0).GetTMM(), 0);
}

TEST(ValueGetTPt, Rounds_half_away_from_zero) {
  EXPECT_EQ(IxoMepValue(Type::Measure, 10.0).GetTPt(), 28);
  EXPECT_EQ(IxoMepValue(Type::Measure, -10.0).GetTPt(), -28);
  EXPECT_EQ(IxoMepValue(Type::Measure, 2.0).GetTPt(), 6);  // 5.67
  EXPECT_EQ(IxoMepValue(Type::Measure, -2.0).GetTPt(), -6);
}

TEST(ValueGetTMM, A_measure_without_a_32_bit_reading_gives_the_nearest) {
  EXPECT_EQ(IxoMepValue(Type::Measure, 1e300).GetTMM(), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(IxoMepValue(Type::Measure, -1e300).GetTPt(), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(IxoMepValue(Type::Measure, kNaN).GetTMM(), 0);
}

TEST(ValueGetStr, Each_type_has_its_text) {
  TestHost host;
  EXPECT_EQ(Str(IxoMepValue("a\"b").GetStr()), "a\"b");
  EXPECT_EQ(Str(IxoMepValue().GetStr()), "");
  EXPECT_EQ(Str(IxoMepValue(5).GetStr()), "5");
  EXPECT_EQ(Str(IxoMepValue(2.0).GetStr()), "2");
  EXPECT_EQ(Str(Array({"a", 1}).GetStr()), "{\"a\", 1}");
  IxoMepValue text("x");
  IxoMepValue reference(&text);
  EXPECT_EQ(Str(IxoMepValue(&reference).GetStr()), "x");
  IxoMepValue undefined;
  EXPECT_EQ(Str(IxoMepValue(&undefined).GetStr()), "");
  IxoMepValue number(3.5);
  EXPECT_EQ(Str(IxoMepValue(&number).GetStr()), "3.5");
}

TEST(ValueReferences, The_referenced_value_is_the_direct_target_only) {
  IxoMepValue end(1);
  IxoMepValue inner(&end);
  const IxoMepValue outer(&inner);
  EXPECT_EQ(outer.GetReferencedValue(), &inner);
  EXPECT_EQ(end.GetReferencedValue(), &end);
}

TEST(ValueReferences, The_target_slot_redirects_the_reference) {
  IxoMepValue one(1), two(2);
  IxoMepValue reference(&one);
  *reference.GetpValue() = &two;
  EXPECT_EQ(reference.GetInt(), 2);
}

TEST(ValueReferences, Of_another_type_the_target_slot_is_a_scratch_slot) {
  IxoMepValue value(1), other(2);
  IxoMepValue** const slot = value.GetpValue();
  EXPECT_EQ(*slot, &value);
  *slot = &other;
  EXPECT_EQ(value.GetInt(), 1);
}

TEST(ValueArrays, GetValue_of_anything_else_is_the_value_itself) {
  for (const Type type : kAllTypes) {
    if (type == Type::Array) continue;
    const IxoMepValue value = Sample(type);
    EXPECT_EQ(value.GetValue(3), &value) << NameOf(type);
  }
}

TEST(ValueArrays, GetpValue_is_the_slot_of_the_element) {
  IxoMepValue array = Array({1, 2});
  IxoMepValue::Assign(*array.GetpValue(1L), "new");
  EXPECT_EQ(TextOf(array), "{1, \"new\"}");
}

TEST(ValueArrays, GetpValue_of_anything_else_is_a_scratch_slot) {
  for (const Type type : kAllTypes) {
    if (type == Type::Array) continue;
    IxoMepValue value = Sample(type);
    IxoMepValue** const slot = value.GetpValue(0);
    EXPECT_EQ(*slot, &value) << NameOf(type);
    *slot = nullptr;
    EXPECT_TRUE(SameContent(value, Sample(type))) << NameOf(type);
  }
}

TEST(ValueMaps, GetValueOfMap_finds_by_key) {
  const IxoMepValue map = Map({"a", 1, 2, "two"});
  const IxoMepValue a("a"), two(2), real_two(2.0), absent("zz");
  EXPECT_EQ(map.GetValueOfMap(&a)->GetInt(), 1);
  EXPECT_EQ(Str(map.GetValueOfMap(&two)->GetStr()), "two");
  EXPECT_EQ(Str(map.GetValueOfMap(&real_two)->GetStr()), "two");
  EXPECT_EQ(map.GetValueOfMap(&absent), IxoMepValue::GetNull());
}

TEST(ValueMaps, GetValueOfMap_of_anything_else_is_the_null_value) {
  const IxoMepValue key("k");
  for (const Type type : kAllTypes) {
    if (type == Type::Map) continue;
    EXPECT_EQ(Sample(type).GetValueOfMap(&key), IxoMepValue::GetNull()) << NameOf(type);
  }
}

TEST(ValueMaps, GetValueOfMap_of_an_entry_without_value_is_the_null_value) {
  IxoMepValue map(Type::Map);
  const IxoMepValue key("k");
  EXPECT_EQ(*map.GetpValueOfMap(&key), nullptr);
  EXPECT_EQ(map.GetSize(), 1);
  EXPECT_EQ(map.GetValueOfMap(&key), IxoMepValue::GetNull());
  EXPECT_EQ(TextOf(map), "{\"k\": (undefined)}");
}

TEST(ValueMaps, GetpValueOfMap_creates_the_entry_and_finds_it_again) {
  IxoMepValue map(Type::Map);
  const IxoMepValue key("k");
  IxoMepValue::Assign(*map.GetpValueOfMap(&key), 5);
  EXPECT_EQ((*map.GetpValueOfMap(&key))->GetInt(), 5);
  EXPECT_EQ(map.GetSize(), 1);
}

TEST(ValueMaps, GetpValueOfMap_of_anything_else_is_a_scratch_slot) {
  const IxoMepValue key("k");
  for (const Type type : kAllTypes) {
    if (type == Type::Map) continue;
    IxoMepValue value = Sample(type);
    EXPECT_EQ(*value.GetpValueOfMap(&key), &value) << NameOf(type);
  }
}

TEST(ValueMaps, GetKeysOfMap_is_a_new_array_of_the_keys_in_order) {
  const IxoMepValue map = Map({"b", 1, 10, 2, "a", 3, 9, 4});
  const ValuePtr keys(map.GetKeysOfMap());
  EXPECT_NE(keys.get(), &map);
  EXPECT_EQ(TextOf(*keys), "{9, 10, \"a\", \"b\"}");
}

TEST(ValueMaps, GetKeysOfMap_of_anything_else_is_the_value_itself) {
  for (const Type type : kAllTypes) {
    if (type == Type::Map) continue;
    const IxoMepValue value = Sample(type);
    EXPECT_EQ(value.GetKeysOfMap(), &value) << NameOf(type);
  }
}

TEST(ValueNull, There_is_one_shared_undefined_value) {
  EXPECT_EQ(IxoMepValue::GetNull(), IxoMepValue::GetNull());
  EXPECT_EQ(IxoMepValue::GetNull()->GetType(), Type::Undefined);
}

TEST(ValueArrays, Positions_outside_reach_nothing) {
  IxoMepValue array = Array({1});
  EXPECT_EQ(array.GetValue(1), IxoMepValue::GetNull());
  EXPECT_EQ(array.GetValue(-1), IxoMepValue::GetNull());
  EXPECT_EQ(*array.GetpValue(7), &array);
  array.SetValue(5, IxoMepValue::GetNull());
  array.Erase(5);
  array.Erase(-1);
  EXPECT_EQ(TextOf(array), "{1}");
}

}  // namespace
}  // namespace ixomep::test
