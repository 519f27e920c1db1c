// Variable scopes: lookup, creation, local and inherited stores, buckets, copies, emptying.
#include "ixomep/expr/value_set.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using ixomep::Intern;
using ixomep::test::Set;
using Variables = IxoMepValueSetMap;

// Names that all fall into one bucket.
std::vector<const char*> NamesOfOneBucket(std::size_t count) {
  std::map<std::uint32_t, std::vector<const char*>> buckets;
  for (int i = 0;; ++i) {
    const char* const name = Intern("name" + std::to_string(i));
    auto& names = buckets[IxoMepValueSet::BucketOf(name)];
    names.push_back(name);
    if (names.size() == count) return names;
  }
}

// Owns the copies that GetAllVars hands out.
class AllVars {
 public:
  explicit AllVars(const IxoMepValueSet& scope, bool with_parents = false) {
    scope.GetAllVars(variables, with_parents);
  }
  AllVars(const AllVars&) = delete;
  AllVars& operator=(const AllVars&) = delete;
  ~AllVars() {
    for (const auto& [name, value] : variables) delete value;
  }
  int Int(std::string_view name) const {
    const auto found = variables.find(Intern(name));
    return found != variables.end() ? found->second->GetInt() : -1;
  }
  Variables variables;
};

int Int(const IxoMepValueSet& scope, std::string_view name) {
  return scope.NewGetValue(Intern(name))->GetInt();
}

TEST(ValueSet, A_new_scope_is_empty) {
  const IxoMepValueSet scope;
  EXPECT_EQ(scope.Count(), 0u);
  EXPECT_EQ(scope.GetParent(), nullptr);
  for (std::uint32_t bucket = 0; bucket < 31; ++bucket) {
    EXPECT_FALSE(scope._isUsed(bucket));
    EXPECT_FALSE(scope._isMulti(bucket));
  }
}

TEST(ValueSet, An_unknown_name_reads_as_the_null_value_and_is_not_created) {
  const IxoMepValueSet scope;
  EXPECT_EQ(scope.NewGetValue(Intern("a")), IxoMepValue::GetNull());
  EXPECT_EQ(scope.OldGetValue("a"), IxoMepValue::GetNull());
  EXPECT_EQ(scope.Count(), 0u);
  EXPECT_FALSE(scope.NewIsContained(Intern("a")));
  EXPECT_EQ(scope._find(Intern("a")), nullptr);
}

TEST(ValueSet, The_nearest_scope_that_holds_the_name_wins) {
  IxoMepValueSet grandparent;
  IxoMepValueSet parent(&grandparent);
  const IxoMepValueSet scope(&parent);
  Set(grandparent, "a", 1);
  Set(grandparent, "b", 2);
  Set(parent, "b", 3);
  EXPECT_EQ(Int(scope, "a"), 1);
  EXPECT_EQ(Int(scope, "b"), 3);
  EXPECT_TRUE(scope.NewIsContained(Intern("a")));
  EXPECT_EQ(scope.FindHere(Intern("a")), nullptr);
}

TEST(ValueSet, Set_parent_replaces_the_parent) {
  IxoMepValueSet first;
  IxoMepValueSet second;
  Set(first, "a", 1);
  Set(second, "a", 2);
  IxoMepValueSet scope(&first);
  EXPECT_EQ(Int(scope, "a"), 1);
  scope.SetParent(&second);
  EXPECT_EQ(Int(scope, "a"), 2);
  scope.SetParent(nullptr);
  EXPECT_FALSE(scope.OldIsContained("a"));
}

TEST(ValueSet, An_l_value_of_an_unknown_name_is_created_undefined_in_the_innermost_scope) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  IxoMepValue* const created = scope.NewGetLValue(Intern("a"));
  EXPECT_EQ(created->GetType(), IxoMepValueType::Undefined);
  EXPECT_EQ(scope.FindHere(Intern("a")), created);
  EXPECT_EQ(scope.Count(), 1u);
  EXPECT_EQ(parent.Count(), 0u);
  EXPECT_EQ(scope.OldGetLValue("a"), created);
}

