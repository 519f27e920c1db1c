// The life of a parser: constructors, Parse and Parse again, SetText, lines, the factories.
#include <gtest/gtest.h>

#include <type_traits>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "tests/support/definitions.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

TEST(ParserConstruction, Whole_text_with_a_context) {
  const IxoMepParser parser("A b: 1", "C:\\defs\\a.txt");
  EXPECT_EQ(parser.GetCompleteText(), "A b: 1");
  EXPECT_EQ(parser.GetText(), "A b: 1");
  EXPECT_EQ(parser.GetContext(), "C:\\defs\\a.txt");
  EXPECT_EQ(parser.GetVars(), nullptr);
  EXPECT_EQ(parser.GetErrorText(), "");
  EXPECT_EQ(parser.GetErrorOffset(), -1);
}

TEST(ParserConstruction, Parses_nothing) {
  const IxoMepParser parser("A b: 1", "test");
  EXPECT_EQ(parser.GetElemCount(), 0);
  EXPECT_EQ(parser.GetCurElemIndex(), -1);
  EXPECT_EQ(parser.GetCurElement()->GetKeyword(), "");
}

TEST(ParserConstruction, Name_and_kind_make_the_context) {
  EXPECT_EQ(IxoMepParser("", "Pump", "class").GetContext(), "\"Pump\" (class)");
}

TEST(ParserConstruction, Stretch_of_a_larger_text) {
  IxoMepParser parser("A B C D", 2, 3, 7, "test");
  EXPECT_EQ(parser.GetText(), "B C");
  EXPECT_EQ(parser.GetCompleteText(), "A B C D");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "B; C");
  EXPECT_EQ(parser.GetElement(0)->GetStartOffset(), 2);
  EXPECT_EQ(parser.GetElement(0)->GetLine(), 7);
}

TEST(ParserConstruction, Stretch_is_clipped_to_the_text) {
  constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(IxoMepParser("A B", 2, kMax, 0, "").GetText(), "B");
  EXPECT_EQ(IxoMepParser("A B", kMax, kMax, 0, "").GetText(), "");
  EXPECT_EQ(IxoMepParser("A B", kMin, 1, 0, "").GetText(), "A");
  EXPECT_EQ(IxoMepParser("A B", 1, kMin, 0, "").GetText(), "");
  IxoMepParser parser("A B", kMax, kMax, kMax, "");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
}

TEST(ParserConstruction, Stretch_limits_what_is_found) {
  EXPECT_EQ(IxoMepParser("A { B }", 0, 5, 0, "").Parse(), IMEPERR_CLOSER_EXPECTED);
  EXPECT_EQ(IxoMepParser("a;b", 0, 1, 0, "").Parse(), IMEPERR_OUTSIDE_ELEMENT);
  EXPECT_EQ(IxoMepParser("A (* c *) B", 0, 7, 0, "").Parse(), IMEPERR_NONE);
}

TEST(ParserLines, Are_counted_from_1) {
  const Definition definition("A\nB\r\nC\n\nD");
  EXPECT_EQ(definition.Element(0).GetLine(), 1);
  EXPECT_EQ(definition.Element(1).GetLine(), 2);
  EXPECT_EQ(definition.Element(2).GetLine(), 3);
  EXPECT_EQ(definition.Element(3).GetLine(), 5);
}

TEST(ParserLines, Leading_line_feed_counts) {
  EXPECT_EQ(Definition("\nA").Element(0).GetLine(), 2);
  EXPECT_EQ(Definition("\n\nA").Element(0).GetLine(), 3);
}

