// Attributes: names, modifiers, values, bodies, indexed names, and every way to fail.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/value.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

using namespace std::string_view_literals;

struct Row {
  std::string_view text;
  std::string_view expected;
};

template <std::size_t kCount>
void CheckAll(const Row (&rows)[kCount]) {
  for (const Row& row : rows) EXPECT_EQ(ShapeOf(row.text), row.expected) << row.text;
}

void ExpectError(std::string_view text, IxoMepErrorEnum code, std::initializer_list<Fill> fills,
                 int line) {
  const Definition definition(text);
  EXPECT_EQ(definition.code, code) << text;
  EXPECT_EQ(definition.parser.GetErrorText(), ErrorTextOf(code, fills, line)) << text;
}

TEST(AttributeName, Letters_digits_underscore_dash_and_128_and_more) {
  CheckAll({{"A abc", "A abc"},
            {"A _x aB_9-c", "A _x aB_9-c"},
            {"A \xE4\xF6:1 \xFF", "A \xE4\xF6=1 \xFF"},
            {"A a-b-c:1", "A a-b-c=1"}});
}

TEST(AttributeName, Flag_has_neither_modifier_nor_value) {
  const Definition definition("A flag");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepAttribute* flag = definition.Element(0).GetAttr(0);
  EXPECT_EQ(flag->GetName(), "flag");
  EXPECT_EQ(flag->GetModifier(), "");
  EXPECT_EQ(flag->GetValue(), nullptr);
  EXPECT_EQ(flag->GetArrayLValue(), nullptr);
  EXPECT_EQ(flag->GetBodyParser(), nullptr);
}

TEST(AttributeName, Other_characters_are_29) {
  for (const char* name :
       {"a$", "a.b", "a;b", "a\"b\"", "a(b)", "a{b}", "a(*c*)", "a#c", "a@", "a+:1", "a/b:1"}) {
    ExpectError(std::string("A ") + name, IMEPERR_BAD_ATTRIBUTE_NAME, {}, 0);
  }
  ExpectError("A\n a\0b"sv, IMEPERR_BAD_ATTRIBUTE_NAME, {}, 2);
  EXPECT_EQ(ShapeOf("A a.b"), "error 29: A");
}

TEST(AttributeName, Without_a_current_element_is_8_with_the_word) {
  ExpectError("a: 1", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "a:"}}, 0);
  ExpectError("\nabc\n", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "abc"}}, 2);
}

TEST(IndexedName, Is_an_array_l_value) {
  const Definition definition("A list[2]: 5 m[\"k\"]");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepAttribute* first = definition.Element(0).GetAttr(0);
  EXPECT_EQ(first->GetName(), "list[2]");
  ASSERT_NE(first->GetArrayLValue(), nullptr);
  EXPECT_EQ(first->GetArrayLValue()->GetOriginalExpression(), "list[2]");
  EXPECT_EQ(first->GetArrayLValue()->GetLineNo(), 1u);
  EXPECT_EQ(Described(first->GetValue()), "integer 5");
  EXPECT_NE(definition.Element(0).GetAttr(1)->GetArrayLValue(), nullptr);
}

TEST(IndexedName, May_contain_white_space_in_its_index) {
  const Definition definition("A\nlist[ 1\n + 2 ]: 5 B");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.Element(0).GetAttr(0)->GetName(), "list[ 1\n + 2 ]");
  EXPECT_EQ(definition.Element(1).GetLine(), 3);
}

TEST(IndexedName, Behind_a_dash_an_index_is_29) {
  ExpectError("A a-b[1]: 5", IMEPERR_BAD_ATTRIBUTE_NAME, {}, 0);
  EXPECT_EQ(Definition("A a[1-b]: 5").code, IMEPERR_NONE);
}

TEST(IndexedName, Mistake_in_the_index_is_the_attributes_error) {
  ExpectError("A\n a[1+]: 5", IMEPERR_OPERAND_EXPECTED, {}, 2);
  EXPECT_EQ(ShapeOf("A a[1+]: 5"), "error 13: A");
}

TEST(Modifier, Stands_between_colon_and_value) {
  CheckAll({{"KEY\n  a: mod: 5", "KEY a~mod=5"},
            {"KEY a:mod:5", "KEY a~mod=5"},
            {"KEY a: mod", "KEY a~mod"},
            {"KEY a: mOd_9-x: \"s\"", "KEY a~mOd_9-x=\"s\""},
            {"KEY a: m: { B }", "KEY a~m{B}"},
            {"KEY a: m:\n\n {1, 2}", "KEY a~m={1, 2}"},
            {"KEY a: true b", "KEY a~true b"}});
}

