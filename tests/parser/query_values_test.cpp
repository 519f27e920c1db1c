// Typed getters: resolution of stored values and the conversion of every type by every getter.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <string>

#include "tests/parser/queries.h"
#include "tests/support/definitions.h"

namespace ixomep::test {
namespace {

using Type = IxoMepValueType;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A parser whose element and attribute "a" both hold the value.
ParserPtr Holding(const IxoMepValue& value) {
  auto parser = ReadText("KEY 0 a: 0");
  *parser->GetValue() = value;
  *parser->GetValue("a") = value;
  return parser;
}

// --- Conversions --------------------------------------------------------------------------------

struct Conversion {
  const char* literal;
  Type type;
  const char* text;
  std::int32_t integer;
  double real;
  bool truth;
  std::int32_t tenths;
  std::int32_t point_tenths;
  double seconds;
};

constexpr Conversion kConversions[] = {
    {"\"12\"", Type::String, "12", 0, 0.0, true, 0, 0, 0.0},
    {"\"\"", Type::String, "", 0, 0.0, false, 0, 0, 0.0},
    {"\"0\"", Type::String, "0", 0, 0.0, true, 0, 0, 0.0},
    {"7", Type::Integer, "7", 7, 7.0, true, 0, 0, 0.0},
    {"-7", Type::Integer, "-7", -7, -7.0, true, 0, 0, 0.0},
    {"0", Type::Integer, "0", 0, 0.0, false, 0, 0, 0.0},
    {"2.5", Type::Real, "2.5", 2, 2.5, true, 0, 0, 0.0},
    {"-2.5", Type::Real, "-2.5", -2, -2.5, true, 0, 0, 0.0},
    {"0.25", Type::Real, "0.25", 0, 0.25, true, 0, 0, 0.0},
    {"0.0", Type::Real, "0", 0, 0.0, false, 0, 0, 0.0},
    {"3e9", Type::Real, "3000000000", 0, 3e9, true, 0, 0, 0.0},
    {"1cm", Type::Measure, "1cm", 0, 0.0, true, 100, 283, 0.0},
    {"-1cm", Type::Measure, "-1cm", 0, 0.0, true, -100, -283, 0.0},
    {"0cm", Type::Measure, "0cm", 0, 0.0, false, 0, 0, 0.0},
    {"5s", Type::Time, "00:000:00:00:05", 0, 0.0, true, 0, 0, 5.0},
    {"0s", Type::Time, "00:000:00:00:00", 0, 0.0, false, 0, 0, 0.0},
    {"(w)", Type::Expression, "(w)", 0, 0.0, false, 0, 0, 0.0},
    {"{1, 2}", Type::Array, "{1, 2}", 0, 0.0, false, 0, 0, 0.0},
    {"{\"k\": 1}", Type::Map, "{\"k\": 1}", 0, 0.0, false, 0, 0, 0.0},
};

TEST(TypedValues, Every_getter_converts_every_type_that_has_a_literal) {
  for (const Conversion& row : kConversions) {
    SCOPED_TRACE(row.literal);
    const auto parser = ReadText(String("KEY a: ") + row.literal + " ");
    EXPECT_EQ(parser->GetValueType("a"), row.type);
    EXPECT_EQ(parser->GetValueTypeOfPos(0), row.type);
    EXPECT_EQ(parser->GetStrValue("a"), row.text);
    EXPECT_EQ(parser->GetIntValue("a"), row.integer);
    EXPECT_EQ(parser->GetRealValue("a"), row.real);
    EXPECT_EQ(parser->GetBoolValue("a", !row.truth), row.truth);
    EXPECT_EQ(parser->GetValueTMM("a"), row.tenths);
    EXPECT_EQ(parser->GetValueTPt("a"), row.point_tenths);
    EXPECT_EQ(parser->GetValueSec("a"), row.seconds);
    EXPECT_EQ(Described(parser->GetMapValue("a").get()), Described(parser->GetValue("a")));
  }
}

TEST(TypedValues, Forms_without_a_name_convert_the_own_value_alike) {
  for (const Conversion& row : kConversions) {
    SCOPED_TRACE(row.literal);
    const auto parser = ReadText(String("KEY ") + row.literal + " ");
    EXPECT_EQ(parser->GetValueType(), row.type);
    EXPECT_EQ(parser->GetStrValue(), row.text);
    EXPECT_EQ(parser->GetRealValue(), row.real);
    EXPECT_EQ(parser->GetBoolValue(!row.truth), row.truth);
    EXPECT_EQ(parser->GetValueTMM(), row.tenths);
    EXPECT_EQ(parser->GetValueTPt(), row.point_tenths);
    EXPECT_EQ(parser->GetValueSec(), row.seconds);
  }
}

TEST(TypedValues, Try_forms_give_what_the_getters_give_and_true) {
  for (const Conversion& row : kConversions) {
    SCOPED_TRACE(row.literal);
    const auto parser = ReadText(String("KEY ") + row.literal + " a: " + row.literal + " ");
    String text = "before";
    std::int32_t integer = 99;
    double real = 99.0;
    EXPECT_TRUE(parser->TryGetStrValue("a", text));
    EXPECT_EQ(text, row.text);
    EXPECT_TRUE(parser->TryGetIntValue("a", integer));
    EXPECT_EQ(integer, row.integer);
    EXPECT_TRUE(parser->TryGetRealValue("a", real));
    EXPECT_EQ(real, row.real);
    text = "before";
    real = 99.0;
    EXPECT_TRUE(parser->TryGetStrValue(text));
    EXPECT_EQ(text, row.text);
    EXPECT_TRUE(parser->TryGetRealValue(real));
    EXPECT_EQ(real, row.real);
    EXPECT_TRUE(parser->TryGetIntValue(integer));
    EXPECT_EQ(integer, parser->GetIntValue());
  }
}

TEST(TypedValues, Types_without_a_literal_convert_to_nothing) {
  for (const IxoMepValue& value : {IxoMepValue(), IxoMepValue(Type::Object),
                                   IxoMepValue(static_cast<IxoMepExprNode*>(nullptr))}) {
    const auto parser = Holding(value);
    SCOPED_TRACE(Described(&value));
    EXPECT_EQ(parser->GetValueType("a"), value.GetType());
    EXPECT_EQ(parser->GetStrValue("a"), value.GetStr());
    EXPECT_EQ(parser->GetIntValue("a"), 0);
    EXPECT_EQ(parser->GetRealValue("a"), 0.0);
    EXPECT_FALSE(parser->GetBoolValue("a", true));
    EXPECT_EQ(parser->GetValueTMM("a"), 0);
    EXPECT_EQ(parser->GetValueTPt("a"), 0);
    EXPECT_EQ(parser->GetValueSec("a"), 0.0);
  }
}

// --- Missing ------------------------------------------------------------------------------------

void ExpectMissing(const IxoMepParser& parser, const char* name) {
  EXPECT_EQ(parser.GetValueType(name), Type::Undefined);
  EXPECT_EQ(parser.GetStrValue(name), "");
  EXPECT_EQ(parser.GetIntValue(name), 0);
  EXPECT_EQ(parser.GetRealValue(name), 0.0);
  EXPECT_EQ(parser.GetValueTMM(name), 0);
  EXPECT_EQ(parser.GetValueTPt(name), 0);
  EXPECT_EQ(parser.GetValueSec(name), 0.0);
  EXPECT_EQ(parser.GetMapValue(name), nullptr);
  String text = "before";
  std::int32_t integer = 99;
  double real = 9.5;
  EXPECT_FALSE(parser.TryGetStrValue(name, text));
  EXPECT_FALSE(parser.TryGetIntValue(name, integer));
  EXPECT_FALSE(parser.TryGetRealValue(name, real));
  EXPECT_EQ(text, "before");
  EXPECT_EQ(integer, 99);
  EXPECT_EQ(real, 9.5);
}

void ExpectOwnMissing(const IxoMepParser& parser) {
  EXPECT_EQ(parser.GetValueType(), Type::Undefined);
  EXPECT_EQ(parser.GetStrValue(), "");
  EXPECT_EQ(parser.GetIntValue(), 0);
  EXPECT_EQ(parser.GetIntValue(""), 0);
  EXPECT_EQ(parser.GetRealValue(), 0.0);
  EXPECT_TRUE(parser.GetBoolValue(true));
  EXPECT_FALSE(parser.GetBoolValue(false));
  EXPECT_EQ(parser.GetValueTMM(), 0);
  EXPECT_EQ(parser.GetValueTPt(), 0);
  EXPECT_EQ(parser.GetValueSec(), 0.0);
  String text = "before";
  std::int32_t integer = 99;
  double real = 9.5;
  EXPECT_FALSE(parser.TryGetStrValue(text));
  EXPECT_FALSE(parser.TryGetIntValue(integer));
  EXPECT_FALSE(parser.TryGetIntValue("", integer));
  EXPECT_FALSE(parser.TryGetRealValue(real));
  EXPECT_EQ(text, "before");
  EXPECT_EQ(integer, 99);
  EXPECT_EQ(real, 9.5);
}

TEST(TypedValues, An_attribute_that_is_not_there_or_has_no_value_is_missing) {
  const auto parser = ReadText("KEY flag modified: mod body: { B }");
  for (const char* name : {"none", "flag", "modified", "body"}) {
    SCOPED_TRACE(name);
    ExpectMissing(*parser, name);
  }
}

TEST(TypedValues, An_own_value_that_is_not_there_is_missing) {
  ExpectOwnMissing(*ReadText("KEY a: 1"));
  ExpectOwnMissing(*ReadText(""));
}

TEST(TypedValues, An_expression_that_fails_is_missing_and_its_error_is_swallowed) {
  IxoMepValueSet scope;
  const auto parser = ReadText("KEY (1 / w) a: (1 / w)");
  SetVariable(scope, "w", 0);
  parser->SetVars(&scope);
  ExpectMissing(*parser, "a");
  ExpectOwnMissing(*parser);
  EXPECT_EQ(parser->GetErrorCode(), IMEPERR_NONE);
}

TEST(TypedValues, The_evaluator_writes_its_message_into_the_error_text) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 0);
  const auto parser = ReadText("KEY a: (1 / w)");
  parser->SetVars(&scope);
  EXPECT_EQ(parser->GetIntValue("a"), 0);
  EXPECT_EQ(parser->GetErrorText(), "A number is divided by zero.");
}

