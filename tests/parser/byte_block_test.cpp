// Blocks of bytes against single bytes: every question, for every byte at every place, of both
// kinds of block.
#include "ixomep/parser/byte_block.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "ixomep/parser/byte_kinds.h"

namespace ixomep::test {
namespace {

template <class Block>
class ByteBlockTest : public ::testing::Test {
 protected:
  // Checks a mask byte by byte.
  template <class Belongs>
  static void Check(typename Block::Mask mask, const char* bytes, Belongs belongs) {
    for (std::size_t i = 0; i < Block::kSize; ++i) {
      const bool is_set = mask != 0 && Block::First(mask) == i;
      ASSERT_EQ(is_set, belongs(bytes[i])) << i << ' ' << static_cast<int>(bytes[i]);
      if (is_set) mask &= mask - 1;
    }
    ASSERT_EQ(mask, 0U);
  }
};

using Blocks = ::testing::Types<WordBlock, ByteBlock>;
TYPED_TEST_SUITE(ByteBlockTest, Blocks);

TYPED_TEST(ByteBlockTest, Answers_as_single_bytes_do) {
  std::array<char, 16> bytes{};
  for (std::size_t around = 0; around < 256; around += 15) {
    for (std::size_t place = 0; place < TypeParam::kSize; ++place) {
      bytes.fill(static_cast<char>(around));
      for (int byte = 0; byte < 256; ++byte) {
        bytes[place] = static_cast<char>(byte);
        const TypeParam block(bytes.data());
        this->Check(block.Is('"'), bytes.data(), [](char b) { return b == '"'; });
        this->Check(block.Is('\xA0'), bytes.data(), [](char b) { return b == '\xA0'; });
        this->Check(block.template IsAny<'"', '\\', '\0'>(), bytes.data(),
                    [](char b) { return b == '"' || b == '\\' || b == '\0'; });
        this->Check(block.Between('0', '9'), bytes.data(),
                    [](char b) { return b >= '0' && b <= '9'; });
        this->Check(block.Between(' ', '\x7F'), bytes.data(),
                    [](char b) { return static_cast<signed char>(b) >= ' '; });
        this->Check(block.template IsControlOrForeignOrLike<LikeByte{5, '\''}, LikeByte{0, 'x'}>(),
                    bytes.data(), [](char b) {
                      return static_cast<signed char>(b) < ' ' || (b | 5) == '\'' || b == 'x';
                    });
      }
    }
  }
}

TYPED_TEST(ByteBlockTest, All_bytes_together_are_all) {
  std::array<char, 16> bytes{};
  bytes.fill('5');
  EXPECT_EQ(TypeParam(bytes.data()).Is('5'), TypeParam::kAll);
  EXPECT_EQ(TypeParam(bytes.data()).Between('0', '9'), TypeParam::kAll);
  EXPECT_EQ(TypeParam(bytes.data()).Is('6'), 0U);
}

// --- Runs ---------------------------------------------------------------------------------------

template <class Run>
class ByteRunTest : public ::testing::Test {};

using Runs = ::testing::Types<WordPair, ByteRun>;
TYPED_TEST_SUITE(ByteRunTest, Runs);

TYPED_TEST(ByteRunTest, Knows_every_byte_at_every_place) {
  for (const char around : {'a', ' ', '\xE4', '\0'}) {
    for (std::size_t place = 0; place < TypeParam::kSize; ++place) {
      for (int byte = 0; byte < 256; ++byte) {
        std::array<char, 16> bytes{};
        bytes.fill(around);
        bytes[place] = static_cast<char>(byte);
        const TypeParam run(bytes.data());
        const auto check = [&bytes](std::uint32_t mask, auto belongs) {
          for (std::size_t i = 0; i < bytes.size(); ++i) {
            ASSERT_EQ((mask >> i & 1) != 0, belongs(bytes[i])) << i << ' ' << int{bytes[i]};
          }
          ASSERT_EQ(mask >> bytes.size(), 0U);
        };
        check(run.White(), [](char b) { return IsQuick(b, kQuickWhite); });
        check(run.InKeyword(), [](char b) { return IsQuick(b, kQuickKeyword); });
        check(run.InName(), [](char b) { return IsQuick(b, kQuickName); });
        check(run.Digits(), [](char b) { return IsQuick(b, kQuickDigit); });
        check(run.InNumber(),
              [](char b) { return IsQuick(b, kQuickDigit | kQuickLower) || b == '.'; });
        check(run.LineFeeds(), [](char b) { return b == '\n'; });
        check(run.ClosersAndColons(), [](char b) { return b == '}' || b == ':'; });
        check(run.Quotes(), [](char b) { return b == '"' || b == '\\'; });
      }
    }
  }
}

TYPED_TEST(ByteRunTest, Finds_the_bytes_that_another_one_has_too) {
  std::array<char, 16> bytes{};
  bytes.fill('\x80');
  EXPECT_EQ(TypeParam(bytes.data()).Same(TypeParam(bytes.data())), 0xFFFFU);
  for (std::size_t place = 0; place < bytes.size(); ++place) {
    for (const char byte : {'\0', '\x7F', '\x81'}) {
      std::array<char, 16> others = bytes;
      others[place] = byte;
      EXPECT_EQ(TypeParam(bytes.data()).Same(TypeParam(others.data())), 0xFFFFU ^ 1U << place);
    }
  }
}

TEST(ByteBlock, First_bit_is_the_place_of_the_lowest_one) {
  for (std::uint32_t place = 0; place < 64; ++place) {
    EXPECT_EQ(FirstBit(std::uint64_t{1} << place), place);
    EXPECT_EQ(FirstBit(~std::uint64_t{0} << place), place);
  }
}

TEST(ByteBlock, Pairs_are_stored_with_the_lower_byte_first) {
  std::array<char, 3> bytes{};
  StorePair(bytes.data(), 0x4241);
  EXPECT_EQ(std::string_view(bytes.data(), bytes.size()), std::string_view("AB\0", 3));
}

TEST(ByteBlock, Words_have_the_first_byte_lowest) {
  EXPECT_EQ(LoadWord("\x01\x02\x03\x04\x05\x06\x07\x08"), 0x0807060504030201U);
  EXPECT_EQ(LoadHalf("\x01\x02\x03\x84"), 0x84030201U);
}

}  // namespace
}  // namespace ixomep::test
