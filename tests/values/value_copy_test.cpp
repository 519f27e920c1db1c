// Copies: what they share, that nothing done to one shows in the other, and that containers which
// hold what must not be shared are copied in full.
#include <gtest/gtest.h>

#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

bool ShareStorage(const IxoMepValue& a, const IxoMepValue& b) {
  return a.GetType() == Type::Array ? ValueAccess::List(a) == ValueAccess::List(b)
                                    : ValueAccess::Map(a) == ValueAccess::Map(b);
}

TEST(ValueCopy, Every_type_is_copied) {
  for (const Type type : kAllTypes) {
    const IxoMepValue value = Sample(type);
    const IxoMepValue copy(value);
    EXPECT_TRUE(SameContent(copy, value)) << NameOf(type);
    IxoMepValue assigned = 1;
    assigned = value;
    EXPECT_TRUE(SameContent(assigned, value)) << NameOf(type);
  }
}

TEST(ValueCopy, Every_type_is_moved_and_leaves_undefined) {
  for (const Type type : kAllTypes) {
    IxoMepValue value = Sample(type);
    IxoMepValue moved(std::move(value));
    EXPECT_EQ(value.GetType(), Type::Undefined);
    EXPECT_TRUE(SameContent(moved, Sample(type))) << NameOf(type);
    IxoMepValue assigned("old");
    assigned = std::move(moved);
    EXPECT_TRUE(SameContent(assigned, Sample(type))) << NameOf(type);
  }
}

TEST(ValueCopy, Assigning_a_value_to_itself_changes_nothing) {
  for (const Type type : kAllTypes) {
    IxoMepValue value = Sample(type);
    const IxoMepValue& alias = value;
    value = alias;
    EXPECT_TRUE(SameContent(value, Sample(type))) << NameOf(type);
  }
}

TEST(ValueCopy, Moving_a_value_to_itself_changes_nothing) {
  for (const Type type : kAllTypes) {
    IxoMepValue value = Sample(type);
    IxoMepValue& alias = value;
    value = std::move(alias);
    EXPECT_TRUE(SameContent(value, Sample(type))) << NameOf(type);
  }
}

TEST(ValueCopy, A_value_may_be_moved_over_the_container_it_stands_in) {
  IxoMepValue array(Type::Array);
  array.Append(new IxoMepValue("an element of some length"));
  array = std::move(*array.GetValue(0L));
  EXPECT_EQ(array.GetStr(), "an element of some length");
}

TEST(ValueCopy, A_text_that_is_handed_over_is_not_copied) {
  String text("a text of some length");
  const String shared = text;
  const IxoMepValue value(std::move(text));
  EXPECT_EQ(value.GetType(), Type::String);
  EXPECT_TRUE(value.GetStr().SharesTextWith(shared));
  EXPECT_TRUE(text.IsEmpty());
}

TEST(ValueCopy, Strings_share_their_text) {
  const IxoMepValue value("a text of some length");
  const IxoMepValue copy(value);
  EXPECT_TRUE(copy.GetStr().SharesTextWith(value.GetStr()));
}

TEST(ValueCopy, References_refer_to_the_same_value) {
  IxoMepValue target(1);
  const IxoMepValue reference(&target);
  const IxoMepValue copy(reference);
  EXPECT_EQ(copy.GetReferencedValue(), &target);
}

TEST(ValueCopy, Elements_are_values_of_their_own) {
  IxoMepValue array = Array({1, "a", Array({2})});
  IxoMepValue copy(array);
  EXPECT_NE(copy.GetValue(0), array.GetValue(0));
  copy.GetValue(0)->SetInt(9);
  copy.GetValue(2)->GetValue(0)->SetInt(8);
  EXPECT_EQ(TextOf(copy), "{9, \"a\", {8}}");
  EXPECT_EQ(TextOf(array), "{1, \"a\", {2}}");
}

TEST(ValueCopy, Keys_and_values_are_values_of_their_own) {
  IxoMepValue map = Map({"a", 1, "b", Array({2})});
  IxoMepValue copy(map);
  const IxoMepValue a("a"), b("b");
  copy.GetValueOfMap(&a)->SetInt(9);
  copy.GetValueOfMap(&b)->GetValue(0)->SetInt(8);
  EXPECT_EQ(TextOf(copy), "{\"a\": 9, \"b\": {8}}");
  EXPECT_EQ(TextOf(map), "{\"a\": 1, \"b\": {2}}");
}

