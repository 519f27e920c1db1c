// copy, lower, upper, ilower, iupper, mstr, uistr, uival, regex, byte.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/call_checks.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const CallTypes kStringFunctions[] = {
    {"copy", {"SII"}}, {"lower", {"S"}},  {"upper", {"S"}}, {"ilower", {"S"}}, {"iupper", {"S"}},
    {"mstr", {"S"}},   {"uistr", {"RI"}}, {"uival", {"S"}}, {"regex", {"SS"}}, {"byte", {"II"}},
};

// Variables for the ends of the integers, which no literal denotes exactly.
void SetExtremes(Session& session) {
  session.Set("least", IxoMepValue(std::numeric_limits<int>::min()));
  session.Set("most", IxoMepValue(std::numeric_limits<int>::max()));
}

void SetText(Session& session, const char* name, std::string_view bytes) {
  session.Set(name, IxoMepValue(String(bytes)));
}

TEST(Strings, Counts_and_types_of_arguments_are_those_of_the_table) {
  for (const CallTypes& function : kStringFunctions) CheckCountsAndTypes(function);
}

TEST(Copy, Count_is_clipped_at_the_end_of_the_text) {
  Session session;
  CheckAll(session, {{"copy(\"abc\", 1, 10)", "string \"bc\""},
                     {"copy(\"abc\", 0, 3)", "string \"abc\""},
                     {"copy(\"abc\", 0, 2)", "string \"ab\""},
                     {"copy(\"abc\", 2, 1)", "string \"c\""}});
}

TEST(Copy, Negative_from_gives_the_empty_string) {
  Session session;
  SetExtremes(session);
  CheckAll(session, {{"copy(\"abc\", -1, 2)", "string \"\""},
                     {"copy(\"abc\", -1, -1)", "string \"\""},
                     {"copy(\"abc\", least, most)", "string \"\""}});
}

TEST(Copy, Negative_count_means_up_to_the_end) {
  Session session;
  SetExtremes(session);
  CheckAll(session, {{"copy(\"abc\", 1, -1)", "string \"bc\""},
                     {"copy(\"abc\", 0, least)", "string \"abc\""}});
}

TEST(Copy, From_at_or_beyond_the_end_gives_the_empty_string) {
  Session session;
  SetExtremes(session);
  CheckAll(session, {{"copy(\"abc\", 3, 1)", "string \"\""},
                     {"copy(\"abc\", 4, -1)", "string \"\""},
                     {"copy(\"abc\", most, most)", "string \"\""},
                     {"copy(\"\", 0, 1)", "string \"\""}});
}

TEST(Copy, Count_zero_gives_the_empty_string_and_huge_counts_the_rest) {
  Session session;
  SetExtremes(session);
  CheckAll(session,
           {{"copy(\"abc\", 1, 0)", "string \"\""}, {"copy(\"abc\", 1, most)", "string \"bc\""}});
}

TEST(Copy, Real_position_or_count_is_refused) {
  Session session;
  EXPECT_EQ(session.Eval("copy(\"abc\", 1.0, 2)"),
            "error 21: A value has the wrong type: copy(string, real, integer)");
  EXPECT_EQ(session.Eval("copy(\"abc\", 1, 2.0)"),
            "error 21: A value has the wrong type: copy(string, integer, real)");
}

TEST(Copy, Zero_bytes_count_like_others) {
  Session session;
  SetText(session, "s", {"a\0b\0c", 5});
  CheckAll(session, {{"LEN copy(s, 1, 3)", "integer 3"},
                     {"copy(s, 1, 1) = CHR 0", "integer 1"},
                     {"copy(s, 2, 1)", "string \"b\""}});
}

TEST(Copy, Changes_no_variable) {
  Session session;
  CheckAll(session, {{"s := \"abc\"", "string \"abc\""},
                     {"copy(s, 1, 1)", "string \"b\""},
                     {"upper(s)", "string \"ABC\""},
                     {"s", "string \"abc\""}});
}

TEST(LetterCase, Plain_functions_know_ASCII_letters_only) {
  Session session;
  SetText(session, "all", "aZ09@[`{\xC4\xE4");
  CheckAll(session, {{"lower(all)", "string \"az09@[`{\xC4\xE4\""},
                     {"upper(all)", "string \"AZ09@[`{\xC4\xE4\""},
                     {"lower(\"\")", "string \"\""},
                     {"upper(\"\")", "string \"\""}});
}

