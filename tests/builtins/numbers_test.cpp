// pow, min, max, abs, random, getTickCount and the sixteen mathematical functions.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "ixomep/builtins/handlers.h"
#include "ixomep/expr/builtin_table.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/call_checks.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

const CallTypes kNumericFunctions[] = {
    {"pow", {"NN"}}, {"min", {"NN"}},  {"max", {"NN"}},
    {"abs", {"N"}},  {"random", {""}}, {"getTickCount", {""}},
};

// The names in the order in which they are compared, with what each computes.
struct MathFunction {
  const char* name;
  double (*function)(double);
};
const MathFunction kMathFunctions[] = {
    {"acos", [](double x) { return std::acos(x); }},
    {"asin", [](double x) { return std::asin(x); }},
    {"atan", [](double x) { return std::atan(x); }},
    {"cos", [](double x) { return std::cos(x); }},
    {"cosh", [](double x) { return std::cosh(x); }},
    {"exp", [](double x) { return std::exp(x); }},
    {"log", [](double x) { return std::log(x); }},
    {"log10", [](double x) { return std::log10(x); }},
    {"sin", [](double x) { return std::sin(x); }},
    {"sinh", [](double x) { return std::sinh(x); }},
    {"tan", [](double x) { return std::tan(x); }},
    {"tanh", [](double x) { return std::tanh(x); }},
    {"sqrt", [](double x) { return std::sqrt(x); }},
    {"ceil", [](double x) { return std::ceil(x); }},
    {"floor", [](double x) { return std::floor(x); }},
    {"round", [](double x) { return std::floor(x + 0.5); }},
};

const double kNan = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();
const int kLeast = std::numeric_limits<int>::min();
const int kMost = std::numeric_limits<int>::max();

TEST(Numbers, Counts_and_types_of_arguments_are_those_of_the_table) {
  for (const CallTypes& function : kNumericFunctions) CheckCountsAndTypes(function);
  for (const MathFunction& function : kMathFunctions) CheckCountsAndTypes({function.name, {"N"}});
}

TEST(Pow, Result_is_a_real_also_for_integers) {
  Session session;
  CheckAll(session, {{"pow(2, 10)", "real 1024.0"},
                     {"pow(2, -1)", "real 0.5"},
                     {"pow(0, 0)", "real 1.0"},
                     {"pow(2.25, 0.5)", "real 1.5"},
                     {"pow(-8, 3)", "real -512.0"}});
}

TEST(Pow, What_has_no_finite_result_is_no_error) {
  Session session;
  CheckAll(session, {{"pow(-1, 0.5)", "real nan"},
                     {"pow(0, -1)", "real inf"},
                     {"pow(10, 400)", "real inf"},
                     {"pow(-10, 401)", "real -inf"}});
}

TEST(MinMax, Of_2_and_3_5_is_real_and_of_2_and_3_is_an_integer) {
  Session session;
  CheckAll(session, {{"min(2, 3.5)", "real 2.0"},
                     {"min(2, 3)", "integer 2"},
                     {"max(2, 3.5)", "real 3.5"},
                     {"max(2, 3)", "integer 3"}});
}

TEST(MinMax, Both_orders_of_arguments_give_the_same) {
  Session session;
  session.Set("least", IxoMepValue(kLeast));
  session.Set("most", IxoMepValue(kMost));
  CheckAll(session, {{"min(3.5, 2)", "real 2.0"},
                     {"max(3.5, 2)", "real 3.5"},
                     {"min(-1, -2)", "integer -2"},
                     {"max(-1, -2)", "integer -1"},
                     {"min(least, most)", "integer -2147483648"},
                     {"max(least, most)", "integer 2147483647"},
                     {"min(most, least)", "integer -2147483648"},
                     {"max(most, least)", "integer 2147483647"},
                     {"min(4, 4)", "integer 4"},
                     {"max(4.0, 4)", "real 4.0"}});
}

TEST(MinMax, Reference_to_an_integer_counts_as_a_real) {
  Session session;
  session.Eval("n := 2");
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("n")));
  CheckAll(session, {{"min(r, 3)", "real 2.0"}, {"max(r, r)", "real 2.0"}});
}

