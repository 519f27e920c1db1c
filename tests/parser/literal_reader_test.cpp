// IxoMepValue::Create: dispatch, strings, bracketed and braced literals.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/parser/literal_reader.h"
#include "ixomep/parser/parser.h"
#include "ixomep/values/error.h"
#include "ixomep/values/value.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

using namespace std::string_view_literals;

std::string StringOf(std::string_view text) {
  const Literal literal = ReadLiteralAt(text);
  if (literal.value == nullptr) return "error " + std::to_string(literal.code);
  EXPECT_EQ(literal.value->GetType(), IxoMepValueType::String) << text;
  return std::string(literal.value->GetStr().view());
}

// A parser whose expression objects can be told and counted.
class CountingExpression : public IxoMepExpressionParser {
 public:
  CountingExpression() { ++alive; }
  CountingExpression(const CountingExpression& other) : IxoMepExpressionParser(other) { ++alive; }
  ~CountingExpression() override { --alive; }
  IxoMepExpressionParser* CreateCopy() const override { return new CountingExpression(*this); }
  static int alive;
};
int CountingExpression::alive = 0;

class CountingParser : public IxoMepParser {
 public:
  CountingParser() : IxoMepParser("", "") {}
  IxoMepExpressionParser* NewExprParser() override {
    ++made;
    return new CountingExpression;
  }
  int made = 0;
};

TEST(LiteralReader, Other_first_characters_fail_with_5_where_they_stand) {
  for (const std::string_view text : {""sv, " 1"sv, "x"sv, "A"sv, "+1"sv, ")"sv, "}"sv, "[1]"sv,
                                      "'a'"sv, "\xE4"sv, ":"sv, "%"sv, "\0"sv}) {
    const Literal literal = ReadLiteralAt(text);
    EXPECT_EQ(literal.value, nullptr) << text;
    EXPECT_EQ(literal.code, 5) << text;
    EXPECT_EQ(literal.position, 0) << text;
    EXPECT_EQ(literal.error_text, IxoMepError::GetErrorText(IMEPERR_VALUE_EXPECTED).view());
  }
}

TEST(LiteralReader, Position_outside_the_text_fails_with_5) {
  for (const std::int32_t position : {-1, -2147483647, 2, 3, 2147483647}) {
    EXPECT_EQ(ReadLiteralAt("12", position).code, 5) << position;
    EXPECT_EQ(ReadLiteralAt("12", position).position, position);
  }
}

TEST(LiteralReader, Success_sets_code_0_and_both_forms_of_the_code_agree) {
  std::int32_t position = 2;
  IxoMepErrorEnum code = IMEPERR_USER;
  String error_text;
  ValuePtr value(IxoMepValue::Create("a 7", position, code, error_text, nullptr, 1));
  EXPECT_EQ(Described(value.get()), "integer 7");
  EXPECT_EQ(code, IMEPERR_NONE);
  position = 0;
  value.reset(IxoMepValue::Create("a 7", position, code, error_text, nullptr, 1));
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(code, IMEPERR_VALUE_EXPECTED);
}

TEST(LiteralString, Content_is_what_stands_between_the_quotes) {
  EXPECT_EQ(StringOf("\"abc\""), "abc");
  EXPECT_EQ(StringOf("\"\""), "");
  EXPECT_EQ(StringOf("\"x\""), "x");
  EXPECT_EQ(StringOf("\"a # (* { b\""), "a # (* { b");
  EXPECT_EQ(ReadLiteralAt("\"abc\"def").position, 5);
}

TEST(LiteralString, Every_escape) {
  EXPECT_EQ(StringOf("\"\\a\\b\\t\\n\\v\\f\\r\""), "\a\b\t\n\v\f\r");
  EXPECT_EQ(StringOf("\"\\\"\\\\\""), "\"\\");
  EXPECT_EQ(StringOf("\"\\x\\(\\ \\0\\A\""), "x( 0A");
  EXPECT_EQ(StringOf("\"a\\tb\""), "a\tb");
}

TEST(LiteralString, Line_breaks_zero_bytes_and_high_bytes_are_kept) {
  EXPECT_EQ(StringOf("\"a\nb\r\n\xE4\xFF\""), "a\nb\r\n\xE4\xFF");
  EXPECT_EQ(StringOf("\"a\0b\\\0c\""sv), "a\0b\0c"sv);
}

TEST(LiteralString, Backslash_as_the_last_character_fails_with_1) {
  EXPECT_EQ(StringOf("\"abc\\"), "error 1");
  EXPECT_EQ(StringOf("\"\\"), "error 1");
  EXPECT_EQ(ReadLiteralAt("\"abc\\").error_text,
            IxoMepError::GetErrorText(IMEPERR_BACKSLASH_AT_END).view());
}

TEST(LiteralString, Missing_closing_quote_fails_with_2_at_the_end) {
  EXPECT_EQ(StringOf("\"abc"), "error 2");
  EXPECT_EQ(StringOf("\""), "error 2");
  EXPECT_EQ(StringOf("\"abc\\\""), "error 2");
  EXPECT_EQ(ReadLiteralAt("\"abc").position, 4);
}