TEST(ParserLines, Given_first_line_is_that_of_the_first_character) {
  IxoMepParser parser("x\nA\nB", 1, 4, 5, "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetElement(0)->GetLine(), 6);
  IxoMepParser negative("\nA", 0, 2, -3, "test");
  ASSERT_EQ(negative.Parse(), IMEPERR_NONE);
  EXPECT_EQ(negative.GetElement(0)->GetLine(), 2);
  IxoMepParser largest("\nA", 0, 2, std::numeric_limits<std::int32_t>::max(), "test");
  EXPECT_EQ(largest.Parse(), IMEPERR_NONE);
}

TEST(ParserLines, Line_feeds_in_values_comments_and_bodies_count) {
  const Definition definition(
      "A \"x\ny\" b: (1\n+2) c: {\nB\n} (* \n *) # c\nd[\n1]:\n2 e: {\"\n\": 1}\nf;\nC");
  ASSERT_EQ(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.Element(definition.parser.GetElemCount() - 1).GetLine(), 12);
}

TEST(Parse, First_element_becomes_current) {
  Definition definition("A B C");
  EXPECT_EQ(definition.parser.GetCurElemIndex(), 0);
  EXPECT_EQ(definition.parser.GetCurElement(), definition.parser.GetElement(0));
}

TEST(Parse, Success_leaves_no_error_text) {
  IxoMepParser parser("A ; ", "test");
  EXPECT_EQ(parser.Parse(), IMEPERR_UNEXPECTED_CHARACTER);
  EXPECT_NE(parser.GetErrorText(), "");
  parser.SetText("A");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetErrorText(), "");
  EXPECT_EQ(parser.GetErrorCode(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetErrorOffset(), -1);
  EXPECT_EQ(parser.GetErrorLine(), 0);
  EXPECT_EQ(parser.GetErrorColumn(), 0);
  EXPECT_EQ(parser.GetErrorContext(), parser.GetContext());
}

TEST(Parse, An_error_at_the_first_byte_has_a_place) {
  const Definition definition("?");
  EXPECT_NE(definition.code, IMEPERR_NONE);
  EXPECT_EQ(definition.parser.GetErrorOffset(), 0);
  EXPECT_EQ(definition.parser.GetErrorLine(), 1);
  EXPECT_EQ(definition.parser.GetErrorColumn(), 1);
}

TEST(Parse, Stops_at_the_first_error_and_keeps_what_was_read) {
  EXPECT_EQ(ShapeOf("A b: 1 C d e.f G"), "error 29: A b=1; C d");
}

TEST(Parse, Again_appends_to_the_elements) {
  IxoMepParser parser("A b: { C } D", "test");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A b{C}; D; A b{C}; D");
  EXPECT_EQ(parser.GetCurElemIndex(), 0);
}

TEST(Parse, Again_on_a_body_appends_too) {
  const Definition definition("A { b: 1 C }");
  IxoMepParser* body = definition.Element(0).GetBodyParser();
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(body->Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(*body), "C b=1; C");
}

static_assert(std::has_virtual_destructor_v<IxoMepParser>);
static_assert(std::has_virtual_destructor_v<IxoMepElement>);
static_assert(std::has_virtual_destructor_v<IxoMepAttribute>);

TEST(Construction, Takes_a_text_alone) {
  IxoMepParser parser("A b: 1");
  EXPECT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(parser.GetContext(), "");
}

TEST(SetText, Takes_a_text_that_belongs_to_its_own_elements) {
  IxoMepParser parser("K { A 1 } \n");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  parser.SetText(parser.GetBodyParser()->GetCompleteText());
  EXPECT_EQ(parser.GetCompleteText(), "K { A 1 } \n");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  parser.SetText(parser.GetElement(0)->GetKeyword());
  EXPECT_EQ(parser.GetCompleteText(), "K");
}

TEST(SetText, Starts_anew) {
  IxoMepValueSet vars;
  IxoMepParser parser("A B C", 2, 1, 9, "test");
  parser.SetVars(&vars);
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  parser.SetText("D e: 1 F");
  EXPECT_EQ(parser.GetElemCount(), 0);
  EXPECT_EQ(parser.GetCurElemIndex(), -1);
  EXPECT_EQ(parser.GetText(), "D e: 1 F");
  EXPECT_EQ(parser.GetContext(), "test");
  EXPECT_EQ(parser.GetVars(), &vars);
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "D e=1; F");
}

// --- Factories --------------------------------------------------------------------------------

class OwnExpression : public IxoMepExpressionParser {
 public:
  IxoMepExpressionParser* CreateCopy() const override { return new OwnExpression(*this); }
};

class OwnParser : public IxoMepParser {
 public:
  using IxoMepParser::IxoMepParser;
  IxoMepParser* NewParser(const String& text, std::int32_t start, std::int32_t length,
                          std::int32_t firstLine, const String& context) override {
    calls.push_back(std::string(text.Copy(start, length).view()) + " @" +
                    std::to_string(firstLine) + " " + std::string(context.view()));
    return new OwnParser(text, start, length, firstLine, context);
  }
  IxoMepExpressionParser* NewExprParser() override { return new OwnExpression; }
  std::vector<std::string> calls;
};

bool IsOwn(const IxoMepParser* parser) { return dynamic_cast<const OwnParser*>(parser) != nullptr; }
bool IsOwn(const IxoMepExpressionParser* parser) {
  return dynamic_cast<const OwnExpression*>(parser) != nullptr;
}