TEST(MinMax, Of_a_number_and_NaN_the_number_is_taken) {
  Session session;
  session.Set("nan", IxoMepValue(kNan));
  CheckAll(session, {{"min(nan, 1)", "real 1.0"},
                     {"min(1, nan)", "real 1.0"},
                     {"max(nan, 1)", "real 1.0"},
                     {"max(1.0, nan)", "real 1.0"},
                     {"min(nan, nan)", "real nan"},
                     {"max(nan, nan)", "real nan"}});
}

TEST(MinMax, Infinities_are_ordered) {
  Session session;
  session.Set("inf", IxoMepValue(kInfinity));
  CheckAll(
      session,
      {{"min(inf, 1)", "real 1.0"}, {"max(inf, 1)", "real inf"}, {"min(-inf, 1)", "real -inf"}});
}

TEST(Abs, Of_minus_5_is_the_integer_5_and_of_minus_2_5_the_real_2_5) {
  Session session;
  CheckAll(session, {{"abs(-5)", "integer 5"},
                     {"abs(5)", "integer 5"},
                     {"abs(0)", "integer 0"},
                     {"abs(-2.5)", "real 2.5"},
                     {"abs(2.5)", "real 2.5"}});
}

TEST(Abs, Most_negative_integer_stays_itself) {
  Session session;
  session.Set("least", IxoMepValue(kLeast));
  EXPECT_EQ(session.Eval("abs(least)"), "integer -2147483648");
}

TEST(Abs, Reference_to_a_number_gives_a_real) {
  Session session;
  session.Eval("n := -5");
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("n")));
  EXPECT_EQ(session.Eval("abs(r)"), "real 5.0");
}

TEST(Abs, Of_reals_that_are_not_finite) {
  Session session;
  session.Set("inf", IxoMepValue(kInfinity));
  session.Set("nan", IxoMepValue(kNan));
  CheckAll(session, {{"abs(-inf)", "real inf"}, {"abs(nan)", "real nan"}});
}

TEST(Random, Is_the_host_number_divided_by_32768_and_never_1) {
  TestHost host;
  Session session;
  host.random = 0;
  EXPECT_EQ(session.Eval("random()"), "real 0.0");
  host.random = 16384;
  EXPECT_EQ(session.Eval("random()"), "real 0.5");
  host.random = 32767;
  EXPECT_EQ(session.Eval("random()"), "real 0.999969482422");
  EXPECT_EQ(session.Eval("random() < 1"), "integer 1");
}

TEST(Random, Default_host_gives_numbers_from_0_up_to_but_excluding_1) {
  Session session;
  EXPECT_EQ(session.Eval("ok := 1, for(i, 1, 5000) { r := random(), ok := ok AND (r >= 0) AND "
                         "(r < 1) } { ok }"),
            "integer 1");
  EXPECT_EQ(session.Eval("n := 0, for(i, 1, 100) { n := n + (random() < 0.5) } { (n > 0) AND "
                         "(n < 100) }"),
            "integer 1");
}

TEST(GetTickCount, Is_the_host_number_as_a_signed_integer) {
  TestHost host;
  Session session;
  host.tick_count = 1234;
  EXPECT_EQ(session.Eval("getTickCount()"), "integer 1234");
  host.tick_count = 0x80000000U;
  EXPECT_EQ(session.Eval("getTickCount()"), "integer -2147483648");
  host.tick_count = 0xFFFFFFFFU;
  EXPECT_EQ(session.Eval("getTickCount()"), "integer -1");
}

TEST(Math, Rows_stand_in_the_order_of_comparison) {
  ASSERT_EQ(kMathRows.size(), std::size(kMathFunctions));
  for (std::size_t i = 0; i < kMathRows.size(); ++i) {
    EXPECT_STREQ(kMathRows[i].name, kMathFunctions[i].name);
    EXPECT_EQ(kMathRows[i].handler, nullptr);
    EXPECT_TRUE(IsBuiltinName(IxoMepStringAddressMap::GetAddress(kMathRows[i].name)));
  }
}