TEST(TypedValues, A_hook_that_fails_with_a_result_leaks_nothing) {
  class Failing : public IxoMepExpressionParser {
   public:
    IxoMepExpressionParser* CreateCopy() const override { return new Failing(*this); }
    IxoMepErrorEnum Evaluate(IxoMepValueSet*, IxoMepValue*& result, String&, bool,
                             bool) const override {
      result = new IxoMepValue(1);
      return IMEPERR_USER;
    }
  };
  IxoMepValueSet scope;
  const auto parser = Holding(IxoMepValue(new Failing, true));
  parser->SetVars(&scope);
  ExpectMissing(*parser, "a");
}

TEST(TypedValues, A_hook_that_runs_out_of_memory_makes_the_value_missing) {
  class Throwing : public IxoMepExpressionParser {
   public:
    IxoMepExpressionParser* CreateCopy() const override { return new Throwing(*this); }
    IxoMepErrorEnum Evaluate(IxoMepValueSet*, IxoMepValue*&, String&, bool, bool) const override {
      throw std::bad_alloc();
    }
  };
  IxoMepValueSet scope;
  const auto parser = Holding(IxoMepValue(new Throwing, true));
  parser->SetVars(&scope);
  ExpectMissing(*parser, "a");
  EXPECT_TRUE(parser->GetBoolValue("a", true));
  EXPECT_EQ(parser->ExpectValueType("a", Type::Integer, true), IMEPERR_NONE);
}

