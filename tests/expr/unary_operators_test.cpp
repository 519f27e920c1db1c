// The prefix operators: every operator with every type, the failing ones included, and the details
// that the language cases cannot show.
#include "ixomep/expr/unary_operators.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "ixomep/values/error.h"
#include "tests/support/eval.h"

namespace ixomep::test {
namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

struct Sample {
  std::string name;
  IxoMepValue value;
};

class Samples {
 public:
  std::vector<Sample> All() {
    std::vector<Sample> all;
    all.push_back({"undefined", IxoMepValue()});
    all.push_back({"string", IxoMepValue("12")});
    all.push_back({"integer", IxoMepValue(65)});
    all.push_back({"real", IxoMepValue(1.5)});
    all.push_back({"measure", IxoMepValue(Type::Measure, 100)});
    all.push_back({"time", IxoMepValue(Type::Time, 10)});
    all.push_back({"expression", ValueOf("parse(\"x + 1\")")});
    all.push_back({"array", ValueOf("{1, 2, 3}")});
    all.push_back({"map", ValueOf("{1: 2}")});
    all.push_back({"lambda", ValueOf("lambda(x, x)")});
    all.push_back({"object", IxoMepValue(Type::Object)});
    all.push_back({"integer reference", IxoMepValue(&integer_)});
    all.push_back({"real reference", IxoMepValue(&real_)});
    all.push_back({"string reference", IxoMepValue(&text_)});
    all.push_back({"measure reference", IxoMepValue(&measure_)});
    return all;
  }

 private:
  IxoMepValue integer_{65};
  IxoMepValue real_{1.5};
  IxoMepValue text_{"12"};
  IxoMepValue measure_{Type::Measure, 100};
};

bool IsNumber(const std::string& name) {
  return name == "integer" || name == "real" || name == "integer reference" ||
         name == "real reference";
}

// The type of the result by the rules of the language, empty for a wrong type.
std::string ExpectedResult(Kind kind, const std::string& operand) {
  switch (kind) {
    case Kind::Minus:
      return operand == "integer" || operand == "real" || operand == "measure" ? operand : "";
    case Kind::Str:
      return "string";
    case Kind::Val:
      return operand == "string" ? "integer" : "";
    case Kind::Len:
      return operand == "string" || operand == "array" || operand == "map" ? "integer" : "";
    case Kind::Not:
      return IsNumber(operand) ? "integer" : "";
    case Kind::Asc:
      return operand == "string" ? "integer" : "";
    case Kind::Chr:
      return operand == "integer" ? "string" : "";
    case Kind::Int:
      return operand == "real" ? "integer" : "";
    case Kind::Cm:
    case Kind::Pt:
      return IsNumber(operand) ? "measure" : "";
    case Kind::Cms:
    case Kind::Pts:
      return operand == "measure" ? "real" : "";
    default:  // REAL, ROUND, FLOOR, CEIL
      return IsNumber(operand) ? "real" : "";
  }
}

constexpr Kind kKinds[] = {Kind::Minus, Kind::Str, Kind::Val,  Kind::Len,   Kind::Not,   Kind::Asc,
                           Kind::Chr,   Kind::Int, Kind::Real, Kind::Round, Kind::Floor, Kind::Ceil,
                           Kind::Cm,    Kind::Pt,  Kind::Cms,  Kind::Pts};

TEST(UnaryOperators, Every_operator_accepts_its_types_and_no_other) {
  Samples samples;
  for (const Kind kind : kKinds) {
    const String name = IxoMepExprNode::GetOpName(kind);
    for (const Sample& sample : samples.All()) {
      const std::string shown = std::string(name.view()) + " " + sample.name;
      IxoMepValue operand(sample.value);
      String text;
      const IxoMepErrorEnum code =
          IxoMepExprNode::EvaluateUnaryOpCall(kind, operand, text, /*strict=*/false);
      const std::string expected = ExpectedResult(kind, sample.name);
      if (expected.empty()) {
        EXPECT_EQ(code, 21) << shown;
        EXPECT_EQ(text, IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, name, &sample.value))
            << shown;
      } else {
        EXPECT_EQ(code, 0) << shown;
        EXPECT_EQ(IxoMepValue::GetTypeName(operand.GetType()), expected) << shown;
      }
    }
  }
}

