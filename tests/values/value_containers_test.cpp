// Editing arrays and maps: through the public face and through the engine's own door.
#include <gtest/gtest.h>

#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

TEST(ValueArrayEditing, Append_takes_the_value_over_at_the_end) {
  IxoMepValue array = Array({1});
  IxoMepValue* const added = new IxoMepValue("x");
  array.Append(added);
  EXPECT_EQ(TextOf(array), "{1, \"x\"}");
  EXPECT_EQ(array.GetValue(1), added);
}

TEST(ValueArrayEditing, Insert_takes_the_value_over_before_the_position) {
  struct Row {
    long position;
    const char* text;
  };
  for (const Row& row : {Row{0, "{9, 1, 2}"}, Row{1, "{1, 9, 2}"}, Row{2, "{1, 2, 9}"},
                         Row{77, "{1, 2, 9}"}, Row{-1, "{9, 1, 2}"}}) {
    IxoMepValue array = Array({1, 2});
    array.Insert(row.position, new IxoMepValue(9));
    EXPECT_EQ(TextOf(array), row.text) << row.position;
  }
}

TEST(ValueMapEditing, A_map_may_be_its_own_key) {
  const TestHost host;  // maps have no order, which each comparison reports
  IxoMepValue map = Map({"a", 1});
  const IxoMepValue value(2);
  EXPECT_TRUE(map.SetValue(&map, &value));
  EXPECT_EQ(TextOf(map), "{\"a\": 1, {\"a\": 1}: 2}");
}

TEST(ValueArrayEditing, Other_types_leave_the_value_to_the_caller) {
  for (const Type type : kAllTypes) {
    if (type == Type::Array) continue;
    IxoMepValue value = Sample(type);
    const ValuePtr element = MakeValue(1);
    value.Append(element.get());
    value.Insert(0, element.get());
    value.Erase(0);
    value.SetValue(0, element.get());
    EXPECT_TRUE(SameContent(value, Sample(type))) << NameOf(type);
  }
}

TEST(ValueArrayEditing, Erase_destroys_the_element) {
  IxoMepValue object(Type::Object);
  IxoMepValue array = Array({1, object, 3});
  EXPECT_EQ(object.GetObject()->ReferenceCount(), 1u);
  array.Erase(1);
  EXPECT_EQ(TextOf(array), "{1, 3}");
  EXPECT_EQ(object.GetObject()->ReferenceCount(), 0u);
}

TEST(ValueArrayEditing, SetValue_copies_into_the_slot_and_keeps_the_elements_identity) {
  IxoMepValue array = Array({1, 2});
  IxoMepValue* const element = array.GetValue(1);
  const IxoMepValue text("x");
  array.SetValue(1, &text);
  EXPECT_EQ(array.GetValue(1), element);
  EXPECT_EQ(TextOf(array), "{1, \"x\"}");
}

TEST(ValueArrayEditing, SetValue_of_null_empties_the_slot) {
  IxoMepValue array = Array({1, 2});
  array.SetValue(0, nullptr);
  EXPECT_EQ(*array.GetpValue(0), nullptr);
  EXPECT_EQ(array.GetSize(), 2);
  array.SetValue(0, array.GetValue(1));
  EXPECT_EQ(TextOf(array), "{2, 2}");
}

struct KeyRow {
  IxoMepValue key;
  bool done;
  const char* text;
};

TEST(ValueArrayEditing, SetValue_by_key_reads_the_key_as_an_index) {
  IxoMepValue one(1);
  const KeyRow rows[] = {
      {1, true, "{0, 9, 0}"},    {&one, true, "{0, 9, 0}"},   {2.9, true, "{0, 0, 9}"},
      {1e30, true, "{9, 0, 0}"}, {"text", true, "{9, 0, 0}"}, {IxoMepValue(), true, "{9, 0, 0}"},
      {3, false, "{0, 0, 0}"},   {-1, false, "{0, 0, 0}"},
  };
  const IxoMepValue nine(9);
  for (const KeyRow& row : rows) {
    IxoMepValue array = Array({0, 0, 0});
    EXPECT_EQ(array.SetValue(&row.key, &nine), row.done) << TextOf(row.key);
    EXPECT_EQ(TextOf(array), row.text) << TextOf(row.key);
  }
}

