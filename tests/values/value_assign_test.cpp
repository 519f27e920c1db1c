// Assignment into slots in all its forms, and the setters.
#include <gtest/gtest.h>

#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

// Assigns by `assign` into an empty slot and into a slot with a value of every type.
template <class Assign>
void ExpectAssigned(const Assign& assign, Type type, const char* text) {
  IxoMepValue* fresh = nullptr;
  assign(fresh);
  const ValuePtr owned(fresh);
  ASSERT_NE(fresh, nullptr);
  EXPECT_EQ(fresh->GetType(), type);
  EXPECT_EQ(TextOf(*fresh), text);
  for (const Type old_type : kAllTypes) {
    const ValuePtr place = MakeValue(Sample(old_type));
    IxoMepValue* slot = place.get();
    assign(slot);
    EXPECT_EQ(slot, place.get()) << "over " << NameOf(old_type);
    EXPECT_EQ(slot->GetType(), type) << "over " << NameOf(old_type);
    EXPECT_EQ(TextOf(*slot), text) << "over " << NameOf(old_type);
  }
}

TEST(ValueAssign, Plain_content_keeps_the_identity_of_the_value_in_the_slot) {
  const String text = "text";
  ExpectAssigned([&](IxoMepValue*& p) { IxoMepValue::Assign(p, text); }, Type::String, "\"text\"");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, "c"); }, Type::String, "\"c\"");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, short{-1}); }, Type::Integer, "-1");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, static_cast<unsigned short>(2)); },
                 Type::Integer, "2");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, 3); }, Type::Integer, "3");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, 4u); }, Type::Integer, "4");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, 5L); }, Type::Integer, "5");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, 6UL); }, Type::Integer, "6");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, 7.5); }, Type::Real, "7.5");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, true); }, Type::Integer, "1");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, false); }, Type::Integer, "0");
}

TEST(ValueAssign, A_null_character_pointer_gives_the_empty_string) {
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, static_cast<const char*>(nullptr)); },
                 Type::String, "\"\"");
}

TEST(ValueAssign, By_type_and_number_keeps_the_identity) {
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Measure, 125); }, Type::Measure,
                 "1.25cm");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Time, 61); }, Type::Time,
                 "00:000:00:01:01");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Integer, 9); }, Type::Integer,
                 "9");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Real, 9); }, Type::Real, "9");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Array, 1); }, Type::Array,
                 "{(undefined)}");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Measure, 125.5); },
                 Type::Measure, "1.25cm");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Time, 61.5); }, Type::Time,
                 "00:000:00:01:01");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Integer, -9.9); },
                 Type::Integer, "-9");
  ExpectAssigned([](IxoMepValue*& p) { IxoMepValue::Assign(p, Type::Real, 9.5); }, Type::Real,
                 "9.5");
}

TEST(ValueAssign, By_type_and_number_keeps_the_fraction_of_a_measure) {
  IxoMepValue* slot = nullptr;
  IxoMepValue::Assign(slot, Type::Measure, 12.6);
  IxoMepValue::Assign(slot, Type::Measure, 2.4);
  const ValuePtr owned(slot);
  EXPECT_EQ(slot->GetTPt(), 7);  // 6.8 rounded; whole tenths would give 5.67 and so 6
}

TEST(ValueAssign, From_a_source_of_every_type_over_every_type) {
  for (const Type from : kAllTypes) {
    const IxoMepValue source = Sample(from, 1);
    for (const Type to : kAllTypes) {
      const ValuePtr place = MakeValue(Sample(to));
      IxoMepValue* slot = place.get();
      IxoMepValue::Assign(slot, &source);
      EXPECT_EQ(slot, place.get());
      EXPECT_TRUE(SameContent(*slot, source)) << NameOf(from) << " over " << NameOf(to);
    }
    IxoMepValue* fresh = nullptr;
    IxoMepValue::Assign(fresh, &source);
    const ValuePtr owned(fresh);
    EXPECT_TRUE(SameContent(*fresh, source)) << NameOf(from);
  }
}