// --- Resolution ---------------------------------------------------------------------------------

TEST(Resolution, A_reference_is_replaced_by_what_it_refers_to) {
  IxoMepValue targets[] = {IxoMepValue("text"), IxoMepValue(7), IxoMepValue(2.5),
                           IxoMepValue(Type::Measure, 100), IxoMepValue(Type::Time, 5)};
  for (IxoMepValue& target : targets) {
    SCOPED_TRACE(Described(&target));
    const auto parser = Holding(IxoMepValue(&target));
    const auto direct = Holding(target);
    EXPECT_EQ(parser->GetValueType("a"), target.GetType());
    EXPECT_EQ(parser->GetValueType(), target.GetType());
    EXPECT_EQ(parser->GetStrValue("a"), direct->GetStrValue("a"));
    EXPECT_EQ(parser->GetIntValue("a"), direct->GetIntValue("a"));
    EXPECT_EQ(parser->GetRealValue("a"), direct->GetRealValue("a"));
    EXPECT_EQ(parser->GetBoolValue("a", false), true);
    EXPECT_EQ(parser->GetValueTMM("a"), direct->GetValueTMM("a"));
    EXPECT_EQ(parser->GetValueTPt("a"), direct->GetValueTPt("a"));
    EXPECT_EQ(parser->GetValueSec("a"), direct->GetValueSec("a"));
    EXPECT_EQ(Described(parser->GetMapValue("a").get()), Described(&target));
  }
}