TEST(ValueMapEditing, SetValue_inserts_copies_of_key_and_value) {
  IxoMepValue map(Type::Map);
  IxoMepValue key("k"), value(1);
  EXPECT_TRUE(map.SetValue(&key, &value));
  key.SetStr("other");
  value.SetInt(2);
  EXPECT_EQ(TextOf(map), "{\"k\": 1}");
}

TEST(ValueMapEditing, SetValue_assigns_into_the_value_that_is_there) {
  IxoMepValue map = Map({"k", 1});
  const IxoMepValue key("k"), value("new");
  IxoMepValue* const stored = map.GetValueOfMap(&key);
  EXPECT_TRUE(map.SetValue(&key, &value));
  EXPECT_EQ(map.GetValueOfMap(&key), stored);
  EXPECT_EQ(TextOf(map), "{\"k\": \"new\"}");
}

TEST(ValueMapEditing, SetValue_refuses_an_undefined_key) {
  IxoMepValue map = Map({"k", 1});
  const IxoMepValue value(2);
  EXPECT_FALSE(map.SetValue(IxoMepValue::GetNull(), &value));
  EXPECT_EQ(TextOf(map), "{\"k\": 1}");
}

TEST(ValueMapEditing, SetValue_by_key_on_other_types_does_nothing_and_is_true) {
  const IxoMepValue key("k"), value(1);
  for (const Type type : kAllTypes) {
    if (type == Type::Array || type == Type::Map) continue;
    IxoMepValue target = Sample(type);
    EXPECT_TRUE(target.SetValue(&key, &value)) << NameOf(type);
    EXPECT_TRUE(SameContent(target, Sample(type))) << NameOf(type);
  }
}

TEST(ValueMapEditing, Erase_removes_key_and_value_and_ignores_an_absent_key) {
  IxoMepValue map = Map({"a", 1, "b", 2});
  const IxoMepValue a("a"), absent("zz");
  map.Erase(&a);
  map.Erase(&absent);
  EXPECT_EQ(TextOf(map), "{\"b\": 2}");
}

TEST(ValueMapEditing, Erase_by_the_maps_own_key) {
  IxoMepValue map = Map({"a", 1, "b", 2});
  const IxoMepValue* const own = ValueAccess::Entries(map).begin()->first;
  map.Erase(own);
  EXPECT_EQ(TextOf(map), "{\"b\": 2}");
}

TEST(ValueMapEditing, MoveValue_replaces_the_entry_and_takes_the_value_over) {
  IxoMepValue map = Map({"a", 1});
  IxoMepValue* const moved = new IxoMepValue(2);
  map.MoveValue("a", moved);
  map.MoveValue("b", new IxoMepValue(3));
  const IxoMepValue a("a");
  EXPECT_EQ(map.GetValueOfMap(&a), moved);
  EXPECT_EQ(TextOf(map), "{\"a\": 2, \"b\": 3}");
}

TEST(ValueMapEditing, MoveValue_on_an_object_replaces_the_property) {
  IxoMepValue object = ObjectWith("a", 1);
  object.MoveValue("a", new IxoMepValue(2));
  object.MoveValue("b", new IxoMepValue(3));
  EXPECT_EQ(TextOf(object), "OBJECT{a: 2, b: 3}");
}

TEST(ValueMapEditing, Numbers_that_are_equal_are_one_key) {
  IxoMepValue map = Map({1, "int", 1.0, "real"});
  EXPECT_EQ(TextOf(map), "{1: \"int\"}");
}

TEST(ValueMapEditing, Keys_of_all_types_stand_in_ascending_order) {
  const IxoMepValue map =
      Map({"s", 0, Sample(Type::Time), 0, 3, 0, Sample(Type::Measure), 0, 2.5, 0});
  EXPECT_EQ(TextOf(map), "{2.5: 0, 3: 0, \"s\": 0, 1.25cm: 0, 00:000:00:01:30: 0}");
}