TEST(LiteralExpression, Result_is_folded) {
  EXPECT_EQ(LiteralOf("(1+2)"), "integer 3");
  EXPECT_EQ(LiteralOf("(2*3)"), "integer 6");
  EXPECT_EQ(LiteralOf("(\"a\" + \"b\") x"), "string \"ab\" @11");
  EXPECT_EQ(LiteralOf("($ff)"), "integer 255");
  EXPECT_EQ(LiteralOf("((1+2)*3)"), "integer 9");
}

TEST(LiteralExpression, Unknown_names_keep_the_expression) {
  EXPECT_EQ(LiteralOf("(x+1)"), "expression ((x)+(1))");
  EXPECT_EQ(ReadLiteralAt("(host_function(1))").value->GetType(), IxoMepValueType::Expression);
  EXPECT_EQ(ReadLiteralAt("(x+1)").code, 0);
  EXPECT_EQ(ReadLiteralAt("(x+1)").error_text, "");
}

// A literal is folded strictly: where nothing may be assigned.
TEST(LiteralExpression, Assignment_keeps_the_expression) {
  EXPECT_EQ(LiteralOf("(x := 1)").substr(0, 10), "expression");
}

TEST(LiteralExpression, Other_failures_give_no_value) {
  EXPECT_EQ(LiteralOf("(1/0)"), "error 18");
  EXPECT_EQ(LiteralOf("(1+)"), "error 13");
  EXPECT_EQ(LiteralOf("()"), "error 13");
  EXPECT_EQ(LiteralOf("(1 \\ 2)"), "error 17");
  EXPECT_EQ(ReadLiteralAt("(1/0)").error_text,
            IxoMepError::GetErrorText(IMEPERR_DIVISION_BY_ZERO).view());
}

TEST(LiteralExpression, Extent_counts_round_brackets_only) {
  EXPECT_EQ(LiteralOf("((1)) 2"), "integer 1 @5");
  EXPECT_EQ(ReadLiteralAt("(1 ]) x").position, 5);
  EXPECT_EQ(ReadLiteralAt("(1 }) x").position, 5);
}

TEST(LiteralExpression, Brackets_in_strings_and_comments_do_not_count) {
  EXPECT_EQ(LiteralOf("(\")\" + \"(\")"), "string \")(\"");
  EXPECT_EQ(LiteralOf("(\"\\\")\")"), "string \"\\\")\"");
  EXPECT_EQ(LiteralOf("(1 (* ) *) + 2)"), "integer 3");
  EXPECT_EQ(LiteralOf("(1 # )\n + 2)"), "integer 3");
  EXPECT_EQ(LiteralOf("(1 # \" (* \n + 2)"), "integer 3");
  EXPECT_EQ(LiteralOf("(1 (* # \" *) + 2)"), "integer 3");
}

TEST(LiteralExpression, Backslash_makes_the_next_character_ordinary) {
  EXPECT_EQ(ReadLiteralAt("(1 \\) 2) x").position, 8);
  EXPECT_EQ(ReadLiteralAt("(1 \\\" ) x").position, 7);
}

TEST(LiteralExpression, Open_bracket_runs_to_the_end_of_the_text) {
  EXPECT_EQ(LiteralOf("((1)"), "integer 1");
  EXPECT_EQ(LiteralOf("(1+2"), "integer 3");
  EXPECT_EQ(LiteralOf("((1"), "error 14");
  EXPECT_EQ(LiteralOf("("), "error 13");
}

TEST(LiteralExpression, Parser_makes_the_object_and_the_line_is_set) {
  CountingParser parser;
  std::int32_t position = 0;
  std::int32_t code = -1;
  String error_text;
  ValuePtr value(IxoMepValue::Create("(curlineno() + x)", position, code, error_text, &parser, 17));
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(parser.made, 1);
  EXPECT_EQ(CountingExpression::alive, 1);
  EXPECT_NE(dynamic_cast<CountingExpression*>(value->GetExpr()), nullptr);
  EXPECT_EQ(value->GetExpr()->GetLineNo(), 17u);
  value.reset();
  EXPECT_EQ(CountingExpression::alive, 0);
}

TEST(LiteralExpression, Object_is_destroyed_when_the_value_is_folded_or_fails) {
  CountingParser parser;
  for (const char* text : {"(1+2)", "(1/0)", "(1+)", "{1, 2}", "{1/0}", "{1"}) {
    std::int32_t position = 0;
    std::int32_t code = -1;
    String error_text;
    const ValuePtr value(IxoMepValue::Create(text, position, code, error_text, &parser, 1));
    EXPECT_EQ(CountingExpression::alive, 0) << text;
  }
  EXPECT_EQ(parser.made, 6);
}

TEST(LiteralExpression, Line_number_is_seen_while_folding) {
  std::int32_t position = 0;
  std::int32_t code = -1;
  String error_text;
  const ValuePtr value(
      IxoMepValue::Create("(curlineno())", position, code, error_text, nullptr, 23));
  EXPECT_EQ(Described(value.get()), "integer 23");
}

