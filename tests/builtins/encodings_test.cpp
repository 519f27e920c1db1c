// base64encode, base64decode, toutf8, fromutf8, tooem, fromoem, encodeuri, tourlquerystring.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "ixomep/builtins/unescaped_sets.h"
#include "tests/support/call_checks.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const CallTypes kEncodingFunctions[] = {
    {"base64encode", {"S"}},    {"base64decode", {"S"}},
    {"toutf8", {"S"}},          {"fromutf8", {"S"}},
    {"tooem", {"S"}},           {"fromoem", {"S"}},
    {"encodeuri", {"S", "SS"}}, {"tourlquerystring", {"M", "MS"}},
};

void SetText(Session& session, const char* name, std::string_view bytes) {
  session.Set(name, IxoMepValue(String(bytes)));
}

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

TEST(Encodings, Counts_and_types_of_arguments_are_those_of_the_table) {
  for (const CallTypes& function : kEncodingFunctions) CheckCountsAndTypes(function);
}

TEST(Base64, Known_texts_are_encoded_with_padding_and_decoded) {
  Session session;
  const char* const pairs[][2] = {{"", ""},
                                  {"f", "Zg=="},
                                  {"fo", "Zm8="},
                                  {"foo", "Zm9v"},
                                  {"foob", "Zm9vYg=="},
                                  {"fooba", "Zm9vYmE="},
                                  {"foobar", "Zm9vYmFy"}};
  for (const auto& [plain, encoded] : pairs) {
    SetText(session, "plain", plain);
    SetText(session, "encoded", encoded);
    EXPECT_EQ(session.Eval("base64encode(plain) = encoded"), "integer 1") << plain;
    EXPECT_EQ(session.Eval("base64decode(encoded) = plain"), "integer 1") << encoded;
  }
}

TEST(Base64, Every_byte_survives_the_round_trip) {
  Session session;
  SetText(session, "s", AllBytes());
  CheckAll(session, {{"base64decode(base64encode(s)) = s", "integer 1"},
                     {"LEN base64encode(s)", "integer 344"}});
}

TEST(Base64, Decoding_keeps_zero_bytes_inside_the_data) {
  Session session;
  SetText(session, "expected", {"a\0b\0", 4});
  CheckAll(session, {{"base64decode(\"YQBiAA==\") = expected", "integer 1"},
                     {"LEN base64decode(\"AAAA\")", "integer 3"}});
}

TEST(Base64, Decoding_skips_white_space_and_accepts_missing_padding) {
  Session session;
  CheckAll(session, {{"base64decode(\" Zm9v\\r\\n\\tYg = = \")", "string \"foob\""},
                     {"base64decode(\"Zg\")", "string \"f\""},
                     {"base64decode(\"Zm8\")", "string \"fo\""},
                     {"base64decode(\"Zg=\")", "string \"f\""},
                     {"base64decode(\" \\n\")", "string \"\""}});
}

TEST(Base64, Decoding_anything_else_fails_with_32_and_a_text) {
  Session session;
  const std::string failure = "error 32: base64decode: the text is not Base64";
  for (const char* bad : {"?", "Zm9v!", "Z", "Zm9vY", "=", "Zg==Zg==", "Zm9v=", "Zg===", "Zm-_",
                          "\xC4\xC4\xC4\xC4"}) {
    SetText(session, "bad", bad);
    EXPECT_EQ(session.Eval("base64decode(bad)"), failure) << bad;
    EXPECT_EQ(session.Eval("base64decode(bad)", /*strict=*/true), failure) << bad;
  }
  SetText(session, "bad", {"Zm9v\0Zg==", 9});
  EXPECT_EQ(session.Eval("base64decode(bad)"), failure);
}

TEST(Base64, Big_texts_survive_the_round_trip) {
  Session session;
  EXPECT_EQ(session.Eval("s := \"0123456789\" * 1000000, base64decode(base64encode(s)) = s"),
            "integer 1");
}

