// Blocks of many megabytes: announced to the host as it was promised to it, and texts in them.
#include "ixomep/host/large_blocks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "ixomep/host/string.h"
#include "ixomep/host/string_tail.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

constexpr std::size_t kPage = std::size_t{2} << 20;

class PreparingHost : public TestHost {
 public:
  void PrepareMemory(void* memory, std::size_t bytes) noexcept override {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % kPage, 0U);
    EXPECT_EQ(bytes % kPage, 0U);
    prepared.push_back(bytes);
  }
  std::vector<std::size_t> prepared;
};

TEST(LargeBlocks, Are_announced_to_the_host_in_whole_pages) {
  PreparingHost host;
  void* const block = LargeBlocks::New(LargeBlocks::kFrom + 1);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(host.prepared, std::vector<std::size_t>{LargeBlocks::kFrom + kPage});
  std::free(block);
}

TEST(LargeBlocks, Hold_long_texts_that_grow_and_shrink) {
  PreparingHost host;
  constexpr auto kLength = static_cast<std::int32_t>(LargeBlocks::kFrom);
  String text = String::Filled(kLength, 'x');
  EXPECT_EQ(host.prepared.size(), 1U);
  text += "end";
  EXPECT_EQ(text.Len(), kLength + 3);
  EXPECT_EQ(text[kLength - 1], 'x');
  EXPECT_EQ(text.Copy(kLength), "end");
  text.Erase(5, kLength - 5);
  EXPECT_EQ(text, "xxxxxend");
  EXPECT_EQ(text.Copy(5), "end");
}

// --- Blocks that are kept -----------------------------------------------------------------------

class IdleBlocksTest : public ::testing::Test {
 protected:
  IdleBlocksTest() { IdleBlocks::Clear(); }
  ~IdleBlocksTest() override { IdleBlocks::Clear(); }
  static void Give(std::size_t bytes) { IdleBlocks::Give(std::malloc(bytes), bytes); }
  // The size of the block that somebody gets who asks for so many bytes; 0 for none.
  static std::size_t Taken(std::size_t bytes) {
    void* const block = IdleBlocks::Take(bytes);
    std::free(block);
    return block != nullptr ? bytes : 0;
  }
  static constexpr std::size_t kLeast = IdleBlocks::kLeast;
};

TEST_F(IdleBlocksTest, A_block_given_back_serves_who_asks_next) {
  void* const block = std::malloc(kLeast * 2);
  IdleBlocks::Give(block, kLeast * 2);
  EXPECT_EQ(IdleBlocks::Bytes(), kLeast * 2);
  std::size_t bytes = kLeast + 1;
  void* const taken = IdleBlocks::Take(bytes);
  EXPECT_EQ(taken, block);
  EXPECT_EQ(bytes, kLeast * 2);
  EXPECT_EQ(IdleBlocks::Bytes(), 0U);
  std::free(taken);
}

TEST_F(IdleBlocksTest, The_smallest_one_that_is_large_enough_is_taken) {
  for (const std::size_t size : {kLeast * 5, kLeast, kLeast * 3}) Give(size);
  EXPECT_EQ(Taken(kLeast * 2), kLeast * 3);
  EXPECT_EQ(Taken(kLeast * 2), kLeast * 5);
  EXPECT_EQ(Taken(kLeast * 2), 0U);
  EXPECT_EQ(Taken(kLeast), kLeast);
}

TEST_F(IdleBlocksTest, Small_blocks_and_those_that_are_too_large_are_not_kept) {
  Give(kLeast - 1);
  Give(IdleBlocks::kMostBytes + 1);
  EXPECT_EQ(IdleBlocks::Bytes(), 0U);
  Give(IdleBlocks::kMostBytes);
  EXPECT_EQ(IdleBlocks::Bytes(), IdleBlocks::kMostBytes);
  EXPECT_EQ(Taken(kLeast - 1), 0U);
}

TEST_F(IdleBlocksTest, Neither_too_many_blocks_nor_too_many_bytes_are_kept) {
  for (std::size_t i = 1; i <= IdleBlocks::kMostBlocks + 2; ++i) Give(kLeast * i);
  std::size_t blocks = 0;
  while (Taken(kLeast * 3) != 0) ++blocks;
  EXPECT_EQ(blocks, IdleBlocks::kMostBlocks);
  EXPECT_EQ(IdleBlocks::Bytes(), 0U);
  for (int i = 0; i < 5; ++i) {
    Give(IdleBlocks::kMostBytes / 4);
    EXPECT_LE(IdleBlocks::Bytes(), IdleBlocks::kMostBytes);
  }
  EXPECT_EQ(IdleBlocks::Bytes(), IdleBlocks::kMostBytes);
  // The smaller ones make room.
  Give(IdleBlocks::kMostBytes / 2);
  EXPECT_EQ(IdleBlocks::Bytes(), IdleBlocks::kMostBytes);
  EXPECT_EQ(Taken(IdleBlocks::kMostBytes / 2), IdleBlocks::kMostBytes / 2);
  // One that is smaller than all is not kept when there are too many.
  IdleBlocks::Clear();
  for (std::size_t i = 0; i < IdleBlocks::kMostBlocks; ++i) Give(kLeast * 2);
  Give(kLeast);
  EXPECT_EQ(IdleBlocks::Bytes(), kLeast * 2 * IdleBlocks::kMostBlocks);
}

// --- Texts in them ------------------------------------------------------------------------------

TEST(StringTail, Is_the_room_behind_the_bytes) {
  String text = "some text";
  text.Reserve(100);
  const std::span<char> tail = StringTail::Of(text);
  ASSERT_GE(tail.size(), 91U);
  tail[0] = '!';
  StringTail::Take(text, 1);
  EXPECT_EQ(text, "some text!");
  EXPECT_EQ(text.c_str()[text.Len()], '\0');
  StringTail::Take(text, 0);
  EXPECT_EQ(text, "some text!");
}

TEST(StringTail, Is_empty_for_shared_and_for_static_texts) {
  String empty;
  EXPECT_TRUE(StringTail::Of(empty).empty());
  String text = "some text";
  text.Reserve(100);
  const String other = text;
  EXPECT_TRUE(StringTail::Of(text).empty());
}

}  // namespace
}  // namespace ixomep::test