TEST(LetterCase, International_functions_know_the_letters_of_the_character_set) {
  Session session;
  SetText(session, "mixed", "aZ\xC4\xE4\xDF\x8A\x9A\xD7\xF7");
  CheckAll(session, {{"ilower(mixed)", "string \"az\xE4\xE4\xDF\x9A\x9A\xD7\xF7\""},
                     {"iupper(mixed)", "string \"AZ\xC4\xC4\xDF\x8A\x8A\xD7\xF7\""},
                     {"ilower(\"\")", "string \"\""},
                     {"iupper(\"\")", "string \"\""}});
}

TEST(LetterCase, Zero_bytes_do_not_end_the_text) {
  Session session;
  SetText(session, "s", {"A\0B", 3});
  SetText(session, "low", {"a\0b", 3});
  for (const char* name : {"lower", "ilower"}) {
    EXPECT_EQ(session.Eval(std::string(name) + "(s) = low"), "integer 1") << name;
  }
  for (const char* name : {"upper", "iupper"}) {
    EXPECT_EQ(session.Eval(std::string(name) + "(low) = s"), "integer 1") << name;
  }
}

TEST(MStr, Text_becomes_a_literal_that_reads_back) {
  Session session;
  SetText(session, "s", "q\" b\\ \a\b\t\n\v\f\r \x01\xFF");
  SetText(session, "literal", "\"q\\\" b\\\\ \\a\\b\\t\\n\\v\\f\\r \x01\xFF\"");
  CheckAll(session, {{"mstr(s) = literal", "integer 1"},
                     {"(VAL mstr(s)) = s", "integer 1"},
                     {"mstr(\"\") = \"\\\"\\\"\"", "integer 1"}});
}

TEST(UIStr, Untrimmed_text_has_the_decimals_of_the_host) {
  Session session;
  CheckAll(session, {{"uistr(2.5, 0)", "string \"2.500000\""},
                     {"uistr(2.5, 1)", "string \"2.500000\""},
                     {"uistr(2.5, -2)", "string \"2.500000\""},
                     {"uistr(-0.25, 7)", "string \"-0.250000\""},
                     {"uistr(1000000.0, 0)", "string \"1000000.000000\""}});
}

TEST(UIStr, Mode_minus_one_of_2_500_gives_2_5_and_of_3_000_gives_3) {
  Session session;
  CheckAll(session, {{"uistr(2.5, -1)", "string \"2.5\""},
                     {"uistr(3.0, -1)", "string \"3\""},
                     {"uistr(-2.25, -1)", "string \"-2.25\""}});
}

TEST(UIStr, Zeros_in_front_of_the_separator_stay) {
  Session session;
  CheckAll(session, {{"uistr(100.0, -1)", "string \"100\""},
                     {"uistr(0.0, -1)", "string \"0\""},
                     {"uistr(0.1, -1)", "string \"0.1\""}});
}

TEST(UIStr, Separator_of_the_host_is_written_and_a_comma_is_trimmed) {
  TestHost host;
  host.decimal_separator = ',';
  Session session;
  CheckAll(session, {{"uistr(2.5, 0)", "string \"2,500000\""},
                     {"uistr(2.5, -1)", "string \"2,5\""},
                     {"uistr(3.0, -1)", "string \"3\""}});
}

TEST(UIStr, Any_other_separator_is_not_trimmed) {
  TestHost host;
  host.decimal_separator = '\'';
  Session session;
  EXPECT_EQ(session.Eval("uistr(3.0, -1)"), "string \"3'\"");
}

TEST(UIStr, Text_of_nothing_but_zeros_becomes_a_zero) {
  TestHost host;
  host.decimal_separator = '0';
  Session session;
  EXPECT_EQ(session.Eval("uistr(0.0, -1)"), "string \"0\"");
}

TEST(UIStr, Integer_number_and_real_mode_are_refused) {
  Session session;
  EXPECT_EQ(session.Eval("uistr(3, -1)"),
            "error 21: A value has the wrong type: uistr(integer, integer)");
  EXPECT_EQ(session.Eval("uistr(3.0, -1.0)"),
            "error 21: A value has the wrong type: uistr(real, real)");
}

TEST(UIStr, Numbers_that_are_not_finite_or_huge_have_a_text) {
  Session session;
  CheckAll(session, {{"LEN uistr(1e300, 0)", "integer 308"},
                     {"LEN uistr(1e300, -1)", "integer 301"},
                     {"uistr(sqrt(-1), -1) = uistr(sqrt(-1), 0)", "integer 1"},
                     {"uistr(exp(1000), -1) = uistr(exp(1000), 0)", "integer 1"}});
}

