// Tests of the character set conversions and letter case of the default host.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "ixomep/host/encodings.h"
#include "ixomep/host/international.h"
#include "tests/support/test_host.h"

namespace {

String AllBytes() {
  String bytes = String::Filled(256, 'x');
  for (int i = 0; i < 256; ++i) {
    bytes.MutableText()[i] = static_cast<char>(static_cast<unsigned char>(i));
  }
  return bytes;
}

TEST(Utf8, Every_byte_of_the_host_maps_and_comes_back) {
  EXPECT_EQ(ConvertUTF8StringToString(ConvertStringToUTF8(AllBytes())), AllBytes());
}

struct Utf8Case {
  const char* byte;
  const char* utf8;
};

TEST(Utf8, Windows_1252_characters_have_their_unicode_numbers) {
  for (const Utf8Case& test : {Utf8Case{"A", "A"},
                               {"\x80", "\xE2\x82\xAC"},  // euro sign
                               {"\x8A", "\xC5\xA0"},      // S with caron
                               {"\x99", "\xE2\x84\xA2"},  // trade mark sign
                               {"\x9F", "\xC5\xB8"},      // Y with diaeresis
                               {"\xA0", "\xC2\xA0"},      // no-break space
                               {"\xE4", "\xC3\xA4"},      // a with diaeresis
                               {"\xFF", "\xC3\xBF"}}) {
    EXPECT_EQ(ConvertStringToUTF8(test.byte), test.utf8);
    EXPECT_EQ(ConvertUTF8StringToString(test.utf8), test.byte);
  }
}

TEST(Utf8, The_five_open_bytes_stand_for_the_control_characters_of_their_number) {
  for (const unsigned byte : {0x81U, 0x8DU, 0x8FU, 0x90U, 0x9DU}) {
    const String one(static_cast<char>(static_cast<unsigned char>(byte)));
    EXPECT_EQ(ConvertStringToUTF8(one), "\xC2" + one);
    EXPECT_EQ(ConvertUTF8StringToString("\xC2" + one), one);
  }
}

TEST(Utf8, What_has_no_byte_becomes_one_question_mark) {
  EXPECT_EQ(ConvertUTF8StringToString("\xCE\xB1"), "?");          // Greek alpha
  EXPECT_EQ(ConvertUTF8StringToString("\xE2\x88\x9E"), "?");      // infinity
  EXPECT_EQ(ConvertUTF8StringToString("\xF0\x9F\x98\x80"), "?");  // beyond 16 bits
  EXPECT_EQ(ConvertUTF8StringToString("\xC2\x80"), "?");          // its byte is the euro sign
  EXPECT_EQ(ConvertUTF8StringToString("\xF4\x8F\xBF\xBF"), "?");
}

TEST(Utf8, What_is_malformed_becomes_question_marks) {
  for (const Utf8Case& test : {Utf8Case{"?", "\x80"},
                               {"?", "\xC3"},
                               {"?a",
                                "\xC3"
                                "a"},
                               {"??", "\xC0\xAF"},            // overlong
                               {"???", "\xE0\x80\x80"},       // overlong
                               {"???", "\xED\xA0\x80"},       // half of a pair
                               {"????", "\xF4\x90\x80\x80"},  // beyond the last number
                               {"?", "\xF0\x9F\x98"},         // cut off
                               {"?\xE4", "\xE2\x82\xC3\xA4"},
                               {"?", "\xFF"},
                               {"??", "\xFE\xFF"}}) {
    EXPECT_EQ(ConvertUTF8StringToString(test.utf8), test.byte);
  }
}

TEST(Utf8, Zero_bytes_pass_through) {
  EXPECT_EQ(ConvertStringToUTF8(String("\0\xE4", 2)), String("\0\xC3\xA4", 3));
  EXPECT_EQ(ConvertUTF8StringToString(String("\0\xC3\xA4", 3)), String("\0\xE4", 2));
}

TEST(Utf8, Random_bytes_are_read_without_harm) {
  constexpr int kCount = 20000;
  std::mt19937 random(ixomep::test::RandomSeed(kCount));
  for (int i = 0; i < kCount; ++i) {
    String bytes = String::Filled(static_cast<std::int32_t>(random() % 8), 'x');
    for (std::int32_t at = 0; at < bytes.Len(); ++at) {
      bytes.MutableText()[at] = static_cast<char>(static_cast<unsigned char>(random() | 0x80U));
    }
    const String read = ConvertUTF8StringToString(bytes);
    ASSERT_LE(read.Len(), bytes.Len());
    ASSERT_EQ(ConvertUTF8StringToString(ConvertStringToUTF8(read)), read);
  }
}

struct OemCase {
  const char* ansi;
  const char* oem;
};

TEST(Oem, Letters_and_signs_have_their_code_page_850_bytes) {
  for (const OemCase& test : {OemCase{"abc 123~", "abc 123~"},
                              {"\xE4\xF6\xFC\xDF", "\x84\x94\x81\xE1"},
                              {"\xC4\xD6\xDC", "\x8E\x99\x9A"},
                              {"\xE9\xE8\xE7", "\x82\x8A\x87"},
                              {"\xA3\xA7\xB0\xA0", "\x9C\xF5\xF8\xFF"},
                              {"\x83", "\x9F"}}) {
    char buffer[16];
    EXPECT_TRUE(CharToOemA(test.ansi, buffer));
    EXPECT_STREQ(buffer, test.oem);
    EXPECT_TRUE(OemToCharA(test.oem, buffer));
    EXPECT_STREQ(buffer, test.ansi);
  }
}

TEST(Oem, What_the_other_set_lacks_becomes_a_question_mark) {
  char buffer[8];
  CharToOemA("\x80\x81\x99", buffer);
  EXPECT_STREQ(buffer, "???");
  OemToCharA("\xB0\xC4\xFE", buffer);
  EXPECT_STREQ(buffer, "???");
}

TEST(Oem, Source_and_destination_may_be_one_buffer_and_null_is_refused) {
  char buffer[] = "\xE4z";
  EXPECT_TRUE(CharToOemA(buffer, buffer));
  EXPECT_STREQ(buffer, "\x84z");
  EXPECT_FALSE(CharToOemA(nullptr, buffer));
  EXPECT_FALSE(OemToCharA("a", nullptr));
  EXPECT_FALSE(CharToOemBuffA(nullptr, buffer, 1));
}

TEST(Oem, The_form_with_a_length_keeps_zero_bytes) {
  char buffer[3];
  EXPECT_TRUE(CharToOemBuffA("\xE4\0\xE4", buffer, 3));
  EXPECT_EQ(std::memcmp(buffer, "\x84\0\x84", 3), 0);
  EXPECT_TRUE(OemToCharBuffA(buffer, buffer, 3));
  EXPECT_EQ(std::memcmp(buffer, "\xE4\0\xE4", 3), 0);
}

TEST(LetterCase, Windows_1252_letters_have_their_partners) {
  struct Pair {
    const char* lower;
    const char* upper;
  };
  for (const Pair& pair : {Pair{"az09_", "AZ09_"},
                           {"\xE4\xF6\xFC", "\xC4\xD6\xDC"},
                           {"\xE0\xFE", "\xC0\xDE"},
                           {"\x9A\x9C\x9E", "\x8A\x8C\x8E"},
                           {"\xFF", "\x9F"}}) {
    EXPECT_EQ(International::Lower(pair.upper, CharSet::Ansi), pair.lower);
    EXPECT_EQ(International::Upper(pair.lower, CharSet::Ansi), pair.upper);
    EXPECT_EQ(International::Lower(pair.lower, CharSet::Ansi), pair.lower);
    EXPECT_EQ(International::Upper(pair.upper, CharSet::Ansi), pair.upper);
  }
}

TEST(LetterCase, Letters_without_a_partner_stay) {
  const String single("\xDF\xB5\x83\xAA\xBA\xD7\xF7");
  EXPECT_EQ(International::Upper(single, CharSet::Ansi), single);
  EXPECT_EQ(International::Lower(single, CharSet::Ansi), single);
}

TEST(LetterCase, Upper_and_lower_are_inverse_for_every_letter) {
  const String upper = International::Upper(AllBytes(), CharSet::Ansi);
  const String lower = International::Lower(AllBytes(), CharSet::Ansi);
  EXPECT_EQ(International::Upper(lower, CharSet::Ansi), upper);
  EXPECT_EQ(International::Lower(upper, CharSet::Ansi), lower);
}

TEST(LetterCase, Plain_functions_touch_ascii_letters_only) {
  String text("aZ\xE4\xC4[`{@", 8);
  EXPECT_EQ(h_strupr(text), "AZ\xE4\xC4[`{@");
  EXPECT_EQ(h_strlwr(text), "az\xE4\xC4[`{@");
  String with_zero("a\0b", 3);
  EXPECT_EQ(h_strupr(with_zero), String("A\0B", 3));
}

TEST(LetterCase, Plain_functions_leave_copies_and_unchanged_texts_alone) {
  const String original("abc");
  String copy = original;
  EXPECT_TRUE(h_strlwr(copy).SharesTextWith(original));
  EXPECT_EQ(h_strupr(copy), "ABC");
  EXPECT_EQ(original, "abc");
  String empty;
  EXPECT_EQ(h_strupr(empty), "");
}

TEST(CharSet, The_set_of_the_host_has_number_nine) {
  EXPECT_EQ(static_cast<int>(CharSet::Ansi), 9);
}

TEST(DecimalSeparator, Is_a_point_unless_the_host_says_otherwise) {
  EXPECT_EQ(International::DecimalSeparator(), '.');
  ixomep::test::TestHost host;
  host.decimal_separator = ',';
  EXPECT_EQ(International::DecimalSeparator(), ',');
}

}  // namespace
