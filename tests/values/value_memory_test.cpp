// Memory: the free list's marks, destruction of what nests deep, the budget's balance, and every
// operation with its allocations failing one after the other.
#include <gtest/gtest.h>

#include <functional>
#include <new>

#include "ixomep/host/memory_budget.h"
#include "ixomep/values/free_list.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

constexpr int kDeep = 1000000;

struct TestTag;
using TestBlocks = FreeList<TestTag, 32>;

TEST(FreeList, One_block_more_than_the_high_mark_trims_to_the_low_mark) {
  std::vector<void*> blocks;
  for (int i = 0; i < 30001; ++i) blocks.push_back(TestBlocks::Take());
  for (int i = 0; i < 30000; ++i) TestBlocks::Give(blocks[static_cast<std::size_t>(i)]);
  EXPECT_EQ(TestBlocks::Count(), 30000);
  TestBlocks::Give(blocks[30000]);
  EXPECT_EQ(TestBlocks::Count(), 15000);
  TestBlocks::TrimTo(0);
}

TEST(FreeList, The_block_given_last_is_taken_first) {
  void* const a = TestBlocks::Take();
  void* const b = TestBlocks::Take();
  TestBlocks::Give(a);
  TestBlocks::Give(b);
  EXPECT_EQ(TestBlocks::Take(), b);
  EXPECT_EQ(TestBlocks::Take(), a);
  TestBlocks::Give(a);
  TestBlocks::Give(b);
  TestBlocks::TrimTo(0);
  EXPECT_EQ(TestBlocks::Count(), 0);
}

using ValueBlocks = FreeList<IxoMepValue, sizeof(IxoMepValue)>;

TEST(ValueBlocks, Freeing_one_value_more_than_30000_leaves_15000_blocks) {
  ValueBlocks::TrimTo(0);
  std::vector<IxoMepValue*> values;
  for (int i = 0; i < 30001; ++i) values.push_back(new IxoMepValue(i));
  for (IxoMepValue* value : values) delete value;
  EXPECT_EQ(ValueBlocks::Count(), 15000);
}

TEST(ValueBlocks, A_freed_block_is_used_again) {
  IxoMepValue* const first = new IxoMepValue("a");
  delete first;
  IxoMepValue* const second = new IxoMepValue(2);
  EXPECT_EQ(second, first);
  delete second;
}

// --- Depth --------------------------------------------------------------------------------------

TEST(DeepValues, A_million_nested_arrays_are_built_copied_changed_and_destroyed) {
  IxoMepValue value = Nested(1, kDeep);
  IxoMepValue copy(value);
  ValueAccess::AppendOwned(copy, MakeValue(2));
  EXPECT_EQ(copy.GetSize(), 2);
  EXPECT_EQ(value.GetSize(), 1);
  const ValuePtr taken(new IxoMepValue(copy));
}

TEST(DeepValues, A_million_nested_arrays_around_an_object_are_copied_in_full) {
  const IxoMepValue object(Type::Object);
  const IxoMepValue value = Nested(object, kDeep);
  {
    const IxoMepValue copy(value);
    EXPECT_EQ(object.GetObject()->ReferenceCount(), 2u);
    EXPECT_EQ(copy.GetSize(), 1);
  }
  EXPECT_EQ(object.GetObject()->ReferenceCount(), 1u);
}

TEST(DeepValues, A_million_nested_maps) {
  IxoMepValue value(1);
  for (int i = 0; i < kDeep; ++i) {
    IxoMepValue map(Type::Map);
    ValueAccess::InsertEntry(map, MakeValue("k"), MakeValue(std::move(value)));
    value = std::move(map);
  }
  const IxoMepValue copy(value);
  EXPECT_EQ(value.GetText().Len(), kDeep * 7 + 1);
}

TEST(DeepValues, A_million_maps_nested_in_their_keys) {
  IxoMepValue value(1);
  for (int i = 0; i < kDeep; ++i) {
    IxoMepValue map(Type::Map);
    ValueAccess::InsertEntry(map, MakeValue(std::move(value)), MakeValue(0));
    value = std::move(map);
  }
  const IxoMepValue copy = Array({value});
  EXPECT_EQ(copy.GetSize(), 1);
}

TEST(DeepValues, A_million_objects_in_a_chain) {
  IxoMepValue value(1);
  for (int i = 0; i < kDeep; ++i) {
    IxoMepValue object(Type::Object);
    object.MoveValue("p", new IxoMepValue(std::move(value)));
    value = std::move(object);
  }
  EXPECT_EQ(value.GetText().Len(), kDeep * 11 + 1);
}