TEST(Modifier, Value_behind_a_blank_is_unexpected_at_top_level) {
  ExpectError("KEY a: mod 5", IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "5"}}, 0);
  EXPECT_EQ(ShapeOf("KEY a: mod 5"), "error 3: KEY a~mod");
}

TEST(Modifier, Followed_by_something_else_is_4) {
  ExpectError("A a: mod$", IMEPERR_BAD_SEPARATOR, {{"%c", "$"}}, 0);
  ExpectError("A\na: mod\"x\"", IMEPERR_BAD_SEPARATOR, {{"%c", "\""}}, 2);
  ExpectError("A a: m\xE4", IMEPERR_BAD_SEPARATOR, {{"%c", "\xE4"}}, 0);
  ExpectError("A a: m(1)", IMEPERR_BAD_SEPARATOR, {{"%c", "("}}, 0);
}

TEST(Modifier, Colon_with_nothing_behind_it_is_5) {
  ExpectError("A a: mod:", IMEPERR_VALUE_EXPECTED, {}, 0);
  ExpectError("A a: mod: ", IMEPERR_VALUE_EXPECTED, {}, 0);
  ExpectError("A a: mod: foo", IMEPERR_VALUE_EXPECTED, {}, 0);
  ExpectError("A a: mod:: 5", IMEPERR_VALUE_EXPECTED, {}, 0);
  EXPECT_EQ(ShapeOf("A { B a: mod: }"), "error 5: A");
  EXPECT_EQ(ShapeOf("A a: mod:"), "error 5: A a~mod");
}

TEST(AttributeValue, Every_kind) {
  CheckAll({{"A a:1 b: -2 c:\t\n3", "A a=1 b=-2 c=3"},
            {"A a: \"x y\" b: .5 c", "A a=\"x y\" b=0.5 c"},
            {"A a: $ff b: (1 + 1) c: 2.5cm", "A a=255 b=2 c=2.5cm"},
            {"A a: {1, 2} b: {\"k\": 1}", "A a={1, 2} b={\"k\": 1}"},
            {"A a: (x) b: { 1, 2 }", "A a=(x) b={1, 2}"},
            {"A a: 50%", "A a=0.5"},
            {"A a: 01:002:03:04:05 b", "A a=01:002:03:04:05 b"}});
}

TEST(AttributeValue, Missing_one_is_5) {
  ExpectError("A a:", IMEPERR_VALUE_EXPECTED, {}, 0);
  ExpectError("A a:\n\n", IMEPERR_VALUE_EXPECTED, {}, 3);
  ExpectError("A a: B", IMEPERR_VALUE_EXPECTED, {}, 0);
  ExpectError("A a: # comment\n 5", IMEPERR_VALUE_EXPECTED, {}, 1);
  EXPECT_EQ(ShapeOf("A { B a: }"), "error 5: A");
  EXPECT_EQ(ShapeOf("A b: 1 a:"), "error 5: A b=1 a");
}

TEST(AttributeValue, Failure_of_the_literal_is_the_attributes_error) {
  ExpectError("A a: 5mmx", IMEPERR_UNKNOWN_UNIT, {{"%s", "mmx"}}, 0);
  ExpectError("A\n a: \"x", IMEPERR_STRING_NOT_CLOSED, {}, 2);
  ExpectError("A\n a: (1/0)", IMEPERR_DIVISION_BY_ZERO, {}, 2);
  ExpectError("A a: 5e-1 b", IMEPERR_NUMBER_OVERFLOW, {{"%func", "A a: 5e-1 b"}}, 0);
  EXPECT_EQ(ShapeOf("A a: 5km"), "error 6: A a");
}