TEST(Resolution, Numbers_measures_and_times_are_read_through_a_chain_of_references) {
  IxoMepValue number(7);
  IxoMepValue measure(Type::Measure, 100);
  IxoMepValue time(Type::Time, 5);
  IxoMepValue to_number(&number);
  IxoMepValue to_measure(&measure);
  IxoMepValue to_time(&time);
  EXPECT_EQ(Holding(IxoMepValue(&to_number))->GetIntValue("a"), 7);
  EXPECT_EQ(Holding(IxoMepValue(&to_number))->GetRealValue("a"), 7.0);
  EXPECT_EQ(Holding(IxoMepValue(&to_measure))->GetValueTMM("a"), 100);
  EXPECT_EQ(Holding(IxoMepValue(&to_measure))->GetValueTPt("a"), 283);
  EXPECT_EQ(Holding(IxoMepValue(&to_time))->GetValueSec("a"), 5.0);
}

TEST(Resolution, A_reference_to_itself_does_not_hang) {
  const auto parser = ReadText("KEY a: 1");
  *parser->GetValue("a") = IxoMepValue(parser->GetValue("a"));
  EXPECT_EQ(parser->GetIntValue("a"), 0);
  EXPECT_EQ(parser->GetValueType("a"), Type::Reference);
  EXPECT_FALSE(parser->GetBoolValue("a", true));
}

TEST(Resolution, A_reference_to_an_expression_is_evaluated) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", 5);
  const auto parser = ReadText("KEY e: (w * 2) a: 0");
  *parser->GetValue("a") = IxoMepValue(parser->GetValue("e"));
  parser->SetVars(&scope);
  EXPECT_EQ(parser->GetIntValue("a"), 10);
}

TEST(Resolution, An_expression_is_evaluated_in_the_variables) {
  IxoMepValueSet scope;
  const auto parser = ReadText("NOTE size: (w * 2) label: \"a\"");
  EXPECT_EQ(parser->GetValueType("size"), Type::Expression);
  EXPECT_EQ(parser->GetIntValue("size"), 0);
  SetVariable(scope, "w", 5);
  parser->SetVars(&scope);
  EXPECT_EQ(parser->GetValueType("size"), Type::Integer);
  EXPECT_EQ(parser->GetIntValue("size"), 10);
  SetVariable(scope, "w", 6);
  EXPECT_EQ(parser->GetIntValue("size"), 12);
  EXPECT_EQ(Described(parser->GetMapValue("size").get()), "integer 12");
  EXPECT_EQ(parser->GetValue("size")->GetType(), Type::Expression);
}

TEST(Resolution, Without_variables_an_expression_stays_what_it_is) {
  const auto parser = ReadText("NOTE size: (w*2)");
  EXPECT_EQ(parser->GetStrValue("size"), "((w)*(2))");
  EXPECT_EQ(Described(parser->GetMapValue("size").get()), "expression ((w)*(2))");
}

TEST(Resolution, Evaluation_is_not_strict_and_leaves_no_variable_behind) {
  IxoMepValueSet scope;
  SetVariable(scope, "known", 1);
  const auto parser = ReadText("KEY a: (fresh := 5, known := known + 1) b: (unknown)");
  parser->SetVars(&scope);
  EXPECT_EQ(parser->GetIntValue("a"), 2);
  EXPECT_FALSE(scope.OldIsContained("fresh"));
  EXPECT_EQ(scope.OldGetValue("known")->GetInt(), 2);
  String text = "before";
  EXPECT_TRUE(parser->TryGetStrValue("b", text));
  EXPECT_EQ(text, "");
}

