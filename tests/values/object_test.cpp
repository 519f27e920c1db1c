// Objects: counts, base links, properties and native methods.
#include "ixomep/values/object.h"

#include <gtest/gtest.h>

#include "ixomep/values/object_access.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

TEST(ObjectCount, Counts_the_references_beyond_the_first) {
  IxoMepObject* const object = new IxoMepObject;
  EXPECT_EQ(object->ReferenceCount(), 0u);
  EXPECT_EQ(object->NewReference(), object);
  EXPECT_EQ(object->ReferenceCount(), 1u);
  object->DeleteReference();
  EXPECT_EQ(object->ReferenceCount(), 0u);
  object->DeleteReference();
}

TEST(ObjectCount, The_last_reference_destroys_the_object_and_its_properties) {
  const IxoMepValue witness(Type::Object);
  IxoMepObject* const object = new IxoMepObject;
  object->MoveValue("w", new IxoMepValue(witness));
  EXPECT_EQ(witness.GetObject()->ReferenceCount(), 1u);
  object->DeleteReference();
  EXPECT_EQ(witness.GetObject()->ReferenceCount(), 0u);
}

TEST(ObjectCount, At_the_cap_no_reference_is_handed_out) {
  IxoMepObject object;
  for (std::uint32_t i = 0; i < 65535; ++i) ASSERT_EQ(object.NewReference(), &object);
  EXPECT_EQ(object.NewReference(), nullptr);
  EXPECT_EQ(object.ReferenceCount(), 65535u);
  object.DeleteReference();
  EXPECT_EQ(object.NewReference(), &object);
}

TEST(ObjectBase, The_link_holds_a_reference_that_is_never_given_back) {
  IxoMepObject base;
  {
    IxoMepObject derived(&base);
    EXPECT_EQ(base.ReferenceCount(), 1u);
    EXPECT_EQ(derived.ReferenceCount(), 0u);
  }
  EXPECT_EQ(base.ReferenceCount(), 1u);
}

TEST(ObjectBase, Of_a_counted_object_the_link_is_not_given_back_either) {
  IxoMepObject base;
  IxoMepObject* const derived = new IxoMepObject(&base);
  derived->DeleteReference();
  EXPECT_EQ(base.ReferenceCount(), 1u);
}

TEST(ObjectBase, At_the_cap_there_is_no_link) {
  IxoMepObject base;
  for (std::uint32_t i = 0; i < 65535; ++i) base.NewReference();
  IxoMepObject derived(&base);
  EXPECT_EQ(base.ReferenceCount(), 65535u);
  IxoMepObject without(static_cast<IxoMepObject*>(nullptr));
  EXPECT_EQ(without.ReferenceCount(), 0u);
}

TEST(ObjectBase, Lookup_never_consults_the_base) {
  IxoMepObject base;
  base.MoveValue("p", new IxoMepValue(1));
  IxoMepObject derived(&base);
  IxoMepValue* result = nullptr;
  String error;
  EXPECT_EQ(derived.GetObjectPropertyValue("p", result, error), 42);
}

TEST(ObjectCopy, Copies_count_and_tables_and_leaves_the_base_count) {
  IxoMepObject base;
  IxoMepObject object(&base);
  object.NewReference();
  object.MoveValue("p", new IxoMepValue(1));
  object.SetNativeMethod("m", [](auto&&...) { return 0L; });
  IxoMepObject copy(object);
  EXPECT_EQ(copy.ReferenceCount(), 1u);
  EXPECT_EQ(base.ReferenceCount(), 1u);
  EXPECT_EQ(Str(copy.GetText()), "OBJECT{p: 1}");
  EXPECT_NE(copy.FindProperty("p"), object.FindProperty("p"));
  EXPECT_TRUE(ObjectAccess::HasMethod(copy, "m"));
  IxoMepObject assigned;
  assigned.MoveValue("old", new IxoMepValue(2));
  assigned = object;
  EXPECT_EQ(assigned.ReferenceCount(), 1u);
  EXPECT_EQ(Str(assigned.GetText()), "OBJECT{p: 1}");
  EXPECT_EQ(base.ReferenceCount(), 1u);
  assigned = *&assigned;
  EXPECT_EQ(Str(assigned.GetText()), "OBJECT{p: 1}");
}

