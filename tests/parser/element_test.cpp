// Elements, expression statements and bodies: what is read, and every way to fail.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/error.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

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

// Reads the text and compares code and error text.
void ExpectError(std::string_view text, IxoMepErrorEnum code, std::initializer_list<Fill> fills,
                 int line) {
  const Definition definition(text);
  EXPECT_EQ(definition.code, code) << text;
  EXPECT_EQ(definition.parser.GetErrorText(), ErrorTextOf(code, fills, line)) << text;
  EXPECT_EQ(definition.parser.GetErrorCode(), code) << text;
}

TEST(TopLevel, Empty_and_white_texts_have_no_elements) {
  CheckAll({{"", ""}, {"\t\n\v\f\r \xA0", ""}, {"# only a comment", ""}, {"(* only *)", ""}});
  const Definition definition("");
  EXPECT_EQ(definition.parser.GetCurElemIndex(), -1);
}

TEST(TopLevel, Comments_are_stepped_over) {
  CheckAll({{"# c\nA", "A"},
            {"A # B\nC", "A; C"},
            {"(* A *) B (* C\n *) D", "B; D"},
            {"(* (* *) B", "B"},
            {"A (* B", "A"},
            {"A (*) B *) C", "A; C"},
            {"A # B (* \" {", "A"}});
}

TEST(Element, Keyword_alone_has_neither_value_nor_attributes) {
  const Definition definition("KEY");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  ASSERT_EQ(definition.parser.GetElemCount(), 1);
  const IxoMepElement& element = definition.Element(0);
  EXPECT_EQ(element.GetKeyword(), "KEY");
  EXPECT_EQ(element.GetValue(), nullptr);
  EXPECT_EQ(element.GetAttrCount(), 0);
  EXPECT_EQ(element.GetBodyParser(), nullptr);
  EXPECT_EQ(element.GetParser(), &definition.parser);
}

TEST(Element, Value_flag_and_attribute) {
  EXPECT_EQ(ShapeOf("KEY \"x\" a b:1"), "KEY=\"x\" a b=1");
}

TEST(Element, Keywords_have_upper_case_letters_and_underscores) {
  CheckAll({{"A B_C D__", "A; B_C; D__"}, {"NODE_CLASS", "NODE_CLASS"}});
}

TEST(Element, Every_kind_of_value) {
  CheckAll({{"A 5", "A=5"},
            {"A -5", "A=-5"},
            {"A .5 ", "A=0.5"},
            {"A $ff", "A=255"},
            {"A \"x y\"", "A=\"x y\""},
            {"A\"x\"", "A=\"x\""},
            {"A (1 + 2)", "A=3"},
            {"A(1+2)", "A=3"},
            {"A {1, 2}", "A={1, 2}"},
            {"A { \n{1}, 2}", "A={{1}, 2}"},
            {"A {\"k\": 1}", "A={\"k\": 1}"},
            {"A {(1), $a, -1, .5}", "A={1, 10, -1, 0.5}"},
            {"A 2.5cm", "A=2.5cm"},
            {"A 01:002:03:04:05", "A=01:002:03:04:05"},
            {"A\n\n 5", "A=5"},
            {"A 5\nB 6", "A=5; B=6"}});
}

TEST(Element, Character_behind_the_keyword) {
  ExpectError("KEYword x", IMEPERR_BAD_KEYWORD, {{"%s", "KEYword"}}, 0);
  ExpectError("A\nKEYword\n", IMEPERR_BAD_KEYWORD, {{"%s", "KEYword"}}, 2);
  for (const char c : "{;:1[)}#$-.,@") {
    if (c == '\0') break;
    ExpectError(std::string("KEY") + c, IMEPERR_AFTER_KEYWORD, {{"%c", {&c, 1}}}, 0);
  }
  ExpectError("KEY\0"sv, IMEPERR_AFTER_KEYWORD, {{"%c", "\0"sv}}, 0);
}

TEST(Element, Comment_between_keyword_and_value_makes_it_valueless) {
  ExpectError("KEY (* c *) 5", IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "5"}}, 0);
  EXPECT_EQ(ShapeOf("KEY (* c *) a: 1"), "KEY a=1");
  EXPECT_EQ(ShapeOf("KEY(* c *)"), "KEY");
}

