// Blocks carved from slabs: addresses, reuse, growth of the regions, what goes back and when.
#include "ixomep/values/block_heap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <set>
#include <vector>

namespace ixomep::test {
namespace {

std::vector<void*> Taken(BlockHeap& heap, std::size_t count) {
  std::vector<void*> blocks;
  for (std::size_t i = 0; i < count; ++i) blocks.push_back(heap.Take());
  return blocks;
}

void GiveAll(BlockHeap& heap, const std::vector<void*>& blocks) {
  for (void* block : blocks) heap.Give(block);
}

TEST(BlockHeap, Nothing_is_held_before_the_first_block) {
  BlockHeap heap(32);
  EXPECT_EQ(heap.RegionCount(), 0u);
  EXPECT_EQ(heap.SlabCount(), 0u);
}

TEST(BlockHeap, Blocks_do_not_overlap_and_hold_their_bytes) {
  for (const std::size_t bytes : {8u, 16u, 24u, 32u, 57u, 120u}) {
    BlockHeap heap(bytes);
    const std::vector<void*> blocks = Taken(heap, 10000);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      std::memset(blocks[i], static_cast<int>(i % 251), bytes);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      const auto* const content = static_cast<const unsigned char*>(blocks[i]);
      ASSERT_TRUE(std::all_of(content, content + bytes, [&](int byte) {
        return byte == static_cast<int>(i % 251);
      })) << bytes;
      ASSERT_EQ(reinterpret_cast<std::uintptr_t>(blocks[i]) % 8, 0u);
    }
    GiveAll(heap, blocks);
    EXPECT_EQ(heap.RegionCount(), 0u);
  }
}

TEST(BlockHeap, Blocks_taken_one_after_the_other_lie_side_by_side) {
  BlockHeap heap(32);
  char* const first = static_cast<char*>(heap.Take());
  char* const second = static_cast<char*>(heap.Take());
  EXPECT_EQ(second, first + 32);
  heap.Give(first);
  heap.Give(second);
}

TEST(BlockHeap, A_slab_holds_as_many_blocks_as_fit_beside_its_head) {
  BlockHeap heap(32);
  EXPECT_GE(heap.BlocksPerSlab(), 2040u);
  std::vector<void*> blocks = Taken(heap, heap.BlocksPerSlab());
  EXPECT_EQ(heap.SlabCount(), 1u);
  blocks.push_back(heap.Take());
  EXPECT_EQ(heap.SlabCount(), 2u);
  GiveAll(heap, blocks);
  EXPECT_EQ(heap.SlabCount(), 0u);
}

TEST(BlockHeap, A_block_given_back_is_taken_again_before_new_memory) {
  BlockHeap heap(32);
  std::vector<void*> blocks = Taken(heap, heap.BlocksPerSlab() * 2);
  void* const given = blocks[5];
  heap.Give(given);
  EXPECT_EQ(heap.Take(), given);
  EXPECT_EQ(heap.SlabCount(), 2u);
  GiveAll(heap, blocks);
}

TEST(BlockHeap, Regions_double_up_to_two_megabytes) {
  BlockHeap heap(64);
  std::vector<void*> blocks;
  std::size_t slabs = 0;
  std::vector<std::size_t> sizes;
  while (sizes.size() < 10) {
    blocks.push_back(heap.Take());
    if (heap.SlabCount() != slabs) sizes.push_back(heap.SlabCount() - slabs);
    slabs = heap.SlabCount();
  }
  EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 1, 2, 4, 8, 16, 32, 32, 32, 32}));
  GiveAll(heap, blocks);
  EXPECT_EQ(heap.RegionCount(), 0u);
}