struct Change {
  const char* name;
  void (*apply)(IxoMepValue& value);
};

TEST(ValueCopy, No_change_of_an_array_shows_in_its_copy) {
  const Change changes[] = {
      {"Append", [](IxoMepValue& v) { v.Append(new IxoMepValue(5)); }},
      {"Insert", [](IxoMepValue& v) { v.Insert(0L, new IxoMepValue(5)); }},
      {"Erase", [](IxoMepValue& v) { v.Erase(0); }},
      {"SetValue", [](IxoMepValue& v) { v.SetValue(0, IxoMepValue::GetNull()); }},
      {"GetpValue", [](IxoMepValue& v) { (*v.GetpValue(0L))->SetInt(5); }},
      {"GetValue", [](IxoMepValue& v) { v.GetValue(0)->SetInt(5); }},
      {"nested", [](IxoMepValue& v) { v.GetValue(1)->GetValue(0)->SetInt(5); }},
      {"AppendOwned", [](IxoMepValue& v) { ValueAccess::AppendOwned(v, MakeValue(5)); }},
      {"InsertOwned", [](IxoMepValue& v) { ValueAccess::InsertOwned(v, 1, MakeValue(5)); }},
      {"EraseAt", [](IxoMepValue& v) { ValueAccess::EraseAt(v, 1); }},
      {"OwnElement", [](IxoMepValue& v) { ValueAccess::OwnElement(v, 0)->SetInt(5); }},
      {"nested OwnElement",
       [](IxoMepValue& v) {
         ValueAccess::OwnElement(*ValueAccess::OwnElement(v, 1), 0)->SetInt(5);
       }},
      {"nested AppendOwned",
       [](IxoMepValue& v) {
         ValueAccess::AppendOwned(*ValueAccess::OwnElement(v, 1), MakeValue(5));
       }},
  };
  for (const Change& change : changes) {
    IxoMepValue array = Array({1, Array({2, 3})});
    IxoMepValue copy(array);
    change.apply(array);
    EXPECT_EQ(TextOf(copy), "{1, {2, 3}}") << change.name;
    EXPECT_NE(TextOf(array), "{1, {2, 3}}") << change.name;
    // And the other way round, from a copy of the changed one.
    IxoMepValue second(copy);
    change.apply(second);
    EXPECT_EQ(TextOf(copy), "{1, {2, 3}}") << change.name;
    EXPECT_EQ(TextOf(second), TextOf(array)) << change.name;
  }
}

TEST(ValueCopy, No_change_of_a_map_shows_in_its_copy) {
  static const IxoMepValue a("a"), b("b"), c("c");
  const Change changes[] = {
      {"SetValue", [](IxoMepValue& v) { v.SetValue(&a, &c); }},
      {"SetValue new", [](IxoMepValue& v) { v.SetValue(&c, &c); }},
      {"Erase", [](IxoMepValue& v) { v.Erase(&a); }},
      {"MoveValue", [](IxoMepValue& v) { v.MoveValue("a", new IxoMepValue(5)); }},
      {"GetpValueOfMap", [](IxoMepValue& v) { (*v.GetpValueOfMap(&a))->SetInt(5); }},
      {"GetpValueOfMap new", [](IxoMepValue& v) { v.GetpValueOfMap(&c); }},
      {"GetValueOfMap", [](IxoMepValue& v) { v.GetValueOfMap(&a)->SetInt(5); }},
      {"nested", [](IxoMepValue& v) { v.GetValueOfMap(&b)->GetValue(0)->SetInt(5); }},
      {"OwnEntry", [](IxoMepValue& v) { ValueAccess::OwnEntry(v, a, false)->SetInt(5); }},
      {"OwnEntry new", [](IxoMepValue& v) { ValueAccess::OwnEntry(v, c, true)->SetInt(5); }},
      {"EraseKey", [](IxoMepValue& v) { ValueAccess::EraseKey(v, b); }},
  };
  for (const Change& change : changes) {
    IxoMepValue map = Map({"a", 1, "b", Array({2})});
    IxoMepValue copy(map);
    change.apply(map);
    EXPECT_EQ(TextOf(copy), "{\"a\": 1, \"b\": {2}}") << change.name;
    EXPECT_NE(TextOf(map), "{\"a\": 1, \"b\": {2}}") << change.name;
  }
}