TEST(DeepValues, A_million_references_in_a_chain) {
  std::vector<IxoMepValue> chain(static_cast<std::size_t>(kDeep));
  chain[0] = IxoMepValue(7);
  for (std::size_t i = 1; i < chain.size(); ++i) chain[i] = IxoMepValue(&chain[i - 1]);
  EXPECT_EQ(chain.back().GetInt(), 7);
  EXPECT_EQ(Str(chain.back().GetStr()), "7");
}

// --- The budget ---------------------------------------------------------------------------------

std::size_t InUse() {
  ValueBlocks::TrimTo(0);
  FreeList<ListRep, sizeof(ListRep)>::TrimTo(0);
  FreeList<MapRep, sizeof(MapRep)>::TrimTo(0);
  return MemoryBudget::InUse();
}

TEST(ValueBudget, Arrays_and_maps_are_counted_and_given_back) {
  const std::size_t before = InUse();
  {
    IxoMepValue array(Type::Array);
    for (int i = 0; i < 1000; ++i) array.Append(new IxoMepValue(i));
    EXPECT_GE(InUse() - before, 1000 * (sizeof(IxoMepValue) + sizeof(IxoMepValue*)));
    IxoMepValue map(Type::Map);
    for (int i = 0; i < 1000; ++i) {
      ValueAccess::InsertEntry(map, MakeValue(i), MakeValue("text" + std::to_string(i)));
    }
    const std::size_t full = InUse();
    IxoMepValue copy(map);
    ValueAccess::EraseKey(copy, IxoMepValue(5));
    EXPECT_GT(InUse(), full);
    for (int i = 0; i < 1000; ++i) ValueAccess::EraseKey(map, IxoMepValue(i));
    for (int i = 0; i < 500; ++i) array.Erase(0);
    array.Insert(3, new IxoMepValue(1));
  }
  EXPECT_EQ(InUse(), before);
}

TEST(ValueBudget, An_array_cannot_grow_beyond_the_limit) {
  const std::size_t before = InUse();
  {
    IxoMepValue array(Type::Array);
    const ScopedMemoryLimit limit(100000);
    EXPECT_THROW(for (int i = 0; i < 1000000; ++i) ValueAccess::AppendOwned(array, MakeValue(i)),
                 std::bad_alloc);
    EXPECT_LT(array.GetSize(), 100000);
    EXPECT_GT(array.GetSize(), 100);
  }
  EXPECT_EQ(InUse(), before);
}

TEST(ValueBudget, An_array_of_a_huge_count_fails_cleanly) {
  const std::size_t before = InUse();
  {
    const ScopedMemoryLimit limit(1000000);
    EXPECT_THROW(IxoMepValue(Type::Array, 2147483647), std::bad_alloc);
  }
  EXPECT_EQ(InUse(), before);
}

struct Operation {
  const char* name;
  std::function<void(IxoMepValue& value)> apply;
};

