// Colours: of a value, of an element's attributes, and as expression objects.
#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <string>

#include "ixomep/host/color.h"
#include "tests/parser/queries.h"

namespace ixomep::test {
namespace {

constexpr std::int32_t kNone = -1;

// The packed colour, or kNone.
std::int32_t ColorOf(const IxoMepValue& value) {
  Color color(1, 2, 3);
  if (IxoMepParser::GetColor(value, color)) return color.GetPacked();
  EXPECT_EQ(color, Color(1, 2, 3)) << "changed without a colour";
  return kNone;
}

std::int32_t ColorOf(const IxoMepParser& parser) {
  Color color(1, 2, 3);
  if (parser.GetColor(color)) return color.GetPacked();
  EXPECT_EQ(color, Color(1, 2, 3)) << "changed without a colour";
  return kNone;
}

std::int32_t ColorOfText(const char* attributes) {
  return ColorOf(*ReadText(String("SHAPE ") + attributes));
}

TEST(ColorOfValue, An_integer_has_red_in_bits_16_green_in_8_and_blue_in_0) {
  EXPECT_EQ(ColorOf(0x123456), 0x123456);
  EXPECT_EQ(ColorOf(0), 0);
  EXPECT_EQ(ColorOf(-1), 0xFFFFFF);
  EXPECT_EQ(ColorOf(0x7F123456), 0x123456);
}

TEST(ColorOfValue, A_reference_to_a_number_is_that_number) {
  IxoMepValue integer(0x123456);
  IxoMepValue real(255.9);
  IxoMepValue to_integer(&integer);
  EXPECT_EQ(ColorOf(IxoMepValue(&integer)), 0x123456);
  EXPECT_EQ(ColorOf(IxoMepValue(&to_integer)), 0x123456);
  EXPECT_EQ(ColorOf(IxoMepValue(&real)), 255);
}

TEST(ColorOfValue, A_real_is_truncated_within_32_bits) {
  EXPECT_EQ(ColorOf(255.9), 255);
  EXPECT_EQ(ColorOf(-1.5), 0xFFFFFF);
  EXPECT_EQ(ColorOf(3e9), kNone);
  EXPECT_EQ(ColorOf(-3e9), kNone);
  EXPECT_EQ(ColorOf(std::numeric_limits<double>::quiet_NaN()), kNone);
}

TEST(ColorOfValue, A_string_is_a_name_of_the_host) {
  EXPECT_EQ(ColorOf("red"), 0xFF0000);
  EXPECT_EQ(ColorOf("SteelBlue"), 0x4682B4);
  EXPECT_EQ(ColorOf("no colour"), kNone);
  EXPECT_EQ(ColorOf(""), kNone);
}

TEST(ColorOfValue, Other_types_are_no_colours) {
  using Type = IxoMepValueType;
  IxoMepValue name("red");
  EXPECT_EQ(ColorOf(IxoMepValue()), kNone);
  EXPECT_EQ(ColorOf({Type::Measure, 5}), kNone);
  EXPECT_EQ(ColorOf({Type::Time, 5}), kNone);
  EXPECT_EQ(ColorOf(IxoMepValue(Type::Array)), kNone);
  EXPECT_EQ(ColorOf(IxoMepValue(Type::Map)), kNone);
  EXPECT_EQ(ColorOf(IxoMepValue(Type::Object)), kNone);
  EXPECT_EQ(ColorOf(IxoMepValue(&name)), kNone);
  Color color;
  EXPECT_FALSE(IxoMepParser::GetColor(static_cast<const IxoMepValue*>(nullptr), color));
}

TEST(ColorOfElement, The_colour_attribute_comes_first) {
  EXPECT_EQ(ColorOfText("color: $123456 red: 1 green: 2 blue: 3"), 0x123456);
  EXPECT_EQ(ColorOfText("color: \"red\""), 0xFF0000);
}

TEST(ColorOfElement, A_colour_attribute_that_is_no_colour_gives_none) {
  for (const char* attributes :
       {"color: \"nothing\" red: 1", "color: 5cm red: 1", "color red: 1", "color: {1, 2} r: 1"}) {
    EXPECT_EQ(ColorOfText(attributes), kNone) << attributes;
  }
}

TEST(ColorOfElement, Components_are_combined) {
  EXPECT_EQ(ColorOfText("red: 1 green: 2 blue: 3"), 0x010203);
  EXPECT_EQ(ColorOfText("blue: 3"), 0x000003);
  EXPECT_EQ(ColorOfText("green: 2.9"), 0x000200);
  EXPECT_EQ(ColorOfText("red: \"5\" blue: 1"), 0x000001);
}

TEST(ColorOfElement, Components_stay_within_0_to_255) {
  EXPECT_EQ(ColorOfText("red: 256 green: -1 blue: 255"), 0xFF00FF);
  EXPECT_EQ(ColorOfText("red: 2147483647 green: 1e300 blue: -2147483647"), 0xFF0000);
}

TEST(ColorOfElement, Short_names_count_when_no_long_one_is_there) {
  EXPECT_EQ(ColorOfText("r: 1 g: 2 b: 3"), 0x010203);
  EXPECT_EQ(ColorOfText("r: 1 g: 2 b: 3 green: 9"), 0x000900);
}

TEST(ColorOfElement, Without_any_of_the_attributes_there_is_none) {
  EXPECT_EQ(ColorOfText(""), kNone);
  EXPECT_EQ(ColorOfText("colour: 5 rEd: 1 g1: 2"), kNone);
  EXPECT_EQ(ColorOf(*ReadText("")), kNone);
}

TEST(ColorOfElement, Names_can_be_chosen) {
  const auto parser = ReadText("SHAPE fill: $010203 x: 4 y: 5 z: 6");
  Color color;
  EXPECT_TRUE(parser->GetColor("fill", "x", "y", "z", color));
  EXPECT_EQ(color.GetPacked(), 0x010203);
  EXPECT_TRUE(parser->GetColor("line", "x", "y", "z", color));
  EXPECT_EQ(color.GetPacked(), 0x040506);
  EXPECT_FALSE(parser->GetColor("line", "p", "q", "s", color));
  EXPECT_EQ(color.GetPacked(), 0x040506);
}

TEST(ColorOfElement, Values_are_resolved) {
  IxoMepValueSet scope;
  SetVariable(scope, "c", "blue");
  SetVariable(scope, "n", 7);
  const auto parser = ReadText("SHAPE color: (c)\nSHAPE red: (n) blue: (n + 1)");
  EXPECT_EQ(ColorOf(*parser), kNone);
  parser->SetVars(&scope);
  EXPECT_EQ(ColorOf(*parser), 0x0000FF);
  ASSERT_TRUE(parser->SetCurElemIndex(1));
  EXPECT_EQ(ColorOf(*parser), 0x070008);
}

// --- Expression objects --------------------------------------------------------------------------

TEST(ColorExpression, Of_a_constant_colour_is_a_constant) {
  for (const char* attributes :
       {"color: $123456", "red: 18 green: 52 blue: 86", "r: 18 g: 52 b: 86"}) {
    const auto parser = ReadText(String("SHAPE ") + attributes);
    const ExpressionPtr expression(parser->CreateColorEP());
    ASSERT_NE(expression, nullptr) << attributes;
    ASSERT_NE(expression->GetConstant(), nullptr);
    EXPECT_EQ(expression->GetConstant()->GetType(), IxoMepValueType::Integer);
    EXPECT_EQ(expression->GetConstant()->GetInt(), 0x123456);
  }
}

TEST(ColorExpression, Of_a_colour_name_is_its_packed_colour) {
  const ExpressionPtr expression(ReadText("SHAPE color: \"red\"")->CreateColorEP());
  ASSERT_NE(expression, nullptr);
  EXPECT_EQ(expression->GetConstant()->GetInt(), 0xFF0000);
}

TEST(ColorExpression, Of_an_expression_is_a_copy_of_it) {
  IxoMepValueSet scope;
  SetVariable(scope, "c", 0x010203);
  auto parser = ReadText("SHAPE color: (c + 1)");
  const ExpressionPtr before(parser->CreateColorEP());
  parser->SetVars(&scope);
  const ExpressionPtr with_variables(parser->CreateColorEP());
  parser.reset();
  EXPECT_EQ(ResultOf(before.get(), &scope), std::to_string(0x010204));
  SetVariable(scope, "c", 0x020202);
  EXPECT_EQ(ResultOf(with_variables.get(), &scope), std::to_string(0x020203));
}

TEST(ColorExpression, Of_component_expressions_puts_them_together_at_every_evaluation) {
  IxoMepValueSet scope;
  const auto parser = ReadText("SHAPE red: (n) green: 52 blue: (n + 1 # last\n)");
  const ExpressionPtr expression(parser->CreateColorEP());
  ASSERT_NE(expression, nullptr);
  EXPECT_EQ(expression->GetExpression(nullptr), "(rgbval(n,52,(n)+(1)))");
  SetVariable(scope, "n", 1);
  EXPECT_EQ(ResultOf(expression.get(), &scope), std::to_string(0x013402));
  SetVariable(scope, "n", 2);
  EXPECT_EQ(ResultOf(expression.get(), &scope), std::to_string(0x023403));
}

TEST(ColorExpression, Of_components_takes_the_short_names_and_the_chosen_ones_too) {
  IxoMepValueSet scope;
  SetVariable(scope, "n", 1);
  const auto parser = ReadText("SHAPE r: (n) b: 300 x: (n, n + 4)");
  const ExpressionPtr by_default(parser->CreateColorEP());
  EXPECT_EQ(ResultOf(by_default.get(), &scope), std::to_string(0x0100FF));
  const ExpressionPtr chosen(parser->CreateColorEP("fill", "x", "y", "z"));
  EXPECT_EQ(ResultOf(chosen.get(), &scope), std::to_string(0x050000));
}

TEST(ColorExpression, Of_no_colour_is_none) {
  for (const char* attributes : {"", "color: \"nothing\"", "color", "color: 5cm red: (n)"}) {
    EXPECT_EQ(ReadText(String("SHAPE ") + attributes)->CreateColorEP(), nullptr) << attributes;
  }
}

TEST(ColorExpression, Is_of_the_class_that_the_host_makes) {
  OwnParser parser("A color: 5\nB color: (c)\nC red: (n)", "test");
  ASSERT_EQ(parser.Parse(), IMEPERR_NONE);
  for (std::int32_t i = 0; i < 3; ++i) {
    ASSERT_TRUE(parser.SetCurElemIndex(i));
    const ExpressionPtr expression(parser.CreateColorEP());
    EXPECT_NE(dynamic_cast<OwnExpression*>(expression.get()), nullptr) << i;
  }
}

}  // namespace
}  // namespace ixomep::test