TEST(ValueMapEditing, Keys_that_break_the_order_corrupt_nothing) {
  TestHost host;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  IxoMepValue map(Type::Map);
  const IxoMepValue value(1);
  IxoMepValue number(5);
  for (int i = 0; i < 50; ++i) {
    const IxoMepValue keys[] = {nan, i, Array({i}), Sample(Type::Object), &number, "s"};
    for (const IxoMepValue& key : keys) map.SetValue(&key, &value);
    for (const IxoMepValue& key : keys) EXPECT_NE(map.GetValueOfMap(&key), nullptr);
    map.Erase(&keys[i % 6]);
  }
  const IxoMepValue copy(map);
  const ValuePtr keys(copy.GetKeysOfMap());
  EXPECT_GE(keys->GetSize(), copy.GetSize());
}

TEST(ValueAccessEditing, The_key_with_a_number_is_found_from_any_direction_and_after_changes) {
  IxoMepValue map = Map({"a", 1, "b", 2, "c", 3, "d", 4});
  const auto key_at = [&](std::size_t i) { return Str(ValueAccess::KeyAt(map, i).GetStr()); };
  EXPECT_EQ(key_at(0) + key_at(1) + key_at(3) + key_at(2) + key_at(0), "abdca");
  EXPECT_EQ(key_at(3) + key_at(3) + key_at(2) + key_at(1) + key_at(0), "ddcba");
  const IxoMepValue b("b"), zero("0");
  ValueAccess::EraseKey(map, b);
  EXPECT_EQ(key_at(0) + key_at(1) + key_at(2), "acd");
  map.SetValue(&zero, &zero);
  EXPECT_EQ(key_at(3) + key_at(0), "d0");
  const IxoMepValue copy(map);
  ValueAccess::EraseKey(map, zero);
  EXPECT_EQ(key_at(0) + Str(ValueAccess::KeyAt(copy, 0).GetStr()), "a0");
}

TEST(ValueAccessEditing, Entries_are_created_found_and_refused) {
  IxoMepValue map(Type::Map);
  const IxoMepValue k("k");
  EXPECT_EQ(ValueAccess::OwnEntry(map, k, false), nullptr);
  EXPECT_EQ(ValueAccess::FindEntry(map, k), nullptr);
  ASSERT_NE(ValueAccess::OwnEntry(map, k, true), nullptr);
  EXPECT_EQ(ValueAccess::FindEntry(map, k)->GetType(), Type::Undefined);
  EXPECT_TRUE(ValueAccess::InsertEntry(map, MakeValue("l"), MakeValue(2)));
  EXPECT_FALSE(ValueAccess::InsertEntry(map, MakeValue("l"), MakeValue(3)));
  EXPECT_EQ(TextOf(map), "{\"k\": (undefined), \"l\": 2}");
  EXPECT_FALSE(ValueAccess::EraseKey(map, IxoMepValue("zz")));
}

TEST(ValueAccessEditing, A_taken_element_lives_on) {
  IxoMepValue array = Array({1, "b"});
  const ValuePtr taken = ValueAccess::TakeAt(array, 1);
  EXPECT_EQ(TextOf(*taken), "\"b\"");
  EXPECT_EQ(TextOf(array), "{1}");
}

// The pointers stay with the host, who may change what they point to.
TEST(Containers, Values_handed_in_show_in_no_copy_when_they_change) {
  for (const bool insert : {false, true}) {
    IxoMepValue array(IxoMepValueType::Array);
    auto* const element = new IxoMepValue(1);
    if (insert) {
      array.Insert(0, element);
    } else {
      array.Append(element);
    }
    const IxoMepValue copy = array;
    element->SetInt(5);
    EXPECT_EQ(array.GetText(), "{5}");
    EXPECT_EQ(copy.GetText(), "{1}");
  }
}

}  // namespace
}  // namespace ixomep::test