// Repeats each operation with a little more memory each time until it succeeds.
TEST(ValueBudget, Every_operation_that_runs_out_of_memory_leaves_its_value_intact) {
  static const IxoMepValue key("key"), index(1);
  const IxoMepValue array = Array({1, "text that is not short", Array({1, 2, 3}), Map({"k", 2})});
  const IxoMepValue map = Map({"a", 1, "key", Array({1, 2, 3}), 7, "text that is not short"});
  const Operation on_arrays[] = {
      {"AppendOwned", [](IxoMepValue& v) { ValueAccess::AppendOwned(v, MakeValue("x")); }},
      {"InsertOwned", [](IxoMepValue& v) { ValueAccess::InsertOwned(v, 1, MakeValue("x")); }},
      {"Append", [](IxoMepValue& v) { v.Append(new IxoMepValue("x")); }},
      {"Insert", [](IxoMepValue& v) { v.Insert(1L, new IxoMepValue("x")); }},
      {"SetValue", [](IxoMepValue& v) { v.SetValue(1, &key); }},
      {"GetValue", [](IxoMepValue& v) { v.GetValue(2)->GetValue(1)->SetInt(5); }},
      {"OwnElement", [](IxoMepValue& v) { ValueAccess::OwnElement(v, 0)->SetInt(5); }},
      {"EraseAt", [](IxoMepValue& v) { ValueAccess::EraseAt(v, 1); }},
      {"self", [](IxoMepValue& v) { *ValueAccess::OwnElement(v, 0) = v; }},
      {"copy", [](IxoMepValue& v) { IxoMepValue(v).GetValue(0)->SetInt(1); }},
  };
  const Operation on_maps[] = {
      {"SetValue", [](IxoMepValue& v) { v.SetValue(&index, &key); }},
      {"SetValue there", [](IxoMepValue& v) { v.SetValue(&key, &key); }},
      {"GetpValueOfMap", [](IxoMepValue& v) { v.GetpValueOfMap(&index); }},
      {"GetValueOfMap", [](IxoMepValue& v) { v.GetValueOfMap(&key)->GetValue(0); }},
      {"Erase", [](IxoMepValue& v) { v.Erase(&key); }},
      {"MoveValue", [](IxoMepValue& v) { v.MoveValue(key.GetStr(), MakeValue("x").release()); }},
      {"OwnEntry", [](IxoMepValue& v) { ValueAccess::OwnEntry(v, index, true)->SetInt(5); }},
      {"keys", [](IxoMepValue& v) { delete v.GetKeysOfMap(); }},
  };
  const auto run = [](const IxoMepValue& original, const Operation& operation) {
    const std::size_t before = InUse();
    for (std::size_t more = 0; more < 20000; more += 8) {
      InUse();
      IxoMepValue value(original);
      const ScopedMemoryLimit limit(more);
      try {
        operation.apply(value);
        EXPECT_GT(more, 0u) << operation.name << " allocates nothing";
        break;
      } catch (const std::bad_alloc&) {
        EXPECT_LE(value.GetSize(), original.GetSize()) << operation.name;
      }
    }
    EXPECT_EQ(InUse(), before) << operation.name;
  };
  for (const Operation& operation : on_arrays) run(array, operation);
  for (const Operation& operation : on_maps) run(map, operation);
}

TEST(ValueBudget, Objects_and_their_properties_are_counted_and_given_back) {
  const std::size_t before = InUse();
  {
    IxoMepValue object(Type::Object);
    for (int i = 0; i < 100; ++i) object.MoveValue("p" + std::to_string(i), new IxoMepValue(i));
    object.MoveValue("p0", new IxoMepValue("again"));
    EXPECT_GE(InUse() - before, 100 * (sizeof(IxoMepValue) + 48));
    IxoMepObject copy(*object.GetObject());
    copy = IxoMepObject();
  }
  EXPECT_EQ(InUse(), before);
}

TEST(ValueBudget, An_object_cannot_grow_beyond_the_limit) {
  const std::size_t before = InUse();
  {
    IxoMepValue object(Type::Object);
    const ScopedMemoryLimit limit(10000);
    EXPECT_THROW(
        for (int i = 0; i < 10000; ++i) object.MoveValue(std::to_string(i), new IxoMepValue(i)),
        std::bad_alloc);
    EXPECT_THROW(IxoMepValue(*ValuePtr(new IxoMepValue(String::Filled(100000, 'x')))),
                 std::bad_alloc);
  }
  EXPECT_EQ(InUse(), before);
}

struct MethodRow {
  IxoMepValue receiver;
  const char* name;
  std::vector<IxoMepValue> args;
};

TEST(ValueBudget, A_method_or_property_whose_result_cannot_be_had_fails_with_37) {
  IxoMepValue object(Type::Object);
  object.MoveValue("p", new IxoMepValue(Array({Sample(Type::Object)})));
  const MethodRow rows[] = {
      {"some text, some more", "copy", {1}},
      {" some text ", "trim", {}},
      {"some-text-", "without", {"-"}},
      {Map({1, 2}), "insertAllFrom", {Map({3, 4, 5, "text"})}},
      {object, "p", {}},
  };
  for (const MethodRow& row : rows) {
    OwnedList args;
    for (const IxoMepValue& arg : row.args) args.Add(MakeValue(arg));
    const char* const name = Intern(row.name);
    IxoMepValue receiver = row.receiver;
    InUse();
    IxoMepValue* result = nullptr;
    String error;
    long code = 0;
    {
      const ScopedMemoryLimit limit(0);
      code = receiver.GetType() == Type::Object
                 ? receiver.GetPropertyValue(name, result, error)
                 : receiver.EvaluateMethodCall(name, args.View(), result, error, false);
    }
    EXPECT_EQ(code, 37) << row.name;
    EXPECT_EQ(result, nullptr) << row.name;
  }
}

}  // namespace
}  // namespace ixomep::test