TEST(BlockHeap, A_region_goes_back_with_its_last_block_whatever_else_is_in_use) {
  BlockHeap heap(32);
  const std::size_t per_slab = heap.BlocksPerSlab();
  const std::vector<void*> first = Taken(heap, per_slab);
  const std::vector<void*> second = Taken(heap, per_slab);
  EXPECT_EQ(heap.RegionCount(), 2u);
  for (std::size_t i = 1; i < per_slab; ++i) heap.Give(first[i]);
  EXPECT_EQ(heap.RegionCount(), 2u);
  heap.Give(first[0]);
  EXPECT_EQ(heap.RegionCount(), 1u);
  GiveAll(heap, second);
  EXPECT_EQ(heap.RegionCount(), 0u);
}

TEST(BlockHeap, A_few_of_the_largest_regions_are_kept_and_used_again) {
  BlockHeap heap(64);
  const std::size_t per_region = heap.BlocksPerSlab() * BlockHeap::kMaxRegionSlabs;
  const std::vector<void*> blocks = Taken(heap, per_region * (BlockHeap::kMaxIdleRegions + 5));
  EXPECT_EQ(heap.IdleCount(), 0u);
  GiveAll(heap, blocks);
  EXPECT_EQ(heap.RegionCount(), 0u);
  EXPECT_EQ(heap.IdleCount(), BlockHeap::kMaxIdleRegions);
  const std::vector<void*> again = Taken(heap, per_region * 3);
  EXPECT_EQ(heap.IdleCount(), BlockHeap::kMaxIdleRegions - 3);
  GiveAll(heap, again);
  EXPECT_EQ(heap.IdleCount(), BlockHeap::kMaxIdleRegions);
  heap.ReleaseIdle();
  EXPECT_EQ(heap.IdleCount(), 0u);
}

TEST(BlockHeap, A_run_is_blocks_side_by_side_that_are_given_back_one_by_one) {
  BlockHeap heap(32);
  const BlockHeap::Run run = heap.TakeRun(10);
  ASSERT_EQ(run.count, 10u);
  EXPECT_EQ(heap.Take(), run.first + 320);
  for (std::uint32_t i = 0; i < 10; ++i) heap.Give(run.first + i * 32);
  EXPECT_EQ(heap.TakeRun(10).count, 1u);  // one that was given back
  heap.Give(run.first + 9 * 32);
  heap.Give(run.first + 320);
  EXPECT_EQ(heap.RegionCount(), 0u);
}

TEST(BlockHeap, A_run_ends_with_its_slab) {
  BlockHeap heap(32);
  const auto per_slab = static_cast<std::uint32_t>(heap.BlocksPerSlab());
  std::vector<void*> blocks = Taken(heap, per_slab - 3);
  const BlockHeap::Run run = heap.TakeRun(10);
  EXPECT_EQ(run.count, 3u);
  EXPECT_EQ(heap.SlabCount(), 1u);
  for (std::uint32_t i = 0; i < run.count; ++i) blocks.push_back(run.first + i * 32);
  GiveAll(heap, blocks);
  EXPECT_EQ(heap.SlabCount(), 0u);
}

TEST(BlockHeap, Any_order_of_taking_and_giving_keeps_blocks_apart_and_returns_everything) {
  BlockHeap heap(16);
  std::mt19937 random(7);
  std::vector<void*> blocks;
  std::set<void*> in_use;
  for (int round = 0; round < 300000; ++round) {
    const bool grows = (round / 50000) % 2 == 0;
    if (blocks.empty() || random() % 10 < (grows ? 8u : 3u)) {
      blocks.push_back(heap.Take());
      ASSERT_TRUE(in_use.insert(blocks.back()).second);
    } else {
      std::swap(blocks[random() % blocks.size()], blocks.back());
      in_use.erase(blocks.back());
      heap.Give(blocks.back());
      blocks.pop_back();
    }
  }
  GiveAll(heap, blocks);
  EXPECT_EQ(heap.RegionCount(), 0u);
  EXPECT_EQ(heap.SlabCount(), 0u);
}

}  // namespace
}  // namespace ixomep::test