TEST(UnaryOperators, Kinds_that_are_no_prefix_operators_fail_with_21) {
  for (const int kind : {-1, 0, 4, 7, 8, 13, 15, 34, 35, 47, 1000000}) {
    IxoMepValue operand(1);
    String text;
    EXPECT_EQ(IxoMepExprNode::EvaluateUnaryOpCall(static_cast<Kind>(kind), operand, text, false),
              21)
        << kind;
  }
}

IxoMepValue Apply(Kind kind, const IxoMepValue& operand) {
  IxoMepValue value(operand);
  String text;
  EXPECT_EQ(IxoMepExprNode::EvaluateUnaryOpCall(kind, value, text, false), 0);
  return value;
}

TEST(UnaryOperators, Measures_are_converted_by_their_whole_tenths) {
  const IxoMepValue measure(Type::Measure, 12.7);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Minus, measure)), -12.0);
  EXPECT_EQ(Apply(Kind::Cms, measure).GetReal(), 12 / 100.0);
  EXPECT_EQ(Apply(Kind::Pts, measure).GetReal(), 12 / 3.527777778);
}

TEST(UnaryOperators, Centimetres_and_points_become_measures_without_rounding) {
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Cm, IxoMepValue(0.127))), 0.127 * 100.0);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Pt, IxoMepValue(3))), 3 * 3.527777778);
}

TEST(UnaryOperators, Numbers_are_read_through_references) {
  IxoMepValue target(2.5);
  EXPECT_EQ(ShownValue(Apply(Kind::Round, IxoMepValue(&target))), "real 3.0");
  EXPECT_EQ(ShownValue(Apply(Kind::Real, IxoMepValue(&target))), "real 2.5");
}

TEST(UnaryOperators, Str_of_a_reference_does_not_show_its_target) {
  IxoMepValue target(2.5);
  EXPECT_EQ(ShownValue(Apply(Kind::Str, IxoMepValue(&target))), "string \"(reference)\"");
}

TEST(UnaryOperators, Rounding_keeps_what_is_no_number) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const Kind kind : {Kind::Round, Kind::Floor, Kind::Ceil, Kind::Real, Kind::Minus}) {
    const double result = Apply(kind, IxoMepValue(nan)).GetReal();
    EXPECT_NE(result, result);
  }
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Apply(Kind::Round, IxoMepValue(-infinity)).GetReal(), -infinity);
}

TEST(UnaryOperators, The_lengths_of_texts_count_zero_bytes) {
  EXPECT_EQ(ShownValue(Apply(Kind::Len, IxoMepValue(String("a\0b", 3)))), "integer 3");
}

TEST(UnaryOperators, A_failure_leaves_the_operand_as_it_was) {
  IxoMepValue operand("abc");
  String text;
  EXPECT_EQ(ApplyUnary(Kind::Minus, operand, text), 21);
  EXPECT_EQ(ShownValue(operand), "string \"abc\"");
  EXPECT_EQ(ApplyUnary(Kind::Val, operand, text), 5);
  EXPECT_EQ(ShownValue(operand), "string \"abc\"");
}

TEST(UnaryOperators, Val_gives_the_readers_message) {
  const Outcome outcome = Eval("VAL \"12km\"");
  EXPECT_EQ(outcome.code, 6);
  EXPECT_NE(std::string(outcome.text.view()).find("km"), std::string::npos);
}

TEST(UnaryOperators, Val_hands_line_number_minus_one_to_the_expressions_it_makes) {
  const IxoMepValue expression = ValueOf("VAL \"(x + 1)\"");
  ASSERT_NE(expression.GetExpr(), nullptr);
  EXPECT_EQ(expression.GetExpr()->GetLineNo(), 4294967295u);
}

}  // namespace
}  // namespace ixomep::test
