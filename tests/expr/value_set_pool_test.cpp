// The pool of scopes: last in first out, handed out empty, never trimmed.
#include "ixomep/expr/value_set_pool.h"

#include <gtest/gtest.h>

#include <vector>

#include "ixomep/values/string_address_map.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace {

using Pool = IxoMepValueSetContainer;
using ixomep::PooledScope;
using ixomep::test::Set;

TEST(ValueSetPool, A_scope_given_back_is_the_next_one_handed_out) {
  IxoMepValueSet first_parent;
  IxoMepValueSet second_parent;
  IxoMepValueSet* const scope = Pool::AllocateValueSet(&first_parent);
  EXPECT_EQ(scope->GetParent(), &first_parent);
  Set(*scope, "a", 1);
  Set(*scope, "b", "t");
  Pool::FreeValueSet(scope);
  IxoMepValueSet* const again = Pool::AllocateValueSet(&second_parent);
  EXPECT_EQ(again, scope);
  EXPECT_EQ(again->GetParent(), &second_parent);
  EXPECT_EQ(again->Count(), 0u);
  EXPECT_FALSE(again->OldIsContained("a"));
  Pool::FreeValueSet(again);
}

TEST(ValueSetPool, Reuse_is_last_in_first_out) {
  std::vector<IxoMepValueSet*> scopes;
  for (int i = 0; i < 5; ++i) scopes.push_back(Pool::AllocateValueSet(nullptr));
  for (IxoMepValueSet* scope : scopes) Pool::FreeValueSet(scope);
  for (std::size_t i = scopes.size(); i-- > 0;) {
    EXPECT_EQ(Pool::AllocateValueSet(nullptr), scopes[i]);
  }
  for (IxoMepValueSet* scope : scopes) Pool::FreeValueSet(scope);
}

TEST(ValueSetPool, Is_never_trimmed) {
  std::vector<IxoMepValueSet*> scopes;
  for (int i = 0; i < 40000; ++i) scopes.push_back(Pool::AllocateValueSet(nullptr));
  for (IxoMepValueSet* scope : scopes) Pool::FreeValueSet(scope);
  for (std::size_t i = scopes.size(); i-- > 0;) {
    ASSERT_EQ(Pool::AllocateValueSet(nullptr), scopes[i]);
  }
  for (IxoMepValueSet* scope : scopes) Pool::FreeValueSet(scope);
}

TEST(ValueSetPool, A_scope_made_with_the_constructor_is_taken_over_and_handed_out_next) {
  auto* const own = new IxoMepValueSet(nullptr);
  own->OldSetValue("a", 1, true);
  Pool::FreeValueSet(own);
  IxoMepValueSet parent(nullptr);
  IxoMepValueSet* const again = Pool::AllocateValueSet(&parent);
  EXPECT_EQ(again, own);
  EXPECT_EQ(again->Count(), 0u);
  EXPECT_EQ(again->GetParent(), &parent);
  Pool::FreeValueSet(again);
}

TEST(ValueSetPool, Giving_back_a_null_scope_does_nothing) { Pool::FreeValueSet(nullptr); }

TEST(ValueSetPool, A_copy_of_the_container_owns_no_scope) {
  Pool::FreeValueSet(Pool::AllocateValueSet(nullptr));
  {
    const Pool copy(Pool::aInstance);
    Pool assigned;
    assigned = copy;
  }
  IxoMepValueSet* const scope = Pool::AllocateValueSet(nullptr);
  Set(*scope, "a", 1);
  Pool::FreeValueSet(scope);
}

TEST(ValueSetPool, A_pooled_scope_lives_for_a_block) {
  IxoMepValueSet parent;
  IxoMepValueSet* inside = nullptr;
  {
    const PooledScope scope(&parent);
    inside = scope.get();
    EXPECT_EQ(scope->GetParent(), &parent);
    Set(*inside, "a", 1);
  }
  const PooledScope next(nullptr);
  EXPECT_EQ(next.get(), inside);
  EXPECT_EQ(next->Count(), 0u);
}

}  // namespace
