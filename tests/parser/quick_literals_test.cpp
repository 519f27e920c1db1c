// How the quick reading keeps literals: most stand in the text until they are asked for, with a
// kind that says how they are to be read. The kind changes no answer, only what it costs.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/element_view.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

struct KindOfLiteral {
  const char* literal;
  LiteralKind kind;
  const char* source;
};

TEST(QuickLiterals, Stand_in_the_text_with_a_kind) {
  const KindOfLiteral rows[] = {
      {"\"x y\"", LiteralKind::String, "x y"},
      {"\"\"", LiteralKind::String, ""},
      {"\"a\\\"b\"", LiteralKind::Escaped, "a\\\"b"},
      {"0", LiteralKind::Integer, "0"},
      {"-12", LiteralKind::Integer, "-12"},
      {"123456789", LiteralKind::Integer, "123456789"},
      {"12.75", LiteralKind::Real, "12.75"},
      {"12.75mm", LiteralKind::Measure, "12.75mm"},
      {"2cm", LiteralKind::Measure, "2cm"},
      {"3m", LiteralKind::Measure, "3m"},
      {"4.5pt", LiteralKind::Measure, "4.5pt"},
      {"1.25s", LiteralKind::Time, "1.25s"},
      {"$ff", LiteralKind::Number, "$ff"},
      {"1e3", LiteralKind::Number, "1e3"},
      {"01:002:03:04:05", LiteralKind::Number, "01:002:03:04:05"},
      {"1234567890", LiteralKind::Number, "1234567890"},
      {"(w)", LiteralKind::Source, "w"},
      {"(w * 2 + h1)", LiteralKind::Source, "w * 2 + h1"},
  };
  for (const KindOfLiteral& row : rows) {
    const Definition definition(std::string("A x: ") + row.literal + " y");
    ASSERT_EQ(definition.code, IMEPERR_NONE) << row.literal;
    const ElementView element = ElementView::Of(definition.parser, 0);
    ASSERT_TRUE(element.IsRecord()) << row.literal;
    ASSERT_EQ(element.AttrCount(), 2) << row.literal;
    const ValueView value = element.Attr(0).Value();
    EXPECT_EQ(value.Kind(), row.kind) << row.literal;
    EXPECT_EQ(value.Source(), row.source) << row.literal;
  }
}

TEST(QuickLiterals, Letters_behind_a_number_are_one_of_the_five_units_or_wrong) {
  const std::set<std::string> units = {"m", "cm", "mm", "pt", "s"};
  std::vector<std::string> suffixes = {"mmm", "cmm", "ptt", "sss", "cmx", "mc"};
  for (char a = 'a'; a <= 'z'; ++a) {
    if (a == 'e') continue;  // an exponent
    suffixes.emplace_back(1, a);
    for (char b = 'a'; b <= 'z'; ++b) suffixes.push_back({a, b});
  }
  for (const std::string& suffix : suffixes) {
    const auto expected = units.count(suffix) != 0 ? IMEPERR_NONE : IMEPERR_UNKNOWN_UNIT;
    EXPECT_EQ(Definition("A x: 1" + suffix).code, expected) << suffix;
    EXPECT_EQ(Definition("A x: 2.5" + suffix + " y").code, expected) << suffix;
  }
}

TEST(QuickLiterals, Wrong_expressions_are_noticed_while_reading) {
  for (const char* wrong :
       {"w * 2.5 5", "w * 2.5 w", "w w", "w +", "w + + ", "+ w *", "w 5", "w + 5 5",
        "w + 12345678901 5", "w + 5x", "w + A", "w + w.", "w, , w"}) {
    const std::string text = std::string("A x: (") + wrong + ")";
    EXPECT_NE(Definition(text).code, IMEPERR_NONE) << wrong;
  }
  for (const char* right :
       {"w * 2.5", "w + .5", "w+5", "w\n*\t5", "w_1 / 3 - 4", "w + 12345678901"}) {
    const std::string text = std::string("A x: (") + right + ")";
    EXPECT_EQ(Definition(text).code, IMEPERR_NONE) << right;
  }
}

TEST(QuickLiterals, What_is_compiled_goes_with_the_text) {
  const String text =
      "A x: (f(1)) y: {1, \"some text of more than a few bytes\"} z: (\"a\" + \"abc\")\nw := 1;";
  const auto read = [&] {
    IxoMepParser parser(text, "test");
    EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  };
  read();
  const std::size_t before = MemoryBudget::InUse();
  read();
  EXPECT_EQ(MemoryBudget::InUse(), before);
}

}  // namespace
}  // namespace ixomep::test
