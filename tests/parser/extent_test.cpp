// Extents: brackets, attributes, statements, pairs of braces; and that asking for all pairs of a
// text costs one scan.
#include "ixomep/parser/extent.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "ixomep/parser/bytes.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

using namespace std::string_view_literals;

std::size_t MatchOf(std::string_view text, std::size_t open = 0) {
  return Extents(text).MatchingBrace(open, text.size(), open);
}

std::string AttributeOf(std::string_view text) {
  const AttributeExtent extent = Extents(text).FindAttributeEnd(0, text.size());
  if (extent.code != IMEPERR_NONE) {
    std::string failure = "error " + std::to_string(extent.code) + " " + extent.closer;
    if (extent.needed != '\0') failure += extent.needed;
    return failure + " @" + std::to_string(extent.end);
  }
  return std::string(text.substr(0, extent.end));
}

std::string StatementOf(std::string_view text) {
  const std::size_t end = Extents(text).FindStatementEnd(0, text.size());
  return end == kNoMatch ? "none" : std::string(text.substr(0, end));
}

TEST(Bytes, White_space_is_9_to_13_and_32_and_160) {
  for (int byte = 0; byte < 256; ++byte) {
    const bool expected = (byte >= 9 && byte <= 13) || byte == 32 || byte == 160;
    EXPECT_EQ(Is(static_cast<char>(byte), kWhite), expected) << byte;
  }
}

TEST(Bytes, Names_start_with_lower_case_underscore_or_128_and_more) {
  for (int byte = 0; byte < 256; ++byte) {
    const bool expected = (byte >= 'a' && byte <= 'z') || byte == '_' || byte >= 128;
    EXPECT_EQ(Is(static_cast<char>(byte), kNameStart), expected) << byte;
  }
}

TEST(Brace, Nested_pairs_match) {
  EXPECT_EQ(MatchOf("{}"), 1u);
  EXPECT_EQ(MatchOf("{a{b}c}d"), 6u);
  EXPECT_EQ(MatchOf("{a{b}c}d", 2), 4u);
  EXPECT_EQ(MatchOf("{a{b}c"), kNoMatch);
  EXPECT_EQ(MatchOf("{"), kNoMatch);
}

TEST(Brace, Strings_and_comments_are_skipped) {
  EXPECT_EQ(MatchOf("{\"}\"}"), 4u);
  EXPECT_EQ(MatchOf("{\"\\\"}\"}"), 6u);
  EXPECT_EQ(MatchOf("{#}\n}"), 4u);
  EXPECT_EQ(MatchOf("{(*}*)}"), 6u);
  EXPECT_EQ(MatchOf("{(*)*)}"), 6u);
  EXPECT_EQ(MatchOf("{\"}"), kNoMatch);
  EXPECT_EQ(MatchOf("{#}"), kNoMatch);
  EXPECT_EQ(MatchOf("{(*}"), kNoMatch);
}

TEST(Brace, Other_brackets_do_not_count) {
  EXPECT_EQ(MatchOf("{(}"), 2u);
  EXPECT_EQ(MatchOf("{)]}"), 3u);
  EXPECT_EQ(MatchOf("{({)}]}"), 6u);
}

TEST(Brace, End_of_the_stretch_limits_the_match) {
  EXPECT_EQ(Extents("{a}").MatchingBrace(0, 2, 0), kNoMatch);
}

// Whatever is asked first, every answer is the one that a scan of its own gives.
TEST(Brace, Remembered_pairs_are_those_of_a_fresh_scan) {
  const std::vector<std::string> texts = {"{a{b}c{d{e}}f}{g}{h{i}}", "{({)}{[}]}{}}{", "{{{}{}}",
                                          "{\"{\"{#{\n}(*{*)}{{{}}}", "{}{}{}{{}}{{}{}}"};
  for (const std::string& text : texts) {
    for (std::size_t first = 0; first < text.size(); ++first) {
      if (text[first] != '{') continue;
      Extents extents(text);
      extents.MatchingBrace(first, text.size(), 0);
      for (std::size_t open = 0; open < text.size(); ++open) {
        if (text[open] != '{') continue;
        EXPECT_EQ(extents.MatchingBrace(open, text.size(), 0), MatchOf(text, open))
            << text << " " << first << " " << open;
      }
    }
  }
}

TEST(Attribute, Ends_at_the_first_white_space) {
  EXPECT_EQ(AttributeOf("abc def"), "abc");
  EXPECT_EQ(AttributeOf("a:1\tb"), "a:1");
  EXPECT_EQ(AttributeOf("a:1\xA0"
                        "b"),
            "a:1");
  EXPECT_EQ(AttributeOf("a:1"), "a:1");
}

TEST(Attribute, White_space_behind_a_colon_does_not_end_it) {
  EXPECT_EQ(AttributeOf("a: 1 b"), "a: 1");
  EXPECT_EQ(AttributeOf("a: \n\t mod: \n 5 b"), "a: \n\t mod: \n 5");
  EXPECT_EQ(AttributeOf("a: mod 5"), "a: mod");
  EXPECT_EQ(AttributeOf("a : 5"), "a");
  EXPECT_EQ(AttributeOf("a: "), "a: ");
}

