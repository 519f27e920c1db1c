// Construction of values by content and by type, and what construction from an unsupported type
// reports.
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

#include "ixomep/values/units.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

TEST(ValueConstruction, Without_arguments_it_is_undefined) {
  EXPECT_EQ(IxoMepValue().GetType(), Type::Undefined);
}

TEST(ValueConstruction, Two_fields_are_the_whole_value) { EXPECT_EQ(sizeof(IxoMepValue), 16u); }

TEST(ValueConstruction, From_text_shares_the_text) {
  const String text = "some text that is long enough";
  const IxoMepValue value(text);
  EXPECT_EQ(value.GetType(), Type::String);
  EXPECT_TRUE(value.GetStr().SharesTextWith(text));
}

TEST(ValueConstruction, From_a_null_character_pointer_is_the_empty_string) {
  const IxoMepValue value(static_cast<const char*>(nullptr));
  EXPECT_EQ(value.GetType(), Type::String);
  EXPECT_TRUE(value.GetStr().IsEmpty());
}

TEST(ValueConstruction, Every_integer_type_gives_an_integer) {
  EXPECT_EQ(IxoMepValue(short{-3}).GetInt(), -3);
  EXPECT_EQ(IxoMepValue(static_cast<unsigned short>(65535)).GetInt(), 65535);
  EXPECT_EQ(IxoMepValue(-7).GetInt(), -7);
  EXPECT_EQ(IxoMepValue(4294967295u).GetInt(), -1);
  EXPECT_EQ(IxoMepValue(-9L).GetInt(), -9);
  EXPECT_EQ(IxoMepValue(9UL).GetInt(), 9);
  for (const IxoMepValue& value : {IxoMepValue(short{1}), IxoMepValue(1u), IxoMepValue(1L),
                                   IxoMepValue(1UL), IxoMepValue(1)}) {
    EXPECT_EQ(value.GetType(), Type::Integer);
  }
}

TEST(ValueConstruction, A_long_keeps_its_low_32_bits) {
  EXPECT_EQ(IxoMepValue(4294967296L + 5).GetInt(), 5);
  EXPECT_EQ(IxoMepValue(4294967296UL + 6).GetInt(), 6);
}

TEST(ValueConstruction, A_truth_value_is_the_integer_one_or_zero) {
  EXPECT_EQ(IxoMepValue(true).GetType(), Type::Integer);
  EXPECT_EQ(IxoMepValue(true).GetInt(), 1);
  EXPECT_EQ(IxoMepValue(false).GetInt(), 0);
}

TEST(ValueConstruction, No_pointer_turns_into_a_truth_value) {
  EXPECT_FALSE((std::is_constructible_v<IxoMepValue, const void*>));
  EXPECT_FALSE((std::is_constructible_v<IxoMepValue, const IxoMepValue*>));
}

TEST(ValueConstruction, From_a_double_is_a_real) {
  const IxoMepValue value(2.5);
  EXPECT_EQ(value.GetType(), Type::Real);
  EXPECT_EQ(value.GetReal(), 2.5);
}

TEST(ValueConstruction, From_a_value_pointer_is_a_reference_to_it) {
  IxoMepValue target(5);
  const IxoMepValue value(&target);
  EXPECT_EQ(value.GetType(), Type::Reference);
  EXPECT_EQ(value.GetReferencedValue(), &target);
}

TEST(ValueConstruction, From_an_object_takes_over_the_callers_reference) {
  IxoMepObject* const object = new IxoMepObject;
  object->NewReference();
  {
    const IxoMepValue value(object);
    EXPECT_EQ(value.GetType(), Type::Object);
    EXPECT_EQ(object->ReferenceCount(), 1u);
  }
  EXPECT_EQ(object->ReferenceCount(), 0u);
  object->DeleteReference();
}

struct DefaultContent {
  Type type;
  const char* text;
};

TEST(ValueConstruction, By_type_alone_gives_default_content) {
  TestHost host;
  const DefaultContent rows[] = {
      {Type::Integer, "0"}, {Type::Real, "0"}, {Type::Measure, "0cm"},
      {Type::Array, "{}"},  {Type::Map, "{}"}, {Type::Object, "OBJECT{}"},
  };
  for (const DefaultContent& row : rows) {
    const IxoMepValue value(row.type);
    EXPECT_EQ(value.GetType(), row.type);
    EXPECT_EQ(TextOf(value), row.text) << NameOf(row.type);
  }
  EXPECT_EQ(IxoMepValue(Type::Time).GetSec(), 0.0);
  EXPECT_EQ(IxoMepValue(Type::Time).GetType(), Type::Time);
  EXPECT_TRUE(host.assertions.empty());
}

TEST(ValueConstruction, By_type_alone_of_any_other_type_is_reported_and_sets_the_tag) {
  for (const Type type : {Type::Undefined, Type::String, Type::Expression, Type::Reference,
                          Type::Lambda, static_cast<Type>(77)}) {
    TestHost host;
    const IxoMepValue value(type);
    EXPECT_EQ(value.GetType(), type);
    EXPECT_EQ(host.assertions.size(), 1u) << NameOf(type);
    EXPECT_NE(host.assertions[0].source.find("value.cpp"), std::string::npos);
    EXPECT_GT(host.assertions[0].line, 0);
  }
}

TEST(ValueConstruction, A_value_without_payload_survives_every_accessor) {
  TestHost host;
  for (const Type type : {Type::String, Type::Expression, Type::Reference, Type::Lambda}) {
    IxoMepValue value(type);
    const IxoMepValue copy(value);
    EXPECT_EQ(copy.GetType(), type);
    EXPECT_EQ(value.GetInt(), 0);
    EXPECT_EQ(value.GetExpr(), nullptr);
    EXPECT_EQ(value.GetLambda(), nullptr);
    EXPECT_EQ(value.GetObject(), nullptr);
    EXPECT_FALSE(value.IsNum());
    EXPECT_TRUE(value.GetStr().IsEmpty() || type == Type::Lambda);
  }
}

