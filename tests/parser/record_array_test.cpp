// Arrays of records: what they hold while they grow, shrink and change hands, what of it counts in
// the memory budget, and that large ones use the blocks of earlier ones.
#include "ixomep/parser/record_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>

#include "ixomep/host/large_blocks.h"
#include "ixomep/host/memory_budget.h"

namespace ixomep::test {
namespace {

using Numbers = RecordArray<std::uint64_t>;

void Fill(Numbers& numbers, std::uint32_t count) {
  for (std::uint32_t i = 0; i < count; ++i) numbers.Push(i * 3);
}

void ExpectFilled(const Numbers& numbers, std::uint32_t count) {
  ASSERT_EQ(numbers.Size(), count);
  for (std::uint32_t i = 0; i < count; ++i) ASSERT_EQ(numbers[i], i * 3);
}

TEST(RecordArray, Keeps_its_records_while_it_grows_and_is_trimmed) {
  for (const std::uint32_t count : {1U, 7U, 8U, 9U, 5000U, 300'000U}) {
    Numbers numbers;
    Fill(numbers, count);
    ExpectFilled(numbers, count);
    numbers.Trim();
    ExpectFilled(numbers, count);
    numbers.Push(1);
    numbers.Pop();
    ExpectFilled(numbers, count);
  }
}

TEST(RecordArray, Counts_exactly_what_it_can_hold) {
  const std::size_t before = MemoryBudget::InUse();
  for (int round = 0; round < 3; ++round) {
    Numbers numbers;
    numbers.Reserve(100'000);
    EXPECT_EQ(MemoryBudget::InUse() - before, 800'000U);
    Fill(numbers, 60'000);
    EXPECT_EQ(MemoryBudget::InUse() - before, 800'000U);
    numbers.Trim();
    EXPECT_EQ(MemoryBudget::InUse() - before, 480'000U);
    numbers.Clear();
    numbers.Trim();
    EXPECT_EQ(MemoryBudget::InUse(), before);
  }
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(RecordArray, Uses_the_block_of_one_that_is_gone) {
  IdleBlocks::Clear();
  const std::uint64_t* first = nullptr;
  {
    Numbers numbers;
    numbers.Reserve(100'000);
    first = numbers.Data();
  }
  EXPECT_EQ(IdleBlocks::Bytes(), 800'000U);
  Numbers numbers;
  numbers.Reserve(90'000);
  EXPECT_EQ(numbers.Data(), first);
  EXPECT_EQ(IdleBlocks::Bytes(), 0U);
  Fill(numbers, 90'000);
  // There is room behind it.
  numbers.Reserve(100'000);
  EXPECT_EQ(numbers.Data(), first);
  ExpectFilled(numbers, 90'000);
  IdleBlocks::Clear();
}

TEST(RecordArray, Gives_back_a_block_of_which_little_is_used) {
  IdleBlocks::Clear();
  {
    Numbers numbers;
    numbers.Reserve(1'000'000);
    Fill(numbers, 1000);
    numbers.Trim();
    ExpectFilled(numbers, 1000);
  }
  EXPECT_EQ(IdleBlocks::Bytes(), 0U);
}

TEST(RecordArray, Takes_the_tail_of_another_one) {
  Numbers all;
  Numbers pending;
  Fill(pending, 10);
  all.TakeTail(pending, 4);
  ASSERT_EQ(all.Size(), 6U);
  EXPECT_EQ(all[0], 12U);
  ExpectFilled(pending, 4);
  all.TakeTail(pending, 0);
  ASSERT_EQ(all.Size(), 10U);
  EXPECT_EQ(all[9], 9U);
  EXPECT_TRUE(pending.IsEmpty());
  // All of it, into an empty one: they change their blocks.
  const std::uint64_t* const block = all.Data();
  pending.TakeTail(all, 0);
  EXPECT_EQ(pending.Data(), block);
  EXPECT_EQ(pending.Size(), 10U);
  EXPECT_TRUE(all.IsEmpty());
}

// What a trimmed array still has is counted: nothing beside its records, or an eighth of a large
// one.
TEST(RecordArray, Keeps_and_counts_no_more_than_an_eighth_when_it_is_trimmed) {
  const std::size_t before = MemoryBudget::InUse();
  Numbers few;
  few.Reserve(1000);
  Fill(few, 10);
  few.Trim();
  EXPECT_EQ(MemoryBudget::InUse() - before, 10 * sizeof(std::uint64_t));
  for (const std::uint32_t reserved : {100'000U, 150'000U, 400'000U}) {
    const std::size_t start = MemoryBudget::InUse();
    Numbers many;
    many.Reserve(reserved);
    Fill(many, 95'000);
    many.Trim();
    const std::size_t bytes = 95'000 * sizeof(std::uint64_t);
    EXPECT_GE(MemoryBudget::InUse() - start, bytes) << reserved;
    EXPECT_LE(MemoryBudget::InUse() - start, bytes + bytes / 8) << reserved;
    ExpectFilled(many, 95'000);
  }
}

TEST(RecordArray, Stays_as_it_is_when_the_memory_cannot_be_had) {
  Numbers numbers;
  Fill(numbers, 10);
  const std::size_t before = MemoryBudget::InUse();
  const std::size_t limit = MemoryBudget::Limit();
  MemoryBudget::SetLimit(before + 1000);
  EXPECT_THROW(numbers.Reserve(1'000'000), std::bad_alloc);
  MemoryBudget::SetLimit(limit);
  EXPECT_EQ(MemoryBudget::InUse(), before);
  ExpectFilled(numbers, 10);
}

}  // namespace
}  // namespace ixomep::test