TEST(AttributeValue, Must_end_at_white_space) {
  ExpectError("A a: \"x\"y", IMEPERR_AFTER_STRING, {}, 0);
  ExpectError("A a: (x)y", IMEPERR_AFTER_EXPRESSION, {}, 0);
  ExpectError("A a: 5\"x\"", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A a: .5(1)", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A a: 5cm;", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A a: 00:000:00:00:05;", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A a: (1)x", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A a: (\"s\")x", IMEPERR_AFTER_STRING, {}, 0);
  ExpectError("A a: 5#c", IMEPERR_AFTER_NUMBER, {}, 0);
  EXPECT_EQ(ShapeOf("A a: 5;"), "error 30: A a=5");
}

TEST(AttributeValue, Arrays_and_maps_may_be_followed_directly) {
  EXPECT_EQ(ShapeOf("A a: {1}b c"), "A a={1} b c");
}

TEST(AttributeBrackets, Unbalanced_closers) {
  ExpectError("A a: (1))", IMEPERR_NOTHING_OPEN, {{"%1", ")"}, {"%2", "("}}, 0);
  ExpectError("A\na]", IMEPERR_NOTHING_OPEN, {{"%1", "]"}, {"%2", "["}}, 2);
  ExpectError("A a: 1}", IMEPERR_NOTHING_OPEN, {{"%1", "}"}, {"%2", "{"}}, 0);
  ExpectError("A a: (1]", IMEPERR_CLOSER_EXPECTED, {{"%1", ")"}}, 0);
  ExpectError("A a: { B )", IMEPERR_CLOSER_EXPECTED, {{"%1", "}"}}, 0);
  EXPECT_EQ(ShapeOf("A a: (1))"), "error 16: A");
}

TEST(AttributeBody, Is_a_parser_of_its_own) {
  CheckAll({{"A a: { B b: 1 } c", "A a{B b=1} c"},
            {"A a: {} b: { }", "A a{} b{}"},
            {"A a: { B b: { C c: { D } } }", "A a{B b{C c{D}}}"},
            {"A a: { # c\n B }", "A a{B}"},
            {"A a: { B }b", "A a{B} b"}});
  const Definition definition("A a: \n{ B } C");
  const IxoMepParser* body = definition.Element(0).GetAttr(0)->GetBodyParser();
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(body->GetText(), " B ");
  EXPECT_EQ(body->GetElement(0)->GetLine(), 2);
  EXPECT_EQ(definition.Element(1).GetLine(), 2);
}

TEST(AttributeBody, First_character_inside_tells_an_array) {
  for (const char* text : {"{1}", "{\"x\"}", "{$a}", "{(1)}", "{-1}", "{.5}", "{{1}}"}) {
    const Definition definition(std::string("A a: ") + text);
    ASSERT_EQ(definition.code, IMEPERR_NONE) << text;
    EXPECT_EQ(definition.Element(0).GetAttr(0)->GetValue()->GetType(), IxoMepValueType::Array);
  }
}

TEST(AttributeBody, Without_its_closing_brace_is_14) {
  ExpectError("A\n a: { B", IMEPERR_CLOSER_EXPECTED, {{"%1", "}"}}, 2);
  EXPECT_EQ(ShapeOf("A a: { B"), "error 14: A a");
}

TEST(AttributeBody, Error_inside_is_the_error_of_the_parser_around) {
  ExpectError("A a: {\n B b: {\n C 5km }}", IMEPERR_UNKNOWN_UNIT, {{"%s", "km"}}, 3);
  EXPECT_EQ(ShapeOf("A a: { B 5km }"), "error 6: A a");
}

TEST(AttributeBody, Unbalanced_bracket_is_found_before_an_error_inside) {
  ExpectError("A a: { Bad\n ( }", IMEPERR_CLOSER_EXPECTED, {{"%1", ")"}}, 2);
}

TEST(ErrorPlace, Points_at_the_offending_byte) {
  struct Place {
    std::string_view text;
    std::int32_t line;
    std::int32_t column;
  };
  const Place places[] = {{"A\n  b: 5x", 2, 6},
                          {"A\n  KEYx", 2, 3},
                          {"A\n  b.c", 2, 4},
                          {"A\n  b: (1 + )", 2, 11},
                          {"A\n  b: (1))", 2, 9},
                          {"A\n  x + ;", 2, 7},
                          {"A { B\n { \n  C c: { ? } } }", 3, 10},
                          {"A 1\n  5", 2, 3}};
  for (const Place& place : places) {
    const Definition definition(place.text);
    EXPECT_NE(definition.code, IMEPERR_NONE) << place.text;
    EXPECT_EQ(definition.parser.GetErrorLine(), place.line) << place.text;
    EXPECT_EQ(definition.parser.GetErrorColumn(), place.column) << place.text;
    EXPECT_EQ(definition.parser.GetErrorContext(), "test");
  }
}

}  // namespace
}  // namespace ixomep::test
