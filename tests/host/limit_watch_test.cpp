// Tests of the limits as the host sees them, and of the counting beneath them.
#include "ixomep/host/limit_watch.h"

#include <gtest/gtest.h>

#include <new>

#include "ixomep/host/host.h"
#include "ixomep/host/memory_budget.h"
#include "tests/support/limits.h"

namespace {

using ixomep::EvaluationLevel;
using ixomep::Limit;
using ixomep::LimitExceeded;
using ixomep::LimitWatch;
using ixomep::MemoryBudget;
using ixomep::test::InterruptingHost;
using ixomep::test::ScopedLimits;

TEST(Interruption, Nobody_asks_for_it_by_default) {
  EXPECT_FALSE(IxoHost::Current().IsInterruptRequested());
  IxoHost plain;
  EXPECT_FALSE(plain.IsInterruptRequested());
}

TEST(LimitWatch, Steps_are_refused_after_the_last_until_the_outermost_evaluation_has_ended) {
  const ScopedLimits limits({.steps = 3});
  for (int round = 0; round < 2; ++round) {
    const EvaluationLevel level;  // the first step
    EXPECT_TRUE(level.IsAllowed());
    EXPECT_TRUE(LimitWatch::Step());
    {
      const EvaluationLevel inner;
      EXPECT_TRUE(inner.IsAllowed());
    }
    EXPECT_EQ(LimitWatch::Exceeded(), Limit::None);
    EXPECT_FALSE(LimitWatch::Step());
    EXPECT_EQ(LimitWatch::Exceeded(), Limit::Steps);
    EXPECT_FALSE(LimitWatch::Step());
    LimitWatch::GiveBack(5);
    EXPECT_FALSE(LimitWatch::Step());
  }
  EXPECT_EQ(LimitWatch::Exceeded(), Limit::None);
}

TEST(LimitWatch, Steps_taken_ahead_are_no_more_than_there_are) {
  const ScopedLimits limits({.steps = 10});
  const EvaluationLevel level;
  EXPECT_EQ(LimitWatch::StepAhead(4), 4);
  EXPECT_EQ(LimitWatch::StepAhead(100), 5);
  LimitWatch::GiveBack(2);
  EXPECT_EQ(LimitWatch::StepAhead(1), 1);
  EXPECT_EQ(LimitWatch::StepAhead(100), 1);
  EXPECT_EQ(LimitWatch::StepAhead(100), 0);
  EXPECT_EQ(LimitWatch::Exceeded(), Limit::Steps);
}

TEST(LimitWatch, The_first_limit_that_is_exceeded_counts) {
  const EvaluationLevel level;
  EXPECT_EQ(LimitWatch::Exceed(Limit::Depth), Limit::Depth);
  EXPECT_EQ(LimitWatch::Exceed(Limit::Memory), Limit::Depth);
}

TEST(LimitWatch, Outside_an_evaluation_nothing_stays_exceeded) {
  EXPECT_EQ(LimitWatch::Exceed(Limit::Memory), Limit::Memory);
  EXPECT_EQ(LimitWatch::Exceeded(), Limit::None);
  EXPECT_TRUE(LimitWatch::Step());
}

TEST(LimitWatch, Long_work_throws_when_the_host_asks_for_the_end) {
  InterruptingHost host(0);
  const auto work = [] {
    for (int i = 0; i < 5000; ++i) LimitWatch::Work();
  };
  try {
    work();
    FAIL() << "not interrupted";
  } catch (const LimitExceeded& exceeded) {
    EXPECT_EQ(exceeded.Which(), Limit::Interrupt);
  }
  host.answers_yes_after = InterruptingHost::kNever;
  EXPECT_NO_THROW(work());
}

TEST(MemoryBudget, A_limit_of_the_host_is_named_by_what_is_thrown) {
  const std::size_t limit = MemoryBudget::InUse() + 100;
  const ScopedLimits limits({.memory = limit});
  EXPECT_TRUE(MemoryBudget::IsHostLimit());
  EXPECT_TRUE(MemoryBudget::MayTake(100));
  EXPECT_THROW(MemoryBudget::Take(101), LimitExceeded);
  {
    const MemoryBudget::Reserve reserve;
    EXPECT_TRUE(MemoryBudget::MayTake(101));
  }
  EXPECT_FALSE(MemoryBudget::MayTake(101));
}

TEST(MemoryBudget, SetLimit_takes_the_place_of_a_limit_of_the_host) {
  const ScopedLimits limits({.memory = MemoryBudget::InUse() + 100});
  MemoryBudget::SetLimit(MemoryBudget::InUse() + 50);
  EXPECT_EQ(IxoHost::GetLimits().memory, 0u);
  try {
    MemoryBudget::Take(51);
    FAIL() << "taken";
  } catch (const LimitExceeded&) {
    FAIL() << "it is no limit of the host";
  } catch (const std::bad_alloc&) {
  }
  IxoHost::SetLimits({.memory = 1});  // so that it is taken back
}

}  // namespace