TEST(Element, Failing_value_is_the_elements_error) {
  CheckAll({{"A \"abc", "error 2"},
            {"A \"abc\\", "error 1"},
            {"A -x", "error 5"},
            {"A 5km", "error 6"},
            {"A 5e-1 ", "error 19"},
            {"A (1/0)", "error 18"},
            {"A (1+)", "error 13"},
            {"B 1 A (1 / 0) C", "error 18: B=1"}});
  ExpectError("A\n\"abc", IMEPERR_STRING_NOT_CLOSED, {}, 2);
  ExpectError("\nA 5km\n", IMEPERR_UNKNOWN_UNIT, {{"%s", "km"}}, 2);
}

TEST(Element, Value_must_end_at_white_space) {
  ExpectError("A \"x\"y", IMEPERR_AFTER_STRING, {}, 0);
  ExpectError("A (x)y", IMEPERR_AFTER_EXPRESSION, {}, 0);
  ExpectError("A 5(x)", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A (1)x", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A (\"s\")x", IMEPERR_AFTER_STRING, {}, 0);
  ExpectError("A {1}x", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A 5.", IMEPERR_AFTER_NUMBER, {}, 0);
  ExpectError("A 50% ", IMEPERR_AFTER_NUMBER, {}, 0);
  EXPECT_EQ(ShapeOf("A 50%"), "A=0.5");
  EXPECT_EQ(ShapeOf("B A 5x"), "error 6: B");
}

TEST(Element, Semicolon_behind_the_value_makes_it_an_expression_statement) {
  CheckAll({{"NOT (x); A", ";=(NOT(x)); A"},
            {"B STR(x);C", "B; ;=(STR(x)); C"},
            {"B NOT {1};", "B; ;=(NOT({(1)))"}});
  // Read again as an expression, this is none.
  EXPECT_EQ(ShapeOf("A \"x\";"), "error 24");
}

TEST(Element, Offset_and_line_are_those_of_the_keyword) {
  const Definition definition("A 1\n\n  BB (1\n+ 2) c: 1\n(* \n *) D");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  ASSERT_EQ(definition.parser.GetElemCount(), 3);
  EXPECT_EQ(definition.Element(0).GetStartOffset(), 0);
  EXPECT_EQ(definition.Element(0).GetLine(), 1);
  EXPECT_EQ(definition.Element(1).GetStartOffset(), 7);
  EXPECT_EQ(definition.Element(1).GetLine(), 3);
  EXPECT_EQ(definition.Element(2).GetLine(), 6);
}

TEST(Element, Expression_values_know_their_line) {
  const Definition definition("A\n\n (x)\n B\n b: \n (y)");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.Element(0).GetValue()->GetExpr()->GetLineNo(), 3u);
  EXPECT_EQ(definition.Element(1).GetAttr(0)->GetValue()->GetExpr()->GetLineNo(), 6u);
}

TEST(Unexpected, Character_inside_an_element_is_3) {
  for (const char* c : {"5", "\"", ")", "}", "]", ";", ":", "+", "-", ".", "$", "[", "'", "\\"}) {
    ExpectError(std::string("A (**) ") + c, IMEPERR_UNEXPECTED_CHARACTER, {{"%c", c}}, 0);
  }
  ExpectError("A\n\n\0"sv, IMEPERR_UNEXPECTED_CHARACTER, {{"%c", "\0"sv}}, 3);
}

TEST(Unexpected, Character_without_an_element_is_8_with_the_word) {
  ExpectError("5abc def", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "5abc"}}, 0);
  ExpectError("\n\n \"x\n", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "\"x"}}, 3);
  ExpectError("\0"sv, IMEPERR_OUTSIDE_ELEMENT, {{"%s", "\0"sv}}, 0);
}

TEST(Statement, At_the_start_of_a_line_only) {
  CheckAll({{"x := 1;", ";=((x):=(1))"},
            {"A\nx := 1;", "A; ;=((x):=(1))"},
            {"A\n  x := 1; y := 2;", "A; ;=((x):=(1)); ;=((y):=(2))"},
            {"A # c\n(x);", "A; ;=(x)"},
            {"(* c *) x;", ";=(x)"},
            {"A x", "A x"}});
  // On the line of an element the same text is an attribute and what follows it.
  ExpectError("A x := 1;", IMEPERR_UNEXPECTED_CHARACTER, {{"%c", ":"}}, 0);
}

