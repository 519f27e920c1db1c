// Tests of the memory budget: counting, the limit, and where the limit comes from.
#include "ixomep/host/memory_budget.h"

#include <gtest/gtest.h>

#include <new>

#include "ixomep/host/host.h"
#include "tests/support/test_host.h"

namespace {

using ixomep::MemoryBudget;
using ixomep::test::ScopedMemoryLimit;

TEST(MemoryBudget, Counts_what_is_taken_and_given) {
  const std::size_t before = MemoryBudget::InUse();
  MemoryBudget::Take(100);
  EXPECT_EQ(MemoryBudget::InUse(), before + 100);
  MemoryBudget::Give(100);
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(MemoryBudget, Exactly_the_limit_may_be_taken_and_one_more_may_not) {
  const ScopedMemoryLimit limit(100);
  EXPECT_TRUE(MemoryBudget::MayTake(100));
  EXPECT_FALSE(MemoryBudget::MayTake(101));
  MemoryBudget::Take(100);
  const std::size_t full = MemoryBudget::InUse();
  EXPECT_FALSE(MemoryBudget::MayTake(1));
  EXPECT_THROW(MemoryBudget::Take(1), std::bad_alloc);
  EXPECT_EQ(MemoryBudget::InUse(), full);
  MemoryBudget::Give(100);
}

TEST(MemoryBudget, A_huge_request_does_not_wrap_around) {
  const ScopedMemoryLimit limit(100);
  EXPECT_FALSE(MemoryBudget::MayTake(static_cast<std::size_t>(-1)));
  EXPECT_THROW(MemoryBudget::Take(static_cast<std::size_t>(-1)), std::bad_alloc);
}

TEST(MemoryBudget, A_limit_below_what_is_in_use_lets_nothing_more_be_taken) {
  const std::size_t previous = MemoryBudget::Limit();
  MemoryBudget::Take(100);
  MemoryBudget::SetLimit(50);
  EXPECT_FALSE(MemoryBudget::MayTake(1));
  EXPECT_THROW(String::Filled(10, 'x'), std::bad_alloc);
  MemoryBudget::SetLimit(0);
  EXPECT_FALSE(MemoryBudget::MayTake(1));
  MemoryBudget::SetLimit(previous);
  MemoryBudget::Give(100);
}

TEST(MemoryBudget, Is_half_of_the_memory_of_the_machine_by_default) {
  EXPECT_GT(ixomep::DefaultHost()->DefaultMemoryLimit(), std::size_t{16} << 20);
  EXPECT_EQ(MemoryBudget::Limit(), ixomep::DefaultHost()->DefaultMemoryLimit());
}

}  // namespace
