// The storage of short texts: parts of texts are copied whole whatever their length and place, and
// blocks that were given back serve again without a byte being lost or counted twice.
#include "ixomep/host/short_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/host/string_tail.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

std::string Bytes(std::size_t count) {
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) bytes += static_cast<char>('!' + i % 90);
  return bytes;
}

// Blocks of every size are kept.
void GiveBlocks() {
  std::vector<String> texts;
  for (std::size_t size = 2; size < 90; ++size) texts.emplace_back(Bytes(size));
}

TEST(ShortText, Copies_a_part_of_any_length_from_any_place) {
  const std::string bytes = Bytes(300);
  GiveBlocks();
  const std::size_t before = MemoryBudget::InUse();
  int copied = 0;
  for (std::size_t at = 0; at < bytes.size(); at += 7) {
    for (std::size_t size = 0; size <= bytes.size() - at; ++size) {
      String part;
      if (!ShortText::CopyPart(bytes, at, size, part)) {
        ASSERT_TRUE(part.IsEmpty());
        continue;
      }
      ++copied;
      ASSERT_EQ(part, bytes.substr(at, size));
      ASSERT_EQ(part.c_str()[size], '\0');
      ASSERT_TRUE(part.SharesTextWith(String(part)));
      ASSERT_EQ(part + "end", bytes.substr(at, size) + "end");
    }
  }
  EXPECT_EQ(copied > 1000, !kWatchedMemory);
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(ShortText, Leaves_long_and_tiny_parts_and_those_at_the_end_to_others) {
  const std::string bytes = Bytes(300);
  GiveBlocks();
  for (const auto& [at, size] : {std::pair<std::size_t, std::size_t>{0, 0},
                                 {0, 1},
                                 {0, 84},
                                 {0, 300},
                                 {217, 10},
                                 {290, 10},
                                 {300, 0}}) {
    String part;
    EXPECT_FALSE(ShortText::CopyPart(bytes, at, size, part)) << at << ' ' << size;
  }
  String part;
  EXPECT_EQ(ShortText::CopyPart(bytes, 216, 10, part), !kWatchedMemory);
}

TEST(ShortText, Has_no_part_that_passes_the_budget) {
  const std::string bytes = Bytes(300);
  GiveBlocks();
  const ScopedMemoryLimit limit(20);
  String part;
  EXPECT_FALSE(ShortText::CopyPart(bytes, 0, 30, part));
  EXPECT_TRUE(part.IsEmpty());
}

TEST(StringTail, Makes_room_for_any_number_of_bytes) {
  GiveBlocks();
  const std::size_t before = MemoryBudget::InUse();
  for (const std::size_t room : {0u, 1u, 2u, 19u, 20u, 51u, 52u, 83u, 84u, 500u}) {
    String text("what was there");
    const std::string bytes = Bytes(room);
    char* const to = StringTail::MakeRoom(text, room);
    EXPECT_TRUE(text.IsEmpty());
    ASSERT_EQ(StringTail::Of(text).data(), to);
    ASSERT_GE(StringTail::Of(text).size(), room);
    bytes.copy(to, room);
    StringTail::Take(text, room);
    EXPECT_EQ(text, bytes);
  }
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

TEST(StringTail, Leaves_the_text_where_there_is_no_memory_for_the_room) {
  String text("what was there");
  const ScopedMemoryLimit limit(0);
  EXPECT_THROW(StringTail::MakeRoom(text, 100), std::bad_alloc);
  EXPECT_EQ(text, "what was there");
}

}  // namespace
}  // namespace ixomep::test