TEST(ValueConstruction, By_type_and_whole_number) {
  TestHost host;
  EXPECT_EQ(IxoMepValue(Type::Integer, -4).GetInt(), -4);
  EXPECT_EQ(IxoMepValue(Type::Real, 3).GetReal(), 3.0);
  EXPECT_EQ(IxoMepValue(Type::Measure, 125).GetTMM(), 125);
  EXPECT_EQ(IxoMepValue(Type::Time, 60).GetSec(), 60.0);
  EXPECT_EQ(TextOf(IxoMepValue(Type::Array, 2)), "{(undefined), (undefined)}");
  EXPECT_EQ(TextOf(IxoMepValue(Type::Array, 0)), "{}");
  EXPECT_EQ(TextOf(IxoMepValue(Type::Array, -3)), "{}");
  EXPECT_TRUE(host.assertions.empty());
}

TEST(ValueConstruction, By_type_and_whole_number_of_another_type_is_reported) {
  for (const Type type : {Type::Undefined, Type::String, Type::Expression, Type::Map,
                          Type::Reference, Type::Lambda, Type::Object}) {
    TestHost host;
    EXPECT_EQ(IxoMepValue(type, 1).GetType(), type);
    EXPECT_EQ(host.assertions.size(), 1u) << NameOf(type);
  }
}

TEST(ValueConstruction, By_type_and_real_number) {
  TestHost host;
  EXPECT_EQ(IxoMepValue(Type::Integer, 2.9).GetInt(), 2);
  EXPECT_EQ(IxoMepValue(Type::Integer, -2.9).GetInt(), -2);
  EXPECT_EQ(IxoMepValue(Type::Integer, 1e30).GetInt(), 0);
  EXPECT_EQ(IxoMepValue(Type::Integer, std::numeric_limits<double>::quiet_NaN()).GetInt(), 0);
  EXPECT_EQ(IxoMepValue(Type::Real, 2.5).GetReal(), 2.5);
  EXPECT_EQ(IxoMepValue(Type::Measure, 12.5).GetTMM(), 12);
  EXPECT_EQ(IxoMepValue(Type::Time, 1.5).GetSec(), 1.5);
  EXPECT_TRUE(host.assertions.empty());
}

TEST(ValueConstruction, By_type_and_real_number_of_another_type_is_reported) {
  for (const Type type : {Type::Undefined, Type::String, Type::Expression, Type::Array, Type::Map,
                          Type::Reference, Type::Lambda, Type::Object}) {
    TestHost host;
    EXPECT_EQ(IxoMepValue(type, 1.5).GetType(), type);
    EXPECT_EQ(host.assertions.size(), 1u) << NameOf(type);
  }
}

TEST(ValueConstruction, An_array_takes_over_the_elements_of_a_list_in_order) {
  IxoMepValue* const first = new IxoMepValue(1);
  IxoMepValue* const second = new IxoMepValue("b");
  const IxoMepValue array(Type::Array, IxoMepValueList{first, second});
  EXPECT_EQ(array.GetSize(), 2);
  EXPECT_EQ(array.GetValue(0), first);
  EXPECT_EQ(array.GetValue(1), second);
}

TEST(ValueConstruction, A_map_takes_over_pairs_and_keeps_the_first_of_equal_keys) {
  IxoMepValue* const value = new IxoMepValue(1);
  const IxoMepValue map(
      Type::Map, IxoMepValueList{new IxoMepValue("b"), value, new IxoMepValue("a"),
                                 new IxoMepValue(2), new IxoMepValue("b"), new IxoMepValue(3)});
  EXPECT_EQ(TextOf(map), "{\"a\": 2, \"b\": 1}");
  const IxoMepValue key("b");
  EXPECT_EQ(map.GetValueOfMap(&key), value);
}

TEST(ValueConstruction, A_map_drops_a_last_key_without_value) {
  const IxoMepValue map(Type::Map, IxoMepValueList{new IxoMepValue("a"), new IxoMepValue(1),
                                                   new IxoMepValue("lost")});
  EXPECT_EQ(TextOf(map), "{\"a\": 1}");
}

TEST(ValueConstruction, Of_a_list_with_another_type_only_the_tag_is_set) {
  for (const Type type : kAllTypes) {
    if (type == Type::Array || type == Type::Map) continue;
    TestHost host;
    IxoMepValue element(1);
    const IxoMepValue value(type, IxoMepValueList{&element});
    EXPECT_EQ(value.GetType(), type);
    EXPECT_TRUE(host.assertions.empty()) << NameOf(type);
  }
}

TEST(ValueConstruction, A_map_literal_refuses_an_undefined_key_and_changes_nothing) {
  OwnedList pairs;
  pairs.Add(IxoMepValue("a"));
  pairs.Add(IxoMepValue(1));
  pairs.Add(IxoMepValue());
  pairs.Add(IxoMepValue(2));
  IxoMepValue out(5);
  EXPECT_FALSE(ValueAccess::MakeMap(out, std::move(pairs)));
  EXPECT_EQ(TextOf(out), "5");
}

TEST(ValueConstruction, A_map_literal_keeps_the_first_of_equal_keys) {
  EXPECT_EQ(TextOf(Map({1, "a", 2, "b", 1, "c", 3})), "{1: \"a\", 2: \"b\"}");
}

}  // namespace
}  // namespace ixomep::test