TEST(ValueCopy, Plain_containers_share_their_storage_until_one_changes) {
  IxoMepValue array = Array({1, Map({"a", Array({"b"})}), &Target(), Sample(Type::Lambda)});
  IxoMepValue copy(array);
  IxoMepValue third(copy);
  EXPECT_TRUE(ShareStorage(array, copy));
  EXPECT_TRUE(ShareStorage(array, third));
  ValueAccess::AppendOwned(copy, MakeValue(2));
  EXPECT_FALSE(ShareStorage(array, copy));
  EXPECT_TRUE(ShareStorage(array, third));
  // What the change did not touch is still shared.
  EXPECT_TRUE(ShareStorage(ValueAccess::Element(array, 1), ValueAccess::Element(copy, 1)));
}

TEST(ValueCopy, A_container_with_an_object_is_copied_in_full) {
  const IxoMepValue object(Type::Object);
  const IxoMepValue array = Array({Array({object})});
  EXPECT_EQ(object.GetObject()->ReferenceCount(), 1u);
  const IxoMepValue copy(array);
  EXPECT_FALSE(ShareStorage(array, copy));
  EXPECT_EQ(object.GetObject()->ReferenceCount(), 2u);
}

TEST(ValueCopy, A_container_that_receives_an_object_deep_inside_is_no_longer_shared) {
  IxoMepValue array = Array({Array({Array({1})})});
  const IxoMepValue before(array);
  EXPECT_TRUE(ShareStorage(array, before));
  IxoMepValue* const place =
      ValueAccess::OwnElement(*ValueAccess::OwnElement(*ValueAccess::OwnElement(array, 0), 0), 0);
  *place = IxoMepValue(Type::Object);
  const IxoMepObject* const object = place->GetObject();
  const IxoMepValue after(array);
  EXPECT_FALSE(ShareStorage(array, after));
  EXPECT_EQ(object->ReferenceCount(), 1u);
  EXPECT_EQ(TextOf(before), "{{{1}}}");
}

TEST(ValueCopy, A_pointer_to_an_element_never_reaches_a_copy) {
  IxoMepValue array = Array({1, Array({2})});
  IxoMepValue* const element = array.GetValue(0);
  IxoMepValue* const inner = array.GetValue(1);
  const IxoMepValue copy(array);
  const IxoMepValue second(array);
  element->SetInt(9);
  inner->Append(new IxoMepValue(3));
  EXPECT_EQ(TextOf(copy), "{1, {2}}");
  EXPECT_EQ(TextOf(second), "{1, {2}}");
  EXPECT_EQ(TextOf(array), "{9, {2, 3}}");
}

TEST(ValueCopy, A_pointer_that_the_host_kept_to_an_appended_element_stays_the_arrays_alone) {
  IxoMepValue array(Type::Array);
  IxoMepValue* const element = new IxoMepValue(1);
  array.Append(element);
  const IxoMepValue copy(array);
  element->SetInt(2);
  EXPECT_EQ(TextOf(copy), "{1}");
  EXPECT_EQ(TextOf(array), "{2}");
}

TEST(ValueCopy, A_pointer_taken_before_copying_the_outer_container_stays_inside) {
  IxoMepValue outer = Array({Array({1})});
  const IxoMepValue before(outer);
  outer.GetValue(0)->GetValue(0)->SetInt(5);
  IxoMepValue* const deep = outer.GetValue(0)->GetValue(0);
  IxoMepValue wrapped = Array({outer});
  deep->SetInt(6);
  EXPECT_EQ(TextOf(wrapped), "{{{5}}}");
  EXPECT_EQ(TextOf(before), "{{1}}");
}

TEST(ValueCopy, An_array_may_be_assigned_to_its_own_element) {
  IxoMepValue array = Array({1, Array({2})});
  *ValueAccess::OwnElement(array, 0) = array;
  EXPECT_EQ(TextOf(array), "{{1, {2}}, {2}}");
  IxoMepValue inner = Array({Array({1}), 2});
  *ValueAccess::OwnElement(*ValueAccess::OwnElement(inner, 0), 0) = inner;
  EXPECT_EQ(TextOf(inner), "{{{{1}, 2}}, 2}");
}

