// search, bsearch, replace, replall.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

#include "tests/support/call_checks.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

TEST(Searches, Counts_and_types_of_arguments_are_those_of_the_table) {
  CheckCountsAndTypes({"search", {"SSI"}});
  CheckCountsAndTypes({"bsearch", {"SSI"}});
  CheckCountsAndTypes({"replace", {"SSS"}});
  CheckCountsAndTypes({"replall", {"SSS"}});
}

TEST(Search, First_occurrence_at_or_behind_from) {
  Session session;
  CheckAll(session, {{"search(\"abcabc\", \"c\", 0)", "integer 2"},
                     {"search(\"abcabc\", \"c\", 3)", "integer 5"},
                     {"search(\"abcabc\", \"bc\", 0)", "integer 1"},
                     {"search(\"abcabc\", \"bc\", 2)", "integer 4"},
                     {"search(\"abcabc\", \"abcabc\", 0)", "integer 0"},
                     {"search(\"abcabc\", \"x\", 0)", "integer -1"},
                     {"search(\"abcabc\", \"cab\", 3)", "integer -1"},
                     {"search(\"abc\", \"abcd\", 0)", "integer -1"}});
}

TEST(Search, Pattern_that_begins_exactly_at_from_is_found) {
  Session session;
  CheckAll(session, {{"search(\"abcabc\", \"a\", 3)", "integer 3"},
                     {"search(\"abcabc\", \"abc\", 3)", "integer 3"},
                     {"search(\"abc\", \"c\", 2)", "integer 2"}});
}

TEST(Search, Minus_one_for_an_empty_pattern_and_a_from_outside_the_text) {
  Session session;
  CheckAll(session, {{"search(\"abc\", \"\", 0)", "integer -1"},
                     {"search(\"\", \"\", 0)", "integer -1"},
                     {"search(\"\", \"a\", 0)", "integer -1"},
                     {"search(\"abc\", \"a\", -1)", "integer -1"},
                     {"search(\"abc\", \"c\", 3)", "integer -1"},
                     {"search(\"abc\", \"c\", 2147483647)", "integer -1"}});
}

TEST(BSearch, Last_occurrence_at_or_before_from) {
  Session session;
  CheckAll(session, {{"bsearch(\"abcabc\", \"c\", 5)", "integer 5"},
                     {"bsearch(\"abcabc\", \"c\", 4)", "integer 2"},
                     {"bsearch(\"abcabc\", \"abc\", 3)", "integer 3"},
                     {"bsearch(\"abcabc\", \"abc\", 2)", "integer 0"},
                     {"bsearch(\"abcabc\", \"bc\", 0)", "integer -1"},
                     {"bsearch(\"abcabc\", \"a\", 0)", "integer 0"},
                     {"bsearch(\"abcabc\", \"x\", 5)", "integer -1"},
                     {"bsearch(\"ab\", \"abc\", 1)", "integer -1"}});
}

TEST(BSearch, Negative_from_finds_the_last_occurrence_in_the_whole_text) {
  Session session;
  CheckAll(session, {{"bsearch(\"abcabc\", \"bc\", -1)", "integer 4"},
                     {"bsearch(\"abcabc\", \"abc\", -2147483647)", "integer 3"},
                     {"bsearch(\"abc\", \"c\", -1)", "integer 2"}});
}

TEST(BSearch, From_beyond_the_end_starts_at_the_last_possible_position) {
  Session session;
  CheckAll(session, {{"bsearch(\"abcabc\", \"abc\", 5)", "integer 3"},
                     {"bsearch(\"abcabc\", \"c\", 6)", "integer 5"},
                     {"bsearch(\"abcabc\", \"abc\", 2147483647)", "integer 3"}});
}

TEST(BSearch, Empty_text_or_pattern_gives_minus_one) {
  Session session;
  CheckAll(session, {{"bsearch(\"\", \"a\", 0)", "integer -1"},
                     {"bsearch(\"\", \"\", -1)", "integer -1"},
                     {"bsearch(\"abc\", \"\", 1)", "integer -1"}});
}

