// Tests of the English resource texts: which numbers have one, and which words each leaves open
// for whoever reports the error.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "ixomep/host/res_id.h"
#include "ixomep/host/string.h"
#include "tests/support/test_host.h"

namespace {

using Words = std::set<std::string>;

// The words in a text that begin with "%".
Words OpenWords(const String& text) {
  Words words;
  for (std::int32_t at = text.Search('%'); at != String::kNotFound; at = text.Search('%', at + 1)) {
    std::int32_t end = at + 1;
    while (std::isalnum(static_cast<unsigned char>(text[end])) != 0) ++end;
    words.emplace(text.Copy(at, end - at).view());
  }
  return words;
}

struct TextCase {
  int code;
  Words words;
};

// Every code with a text.
const TextCase kTextCases[] = {
    {1, {}},
    {2, {}},
    {3, {"%c"}},
    {4, {"%c"}},
    {5, {}},
    {6, {"%s"}},
    {8, {"%s"}},
    {9, {}},
    {10, {}},
    {13, {}},
    {14, {"%1"}},
    {15, {}},
    {16, {"%1", "%2"}},
    {17, {}},
    {18, {}},
    {19, {"%func"}},
    {20, {}},
    {21, {"%func"}},
    {22, {"%s"}},
    {23, {"%func"}},
    {24, {"%s"}},
    {25, {"%s"}},
    {26, {"%type"}},
    {27, {"%type"}},
    {28, {"%c"}},
    {29, {}},
    {30, {}},
    {31, {}},
    {32, {"%s"}},
    {36, {"%attr", "%type1", "%type2"}},
    {37, {}},
    {38, {}},
    {39, {"%varname", "%func"}},
    {40, {}},
    {41, {"%s"}},
    {42, {"%type", "%property"}},
    {43, {"%filename"}},
};

String TextOfCode(int code) { return String(ResId(16100 + code)); }

TEST(Texts, Exactly_37_codes_have_a_text) {
  EXPECT_EQ(std::size(kTextCases), 37U);
  std::set<int> with_text;
  for (const TextCase& test : kTextCases) with_text.insert(test.code);
  for (int code = -1; code <= 60; ++code) {
    EXPECT_EQ(!TextOfCode(code).IsEmpty(), with_text.contains(code)) << code;
  }
}

TEST(Texts, Each_text_leaves_exactly_the_words_open_that_its_reporters_fill) {
  for (const TextCase& test : kTextCases) {
    EXPECT_EQ(OpenWords(TextOfCode(test.code)), test.words) << test.code;
  }
}

TEST(Texts, Each_word_stands_once) {
  for (const TextCase& test : kTextCases) {
    const String text = TextOfCode(test.code);
    const std::string_view view = text.view();
    EXPECT_EQ(static_cast<std::size_t>(std::count(view.begin(), view.end(), '%')),
              test.words.size())
        << test.code;
  }
}

TEST(Texts, Filling_the_words_of_a_type_mismatch_leaves_none_open) {
  String text = TextOfCode(36);
  EXPECT_TRUE(text.ReplaceFirst("%attr", "\"size\" (NODE)"));
  EXPECT_TRUE(text.ReplaceFirst("%type1", "integer"));
  EXPECT_TRUE(text.ReplaceFirst("%type2", "string"));
  EXPECT_EQ(text.Search('%'), String::kNotFound);
}

TEST(Texts, No_two_codes_have_the_same_text) {
  std::set<std::string> texts;
  for (const TextCase& test : kTextCases) {
    EXPECT_TRUE(texts.emplace(TextOfCode(test.code).view()).second) << test.code;
  }
}

TEST(Texts, No_text_begins_with_a_number_or_holds_a_line_break) {
  for (const TextCase& test : kTextCases) {
    const String text = TextOfCode(test.code);
    EXPECT_FALSE(text[0] >= '0' && text[0] <= '9') << test.code;
    EXPECT_EQ(text.Search('\n'), String::kNotFound) << test.code;
  }
}

TEST(Texts, Messages_of_assignment_and_depth_say_what_happened) {
  EXPECT_NE(TextOfCode(31).Search("captured variable is constant in the lambda"),
            String::kNotFound);
  EXPECT_NE(TextOfCode(38).Search("nested too deeply"), String::kNotFound);
}

TEST(Texts, Labels_of_error_reports) {
  EXPECT_EQ(String(ResId(33570582)), "Line");
  EXPECT_EQ(String(ResId(33570583)), "in");
  EXPECT_EQ(String(ResId(33570584)), "End the application?");
}

TEST(Texts, Unknown_numbers_give_the_empty_text) {
  for (const std::int32_t number : {0, -1, 16100, 16144, 33570581, 33570585, 2147483647}) {
    EXPECT_TRUE(String(ResId(number)).IsEmpty()) << number;
  }
}

TEST(Texts, The_installed_host_may_have_texts_of_its_own) {
  ixomep::test::TestHost host;
  host.resources[33570582] = "Zeile";
  EXPECT_EQ(String(ResId(33570582)), "Zeile");
  EXPECT_EQ(String(ResId(33570583)), "in");
}

}  // namespace