TEST(Base64, Memory_that_cannot_be_had_is_code_37) {
  TestHost host;
  Session session;
  session.Eval("s := \"A123456789\" * 1000000, m := {\"k\": s}");
  ScopedMemoryLimit limit(1000000);
  for (const char* call :
       {"base64encode(s)", "base64decode(s)", "toutf8(s)", "fromutf8(s)", "tooem(s)", "fromoem(s)",
        "encodeuri(s)", "encodeuri(s, \"\")", "tourlquerystring(m)", "lower(s)", "ilower(s)",
        "mstr(s)", "copy(s, 1, -1)"}) {
    EXPECT_TRUE(session.Eval(call).starts_with("error 37: ")) << call;
  }
}

TEST(Utf8, Every_byte_has_a_form_and_comes_back) {
  Session session;
  SetText(session, "s", AllBytes());
  CheckAll(session, {{"fromutf8(toutf8(s)) = s", "integer 1"}});
}

TEST(Utf8, Known_letters_are_converted) {
  Session session;
  SetText(session, "host", "a\xE4\x80");
  SetText(session, "utf8", "a\xC3\xA4\xE2\x82\xAC");
  CheckAll(session, {{"toutf8(host) = utf8", "integer 1"},
                     {"fromutf8(utf8) = host", "integer 1"},
                     {"toutf8(\"\")", "string \"\""},
                     {"fromutf8(\"\")", "string \"\""}});
}

TEST(Utf8, What_is_malformed_or_has_no_byte_becomes_a_question_mark) {
  Session session;
  SetText(session, "cyrillic", "\xD0\x96");
  SetText(session, "lone", "a\x80z");
  SetText(session, "cut", "a\xC3");
  CheckAll(session, {{"fromutf8(cyrillic)", "string \"?\""},
                     {"fromutf8(lone)", "string \"a?z\""},
                     {"fromutf8(cut)", "string \"a?\""}});
}

TEST(Oem, Known_letters_are_converted_both_ways) {
  Session session;
  SetText(session, "host", "a\xE4\xDF");
  SetText(session, "oem", "a\x84\xE1");
  CheckAll(session, {{"tooem(host) = oem", "integer 1"},
                     {"fromoem(oem) = host", "integer 1"},
                     {"tooem(\"\")", "string \"\""},
                     {"fromoem(\"\")", "string \"\""}});
}

TEST(Oem, Length_is_kept_and_zero_bytes_do_not_end_the_text) {
  Session session;
  SetText(session, "s", AllBytes());
  SetText(session, "host", {"\xE4\0\xE4", 3});
  SetText(session, "oem", {"\x84\0\x84", 3});
  CheckAll(session, {{"LEN tooem(s)", "integer 256"},
                     {"LEN fromoem(s)", "integer 256"},
                     {"tooem(host) = oem", "integer 1"},
                     {"fromoem(oem) = host", "integer 1"}});
}

TEST(Oem, Conversion_leaves_the_variable_alone) {
  Session session;
  SetText(session, "s", "\xE4");
  SetText(session, "same", "\xE4");
  CheckAll(session, {{"LEN tooem(s)", "integer 1"}, {"s = same", "integer 1"}});
}