TEST(ValueCopy, An_array_may_be_assigned_to_its_own_element_through_the_public_face) {
  IxoMepValue array = Array({1, 2});
  *array.GetValue(0) = array;
  EXPECT_EQ(TextOf(array), "{{1, 2}, 2}");
  array.SetValue(1, &array);
  EXPECT_EQ(TextOf(array), "{{1, 2}, {{1, 2}, 2}}");
  IxoMepValue map = Map({"a", 1});
  const IxoMepValue key("a");
  map.SetValue(&key, &map);
  EXPECT_EQ(TextOf(map), "{\"a\": {\"a\": 1}}");
}

TEST(ValueCopy, An_element_may_be_assigned_to_its_array) {
  IxoMepValue array = Array({Array({1, 2})});
  array = *array.GetValue(0);
  EXPECT_EQ(TextOf(array), "{1, 2}");
  IxoMepValue shared = Array({Array({3}), 4});
  const IxoMepValue other(shared);
  shared = ValueAccess::Element(shared, 0);
  EXPECT_EQ(TextOf(shared), "{3}");
  IxoMepValue moved = Array({Array({5})});
  moved = std::move(*moved.GetValue(0));
  EXPECT_EQ(TextOf(moved), "{5}");
}

TEST(ValueCopy, Empty_slots_stay_empty) {
  IxoMepValue array = Array({1, 2, 3});
  array.SetValue(1, nullptr);
  const IxoMepValue copy(array);
  EXPECT_EQ(copy.GetSize(), 3);
  EXPECT_EQ(TextOf(copy), "{1, (undefined), 3}");
  IxoMepValue map = Map({"a", 1});
  const IxoMepValue key("a");
  map.SetValue(&key, nullptr);
  EXPECT_EQ(TextOf(IxoMepValue(map)), "{\"a\": (undefined)}");
}

TEST(ValueCopy, A_map_with_keys_that_have_no_order_is_copied) {
  TestHost host;
  IxoMepValue map = Map({Array({1}), 1, Map({2, 3}), 2, Sample(Type::Object), 3});
  EXPECT_EQ(map.GetSize(), 3);
  const IxoMepValue copy(map);
  EXPECT_EQ(TextOf(copy), "{{1}: 1, {2: 3}: 2, OBJECT{p: 1}: 3}");
}

TEST(ValueCopy, Doubling_a_thousand_times_shares_all_the_way) {
  IxoMepValue value = Array({1});
  for (int i = 0; i < 1000; ++i) {
    IxoMepValue outer = Array({value, value});
    value = std::move(outer);
  }
  IxoMepValue copy(value);
  EXPECT_TRUE(ShareStorage(value, copy));
  ValueAccess::AppendOwned(copy, MakeValue(1));
  EXPECT_EQ(copy.GetSize(), 3);
}

TEST(ValueCopy, At_the_cap_of_an_objects_count_the_copy_holds_no_object) {
  IxoMepObject object;
  for (std::uint32_t i = 0; i < IxoMepObject::kMaxReferences; ++i) object.NewReference();
  {
    const IxoMepValue value(&object);  // takes over one of them
    const IxoMepValue copy(value);
    EXPECT_EQ(copy.GetType(), Type::Object);
    EXPECT_EQ(copy.GetObject(), nullptr);
    EXPECT_EQ(object.ReferenceCount(), 65535u);
    EXPECT_EQ(TextOf(copy), "OBJECT{}");
  }
  EXPECT_EQ(object.ReferenceCount(), 65534u);
}

TEST(ValueCopy, Sixty_five_thousand_copies_of_an_object_value_saturate_its_count) {
  const IxoMepValue value(Type::Object);
  std::vector<IxoMepValue> copies;
  copies.reserve(65536);
  for (int i = 0; i < 65535; ++i) copies.push_back(value);
  EXPECT_EQ(value.GetObject()->ReferenceCount(), 65535u);
  EXPECT_EQ(copies.back().GetObject(), value.GetObject());
  copies.push_back(value);
  EXPECT_EQ(copies.back().GetObject(), nullptr);
  EXPECT_EQ(copies.back().GetType(), Type::Object);
}

}  // namespace
}  // namespace ixomep::test
