// Protected texts: the marker, deciphering when a parser is made, and the way there.
#include "ixomep/parser/protected_text.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const char kMarker[] = "TERVOX V.4.0 NT  \r\n";

TEST(ProtectedText, Is_deciphered_when_the_parser_is_made) {
  const String plain("A b: 1\nC\n");
  const String hidden = ProtectText(plain);
  EXPECT_TRUE(hidden.view().starts_with(kMarker));
  EXPECT_EQ(hidden.Search("A b"), String::kNotFound);
  IxoMepParser parser(hidden, "test");
  // Blanks fill the last block.
  EXPECT_EQ(parser.GetCompleteText(), "A b: 1\nC\n       ");
  EXPECT_EQ(parser.GetText(), parser.GetCompleteText());
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A b=1; C");
}

TEST(ProtectedText, Is_deciphered_by_SetText_and_the_stretch_constructor) {
  IxoMepParser parser("", "test");
  parser.SetText(ProtectText("A b: 1"));
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A b=1");
  IxoMepParser stretch(ProtectText("A b: 1"), 0, 3, 0, "test");
  EXPECT_EQ(stretch.GetText(), "A b: 1  ");
}

TEST(ProtectedText, Marker_alone_yields_an_empty_text) {
  IxoMepParser parser(kMarker, "test");
  EXPECT_EQ(parser.GetCompleteText(), "");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(ProtectText(""), kMarker);
}

TEST(ProtectedText, Bytes_behind_the_last_whole_block_stay_as_they_are) {
  const String hidden = ProtectText("12345678");
  EXPECT_EQ(UnprotectText(hidden + "abcdefg"), "12345678abcdefg");
  EXPECT_EQ(IxoMepParser(String(kMarker) + "A b: 1", "test").GetCompleteText(), "A b: 1");
}

TEST(ProtectedText, Other_texts_are_left_untouched) {
  for (const char* text : {"", "A", "TERVOX V.4.0 NT  \n", "tervox V.4.0 NT  \r\n",
                           " TERVOX V.4.0 NT  \r\n", "TERVOX V.4.0 NT \r\n"}) {
    EXPECT_FALSE(IsProtectedText(text)) << text;
    EXPECT_EQ(IxoMepParser(text, "test").GetCompleteText(), text);
  }
}

TEST(ProtectedText, Round_trip_of_every_length) {
  std::string plain;
  for (int length = 0; length < 40; ++length) {
    const String back = UnprotectText(ProtectText(String(plain)));
    EXPECT_EQ(back.view().substr(0, plain.size()), plain);
    EXPECT_EQ(back.Len() % 8, 0);
    EXPECT_LT(back.Len(), length + 8);
    plain += static_cast<char>(length * 37);
  }
}

TEST(ProtectedText, Equal_blocks_are_enciphered_each_on_its_own) {
  const String hidden = ProtectText("ABCDEFGHABCDEFGH");
  EXPECT_EQ(hidden.Copy(19, 8), hidden.Copy(27, 8));
  EXPECT_NE(hidden.Copy(19, 8), "ABCDEFGH");
}

TEST(ProtectedText, Beyond_the_memory_is_an_empty_text) {
  const String hidden = ProtectText(String(Repeated("A ", 10000)));
  const ScopedMemoryLimit limit(1000);
  EXPECT_EQ(IxoMepParser(hidden, "test").GetCompleteText(), "");
}

}  // namespace
}  // namespace ixomep::test