TEST(UnescapedSets, Are_the_five_given_ones) {
  const UnescapedSets& sets = UnescapedSets::Get();
  EXPECT_EQ(sets.query_component,
            "!'()*-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
  EXPECT_EQ(sets.whole_uri,
            "!#$&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
  EXPECT_EQ(sets.path,
            "!\"$'()*,-./0123456789;ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~");
  EXPECT_EQ(sets.query_text,
            "!\"$'()*,-./0123456789:;<>@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`abcdefghijklmnopqrstuvwxyz"
            "{|}~");
  EXPECT_EQ(sets.printable,
            "!\"#$'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[\\]^_`"
            "abcdefghijklmnopqrstuvwxyz{|}~");
  EXPECT_EQ(&UnescapedSets::Get(), &sets);
}

// The text in which each byte that is not in the set is escaped.
std::string Escaped(std::string_view bytes, std::string_view unescaped) {
  std::string text;
  for (const char byte : bytes) {
    char code[4];
    std::snprintf(code, sizeof code, "%%%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text +=
        unescaped.find(byte) == std::string_view::npos ? std::string(code) : std::string(1, byte);
  }
  return text;
}

TEST(EncodeUri, Default_set_leaves_the_characters_of_an_address) {
  Session session;
  SetText(session, "s", AllBytes());
  SetText(
      session, "expected",
      Escaped(
          AllBytes(),
          "!#$&'()*+,-./0123456789:;=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~"));
  EXPECT_EQ(session.Eval("encodeuri(s) = expected"), "integer 1");
}

TEST(EncodeUri, Given_set_replaces_the_default_one) {
  Session session;
  SetText(session, "s", AllBytes());
  SetText(session, "expected", Escaped(AllBytes(), "%a"));
  CheckAll(session, {{"encodeuri(s, \"%a\") = expected", "integer 1"},
                     {"encodeuri(\"ab\", \"\")", "string \"%61%62\""},
                     {"encodeuri(\"\")", "string \"\""},
                     {"encodeuri(\"\", \"\")", "string \"\""},
                     {"encodeuri(\"a b\xFF\")", "string \"a%20b%FF\""}});
}

TEST(ToUrlQueryString, Two_keys_give_two_pairs_joined_by_one_ampersand) {
  Session session;
  EXPECT_EQ(session.Eval("tourlquerystring({\"b\": \"2\", \"a\": \"1\"})"), "string \"a=1&b=2\"");
}

TEST(ToUrlQueryString, Space_in_a_key_is_escaped_and_a_tilde_is_not) {
  Session session;
  EXPECT_EQ(session.Eval("tourlquerystring({\"a ~\": \"~ b\"})"), "string \"a%20~=~%20b\"");
}

TEST(ToUrlQueryString, Default_set_leaves_the_characters_of_a_query_component) {
  Session session;
  SetText(session, "s", AllBytes());
  SetText(
      session, "expected",
      "k=" + Escaped(AllBytes(),
                     "!'()*-.0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz~"));
  EXPECT_EQ(session.Eval("tourlquerystring({\"k\": s}) = expected"), "integer 1");
}

TEST(ToUrlQueryString, Given_set_applies_to_keys_and_values_and_not_to_the_signs_between) {
  Session session;
  CheckAll(session, {{"tourlquerystring({\"a b\": \"c&\"}, \" &\")", "string \"%61 %62=%63&\""},
                     {"tourlquerystring({\"a\": \"=\"}, \"\")", "string \"%61=%3D\""}});
}

TEST(ToUrlQueryString, Empty_map_gives_the_empty_string) {
  Session session;
  CheckAll(session, {{"tourlquerystring(map())", "string \"\""},
                     {"tourlquerystring(map(), \"a\")", "string \"\""}});
}

TEST(ToUrlQueryString, Empty_keys_and_values_keep_their_signs) {
  Session session;
  CheckAll(session, {{"tourlquerystring({\"\": \"\"})", "string \"=\""},
                     {"tourlquerystring({\"\": \"\", \"a\": \"\"})", "string \"=&a=\""}});
}

TEST(ToUrlQueryString, Keys_and_values_that_are_no_strings_are_written_by_the_language) {
  Session session;
  CheckAll(session, {{"tourlquerystring({2: 2.5, 1: 2.0, \"a\": {1}, \"m\": 5mm, \"u\": nobody})",
                      "string \"1=2&2=2.5&a=%7B1%7D&m=.5cm&u=\""},
                     {"tourlquerystring({\"s\": {\"x\"}})", "string \"s=%7B%22x%22%7D\""}});
}

TEST(ToUrlQueryString, Entry_without_a_value_has_an_empty_one) {
  Session session;
  IxoMepValue map(IxoMepValueType::Map);
  const IxoMepValue key("k");
  ASSERT_EQ(*map.GetpValueOfMap(&key), nullptr);
  session.Set("m", map);
  EXPECT_EQ(session.Eval("tourlquerystring(m)"), "string \"k=\"");
}

TEST(ToUrlQueryString, Keys_come_in_the_order_of_the_map) {
  Session session;
  EXPECT_EQ(session.Eval("tourlquerystring({\"b\": 1, \"B\": 2, 10: 3, 9: 4})"),
            "string \"9=4&10=3&B=2&b=1\"");
}

TEST(ToUrlQueryString, Big_maps_are_written_whole) {
  Session session;
  session.Eval("m := map(), for(i, 1, 20000) { m[i] := i }");
  EXPECT_EQ(session.Eval("tokcnt(tourlquerystring(m), \"&\")"), "integer 20000");
}

}  // namespace
}  // namespace ixomep::test
