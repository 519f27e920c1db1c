// The map of a text's bytes: at every place it tells of every byte what a look at the byte tells.
#include "ixomep/parser/byte_map.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ixomep/parser/byte_kinds.h"

namespace ixomep::test {
namespace {

std::string EveryByte(std::size_t size) {
  std::string bytes;
  for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(i * 37 + i / 256);
  return bytes;
}

void ExpectTold(const ByteMap& map, std::string_view bytes, std::size_t place) {
  const ByteMap::Place told(map, bytes.data() + place);
  for (std::size_t i = 0; i < ByteMap::kWindow && place + i < bytes.size(); ++i) {
    const char byte = bytes[place + i];
    const bool is_white = IsQuick(byte, kQuickWhite);
    ASSERT_EQ((told.White() >> i & 1) != 0, is_white) << place << ' ' << i;
    ASSERT_EQ((told.Ends() >> i & 1) != 0, is_white || byte == '}' || byte == ':') << place;
    ASSERT_EQ((told.Quotes() >> i & 1) != 0, byte == '"' || byte == '\\') << place;
  }
}

TEST(ByteMap, Tells_of_every_byte_what_the_byte_is) {
  const std::string text = EveryByte(3000);
  const auto map = std::make_unique<ByteMap>();
  map->Fill(text.data(), text.data() + text.size());
  // Whole blocks only.
  const auto mapped = static_cast<std::size_t>(map->End() - text.data());
  EXPECT_EQ(mapped, text.size() / 16 * 16);
  for (std::size_t place = 0; place < mapped; ++place) {
    ExpectTold(*map, std::string_view(text).substr(0, mapped), place);
  }
}

TEST(ByteMap, Covers_what_was_mapped_last) {
  const std::string text = EveryByte(20'000);
  const auto map = std::make_unique<ByteMap>();
  EXPECT_FALSE(map->Covers(text.data(), 1));
  for (const std::size_t from : {std::size_t{0}, std::size_t{5001}, std::size_t{19'000}}) {
    map->Fill(text.data() + from, text.data() + text.size());
    EXPECT_LE(map->End(), text.data() + text.size());
    EXPECT_GE(map->End(), text.data() + from + ByteMap::kLeast);
    EXPECT_TRUE(map->Covers(text.data() + from, ByteMap::kLeast));
    EXPECT_TRUE(map->Covers(map->End() - 10, 10));
    EXPECT_FALSE(map->Covers(map->End() - 10, 11));
    EXPECT_EQ(map->Covers(text.data() + (from > 0 ? from - 1 : 0), 10), from == 0);
    ExpectTold(*map, {text.data() + from, static_cast<std::size_t>(ByteMap::kLeast)}, 77);
  }
}

}  // namespace
}  // namespace ixomep::test