TEST(Resolution, A_result_that_is_left_unset_counts_as_undefined) {
  IxoMepValueSet scope;
  SetVariable(scope, "list", *ReadText("KEY {2, 1}")->GetValue());
  const auto parser = ReadText("KEY a: (list.sort())");
  parser->SetVars(&scope);
  std::int32_t integer = 99;
  EXPECT_TRUE(parser->TryGetIntValue("a", integer));
  EXPECT_EQ(integer, 0);
  EXPECT_EQ(Described(parser->GetMapValue("a").get()), "undefined (undefined)");
  EXPECT_FALSE(parser->GetBoolValue("a", true));
}

// --- Integers -----------------------------------------------------------------------------------

TEST(IntValue, Reals_are_truncated_towards_zero_within_32_bits) {
  const std::pair<double, std::int32_t> rows[] = {{2.5, 2},
                                                  {-2.5, -2},
                                                  {2147483647.0, 2147483647},
                                                  {2147483648.0, 0},
                                                  {-2147483648.0, -2147483647 - 1},
                                                  {-2147483649.0, 0},
                                                  {3e9, 0},
                                                  {kNaN, 0},
                                                  {kInfinity, 0},
                                                  {-kInfinity, 0},
                                                  {-0.9, 0}};
  for (const auto& [real, expected] : rows) {
    EXPECT_EQ(Holding(real)->GetIntValue("a"), expected) << real;
  }
}

TEST(IntValue, Of_the_empty_name_reads_the_own_value_as_text) {
  const std::pair<const char*, std::int32_t> rows[] = {
      {"KEY \"42\" a: 1", 42},
      {"KEY \"  -17 pieces\"", -17},
      {"KEY \"+5\"", 5},
      {"KEY \"\\t\\n\\v\\f\\r 6\"", 6},
      {"KEY \"5-3\"", 5},
      {"KEY \"- 5\"", 0},
      {"KEY \"abc\"", 0},
      {"KEY \"\"", 0},
      {"KEY \"$ff\"", 0},
      {"KEY \"99999999999999999999\"", 2147483647},
      {"KEY \"-99999999999999999999\"", -2147483647 - 1},
      {"KEY \"2147483648\"", 2147483647},
      {"KEY \"-2147483648\"", -2147483647 - 1},
      {"KEY 7", 7},
      {"KEY 2.9", 2},
      {"KEY 3cm", 3},
      {"KEY {4, 5}", 0},
  };
  for (const auto& [text, expected] : rows) {
    const auto parser = ReadText(text);
    std::int32_t integer = 99;
    EXPECT_EQ(parser->GetIntValue(""), expected) << text;
    EXPECT_EQ(parser->GetIntValue(), expected) << text;
    EXPECT_TRUE(parser->TryGetIntValue("", integer)) << text;
    EXPECT_EQ(integer, expected) << text;
  }
}

TEST(IntValue, Of_the_empty_name_evaluates_an_expression_first) {
  IxoMepValueSet scope;
  SetVariable(scope, "w", "12 pieces");
  const auto parser = ReadText("KEY (w)");
  parser->SetVars(&scope);
  EXPECT_EQ(parser->GetIntValue(""), 12);
}

// --- Truth --------------------------------------------------------------------------------------

TEST(BoolValue, A_modifier_decides_whatever_the_value_is) {
  const auto parser = ReadText(
      "KEY a: true b: yes c: no d: false e: mod: 1 f: true: 0 g: yes: \"\" h: tRUE i: yess");
  for (const char* name : {"a", "b", "f", "g"})
    EXPECT_TRUE(parser->GetBoolValue(name, false)) << name;
  for (const char* name : {"c", "d", "e", "h", "i"}) {
    EXPECT_FALSE(parser->GetBoolValue(name, true)) << name;
  }
}

TEST(BoolValue, An_attribute_alone_is_true) {
  EXPECT_TRUE(ReadText("KEY a")->GetBoolValue("a", false));
  EXPECT_TRUE(ReadText("KEY a: { B }")->GetBoolValue("a", false));
}

