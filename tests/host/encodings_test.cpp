// Tests of Base64, URL escaping and XML escaping.
#include "ixomep/host/encodings.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/test_host.h"

namespace {

String Encoded(std::string_view bytes) {
  String text("untouched");
  EXPECT_TRUE(Ixo_NewBase64Encode(bytes, text));
  return text;
}

String Decoded(std::string_view text) {
  String bytes("untouched");
  EXPECT_TRUE(Ixo_NewBase64Decode(text, bytes)) << text;
  return bytes;
}

struct Base64Case {
  std::string_view bytes;
  const char* text;
};

constexpr Base64Case kBase64Cases[] = {
    {"", ""},
    {"f", "Zg=="},
    {"fo", "Zm8="},
    {"foo", "Zm9v"},
    {"foob", "Zm9vYg=="},
    {"fooba", "Zm9vYmE="},
    {"foobar", "Zm9vYmFy"},
    {std::string_view("\0\0\0", 3), "AAAA"},
    {std::string_view("\0", 1), "AA=="},
    {"\xFB\xFF\xFE", "+//+"},
    {std::string_view("a\0b", 3), "YQBi"},
};

TEST(Base64, Encodes_with_the_standard_alphabet_and_padding) {
  for (const Base64Case& test : kBase64Cases) EXPECT_EQ(Encoded(test.bytes), test.text);
}

TEST(Base64, Decodes_what_was_encoded_and_keeps_zero_bytes) {
  for (const Base64Case& test : kBase64Cases) EXPECT_EQ(Decoded(test.text), test.bytes);
}

TEST(Base64, Encoding_breaks_no_lines) {
  const String text = Encoded(String::Filled(3000, 'x'));
  EXPECT_EQ(text.Len(), 4000);
  EXPECT_EQ(text.Search('\n'), String::kNotFound);
}

TEST(Base64, Decoding_skips_white_space) {
  EXPECT_EQ(Decoded(" Zm\n9v\r\n Y\tg = =\v\f "), "foob");
  EXPECT_EQ(Decoded("  \n"), "");
}

TEST(Base64, Decoding_accepts_missing_padding) {
  EXPECT_EQ(Decoded("Zg"), "f");
  EXPECT_EQ(Decoded("Zg="), "f");
  EXPECT_EQ(Decoded("Zm8"), "fo");
}

TEST(Base64, Decoding_refuses_anything_else_and_leaves_the_result_alone) {
  for (const char* text : {"Z", "Zm9vY", "Zm9v=", "Zg===", "Zm8==", "=", "====", "Zg==Zg==", "Zm-v",
                           "Zm_v", "Zm9v!", "Zg=a", "Zm\x80v", "=Zm9v"}) {
    String bytes("untouched");
    EXPECT_FALSE(Ixo_NewBase64Decode(text, bytes)) << text;
    EXPECT_EQ(bytes, "untouched");
  }
  String bytes("untouched");
  EXPECT_FALSE(Ixo_NewBase64Decode(std::string_view("Zm9v\0", 5), bytes));
}

TEST(Base64, Encoding_refuses_what_would_become_too_long) {
  // Only the length is looked at; a stretch of that many bytes does not exist.
  const std::string_view endless("abc", static_cast<std::size_t>(String::kMaxLength) - 10);
  String text("untouched");
  EXPECT_FALSE(Ixo_NewBase64Encode(endless, text));
  EXPECT_EQ(text, "untouched");
}

TEST(Base64, Random_bytes_come_back) {
  constexpr int kCount = 2000;
  std::mt19937 random(ixomep::test::RandomSeed(kCount));
  for (int i = 0; i < kCount; ++i) {
    String bytes = String::Filled(static_cast<std::int32_t>(random() % 100), 'x');
    for (std::int32_t at = 0; at < bytes.Len(); ++at) {
      bytes.MutableText()[at] = static_cast<char>(static_cast<unsigned char>(random() & 255U));
    }
    ASSERT_EQ(Decoded(Encoded(bytes)), bytes);
  }
}

TEST(UrlEscape, Every_byte_that_is_not_in_the_set_becomes_two_upper_case_digits) {
  EXPECT_EQ(HttpRequest::escapeUrlStyle("a b~c/\xE4\n", "abc~"), "a%20b~c%2F%E4%0A");
  EXPECT_EQ(HttpRequest::escapeUrlStyle(String("\0\xFF", 2), ""), "%00%FF");
  EXPECT_EQ(HttpRequest::escapeUrlStyle("100%", "10%"), "100%");
  EXPECT_EQ(HttpRequest::escapeUrlStyle("%41", "41"), "%2541");
  EXPECT_EQ(HttpRequest::escapeUrlStyle("", "abc"), "");
}

TEST(UrlEscape, All_bytes_are_escaped_by_number_or_stay) {
  for (int byte = 0; byte < 256; ++byte) {
    const String one(static_cast<char>(static_cast<unsigned char>(byte)));
    char expected[4];
    std::snprintf(expected, sizeof expected, "%%%02X", static_cast<unsigned>(byte));
    EXPECT_EQ(HttpRequest::escapeUrlStyle(one, ""), expected);
    EXPECT_EQ(HttpRequest::escapeUrlStyle(one, one), one);
  }
}

TEST(XmlEscape, The_five_special_characters_become_named_entities) {
  for (const bool references : {true, false}) {
    EXPECT_EQ(IxoSGMLString::XMLStr("a&b<c>d\"e'f", references), "a&amp;b&lt;c&gt;d&quot;e&apos;f");
  }
}

TEST(XmlEscape, Tab_and_line_ends_become_references_and_other_control_bytes_vanish) {
  for (const bool references : {true, false}) {
    EXPECT_EQ(IxoSGMLString::XMLStr("\t\n\r", references), "&#9;&#10;&#13;");
    EXPECT_EQ(IxoSGMLString::XMLStr(String("a\0\x01\x08\x0B\x1F"
                                           "b",
                                           7),
                                    references),
              "ab");
    EXPECT_EQ(IxoSGMLString::XMLStr(" ~\x7F", references), " ~\x7F");
  }
}

TEST(XmlEscape, Bytes_from_128_become_references_of_their_unicode_number_when_asked) {
  EXPECT_EQ(IxoSGMLString::XMLStr("\xE4\x80\xFF", true), "&#228;&#8364;&#255;");
  EXPECT_EQ(IxoSGMLString::XMLStr("\x81", true), "&#129;");
}

TEST(XmlEscape, Bytes_from_128_become_utf8_otherwise) {
  EXPECT_EQ(IxoSGMLString::XMLStr("\xE4\x80\xFF", false), "\xC3\xA4\xE2\x82\xAC\xC3\xBF");
}

TEST(XmlEscape, The_empty_text_stays_empty) { EXPECT_EQ(IxoSGMLString::XMLStr("", true), ""); }

class RawUtf8Host : public IxoHost {
 public:
  RawUtf8Host() : previous_(IxoHost::Install(this)) {}
  ~RawUtf8Host() override { IxoHost::Install(previous_); }
  String ToUtf8(std::string_view text) override { return String(text); }

 private:
  IxoHost* previous_;
};

TEST(XmlEscape, A_host_that_answers_with_malformed_utf8_does_no_harm) {
  const RawUtf8Host host;
  EXPECT_EQ(IxoSGMLString::XMLStr("\xF0", false), "\xF0");
  EXPECT_EQ(IxoSGMLString::XMLStr("a\x80\x80\x80\x80\x80<", false), "a\x80\x80\x80\x80\x80&lt;");
  EXPECT_EQ(IxoSGMLString::XMLStr("\xC3\xA4", true), "&#228;");
}

}  // namespace