TEST(LiteralExpression, Deep_brackets_end_with_38_or_a_value) {
  const std::string deep = Repeated("(", 200000) + "1" + Repeated(")", 200000);
  const Literal literal = ReadLiteralAt(deep);
  EXPECT_TRUE(literal.code == IMEPERR_TOO_DEEP || literal.code == IMEPERR_NONE);
}

TEST(LiteralArray, Array_and_map_displays) {
  EXPECT_EQ(LiteralOf("{1, 2}"), "array {1, 2}");
  EXPECT_EQ(LiteralOf("{}"), "array {}");
  EXPECT_EQ(LiteralOf("{{1}, {\"a\"}} x"), "array {{1}, {\"a\"}} @12");
  EXPECT_EQ(LiteralOf("{\"a\": 1}"), "map {\"a\": 1}");
  EXPECT_EQ(LiteralOf("{1+1, 2*2}"), "array {2, 4}");
}

TEST(LiteralArray, Unknown_names_keep_the_expression) {
  EXPECT_EQ(ReadLiteralAt("{1, x}").value->GetType(), IxoMepValueType::Expression);
}

TEST(LiteralArray, Failures_give_no_value) {
  EXPECT_EQ(LiteralOf("{1/0}"), "error 18");
  EXPECT_EQ(LiteralOf("{1, 2"), "error 14");
}

TEST(LiteralArray, Extent_counts_braces_only) {
  EXPECT_EQ(LiteralOf("{\"}\", 1}"), "array {\"}\", 1}");
  EXPECT_EQ(LiteralOf("{1 (* } *), 2}"), "array {1, 2}");
  EXPECT_EQ(LiteralOf("{1, # }\n 2}"), "array {1, 2}");
  EXPECT_EQ(ReadLiteralAt("{1 ) } x").position, 6);
}

// --- Parts of a text ---------------------------------------------------------------------------

// All texts of up to that many pieces, each beside what it stands for.
struct Escaped {
  std::string written;
  std::string meant;
};

std::vector<Escaped> AllEscaped(int most) {
  const std::string run = "fifteen letters";
  const std::vector<Escaped> pieces = {
      {"\\n", "\n"}, {"\\\"", "\""}, {"\\\\", "\\"}, {"a", "a"}, {run, run}};
  std::vector<Escaped> all = {{"", ""}};
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all[i].written.size() >= static_cast<std::size_t>(most)) continue;
    for (const Escaped& piece : pieces) {
      all.push_back({all[i].written + piece.written, all[i].meant + piece.meant});
    }
  }
  return all;
}

TEST(EscapedParts, Are_the_same_wherever_they_stand) {
  const std::string before = "\\before\\";
  for (const Escaped& escaped : AllEscaped(7)) {
    EXPECT_EQ(Unescape(escaped.written), escaped.meant);
    for (const std::size_t behind : {0u, 1u, 15u, 16u, 100u}) {
      const std::string text = before + escaped.written + std::string(behind, '\\');
      String part("what was there");
      UnescapePart(text, before.size(), escaped.written.size(), part);
      ASSERT_EQ(part, escaped.meant) << escaped.written << ' ' << behind;
      ASSERT_EQ(part.c_str()[part.Len()], '\0');
      ASSERT_EQ(part + "end", escaped.meant + "end");
    }
  }
}

TEST(EscapedParts, Of_any_length_are_read_without_the_memory_of_another_one) {
  for (const std::size_t size : {10u, 60u, 70u, 600u, 100000u}) {
    const std::string text = Repeated("ab\\\"", size / 4) + std::string(20, ' ');
    String part;
    UnescapePart(text, 0, size / 4 * 4, part);
    EXPECT_EQ(part, Repeated("ab\"", size / 4));
    const ScopedMemoryLimit limit(0);
    EXPECT_THROW(UnescapePart(text, 0, size / 4 * 4, part), std::bad_alloc);
    EXPECT_EQ(part, Repeated("ab\"", size / 4));
  }
}

TEST(LiteralMemory, String_beyond_the_memory_fails_with_37) {
  std::string text = "\"" + Repeated("x", 1000000) + "\"";
  const String literal(text);
  ScopedMemoryLimit limit(100000);
  std::int32_t position = 0;
  std::int32_t code = 0;
  String error_text;
  const ValuePtr value(IxoMepValue::Create(literal, position, code, error_text, nullptr, 1));
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(code, IMEPERR_TOO_LONG);
  EXPECT_EQ(error_text, IxoMepError::GetErrorText(IMEPERR_TOO_LONG));
}

TEST(LiteralMemory, Expression_beyond_the_memory_fails_with_38) {
  std::string text = "(1" + Repeated("+1", 500000) + ")";
  const String literal(text);
  ScopedMemoryLimit limit(100000);
  std::int32_t position = 0;
  std::int32_t code = 0;
  String error_text;
  const ValuePtr value(IxoMepValue::Create(literal, position, code, error_text, nullptr, 1));
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(code, IMEPERR_TOO_DEEP);
}

}  // namespace
}  // namespace ixomep::test