TEST(Attribute, White_space_in_strings_comments_and_brackets_does_not_end_it) {
  EXPECT_EQ(AttributeOf("a: \"x y\" b"), "a: \"x y\"");
  EXPECT_EQ(AttributeOf("a: \"x\\\" y\" b"), "a: \"x\\\" y\"");
  EXPECT_EQ(AttributeOf("a: (1 + 2) b"), "a: (1 + 2)");
  EXPECT_EQ(AttributeOf("a[1, 2]: 3 b"), "a[1, 2]: 3");
  EXPECT_EQ(AttributeOf("a: { b c } d"), "a: { b c }");
  EXPECT_EQ(AttributeOf("a: (1 { [ x ] } ) b"), "a: (1 { [ x ] } )");
  EXPECT_EQ(AttributeOf("a:(*x y*)5 b"), "a:(*x y*)5");
  EXPECT_EQ(AttributeOf("a:5#x y\nb"), "a:5#x y");
}

TEST(Attribute, A_bracket_that_stays_open_in_a_brace_is_found_behind_inner_braces) {
  EXPECT_EQ(AttributeOf("a: { ( {} } b"), "error 14 ) @10");
}

TEST(Attribute, Brackets_in_strings_and_comments_do_not_count) {
  EXPECT_EQ(AttributeOf("a: (\")\" 1) b"), "a: (\")\" 1)");
  EXPECT_EQ(AttributeOf("a: (1 (* ) *) 2) b"), "a: (1 (* ) *) 2)");
  EXPECT_EQ(AttributeOf("a: (1 # )\n 2) b"), "a: (1 # )\n 2)");
}

TEST(Attribute, End_of_the_text_ends_open_brackets_and_strings) {
  EXPECT_EQ(AttributeOf("a: (1 b"), "a: (1 b");
  EXPECT_EQ(AttributeOf("a: {b c"), "a: {b c");
  EXPECT_EQ(AttributeOf("a: \"b c"), "a: \"b c");
}

TEST(Attribute, Closer_with_nothing_open_is_16_with_its_opener) {
  EXPECT_EQ(AttributeOf("a: (1)) b"), "error 16 )( @6");
  EXPECT_EQ(AttributeOf("a]"), "error 16 ][ @1");
  EXPECT_EQ(AttributeOf("a: {b}} c"), "error 16 }{ @6");
}

TEST(Attribute, Closer_that_does_not_match_is_14_with_the_one_needed) {
  EXPECT_EQ(AttributeOf("a: (1]"), "error 14 ) @5");
  EXPECT_EQ(AttributeOf("a: [1)"), "error 14 ] @5");
  EXPECT_EQ(AttributeOf("a: {1)"), "error 14 } @5");
  EXPECT_EQ(AttributeOf("a: { b ( } c"), "error 14 ) @9");
  EXPECT_EQ(AttributeOf("a: { b { ) } } c"), "error 14 } @9");
  EXPECT_EQ(AttributeOf("a: { b { ( } } c"), "error 14 ) @11");
}

TEST(Statement, Ends_at_a_semicolon_on_the_same_line) {
  EXPECT_EQ(StatementOf("x := 1; y"), "x := 1");
  EXPECT_EQ(StatementOf(";"), "");
  EXPECT_EQ(StatementOf("x := 1"), "none");
  EXPECT_EQ(StatementOf("x := 1\n;"), "none");
  EXPECT_EQ(StatementOf(""), "none");
}

TEST(Statement, Line_feeds_and_semicolons_inside_braces_do_not_count) {
  EXPECT_EQ(StatementOf("f({\n a; \n b }) ;"), "f({\n a; \n b }) ");
  EXPECT_EQ(StatementOf("f({;"), "none");
  EXPECT_EQ(StatementOf("(\n1);"), "none");
}

TEST(Statement, Strings_and_comments_are_skipped) {
  EXPECT_EQ(StatementOf("\";\" + x; y"), "\";\" + x");
  EXPECT_EQ(StatementOf("\"\n\" + x; y"), "\"\n\" + x");
  EXPECT_EQ(StatementOf("x (* ; \n *) y; z"), "x (* ; \n *) y");
  EXPECT_EQ(StatementOf("x # ;\n;"), "none");
}

TEST(Statement, Loose_closing_brace_is_below_depth_0) {
  EXPECT_EQ(StatementOf("} ; {} ;"), "none");
  EXPECT_EQ(StatementOf("} ; \n { ;"), "} ; \n { ");
}

TEST(Statement, Ends_inside_its_stretch) {
  const std::string_view text = "\"a;\";{}";
  EXPECT_EQ(Extents(text).FindStatementEnd(0, 4), kNoMatch);
  EXPECT_EQ(Extents(text).FindStatementEnd(0, 5), 4u);
}

TEST(Bracket, Backslash_outside_strings_protects_the_next_character) {
  EXPECT_EQ(FindBracketEnd("\\) )", 0, '(', ')').closer, 3u);
  EXPECT_EQ(FindBracketEnd("\\", 0, '(', ')').end, 1u);
  EXPECT_EQ(FindBracketEnd("\\\" )", 0, '(', ')').closer, 3u);
}

}  // namespace
}  // namespace ixomep::test