TEST(Math, Each_name_computes_its_function_and_gives_a_real) {
  Session session;
  for (const MathFunction& row : kMathFunctions) {
    for (const double x : {-2.5, -1.0, -0.5, 0.0, 0.25, 1.0, 2.5, 700.0, kInfinity, -kInfinity}) {
      session.Set("x", IxoMepValue(x));
      IxoMepValue expected(row.function(x));
      EXPECT_EQ(session.Eval(std::string(row.name) + "(x)"),
                "real " + std::string(expected.GetText(true).view()))
          << row.name << " of " << x;
    }
    session.Set("x", IxoMepValue(kNan));
    EXPECT_EQ(session.Eval(std::string(row.name) + "(x)"), "real nan") << row.name;
  }
}

TEST(Math, Integers_and_references_are_read_as_reals) {
  Session session;
  session.Eval("n := 4");
  session.Set("r", IxoMepValue(session.scope().OldGetLValue("n")));
  CheckAll(session, {{"sqrt(4)", "real 2.0"}, {"sqrt(r)", "real 2.0"}, {"floor(4)", "real 4.0"}});
}

TEST(Math, Round_of_minus_2_5_is_minus_2_and_of_2_5_is_3) {
  Session session;
  CheckAll(session, {{"round(-2.5)", "real -2.0"},
                     {"round(2.5)", "real 3.0"},
                     {"round(-2.6)", "real -3.0"},
                     {"round(2.4)", "real 2.0"},
                     {"round(-0.5)", "real 0.0"}});
}

TEST(Math, Names_are_compared_case_sensitively) {
  Session session;
  EXPECT_TRUE(session.Eval("sIN(1)").starts_with("error 22")) << session.Eval("sIN(1)");
}

// Calls the member with a name of the caller's choice, as the parameters of `call`.
std::string MathOf(const char* name, const char* call) {
  IxoMepExpressionParser parser;
  String text;
  EXPECT_EQ(parser.SetExpression(call, text), IMEPERR_NONE) << call;
  IxoMepValueSet scope;
  IxoMepValue* slot = nullptr;
  const IxoMepErrorEnum code =
      parser.GetTree()->_math(&parser, &scope, name, slot, text, /*strict=*/false);
  const ValuePtr result(slot);
  if (code != IMEPERR_NONE)
    return "error " + std::to_string(code) + ": " + std::string(text.view());
  return std::string(IxoMepValue::GetTypeName(result->GetType()).view()) + " " +
         std::string(result->GetText(true).view());
}

TEST(Math, Member_takes_the_name_as_an_argument) {
  EXPECT_EQ(MathOf("sqrt", "any(9)"), "real 3.0");
  EXPECT_EQ(MathOf("round", "any(-2.5)"), "real -2.0");
}

TEST(Math, Name_that_matches_none_gives_the_real_zero) {
  EXPECT_EQ(MathOf("cube", "any(9)"), "real 0.0");
  EXPECT_EQ(MathOf("SQRT", "any(9)"), "real 0.0");
  EXPECT_EQ(MathOf("", "any(9)"), "real 0.0");
}

TEST(Math, Name_that_matches_none_still_takes_one_number) {
  EXPECT_EQ(MathOf("cube", "any(\"a\")"), "error 21: A value has the wrong type: cube(string)");
  EXPECT_TRUE(MathOf("cube", "any()").starts_with("error 23"));
  EXPECT_TRUE(MathOf("cube", "any(1, 2)").starts_with("error 23"));
}

TEST(Math, Member_assigns_into_the_value_of_the_caller_and_destroys_it_on_failure) {
  IxoMepExpressionParser parser;
  String text;
  ASSERT_EQ(parser.SetExpression("any(9)", text), IMEPERR_NONE);
  IxoMepValue* slot = new IxoMepValue(String("before"));
  IxoMepValue* const before = slot;
  EXPECT_EQ(parser.GetTree()->_math(&parser, nullptr, "sqrt", slot, text, false), IMEPERR_NONE);
  EXPECT_EQ(slot, before);
  EXPECT_EQ(slot->GetReal(), 3.0);
  ASSERT_EQ(parser.SetExpression("any(\"a\")", text), IMEPERR_NONE);
  EXPECT_EQ(parser.GetTree()->_math(&parser, nullptr, "sqrt", slot, text, false),
            IMEPERR_WRONG_TYPE);
  EXPECT_EQ(slot, nullptr);
}

}  // namespace
}  // namespace ixomep::test
