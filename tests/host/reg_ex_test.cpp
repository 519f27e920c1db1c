// Tests of regular expressions: what matches, what does not compile, and that no pattern runs
// away.
#include "ixomep/host/reg_ex.h"

#include <gtest/gtest.h>

#include <chrono>

#include "tests/support/test_host.h"

namespace {

int Match(const String& pattern, const String& text) {
  IxoRegEx expression;
  expression.regComp(pattern, 4 | 1);
  return expression.match(text);
}

struct MatchCase {
  const char* pattern;
  const char* text;
  int result;
};

constexpr MatchCase kMatches[] = {
    {"b+", "abbc", 1},
    {"^b", "abc", 0},
    {"^abc$", "abc", 1},
    {"a|x", "xyz", 1},
    {"(ab){2}", "abab", 1},
    {"(ab){3}", "abab", 0},
    {"[0-9]+\\.[0-9]", "v 12.5", 1},
    {"\\d", "none", 0},
    {"ABC", "abc", 0},
    {"a b", "ab", 0},
    {"a b", "a b", 1},
    {"", "abc", 1},
    {"", "", 1},
    {"a", "", 0},
    {".", "\xE4", 1},
    {"(.)\\1", "abccd", 1},
    {"(a)(b)(c)", "abc", 1},
};

TEST(RegEx, Matches_anywhere_in_the_text_with_extended_syntax_and_case) {
  for (const MatchCase& test : kMatches) {
    EXPECT_EQ(Match(test.pattern, test.text), test.result) << test.pattern << " " << test.text;
  }
}

TEST(RegEx, A_pattern_that_does_not_compile_matches_nothing) {
  for (const char* pattern : {"(", "[a", "a{2,1}", "*", "\\", "(?<n", "(?P<1>a)"}) {
    IxoRegEx expression;
    EXPECT_FALSE(expression.regComp(pattern, 5)) << pattern;
    EXPECT_EQ(expression.match(pattern), 0) << pattern;
    EXPECT_EQ(expression.match(""), 0) << pattern;
  }
}

TEST(RegEx, A_fresh_object_matches_nothing) { EXPECT_EQ(IxoRegEx().match(""), 0); }

TEST(RegEx, A_new_pattern_replaces_the_old_one) {
  IxoRegEx expression;
  EXPECT_TRUE(expression.regComp("a", 5));
  EXPECT_EQ(expression.match("a"), 1);
  EXPECT_FALSE(expression.regComp("(", 5));
  EXPECT_EQ(expression.match("a"), 0);
}

TEST(RegEx, Options_choose_letter_case_and_plain_text) {
  IxoRegEx expression;
  expression.regComp("AB", IxoRegEx::kExtendedSyntax);
  EXPECT_EQ(expression.match("xaby"), 1);
  expression.regComp("a.b", IxoRegEx::kCaseSensitive);
  EXPECT_EQ(expression.match("a.b"), 1);
  EXPECT_EQ(expression.match("axb"), 0);
}

TEST(RegEx, Zero_bytes_are_ordinary_in_pattern_and_text) {
  EXPECT_EQ(Match(String("a\0b", 3), String("xa\0by", 5)), 1);
  EXPECT_EQ(Match("b$", String("a\0b", 3)), 1);
}

TEST(RegEx, More_patterns_than_are_kept_still_match) {
  for (int round = 0; round < 2; ++round) {
    for (char letter = 'a'; letter <= 'z'; ++letter) {
      EXPECT_EQ(Match(String(letter) + "+x", String(letter) + "x"), 1);
      EXPECT_EQ(Match(String(letter) + "+x", "?x"), 0);
    }
  }
}

// Patterns that would backtrack practically for ever, or nest beyond all memory.
TEST(RegEx, A_pattern_that_runs_away_ends_soon_and_counts_as_no_match) {
  const String many_a = String::Filled(1000000, 'a');
  struct EvilCase {
    const char* pattern;
    String text;
  };
  const EvilCase cases[] = {
      {"(a+)+$", String::Filled(50, 'a') + "b"},
      {"(a+)+$", many_a + "b"},
      {"(a|aa)+$", String::Filled(5000, 'a') + "b"},
      {"(a|a)*$", many_a + "b"},
      {"(.*)(.*)(.*)(.*)(.*)[^a]", many_a},
      {"^(a(?1)?b)$", String::Filled(500000, 'a') + String::Filled(500000, 'b') + "b"},
      {"(?R)?a(?R)", String::Filled(1000, 'a')},
  };
  for (const EvilCase& test : cases) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Match(test.pattern, test.text), 0) << test.pattern;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    // Far above what it takes (below a second with all checks), far below for ever.
    EXPECT_LT(taken.count(), 30.0) << test.pattern;
  }
}

TEST(RegEx, A_plain_pattern_may_walk_over_a_long_text) {
  const String text = String::Filled(5000000, 'f');
  EXPECT_EQ(Match("[a-z]x", text + "x"), 1);
  EXPECT_EQ(Match("^f*$", text), 1);
}

TEST(RegEx, Patterns_that_nest_deeply_or_are_huge_are_refused) {
  EXPECT_EQ(Match(String::Filled(100000, '(') + "a" + String::Filled(100000, ')'), "a"), 0);
  EXPECT_EQ(Match(String::Filled(1000, '(') + "a" + String::Filled(1000, ')'), "a"), 0);
  EXPECT_EQ(Match(String::Filled(1000000, 'a'), String::Filled(1000000, 'a')), 0);
}

TEST(RegEx, The_host_answers_for_texts_without_storage_and_for_patterns_that_do_not_compile) {
  IxoHost& host = IxoHost::Current();
  const int options = IxoRegEx::kExtendedSyntax | IxoRegEx::kCaseSensitive;
  EXPECT_TRUE(host.MatchesRegEx("^$", std::string_view(), options));
  EXPECT_TRUE(host.MatchesRegEx(std::string_view(), std::string_view(), options));
  EXPECT_FALSE(host.MatchesRegEx("a", std::string_view(), options));
  EXPECT_FALSE(host.MatchesRegEx("(", "(", options));
}

}  // namespace