TEST(ValueSet, An_l_value_of_a_parents_name_is_the_parents_value) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  Set(parent, "a", 1);
  EXPECT_EQ(scope.NewGetLValue(Intern("a")), parent.FindHere(Intern("a")));
  EXPECT_EQ(scope.Count(), 0u);
}

TEST(ValueSet, Setting_without_local_overwrites_the_parents_variable) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  Set(parent, "a", 1);
  const IxoMepValue* const stored = parent.FindHere(Intern("a"));
  scope.NewSetValue(Intern("a"), IxoMepValue(2), false);
  EXPECT_EQ(scope.Count(), 0u);
  EXPECT_EQ(parent.FindHere(Intern("a")), stored);
  EXPECT_EQ(stored->GetInt(), 2);
}

TEST(ValueSet, Setting_an_unknown_name_without_local_creates_it_in_the_inner_scope) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  scope.NewSetValue(Intern("a"), IxoMepValue(2), false);
  EXPECT_EQ(scope.Count(), 1u);
  EXPECT_EQ(parent.Count(), 0u);
}

TEST(ValueSet, Setting_with_local_hides_the_parents_variable) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  Set(parent, "a", 1);
  scope.NewSetValue(Intern("a"), IxoMepValue(2), true);
  EXPECT_EQ(Int(scope, "a"), 2);
  EXPECT_EQ(Int(parent, "a"), 1);
}

TEST(ValueSet, Setting_an_existing_name_with_local_keeps_the_value_object) {
  IxoMepValueSet scope;
  Set(scope, "a", 1);
  const IxoMepValue* const stored = scope.FindHere(Intern("a"));
  scope.NewSetValue(Intern("a"), IxoMepValue("t"), true);
  EXPECT_EQ(scope.FindHere(Intern("a")), stored);
  EXPECT_EQ(stored->GetStr(), "t");
  EXPECT_EQ(scope.Count(), 1u);
}

TEST(ValueSet, A_value_is_stored_as_a_copy) {
  IxoMepValueSet scope;
  IxoMepValue value(1);
  scope.NewSetValue(Intern("a"), &value, true);
  value.SetInt(2);
  EXPECT_EQ(Int(scope, "a"), 1);
  EXPECT_NE(scope.FindHere(Intern("a")), &value);
}

TEST(ValueSet, A_variable_can_be_set_to_itself_and_to_its_own_element) {
  IxoMepValueSet scope;
  Set(scope, "a", IxoMepValue(IxoMepValueType::Array, 2));
  IxoMepValue* const stored = scope.FindHere(Intern("a"));
  stored->GetValue(1)->SetStr("t");
  scope.NewSetValue(Intern("a"), *stored, true);
  EXPECT_EQ(stored->GetSize(), 2);
  scope.NewSetValue(Intern("a"), *stored->GetValue(1), false);
  EXPECT_EQ(stored->GetStr(), "t");
}

TEST(ValueSet, Old_twins_take_a_text) {
  IxoMepValueSet scope;
  const IxoMepValue value(1);
  scope.OldSetValue("a", value, true);
  scope.OldSetValue("b", &value, false);
  scope.OldMoveValue("c", new IxoMepValue(3), true);
  EXPECT_EQ(Int(scope, "a"), 1);
  EXPECT_EQ(scope.OldGetValue("b")->GetInt(), 1);
  EXPECT_EQ(Int(scope, "c"), 3);
  EXPECT_TRUE(scope.OldIsContained("c"));
  EXPECT_FALSE(scope.OldIsContained("C"));
}

TEST(ValueSetMove, An_absent_name_takes_the_value_itself) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  auto* const value = new IxoMepValue(1);
  scope.NewMoveValue(Intern("a"), value, false);
  EXPECT_EQ(scope.FindHere(Intern("a")), value);
  auto* const local = new IxoMepValue(2);
  Set(parent, "b", 3);
  scope.NewMoveValue(Intern("b"), local, true);
  EXPECT_EQ(scope.FindHere(Intern("b")), local);
  EXPECT_EQ(Int(parent, "b"), 3);
}

