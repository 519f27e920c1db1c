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