TEST(ValueAssign, From_a_null_source_destroys_the_value_and_nulls_the_slot) {
  IxoMepValue* slot = new IxoMepValue("x");
  IxoMepValue::Assign(slot, static_cast<const IxoMepValue*>(nullptr));
  EXPECT_EQ(slot, nullptr);
  IxoMepValue::Assign(slot, static_cast<const IxoMepValue*>(nullptr));
  EXPECT_EQ(slot, nullptr);
}

TEST(ValueAssign, From_itself_changes_nothing) {
  for (const Type type : kAllTypes) {
    const ValuePtr place = MakeValue(Sample(type));
    IxoMepValue* slot = place.get();
    IxoMepValue::Assign(slot, static_cast<const IxoMepValue*>(slot));
    EXPECT_TRUE(SameContent(*slot, Sample(type))) << NameOf(type);
  }
}

TEST(ValueAssignOrTake, A_null_source_leaves_an_undefined_value_in_place) {
  const ValuePtr place = MakeValue();
  IxoMepValue* slot = place.get();
  IxoMepValue::Assign(slot, nullptr, false);
  EXPECT_EQ(slot, place.get());
}

TEST(ValueAssignOrTake, A_null_source_makes_any_other_slot_undefined) {
  for (const Type type : kAllTypes) {
    IxoMepValue* slot = new IxoMepValue(Sample(type));
    IxoMepValue::Assign(slot, nullptr, true);
    const ValuePtr owned(slot);
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(slot->GetType(), Type::Undefined) << NameOf(type);
  }
  IxoMepValue* slot = nullptr;
  IxoMepValue::Assign(slot, nullptr, false);
  const ValuePtr owned(slot);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(slot->GetType(), Type::Undefined);
}

TEST(ValueAssignOrTake, Taking_puts_the_source_itself_into_the_slot) {
  for (const Type type : kAllTypes) {
    IxoMepValue* slot = new IxoMepValue(Sample(type));
    IxoMepValue* const source = new IxoMepValue(Sample(type, 1));
    IxoMepValue::Assign(slot, source, true);
    const ValuePtr owned(slot);
    EXPECT_EQ(slot, source) << NameOf(type);
  }
  IxoMepValue* slot = nullptr;
  IxoMepValue* const source = new IxoMepValue(1);
  IxoMepValue::Assign(slot, source, true);
  IxoMepValue::Assign(slot, source, true);  // what is there already stays
  const ValuePtr owned(slot);
  EXPECT_EQ(slot, source);
}

TEST(ValueAssignOrTake, Of_another_type_the_slot_receives_a_new_copy) {
  for (const Type from : kAllTypes) {
    IxoMepValue source = Sample(from);
    for (const Type to : kAllTypes) {
      if (from == to) continue;
      IxoMepValue* slot = new IxoMepValue(Sample(to));
      IxoMepValue::Assign(slot, &source, false);
      const ValuePtr owned(slot);
      EXPECT_NE(slot, &source);
      EXPECT_TRUE(SameContent(*slot, source)) << NameOf(from) << " over " << NameOf(to);
    }
    IxoMepValue* slot = nullptr;
    IxoMepValue::Assign(slot, &source, false);
    const ValuePtr owned(slot);
    EXPECT_TRUE(SameContent(*slot, source)) << NameOf(from);
  }
}

TEST(ValueAssignOrTake, Of_the_same_type_plain_values_are_rewritten_in_place) {
  for (const Type type :
       {Type::String, Type::Integer, Type::Real, Type::Time, Type::Expression, Type::Measure}) {
    TestHost host;
    const ValuePtr place = MakeValue(Sample(type));
    IxoMepValue* slot = place.get();
    IxoMepValue source = Sample(type, 1);
    IxoMepValue::Assign(slot, &source, false);
    EXPECT_EQ(slot, place.get()) << NameOf(type);
    EXPECT_TRUE(SameContent(*slot, source)) << NameOf(type);
    EXPECT_TRUE(host.assertions.empty()) << NameOf(type);
  }
}