TEST(ValueSetMove, A_present_name_is_assigned_and_the_value_destroyed) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  Set(parent, "a", 1);
  const IxoMepValue* const stored = parent.FindHere(Intern("a"));
  scope.NewMoveValue(Intern("a"), new IxoMepValue("t"), false);
  EXPECT_EQ(parent.FindHere(Intern("a")), stored);
  EXPECT_EQ(stored->GetStr(), "t");
  EXPECT_EQ(scope.Count(), 0u);
}

TEST(ValueSetMove, The_stored_value_itself_stays) {
  IxoMepValueSet scope;
  Set(scope, "a", "t");
  IxoMepValue* const stored = scope.FindHere(Intern("a"));
  scope.NewMoveValue(Intern("a"), stored, true);
  scope.NewMoveValue(Intern("a"), stored, false);
  EXPECT_EQ(scope.FindHere(Intern("a")), stored);
  EXPECT_EQ(stored->GetStr(), "t");
}

TEST(ValueSetMove, A_null_value_counts_as_undefined) {
  IxoMepValueSet scope;
  scope.NewMoveValue(Intern("a"), nullptr, true);
  EXPECT_TRUE(scope.OldIsContained("a"));
  Set(scope, "b", 1);
  scope.NewMoveValue(Intern("b"), nullptr, false);
  EXPECT_EQ(scope.OldGetValue("b")->GetType(), IxoMepValueType::Undefined);
}

TEST(ValueSetBuckets, Are_the_address_modulo_31) {
  const char* const name = Intern("a");
  EXPECT_EQ(IxoMepValueSet::BucketOf(name), reinterpret_cast<std::int64_t>(name) % 31);
  EXPECT_EQ(IxoMepValueSet::BucketOf(nullptr), 0u);
}

TEST(ValueSetBuckets, Two_names_of_one_bucket_make_it_a_map_and_are_both_found) {
  const auto names = NamesOfOneBucket(3);
  const std::uint32_t bucket = IxoMepValueSet::BucketOf(names[0]);
  IxoMepValueSet scope;
  scope.NewSetValue(names[0], IxoMepValue(0), true);
  IxoMepValue* const first = scope.FindHere(names[0]);
  EXPECT_TRUE(scope._isUsed(bucket));
  EXPECT_FALSE(scope._isMulti(bucket));
  EXPECT_EQ(scope._find(names[1]), nullptr);
  scope.NewSetValue(names[1], IxoMepValue(1), true);
  EXPECT_TRUE(scope._isMulti(bucket));
  scope.NewSetValue(names[2], IxoMepValue(2), true);
  EXPECT_EQ(scope.Count(), 3u);
  EXPECT_EQ(scope.FindHere(names[0]), first);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(scope.NewGetValue(names[static_cast<std::size_t>(i)])->GetInt(), i);
  }
}

TEST(ValueSetBuckets, A_name_that_a_map_lacks_is_sought_in_the_parent) {
  const auto names = NamesOfOneBucket(3);
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  scope.NewSetValue(names[0], IxoMepValue(0), true);
  scope.NewSetValue(names[1], IxoMepValue(1), true);
  parent.NewSetValue(names[2], IxoMepValue(2), true);
  EXPECT_EQ(scope.NewGetValue(names[2])->GetInt(), 2);
  EXPECT_EQ(scope.FindHere(names[2]), nullptr);
}

TEST(ValueSetBuckets, The_empty_name_is_an_ordinary_address) {
  IxoMepValueSet scope;
  scope.OldSetValue("", IxoMepValue(1), true);
  EXPECT_EQ(scope.NewGetValue(nullptr)->GetInt(), 1);
  EXPECT_TRUE(scope.NewIsContained(nullptr));
  EXPECT_EQ(scope.NewGetLValue(nullptr), scope.FindHere(nullptr));
}