TEST(Statement, Not_behind_an_attribute_that_ends_on_another_line) {
  EXPECT_EQ(Definition("A\nb: (1\n+ 2) x := 1;").code, IMEPERR_UNEXPECTED_CHARACTER);
}

TEST(Statement, Not_behind_a_body) {
  EXPECT_EQ(Definition("A { B\n} x := 1;").code, IMEPERR_UNEXPECTED_CHARACTER);
}

TEST(Statement, Not_behind_a_line_feed_inside_a_block_comment) {
  EXPECT_EQ(Definition("A (* \n *) x := 1;").code, IMEPERR_UNEXPECTED_CHARACTER);
}

TEST(Statement, Spans_lines_inside_braces_only) {
  EXPECT_EQ(Definition("f({\n1,\n2});\nA").code, IMEPERR_NONE);
  EXPECT_EQ(Definition("f({\n1,\n2});\nA").Element(1).GetLine(), 4);
  EXPECT_EQ(Definition("f(\n1);").code, IMEPERR_OUTSIDE_ELEMENT);
}

TEST(Statement, Element_is_the_statement_unevaluated) {
  const Definition definition("A\n  x + 1 ;b: 2");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepElement& statement = definition.Element(1);
  EXPECT_EQ(statement.GetKeyword(), ";");
  EXPECT_EQ(statement.GetStartOffset(), 4);
  EXPECT_EQ(statement.GetLine(), 2);
  EXPECT_EQ(statement.GetAttrCount(), 0);
  ASSERT_NE(statement.GetValue(), nullptr);
  EXPECT_EQ(statement.GetValue()->GetType(), IxoMepValueType::Expression);
  EXPECT_EQ(statement.GetValue()->GetExpr()->GetOriginalExpression(), "x + 1 ");
  EXPECT_EQ(statement.GetValue()->GetExpr()->GetLineNo(), 2u);
}

TEST(Statement, Constant_expressions_are_not_folded) {
  EXPECT_EQ(Described(Definition("1 + 2;").Element(0).GetValue()), "expression ((1)+(2))");
}

TEST(Statement, Attributes_behind_it_belong_to_the_element_before) {
  EXPECT_EQ(ShapeOf("A\nx;\nb: 2"), "A b=2; ;=(x)");
}

TEST(Statement, Mistake_is_the_parsers_error_at_the_statement) {
  ExpectError("A\n\nx := ;\n", IMEPERR_OPERAND_EXPECTED, {}, 3);
  ExpectError(";", IMEPERR_OPERAND_EXPECTED, {}, 0);
}

// Texts of errors are loaded once for the process, so this case runs in a process of its own.
TEST(StatementDeathTest, Number_in_front_of_the_expressions_error_text_is_the_code) {
  const auto parse_with_numbered_texts = [] {
    TestHost host;
    host.resources[16113] = "25: nothing here";
    host.resources[16125] = "bad word";
    const Definition definition("A\nx := ;");
    const bool as_expected = definition.code == IMEPERR_BAD_KEYWORD &&
                             definition.parser.GetErrorText().view().starts_with("bad word\n\n");
    std::exit(as_expected ? 0 : 1);
  };
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(parse_with_numbered_texts(), ::testing::ExitedWithCode(0), "");
}

TEST(Body, Belongs_to_the_current_element) {
  CheckAll({{"KEY { B b: 1 }", "KEY {B b=1}"},
            {"A {}", "A {}"},
            {"A { \n }", "A {}"},
            {"A { B { C } } D", "A {B {C}}; D"},
            {"A 1 b: 2 { C } d: 3", "A=1 b=2 d=3 {C}"},
            {"A\n{\nB\n}\nC", "A {B}; C"},
            {"A { # c }\n B }", "A {B}"},
            {"A { x := 1; }", "A {;=((x):=(1))}"}});
}