TEST(BoolValue, A_missing_attribute_gives_the_default) {
  const auto parser = ReadText("KEY");
  EXPECT_TRUE(parser->GetBoolValue("a", true));
  EXPECT_FALSE(parser->GetBoolValue("a", false));
}

TEST(BoolValue, An_expression_that_fails_gives_the_default) {
  IxoMepValueSet scope;
  const auto parser = ReadText("KEY a: (1 / w)");
  SetVariable(scope, "w", 0);
  parser->SetVars(&scope);
  EXPECT_TRUE(parser->GetBoolValue("a", true));
  EXPECT_FALSE(parser->GetBoolValue("a", false));
}

TEST(BoolValue, Not_a_number_is_true) {
  EXPECT_TRUE(Holding(kNaN)->GetBoolValue("a", false));
  EXPECT_TRUE(Holding({Type::Time, kNaN})->GetBoolValue("a", false));
}

TEST(BoolValue, A_measure_is_true_from_one_tenth_on) {
  const std::pair<double, bool> rows[] = {{0.9, false},     {-0.9, false},  {0.99999, true},
                                          {-0.99999, true}, {1.0, true},    {-1.0, true},
                                          {0.0, false},     {0.9999, false}};
  for (const auto& [tenths, expected] : rows) {
    EXPECT_EQ(Holding({Type::Measure, tenths})->GetBoolValue("a", !expected), expected) << tenths;
  }
}

// --- Measures and times --------------------------------------------------------------------------

TEST(MeasureValues, Tenths_of_a_millimetre_are_truncated_after_a_nudge) {
  const std::pair<double, std::int32_t> rows[] = {{100.0, 100},      {12.999995, 13}, {12.7, 12},
                                                  {-12.999995, -13}, {-12.7, -12},    {0.0, 0}};
  for (const auto& [tenths, expected] : rows) {
    EXPECT_EQ(Holding({Type::Measure, tenths})->GetValueTMM("a"), expected) << tenths;
  }
}

TEST(MeasureValues, Tenths_of_a_point_are_rounded) {
  const std::pair<double, std::int32_t> rows[] = {
      {100.0, 283}, {-100.0, -283}, {10.0, 28}, {-10.0, -28}, {1.0, 3}, {-1.0, -3}, {0.0, 0}};
  for (const auto& [tenths, expected] : rows) {
    EXPECT_EQ(Holding({Type::Measure, tenths})->GetValueTPt("a"), expected) << tenths;
  }
}

TEST(MeasureValues, Out_of_range_and_not_a_number_have_a_result) {
  EXPECT_EQ(Holding({Type::Measure, 1e300})->GetValueTMM("a"), 2147483647);
  EXPECT_EQ(Holding({Type::Measure, -1e300})->GetValueTPt("a"), -2147483647 - 1);
  EXPECT_EQ(Holding({Type::Measure, kNaN})->GetValueTMM("a"), 0);
  EXPECT_EQ(Holding({Type::Measure, kNaN})->GetValueTPt("a"), 0);
}

TEST(TimeValues, Seconds_are_as_stored) {
  EXPECT_EQ(Holding({Type::Time, 2.75})->GetValueSec("a"), 2.75);
  EXPECT_EQ(ReadText("KEY a: 00:001:00:00:01")->GetValueSec("a"), 86401.0);
}

// --- Memory -------------------------------------------------------------------------------------

TEST(TypedValues, Without_memory_a_getter_gives_its_neutral_result) {
  const std::string long_text(100000, 'x');
  IxoMepValueSet scope;
  SetVariable(scope, "w", String(long_text));
  const auto parser = ReadText("KEY a: (w + w) b: {1, 2, 3}");
  parser->SetVars(&scope);
  const ScopedMemoryLimit limit(1000);
  EXPECT_EQ(parser->GetStrValue("a"), "");
  EXPECT_EQ(parser->GetMapValue("a"), nullptr);
  EXPECT_TRUE(parser->GetBoolValue("a", true));
  EXPECT_EQ(parser->ExpectValueType("a", Type::String, true), IMEPERR_NONE);
}

}  // namespace
}  // namespace ixomep::test