TEST(ValueSetBuckets, An_address_with_its_top_bit_set_finds_its_variable) {
  const auto* const name = reinterpret_cast<const char*>(std::uintptr_t{0xFFFF'8000'0000'0007});
  IxoMepValueSet scope;
  scope.NewSetValue(name, IxoMepValue(1), true);
  EXPECT_EQ(scope.NewGetValue(name)->GetInt(), 1);
}

TEST(ValueSetBuckets, A_name_added_twice_leaks_nothing) {
  const auto names = NamesOfOneBucket(2);
  IxoMepValueSet scope;
  scope._add(names[0], new IxoMepValue(1));
  scope._add(names[0], new IxoMepValue(2));
  EXPECT_EQ(scope.NewGetValue(names[0])->GetInt(), 2);
  scope._add(names[0], new IxoMepValue(3));
  scope._add(names[1], new IxoMepValue(4));
  EXPECT_EQ(scope.NewGetValue(names[0])->GetInt(), 2);
  EXPECT_EQ(scope.NewGetValue(names[1])->GetInt(), 4);
}

TEST(ValueSetClear, Removes_all_variables_of_the_scope_only) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  Set(parent, "a", 1);
  for (const int count : {1, 2, 500}) {
    for (int i = 0; i < count; ++i) Set(scope, "v" + std::to_string(i), i);
    EXPECT_EQ(scope.Count(), static_cast<std::uint32_t>(count));
    scope.Clear();
    EXPECT_EQ(scope.Count(), 0u);
    for (std::uint32_t bucket = 0; bucket < 31; ++bucket) {
      EXPECT_FALSE(scope._isUsed(bucket));
      EXPECT_FALSE(scope._isMulti(bucket));
    }
    EXPECT_FALSE(scope.OldIsContained("v0"));
  }
  EXPECT_EQ(Int(scope, "a"), 1);
  scope.Clear();
}

TEST(ValueSetClear, A_bucket_that_was_a_map_is_inline_again) {
  const auto names = NamesOfOneBucket(2);
  IxoMepValueSet scope;
  for (const char* name : names) scope.NewSetValue(name, IxoMepValue(1), true);
  scope.Clear();
  scope.NewSetValue(names[0], IxoMepValue(2), true);
  EXPECT_FALSE(scope._isMulti(IxoMepValueSet::BucketOf(names[0])));
  EXPECT_EQ(scope.NewGetValue(names[0])->GetInt(), 2);
}

TEST(ValueSetClear, Deleting_the_values_leaves_an_empty_scope) {
  IxoMepValueSet scope;
  for (int i = 0; i < 100; ++i) Set(scope, "v" + std::to_string(i), i);
  scope._deleteVals();
  EXPECT_EQ(scope.Count(), 0u);
  EXPECT_FALSE(scope.OldIsContained("v1"));
}

// An expression whose destruction uses the scope that it is stored in.
class Meddler : public IxoMepExpressionParser {
 public:
  Meddler(IxoMepValueSet& scope, int& seen) : scope_(scope), seen_(seen) {}
  ~Meddler() override {
    seen_ += scope_.OldIsContained("meddler") ? 100 : 1;
    scope_.OldSetValue("left", IxoMepValue(1), true);
  }

 private:
  IxoMepValueSet& scope_;
  int& seen_;
};

TEST(ValueSetClear, A_value_that_uses_the_scope_while_it_dies_finds_itself_gone) {
  for (const int others : {0, 5}) {
    IxoMepValueSet scope;
    int seen = 0;
    for (int i = 0; i < others; ++i) Set(scope, "v" + std::to_string(i), i);
    scope.OldMoveValue("meddler", new IxoMepValue(new Meddler(scope, seen), true), true);
    scope.Clear();
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(scope.OldGetValue("left")->GetInt(), 1);
  }
}

TEST(ValueSetGetAllVars, Copies_the_variables_of_the_scope) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  Set(parent, "p", 9);
  for (int i = 0; i < 100; ++i) Set(scope, "v" + std::to_string(i), i);
  const AllVars all(scope);
  EXPECT_EQ(all.variables.size(), 100u);
  EXPECT_EQ(all.Int("v42"), 42);
  EXPECT_NE(all.variables.begin()->second, scope._find(all.variables.begin()->first));
}