TEST(UIVal, Undoes_uistr) {
  Session session;
  CheckAll(session, {{"uival(uistr(2.5, 0))", "real 2.5"},
                     {"uival(uistr(-1234.125, -1))", "real -1234.125"},
                     {"uival(uistr(3.0, -1))", "real 3.0"}});
}

TEST(UIVal, Reads_the_longest_beginning_that_is_a_number) {
  Session session;
  CheckAll(session, {{"uival(\" \t2.50 m\")", "real 2.5"},
                     {"uival(\"-7\")", "real -7.0"},
                     {"uival(\"12abc\")", "real 12.0"},
                     {"uival(\"about 3\")", "real 0.0"},
                     {"uival(\"\")", "real 0.0"}});
}

TEST(UIVal, Takes_the_separator_of_the_host_and_the_point) {
  TestHost host;
  host.decimal_separator = ',';
  Session session;
  CheckAll(session, {{"uival(\"2,5\")", "real 2.5"}, {"uival(\"2.5\")", "real 2.5"}});
}

TEST(RegEx, Tells_whether_the_pattern_matches_somewhere) {
  Session session;
  CheckAll(session, {{"regex(\"b+\", \"abbc\")", "integer 1"},
                     {"regex(\"^b\", \"abbc\")", "integer 0"},
                     {"regex(\"^[a-z]+[0-9]$\", \"item7\")", "integer 1"},
                     {"regex(\"\", \"abc\")", "integer 1"},
                     {"regex(\"\", \"\")", "integer 1"},
                     {"regex(\"a\", \"\")", "integer 0"}});
}

TEST(RegEx, First_argument_is_the_pattern) {
  Session session;
  CheckAll(session,
           {{"regex(\"a.c\", \"abc\")", "integer 1"}, {"regex(\"abc\", \"a.c\")", "integer 0"}});
}

TEST(RegEx, Case_counts) {
  Session session;
  EXPECT_EQ(session.Eval("regex(\"B\", \"abc\")"), "integer 0");
}

TEST(RegEx, Pattern_that_does_not_compile_matches_nothing_and_is_no_error) {
  Session session;
  CheckAll(session, {{"regex(\"(\", \"(\")", "integer 0"},
                     {"regex(\"[a\", \"a\")", "integer 0"},
                     {"regex(\"a**\", \"*\") IN {0, 1}", "integer 1"}});
}

TEST(RegEx, Pattern_that_blows_up_ends_as_no_match) {
  Session session;
  EXPECT_EQ(session.Eval("regex(\"^(a+)+$\", \"a\" * 5000 + \"b\")"), "integer 0");
  EXPECT_EQ(session.Eval("regex(\"(\" * 20000, \"a\")"), "integer 0");
}

TEST(RegEx, Bytes_that_are_no_UTF_8_and_zero_bytes_are_bytes_like_others) {
  Session session;
  SetText(session, "s", {"\xFF\0\xC4", 3});
  CheckAll(session,
           {{"regex(\"\\\\xFF.\\\\xC4\", s)", "integer 1"}, {"regex(\"^...$\", s)", "integer 1"}});
}

TEST(Byte, Index_selects_one_of_four_bytes_from_the_lowest) {
  Session session;
  session.Set("v", IxoMepValue(0x12345678));
  CheckAll(session, {{"byte(v, 0)", "integer 120"},
                     {"byte(v, 1)", "integer 86"},
                     {"byte(v, 2)", "integer 52"},
                     {"byte(v, 3)", "integer 18"}});
}

TEST(Byte, Of_minus_one_at_3_is_255_of_256_at_1_is_1_and_of_5_at_4_is_0) {
  Session session;
  CheckAll(
      session,
      {{"byte(-1, 3)", "integer 255"}, {"byte(256, 1)", "integer 1"}, {"byte(5, 4)", "integer 0"}});
}

TEST(Byte, Negative_numbers_have_the_bytes_of_their_two_complement) {
  Session session;
  SetExtremes(session);
  CheckAll(session, {{"byte(-2, 0)", "integer 254"},
                     {"byte(least, 3)", "integer 128"},
                     {"byte(least, 0)", "integer 0"}});
}

TEST(Byte, Any_other_index_gives_zero) {
  Session session;
  SetExtremes(session);
  CheckAll(session, {{"byte(-1, -1)", "integer 0"},
                     {"byte(-1, 32)", "integer 0"},
                     {"byte(-1, most)", "integer 0"},
                     {"byte(-1, least)", "integer 0"}});
}

}  // namespace
}  // namespace ixomep::test
