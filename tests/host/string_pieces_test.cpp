// Texts that grow in pieces: what is collected arrives whole and in order wherever it is flushed.
#include "ixomep/host/string_pieces.h"

#include <gtest/gtest.h>

#include <string>

#include "ixomep/host/encodings.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

TEST(StringPieces, Bytes_and_short_texts_arrive_in_order_behind_what_was_there) {
  for (std::size_t before = 0; before < 1200; ++before) {
    String text("start ");
    StringPieces pieces(text);
    for (std::size_t i = 0; i < before; ++i) pieces.Add('a');
    pieces.Add(std::string_view("sixteen letters!"));
    pieces.Add(std::string_view());
    pieces.Add('z');
    pieces.Flush();
    ASSERT_EQ(text, String("start " + std::string(before, 'a') + "sixteen letters!z"));
  }
}

TEST(StringPieces, Long_texts_beyond_ASCII_are_converted_whole) {
  const TestHost host;
  for (std::size_t size = 0; size < 600; size += size < 480 ? 37 : 1) {
    const std::string plain(size, 'a');
    EXPECT_EQ(ConvertStringToUTF8(String(plain + "\xE4\x80")),
              String(plain + "\xC3\xA4\xE2\x82\xAC"));
    EXPECT_EQ(IxoSGMLString::XMLStr(String(plain + "\xE4<\x80"), true),
              String(plain + "&#228;&lt;&#8364;"));
    EXPECT_EQ(IxoSGMLString::XMLStr(String(plain + "\xE4<\x80"), false),
              String(plain + "\xC3\xA4&lt;\xE2\x82\xAC"));
  }
}

}  // namespace
}  // namespace ixomep::test