TEST(ValueSetGetAllVars, An_inner_variable_hides_an_outer_one) {
  IxoMepValueSet grandparent;
  IxoMepValueSet parent(&grandparent);
  IxoMepValueSet scope(&parent);
  Set(grandparent, "a", 1);
  Set(grandparent, "b", 1);
  Set(grandparent, "c", 1);
  Set(parent, "b", 2);
  Set(parent, "c", 2);
  Set(scope, "c", 3);
  const AllVars all(scope, true);
  EXPECT_EQ(all.variables.size(), 3u);
  EXPECT_EQ(all.Int("a"), 1);
  EXPECT_EQ(all.Int("b"), 2);
  EXPECT_EQ(all.Int("c"), 3);
}

TEST(ValueSetGetAllVars, Names_already_in_the_map_keep_their_entry) {
  IxoMepValueSet scope;
  Set(scope, "a", 1);
  AllVars all(scope);
  Set(scope, "a", 2);
  Set(scope, "b", 3);
  scope.GetAllVars(all.variables, true);
  EXPECT_EQ(all.Int("a"), 1);
  EXPECT_EQ(all.Int("b"), 3);
}

TEST(ValueSetGetAllVars, The_map_is_ordered_by_address) {
  const auto names = NamesOfOneBucket(3);
  IxoMepValueSet scope;
  for (const char* name : names) scope.NewSetValue(name, IxoMepValue(1), true);
  const AllVars all(scope);
  const std::set<const char*, std::less<>> sorted(names.begin(), names.end());
  std::vector<const char*> order;
  for (const auto& [name, value] : all.variables) order.push_back(name);
  EXPECT_EQ(order, std::vector<const char*>(sorted.begin(), sorted.end()));
}

TEST(ValueSetAssign, Replaces_the_variables_and_keeps_the_parent) {
  IxoMepValueSet parent;
  IxoMepValueSet scope(&parent);
  IxoMepValueSet other;
  Set(scope, "old", 1);
  for (int i = 0; i < 100; ++i) Set(other, "v" + std::to_string(i), i);
  scope.Assign(other);
  EXPECT_EQ(scope.Count(), 100u);
  EXPECT_EQ(scope.GetParent(), &parent);
  EXPECT_FALSE(scope.OldIsContained("old"));
  EXPECT_EQ(Int(scope, "v42"), 42);
  EXPECT_NE(scope.FindHere(Intern("v42")), other.FindHere(Intern("v42")));
  EXPECT_EQ(other.Count(), 100u);
}

TEST(ValueSetAssign, Copies_none_of_the_parents_variables) {
  IxoMepValueSet parent;
  IxoMepValueSet other(&parent);
  IxoMepValueSet scope;
  Set(parent, "a", 1);
  Set(other, "b", 2);
  scope.Assign(other);
  EXPECT_FALSE(scope.OldIsContained("a"));
  EXPECT_TRUE(scope.OldIsContained("b"));
  EXPECT_EQ(scope.GetParent(), nullptr);
}

TEST(ValueSetAssign, To_itself_changes_nothing) {
  IxoMepValueSet scope;
  Set(scope, "a", 1);
  Set(scope, "b", 2);
  scope.Assign(scope);
  EXPECT_EQ(scope.Count(), 2u);
  EXPECT_EQ(Int(scope, "a"), 1);
}

TEST(ValueSetAssign, From_an_empty_scope_empties) {
  IxoMepValueSet scope;
  Set(scope, "a", 1);
  scope.Assign(IxoMepValueSet());
  EXPECT_EQ(scope.Count(), 0u);
}

// Names fall into all buckets; bytes of texts are counted to the last one.
TEST(ValueSetMemory, All_values_go_with_the_scope) {
  std::vector<const char*> names;
  for (int i = 0; i < 400; ++i) names.push_back(Intern("memory" + std::to_string(i)));
  const auto fill = [&names](std::size_t count) {
    IxoMepValueSet scope;
    for (std::size_t i = 0; i < count; ++i) {
      scope.NewSetValue(names[i], IxoMepValue(String::Filled(1000, 'x')), true);
    }
  };
  fill(names.size());
  for (const std::size_t count : {std::size_t{1}, std::size_t{31}, names.size()}) {
    const std::size_t before = ixomep::MemoryBudget::InUse();
    fill(count);
    EXPECT_EQ(ixomep::MemoryBudget::InUse(), before) << count;
  }
}

}  // namespace