TEST(ObjectProperties, MoveValue_takes_over_and_replaces) {
  IxoMepObject object;
  IxoMepValue* const value = new IxoMepValue(1);
  object.MoveValue("p", value);
  EXPECT_EQ(object.FindProperty("p"), value);
  object.MoveValue("p", value);  // the same again stays
  EXPECT_EQ(object.FindProperty("p")->GetInt(), 1);
  object.MoveValue("p", new IxoMepValue("x"));
  EXPECT_EQ(Str(object.GetText()), "OBJECT{p: \"x\"}");
}

TEST(ObjectProperties, Reading_gives_a_new_copy) {
  IxoMepObject object;
  object.MoveValue("p", new IxoMepValue(Array({1})));
  IxoMepValue* result = nullptr;
  String error = "kept";
  EXPECT_EQ(object.GetObjectPropertyValue("p", result, error), 0);
  const ValuePtr owned(result);
  result->Append(new IxoMepValue(2));
  EXPECT_EQ(Str(object.GetText()), "OBJECT{p: {1}}");
  EXPECT_EQ(Str(error), "kept");
}

TEST(ObjectProperties, Reading_assigns_into_the_value_in_the_slot) {
  IxoMepObject object;
  object.MoveValue("p", new IxoMepValue(7));
  const ValuePtr place = MakeValue("old");
  IxoMepValue* slot = place.get();
  String error;
  EXPECT_EQ(object.GetObjectPropertyValue("p", slot, error), 0);
  EXPECT_EQ(slot, place.get());
  EXPECT_EQ(slot->GetInt(), 7);
}

TEST(ObjectProperties, The_place_is_the_stored_value_itself) {
  IxoMepObject object;
  IxoMepValue* const stored = new IxoMepValue(1);
  object.MoveValue("p", stored);
  IxoMepValue* place = nullptr;
  String error;
  EXPECT_EQ(object.GetObjectPropertyLValue("p", place, error), 0);
  EXPECT_EQ(place, stored);
  place->SetInt(2);
  EXPECT_EQ(Str(object.GetText()), "OBJECT{p: 2}");
}

TEST(ObjectProperties, An_unknown_name_is_42_and_leaves_text_and_result_alone) {
  IxoMepObject object;
  object.MoveValue("P", new IxoMepValue(1));
  IxoMepValue* result = nullptr;
  String error = "kept";
  for (const char* name : {"p", "", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(object.GetObjectPropertyValue(name, result, error), 42);
    EXPECT_EQ(object.GetObjectPropertyLValue(name, result, error), 42);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(Str(error), "kept");
  }
}

TEST(ObjectText, Lists_the_properties_in_name_order) {
  IxoMepObject object;
  EXPECT_EQ(Str(object.GetText()), "OBJECT{}");
  object.MoveValue("b", new IxoMepValue(2));
  object.MoveValue("a", new IxoMepValue("x"));
  object.MoveValue("B", new IxoMepValue(2.0));
  EXPECT_EQ(Str(object.GetText()), "OBJECT{B: 2, a: \"x\", b: 2}");
}

TEST(ObjectMethods, What_a_call_of_the_name_would_reach) {
  IxoMepObject object;
  object.MoveValue("number", new IxoMepValue(1));
  object.MoveValue("lambda", new IxoMepValue(Sample(Type::Lambda)));
  object.SetNativeMethod("native", [](auto&&...) { return 0L; });
  object.SetNativeMethod("number", [](auto&&...) { return 0L; });
  object.SetNativeMethod("nothing", nullptr);
  EXPECT_TRUE(ObjectAccess::HasMethod(object, "lambda"));
  EXPECT_TRUE(ObjectAccess::HasMethod(object, "native"));
  EXPECT_FALSE(ObjectAccess::HasMethod(object, "number"));  // the property hides the method
  EXPECT_FALSE(ObjectAccess::HasMethod(object, "nothing"));
  EXPECT_FALSE(ObjectAccess::HasMethod(object, "absent"));
}

}  // namespace
}  // namespace ixomep::test
