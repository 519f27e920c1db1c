// Tests of the DES blocks: a known answer, the round trip, the count of blocks.
#include "ixomep/host/cipher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "tests/support/test_host.h"

namespace {

using Block = std::array<unsigned char, 8>;

constexpr Block kKey = {0x13, 0x34, 0x57, 0x79, 0x9B, 0xBC, 0xDF, 0xF1};
constexpr Block kPlain = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
constexpr Block kCiphered = {0x85, 0xE8, 0x13, 0x54, 0x0F, 0x0A, 0xB4, 0x05};

TEST(Cipher, Enciphers_and_deciphers_the_well_known_block) {
  ades_key(kKey.data());
  Block block = kPlain;
  ades_enc(block.data(), 1);
  EXPECT_EQ(block, kCiphered);
  ades_dec(block.data(), 1);
  EXPECT_EQ(block, kPlain);
}

TEST(Cipher, Every_block_stands_for_itself) {
  ades_key(kKey.data());
  std::array<unsigned char, 24> bytes{};
  for (std::size_t i = 0; i < 3; ++i) std::copy(kPlain.begin(), kPlain.end(), &bytes[i * 8]);
  ades_enc(bytes.data(), 3);
  for (std::size_t i = 0; i < 24; ++i) EXPECT_EQ(bytes[i], kCiphered[i % 8]);
}

TEST(Cipher, Touches_only_the_given_number_of_blocks) {
  ades_key(kKey.data());
  for (const std::int32_t count : {-1, 0, 1}) {
    std::array<unsigned char, 16> bytes{};
    ades_enc(bytes.data(), count);
    EXPECT_EQ(bytes[0] != 0, count == 1);
    EXPECT_TRUE(std::all_of(bytes.begin() + 8, bytes.end(), [](auto byte) { return byte == 0; }));
  }
  ades_dec(nullptr, 0);
  ades_enc(nullptr, -5);
}

TEST(Cipher, The_key_is_copied_and_the_last_one_counts) {
  Block key = kKey;
  ades_key(key.data());
  key.fill(0);
  Block block = kPlain;
  ades_enc(block.data(), 1);
  EXPECT_EQ(block, kCiphered);
  ades_key(key.data());
  ades_dec(block.data(), 1);
  EXPECT_NE(block, kPlain);
}

TEST(Cipher, A_weak_key_works_like_any_other) {
  const Block weak = {1, 1, 1, 1, 1, 1, 1, 1};
  ades_key(weak.data());
  Block block = kPlain;
  ades_enc(block.data(), 1);
  EXPECT_NE(block, kPlain);
  ades_dec(block.data(), 1);
  EXPECT_EQ(block, kPlain);
}

TEST(Cipher, Random_blocks_come_back) {
  constexpr int kCount = 500;
  std::mt19937 random(ixomep::test::RandomSeed(kCount));
  for (int i = 0; i < kCount; ++i) {
    std::vector<unsigned char> bytes(8 + random() % 10 * 8);
    Block key;
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random() & 255U);
    for (auto& byte : key) byte = static_cast<unsigned char>(random() & 255U);
    const std::vector<unsigned char> original = bytes;
    ades_key(key.data());
    ades_enc(bytes.data(), static_cast<std::int32_t>(bytes.size() / 8));
    EXPECT_NE(bytes, original);
    ades_dec(bytes.data(), static_cast<std::int32_t>(bytes.size() / 8));
    ASSERT_EQ(bytes, original);
  }
}

}  // namespace