TEST(Replace, Changes_only_the_first_occurrence) {
  Session session;
  CheckAll(session, {{"replace(\"abcabc\", \"b\", \"X\")", "string \"aXcabc\""},
                     {"replace(\"abcabc\", \"abc\", \"\")", "string \"abc\""},
                     {"replace(\"abc\", \"c\", \"long text\")", "string \"ablong text\""},
                     {"replace(\"abc\", \"abc\", \"abcabc\")", "string \"abcabc\""}});
}

TEST(Replace, Text_without_the_old_part_stays_unchanged) {
  Session session;
  CheckAll(session, {{"replace(\"abc\", \"x\", \"y\")", "string \"abc\""},
                     {"replace(\"\", \"x\", \"y\")", "string \"\""},
                     {"replace(\"abc\", \"\", \"y\")", "string \"abc\""}});
}

TEST(ReplAll, Changes_every_occurrence_from_left_to_right) {
  Session session;
  CheckAll(session, {{"replall(\"abcabc\", \"b\", \"X\")", "string \"aXcaXc\""},
                     {"replall(\"abcabc\", \"bc\", \"X\")", "string \"aXaX\""},
                     {"replall(\"abcabc\", \"a\", \"\")", "string \"bcbc\""},
                     {"replall(\"abcabc\", \"abc\", \"\")", "string \"\""},
                     {"replall(\"aaa\", \"aa\", \"b\")", "string \"ba\""}});
}

TEST(ReplAll, Inserted_text_is_never_searched_again) {
  Session session;
  CheckAll(session, {{"replall(\"aaa\", \"a\", \"aa\")", "string \"aaaaaa\""},
                     {"replall(\"aab\", \"ab\", \"b\")", "string \"ab\""}});
}

TEST(ReplAll, Empty_old_text_or_empty_text_gives_the_text_unchanged) {
  Session session;
  CheckAll(session, {{"replall(\"abc\", \"\", \"x\")", "string \"abc\""},
                     {"replall(\"\", \"a\", \"x\")", "string \"\""},
                     {"replall(\"\", \"\", \"x\")", "string \"\""},
                     {"replall(\"abc\", \"x\", \"y\")", "string \"abc\""}});
}

TEST(ReplAll, Leaves_the_variable_that_holds_the_text_alone) {
  Session session;
  CheckAll(session, {{"s := \"banana\", replall(s, \"a\", \"o\")", "string \"bonono\""},
                     {"s", "string \"banana\""}});
}

TEST(ReplAll, Result_beyond_the_memory_fails_with_37) {
  Session session;
  session.Set("long", IxoMepValue(String::Filled(100000, 'a')));
  const ScopedMemoryLimit limit(1 << 22);
  EXPECT_EQ(session.Eval("replall(long, \"a\", long)"), "error 37: A text becomes too long.");
}

TEST(Searches, Zero_bytes_are_bytes_like_others) {
  Session session;
  session.Set("text", IxoMepValue(String(std::string_view("a\0b\0c", 5))));
  session.Set("zero", IxoMepValue(String(std::string_view("\0", 1))));
  CheckAll(session, {{"search(text, zero, 2)", "integer 3"},
                     {"bsearch(text, zero, 2)", "integer 1"},
                     {"replall(text, zero, \"-\")", "string \"a-b-c\""},
                     {"search(text, zero + \"c\", 0)", "integer 3"}});
}

// --- The search itself ------------------------------------------------------------------------

double SecondsOf(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(ReplAll, Many_near_misses_of_a_long_pattern_stay_linear) {
  Session session;
  std::string piece(1200, 'a');
  piece += 'b';
  std::string text;
  while (text.size() < 1000000) text += std::string(1100, 'a') + piece;
  session.Set("text", IxoMepValue(String(text)));
  session.Set("piece", IxoMepValue(String(piece)));
  EXPECT_LT(SecondsOf([&] {
              EXPECT_EQ(session.Eval("LEN replall(text, piece, \"\")"),
                        "integer " + std::to_string(text.size() - text.size() / 2301 * 1201));
            }),
            20.0);
}

}  // namespace
}  // namespace ixomep::test