TEST(Factories, Bodies_of_every_depth_are_of_the_parsers_kind) {
  OwnParser parser("A {\n B b: { C } } D", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A {B b{C}}; D");
  EXPECT_EQ(parser.calls, std::vector<std::string>{"\n B b: { C }  @1 test"});
  const IxoMepParser* body = parser.GetElement(0)->GetBodyParser();
  ASSERT_TRUE(IsOwn(body));
  EXPECT_EQ(static_cast<const OwnParser*>(body)->calls, std::vector<std::string>{" C  @2 test"});
  EXPECT_TRUE(IsOwn(body->GetElement(0)->GetAttr(0)->GetBodyParser()));
}

TEST(Factories, Expression_objects_are_of_the_parsers_kind) {
  OwnParser parser("A (x) b: (y) c[z]: 1 D { w; E (v) }\nx := 1;", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE) << parser.GetErrorText().c_str();
  const IxoMepElement& first = *parser.GetElement(0);
  EXPECT_TRUE(IsOwn(first.GetValue()->GetExpr()));
  EXPECT_TRUE(IsOwn(first.GetAttr(0)->GetValue()->GetExpr()));
  EXPECT_TRUE(IsOwn(first.GetAttr(1)->GetArrayLValue()));
  const IxoMepParser* body = parser.GetElement(1)->GetBodyParser();
  EXPECT_TRUE(IsOwn(body->GetElement(0)->GetValue()->GetExpr()));
  EXPECT_TRUE(IsOwn(body->GetElement(1)->GetValue()->GetExpr()));
  EXPECT_TRUE(IsOwn(parser.GetElement(2)->GetValue()->GetExpr()));
}

TEST(Factories, Base_class_makes_its_own_kind) {
  IxoMepParser parser("", "");
  const std::unique_ptr<IxoMepParser> body(parser.NewParser("A B", 2, 1, 4, "c"));
  EXPECT_EQ(body->GetText(), "B");
  EXPECT_EQ(body->GetContext(), "c");
  const std::unique_ptr<IxoMepExpressionParser> expression(parser.NewExprParser());
  EXPECT_NE(expression, nullptr);
}

// A factory that gives every body another text than it was asked to.
class Replacing : public IxoMepParser {
 public:
  using IxoMepParser::IxoMepParser;
  IxoMepParser* NewParser(const String&, std::int32_t, std::int32_t, std::int32_t,
                          const String& context) override {
    return new IxoMepParser(replacement, context);
  }
  String replacement = "X y: 1";
};

TEST(Factories, Body_may_be_given_another_text) {
  Replacing parser("A {\n b } C c: { d }", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  EXPECT_EQ(Shape(parser), "A {X y=1}; C c{X y=1}");
  EXPECT_EQ(parser.GetElement(1)->GetLine(), 2);
}

TEST(Factories, Bodies_of_an_own_kind_and_with_another_text_may_begin_with_attributes) {
  OwnParser own("A { x: 1 B }", "test");
  ASSERT_EQ(own.Parse(), IMEPERR_NONE) << own.GetErrorText().c_str();
  Replacing parser("A { b }", "test");
  parser.replacement = "x: 1 Y";
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE) << parser.GetErrorText().c_str();
  EXPECT_EQ(Shape(parser), "A {Y}");
}

TEST(Factories, Error_in_another_text_is_the_parsers_error) {
  Replacing parser("A {\n b }", "test");
  parser.replacement = "X 5km";
  EXPECT_EQ(parser.Parse(), IMEPERR_UNKNOWN_UNIT);
  EXPECT_EQ(parser.GetErrorText(), ErrorTextOf(IMEPERR_UNKNOWN_UNIT, {{"%s", "km"}}, 0));
  EXPECT_EQ(parser.GetErrorOffset(), 2);
}

// A factory that makes nothing.
class Refusing : public IxoMepParser {
 public:
  using IxoMepParser::IxoMepParser;
  IxoMepParser* NewParser(const String&, std::int32_t, std::int32_t, std::int32_t,
                          const String&) override {
    return nullptr;
  }
  IxoMepExpressionParser* NewExprParser() override { return nullptr; }
};

TEST(Factories, Without_a_body_parsing_ends_with_38_and_expressions_are_plain) {
  Refusing parser("A (x) { B }", "test");
  EXPECT_EQ(parser.Parse(), IMEPERR_TOO_DEEP);
  EXPECT_EQ(Shape(parser), "A=(x)");
}

TEST(Memory, Text_beyond_the_memory_ends_with_38_or_37) {
  TestHost host;
  host.files["file"] = "X y: { Z }\n" + Repeated("#", 500);
  const String text("A (x)\nb := {c};\n" +
                    Repeated("B b: \"abcdefghijklmnopqrstuvwxyz\" c[1]: (d) {E}\n", 20) +
                    "@INCLUDE \"file\"\n" + Repeated("F { G h: { @INCLUDE \"file\" } }\n", 5));
  int failures = 0;
  bool succeeded = false;
  for (std::size_t bytes = 0; bytes < 200000 && !succeeded; bytes += 32) {
    IxoMepParser parser(text, "test");
    const ScopedMemoryLimit limit(bytes);
    const IxoMepErrorEnum code = parser.Parse();
    EXPECT_EQ(parser.GetErrorCode(), code);
    succeeded = code == IMEPERR_NONE;
    if (succeeded) continue;
    ++failures;
    EXPECT_TRUE(code == IMEPERR_TOO_DEEP || code == IMEPERR_TOO_LONG) << code << " at " << bytes;
  }
  EXPECT_TRUE(succeeded);
  EXPECT_GT(failures, 10);
}

}  // namespace
}  // namespace ixomep::test