TEST(ValueAssignOrTake, A_string_in_place_shares_its_text) {
  const ValuePtr place = MakeValue("old");
  IxoMepValue* slot = place.get();
  IxoMepValue source("a text of some length");
  IxoMepValue::Assign(slot, &source, false);
  EXPECT_TRUE(slot->GetStr().SharesTextWith(source.GetStr()));
}

struct Fraction {
  double tenths;
  double in_place;
};

TEST(ValueAssignOrTake, A_measure_in_place_drops_its_fraction) {
  const Fraction rows[] = {{12.7, 12}, {12.999995, 13}, {-12.7, -12}, {-12.999995, -13}, {0, 0}};
  for (const Fraction& row : rows) {
    const ValuePtr place = MakeValue(Type::Measure, 1);
    IxoMepValue* slot = place.get();
    IxoMepValue source(Type::Measure, row.tenths);
    IxoMepValue::Assign(slot, &source, false);
    EXPECT_EQ(ValueAccess::Number(*slot), row.in_place) << row.tenths;
  }
}

TEST(ValueAssignOrTake, A_measure_over_another_type_keeps_its_fraction) {
  IxoMepValue* slot = new IxoMepValue(1);
  IxoMepValue source(Type::Measure, 12.7);
  IxoMepValue::Assign(slot, &source, false);
  const ValuePtr owned(slot);
  EXPECT_EQ(ValueAccess::Number(*slot), 12.7);
}

TEST(ValueAssignOrTake, The_same_type_from_array_on_is_reported_and_changes_nothing) {
  for (const Type type :
       {Type::Array, Type::Map, Type::Reference, Type::Lambda, Type::Object, Type::Undefined}) {
    TestHost host;
    const ValuePtr place = MakeValue(Sample(type));
    IxoMepValue* slot = place.get();
    IxoMepValue source = Sample(type, 1);
    IxoMepValue::Assign(slot, &source, false);
    EXPECT_EQ(slot, place.get()) << NameOf(type);
    EXPECT_TRUE(SameContent(*slot, Sample(type))) << NameOf(type);
    EXPECT_EQ(host.assertions.size(), 1u) << NameOf(type);
  }
}

TEST(ValueSetters, Become_the_type_over_every_type) {
  for (const Type type : kAllTypes) {
    IxoMepValue value = Sample(type);
    value.SetInt(5);
    EXPECT_EQ(value.GetType(), Type::Integer);
    EXPECT_EQ(value.GetInt(), 5);
    value = Sample(type);
    value.SetReal(2.5);
    EXPECT_EQ(value.GetType(), Type::Real);
    EXPECT_EQ(value.GetReal(), 2.5);
    value = Sample(type);
    value.SetSec(61.5);
    EXPECT_EQ(value.GetType(), Type::Time);
    EXPECT_EQ(value.GetSec(), 61.5);
    value = Sample(type);
    value.SetTMM(12.5);
    EXPECT_EQ(value.GetType(), Type::Measure);
    EXPECT_EQ(ValueAccess::Number(value), 12.5);
    value = Sample(type);
    value.SetStr("t");
    EXPECT_EQ(TextOf(value), "\"t\"");
    value = Sample(type);
    value.SetNull();
    EXPECT_EQ(value.GetType(), Type::Undefined);
    value = Sample(type);
    value.SetExpr(nullptr);
    EXPECT_EQ(value.GetType(), Type::Expression);
  }
}

TEST(ValueSetters, A_string_shares_the_text) {
  const String text = "a text of some length";
  IxoMepValue value;
  value.SetStr(text);
  EXPECT_TRUE(value.GetStr().SharesTextWith(text));
}

TEST(ValueSetters, A_references_target_sees_what_is_assigned_into_it) {
  const ValuePtr place = MakeValue(1);
  const IxoMepValue reference(place.get());
  IxoMepValue* slot = place.get();
  IxoMepValue::Assign(slot, 2);
  EXPECT_EQ(reference.GetInt(), 2);
  slot->SetReal(3.0);
  EXPECT_EQ(reference.GetInt(), 3);
}

}  // namespace
}  // namespace ixomep::test