TEST(Body, May_begin_with_attributes) {
  const Definition definition("KEY { a: 1 }");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepParser* body = definition.Element(0).GetBodyParser();
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(body->GetElemCount(), 0);
  EXPECT_EQ(body->GetCurElemIndex(), -1);
  EXPECT_EQ(body->GetCurElement()->GetAttrCount(), 1);
  EXPECT_EQ(Described(body->GetCurElement()->FindAttr("a")->GetValue()), "integer 1");
  EXPECT_EQ(body->GetLooseAttributes(), body->GetCurElement());
}

TEST(Body, Attributes_before_its_first_element_are_kept_beside_the_elements) {
  const Definition definition("KEY { a: 1 b B c }");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepParser* body = definition.Element(0).GetBodyParser();
  EXPECT_EQ(body->GetElemCount(), 1);
  EXPECT_EQ(body->GetCurElemIndex(), 0);
  EXPECT_EQ(body->GetCurElement()->GetKeyword(), "B");
  ASSERT_NE(body->GetLooseAttributes(), nullptr);
  EXPECT_EQ(body->GetLooseAttributes()->GetAttrCount(), 2);
  EXPECT_EQ(Definition("A { B }").Element(0).GetBodyParser()->GetLooseAttributes(), nullptr);
}

TEST(Body, Attributes_are_no_element_that_a_body_could_belong_to) {
  ExpectError("KEY { a { B } }", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "{"}}, 0);
  ExpectError("KEY { a 5 }", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "5"}}, 0);
}

TEST(Body, First_character_inside_tells_a_body_from_an_array) {
  CheckAll({{"A {1, 2}", "A={1, 2}"},
            {"A { \"x\" }", "A={\"x\"}"},
            {"A { B }", "A {B}"},
            {"A { # 1\n B }", "A {B}"}});
}

TEST(Body, Without_an_element_is_8) {
  ExpectError("{ A }", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "{"}}, 0);
}

TEST(Body, Second_one_for_an_element_is_8) {
  ExpectError("A { B } { C }", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "{"}}, 0);
  EXPECT_EQ(ShapeOf("A { B } { C }"), "error 8: A {B}");
}

TEST(Body, Without_its_closing_brace_is_14) {
  ExpectError("A\n { B", IMEPERR_CLOSER_EXPECTED, {{"%1", "}"}}, 2);
  ExpectError("A { B } { ", IMEPERR_OUTSIDE_ELEMENT, {{"%s", "{"}}, 0);
}

// The extent is found first, so the outer brace is reported, not what is wrong inside.
TEST(Body, Unbalanced_outer_brace_comes_before_an_error_inside) {
  ExpectError("A\n{\n Bad\n", IMEPERR_CLOSER_EXPECTED, {{"%1", "}"}}, 2);
}

TEST(Body, Error_inside_is_the_error_of_all_parsers_around) {
  ExpectError("A {\n B {\n\n  Bad } }", IMEPERR_BAD_KEYWORD, {{"%s", "Bad"}}, 4);
  const Definition definition("A {\n B {\n\n  Bad } }");
  EXPECT_EQ(definition.parser.GetErrorOffset(), 12);
  EXPECT_EQ(definition.parser.GetErrorLine(), 4);
  EXPECT_EQ(definition.parser.GetErrorColumn(), 3);
  EXPECT_EQ(definition.Element(0).GetBodyParser(), nullptr);
}

TEST(Body, Is_a_parser_of_the_same_text) {
  const Definition definition("A x\n{ B\n C c: { d }\n} E");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  const IxoMepParser* body = definition.Element(0).GetBodyParser();
  ASSERT_NE(body, nullptr);
  EXPECT_TRUE(body->GetCompleteText().SharesTextWith(definition.parser.GetCompleteText()));
  EXPECT_EQ(body->GetText(), " B\n C c: { d }\n");
  EXPECT_EQ(body->GetContext(), "test");
  EXPECT_EQ(body->GetVars(), nullptr);
  EXPECT_EQ(body->GetCurElemIndex(), 0);
  EXPECT_EQ(body->GetElement(0)->GetStartOffset(), 6);
  EXPECT_EQ(body->GetElement(0)->GetLine(), 2);
  EXPECT_EQ(body->GetElement(1)->GetLine(), 3);
  EXPECT_EQ(definition.Element(1).GetLine(), 4);
}

}  // namespace
}  // namespace ixomep::test
