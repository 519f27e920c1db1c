// The infix operators: every operator with every pair of types, the failing ones included, and
// the details of each row.
#include "ixomep/expr/binary_operators.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <vector>

#include "ixomep/values/error.h"
#include "ixomep/values/object.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

using Kind = IxoMepExprNodeType;
using Type = IxoMepValueType;

// A value of each type, and references to three of them. The numbers are no zeros.
class Samples {
 public:
  Samples() {
    Add("undefined", IxoMepValue());
    Add("string", IxoMepValue("abc"));
    Add("integer", IxoMepValue(2));
    Add("real", IxoMepValue(1.5));
    Add("measure", IxoMepValue(Type::Measure, 100));
    Add("time", IxoMepValue(Type::Time, 10));
    Add("expression", ValueOf("parse(\"x + 1\")"));
    Add("array", ValueOf("{1, 2, 3}"));
    Add("map", ValueOf("{1: 2}"));
    Add("lambda", ValueOf("lambda(x, x)"));
    Add("object", IxoMepValue(Type::Object));
    Add("integer reference", IxoMepValue(&integer_));
    Add("real reference", IxoMepValue(&real_));
    Add("string reference", IxoMepValue(&text_));
    Add("array reference", IxoMepValue(&array_));
  }
  const std::vector<std::string>& Names() const { return names_; }
  const IxoMepValue& Get(const std::string& name) const { return values_.at(name); }

 private:
  void Add(const char* name, IxoMepValue value) {
    names_.push_back(name);
    values_.emplace(name, std::move(value));
  }
  IxoMepValue integer_{2};
  IxoMepValue real_{1.5};
  IxoMepValue text_{"abc"};
  IxoMepValue array_ = ValueOf("{1}");
  std::vector<std::string> names_;
  std::map<std::string, IxoMepValue> values_;
};

bool IsNumber(const std::string& name) {
  return name == "integer" || name == "real" || name == "integer reference" ||
         name == "real reference";
}

// The type of the result by the rules of the language, empty for a wrong type.
std::string ArithmeticResult(Kind kind, const std::string& left, const std::string& right) {
  const bool both_integer = left == "integer" && right == "integer";
  if (IsNumber(left) && IsNumber(right)) {
    return kind != Kind::Divide && both_integer ? "integer" : "real";
  }
  if (kind == Kind::Plus || kind == Kind::Minus) {
    if (left == right && (left == "measure" || left == "time")) return left;
    return kind == Kind::Plus && left == "string" && right == "string" ? "string" : "";
  }
  if ((left == "measure" || left == "time") && IsNumber(right)) return left;
  if (kind == Kind::Times && left == "string" && IsNumber(right)) return "string";
  if (kind == Kind::Times && IsNumber(left) && right == "string") return "string";
  return "";
}

std::string ExpectedResult(Kind kind, const std::string& left, const std::string& right) {
  switch (kind) {
    case Kind::Plus:
    case Kind::Minus:
    case Kind::Times:
    case Kind::Divide:
      return ArithmeticResult(kind, left, right);
    case Kind::Mod:
      return left == "integer" && right == "integer" ? "real" : "";
    case Kind::And:
    case Kind::Or:
      return IsNumber(left) && IsNumber(right) ? "integer" : "";
    case Kind::Sub:
      if (!IsNumber(right) && !right.ends_with("reference")) return "";
      return left == "string" ? "string" : left == "array" ? "integer" : "";
    case Kind::In:
      return right == "array" ? "integer" : "";
    default:  // the six comparisons
      if (IsNumber(left) && IsNumber(right)) return "integer";
      return left == right && (left == "string" || left == "measure" || left == "time") ? "integer"
                                                                                        : "";
  }
}

constexpr Kind kKinds[] = {Kind::Plus,      Kind::Minus,        Kind::Times,    Kind::Divide,
                           Kind::Mod,       Kind::Equal,        Kind::NotEqual, Kind::Less,
                           Kind::LessEqual, Kind::GreaterEqual, Kind::Greater,  Kind::And,
                           Kind::Or,        Kind::Sub,          Kind::In};

std::string TypeNameOf(const IxoMepValue& value) {
  return std::string(IxoMepValue::GetTypeName(value.GetType()).view());
}

std::string OpText(Kind kind) { return std::string(IxoMepExprNode::GetOpName(kind).view()); }

TEST(BinaryOperators, Every_operator_accepts_its_pairs_of_types_and_no_other) {
  const Samples samples;
  for (const Kind kind : kKinds) {
    for (const std::string& left : samples.Names()) {
      for (const std::string& right : samples.Names()) {
        const std::string shown = left + " " + OpText(kind) + " " + right;
        const IxoMepValue& left_value = samples.Get(left);
        IxoMepValue operand(samples.Get(right));
        String text;
        const IxoMepErrorEnum code =
            IxoMepExprNode::EvaluateBinaryOpCall(kind, left_value, operand, text, false);
        const std::string expected = ExpectedResult(kind, left, right);
        if (expected.empty()) {
          EXPECT_EQ(code, 21) << shown;
          EXPECT_EQ(text, IxoMepError::MakeFunctionError(IMEPERR_WRONG_TYPE, String(OpText(kind)),
                                                         &left_value, &samples.Get(right)))
              << shown;
        } else {
          EXPECT_EQ(code, 0) << shown;
          EXPECT_EQ(TypeNameOf(operand), expected) << shown;
        }
      }
    }
  }
}

TEST(BinaryOperators, The_sequence_operator_gives_its_right_operand) {
  const Samples samples;
  for (const std::string& right : samples.Names()) {
    IxoMepValue operand(samples.Get(right));
    String text;
    EXPECT_EQ(
        IxoMepExprNode::EvaluateBinaryOpCall(Kind::Comma, samples.Get("map"), operand, text, false),
        0);
    EXPECT_EQ(operand.GetType(), samples.Get(right).GetType()) << right;
  }
}

TEST(BinaryOperators, Kinds_that_are_no_infix_operators_fail_with_21) {
  for (const int kind : {-1, 0, 1, 4, 7, 9, 10, 24, 28, 33, 46, 47, 1000000}) {
    IxoMepValue operand(1);
    String text;
    EXPECT_EQ(IxoMepExprNode::EvaluateBinaryOpCall(static_cast<Kind>(kind), IxoMepValue(1), operand,
                                                   text, false),
              21)
        << kind;
  }
}

struct Result {
  IxoMepErrorEnum code;
  IxoMepValue value;
  std::string text;
};

Result Apply(Kind kind, const IxoMepValue& left, const IxoMepValue& right) {
  Result result{IMEPERR_NONE, right, ""};
  String text;
  result.code = IxoMepExprNode::EvaluateBinaryOpCall(kind, left, result.value, text, false);
  result.text = std::string(text.view());
  return result;
}

TEST(BinaryOperators, A_reference_to_an_integer_counts_as_a_real_operand) {
  IxoMepValue two(2);
  EXPECT_EQ(ShownValue(Apply(Kind::Plus, IxoMepValue(&two), IxoMepValue(3)).value), "real 5.0");
  EXPECT_EQ(ShownValue(Apply(Kind::Times, IxoMepValue(4), IxoMepValue(&two)).value), "real 8.0");
  EXPECT_EQ(Apply(Kind::Mod, IxoMepValue(&two), IxoMepValue(2)).code, 21);
  IxoMepValue chain(&two);
  EXPECT_EQ(ShownValue(Apply(Kind::Equal, IxoMepValue(&chain), IxoMepValue(2)).value), "integer 1");
}

TEST(BinaryOperators, Measures_compute_with_whole_tenths) {
  const IxoMepValue left(Type::Measure, 12.7);
  const IxoMepValue right(Type::Measure, 2.999995);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Plus, left, right).value), 15.0);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Minus, left, right).value), 9.0);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Times, left, IxoMepValue(0.5)).value), 6.0);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Times, left, IxoMepValue(0.3)).value), 12 * 0.3)
      << "the product is not rounded again";
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Divide, left, IxoMepValue(5)).value), 12 / 5.0);
  EXPECT_EQ(ShownValue(Apply(Kind::Equal, left, IxoMepValue(Type::Measure, 12)).value),
            "integer 1");
  EXPECT_EQ(ShownValue(Apply(Kind::Less, IxoMepValue(Type::Measure, 12.1), left).value),
            "integer 0");
}

TEST(BinaryOperators, Times_compute_with_seconds) {
  const IxoMepValue left(Type::Time, 1.25);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Plus, left, IxoMepValue(Type::Time, 0.5)).value), 1.75);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Minus, left, IxoMepValue(Type::Time, 0.5)).value),
            0.75);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Times, left, IxoMepValue(3)).value), 3.75);
  EXPECT_EQ(ValueAccess::Number(Apply(Kind::Divide, left, IxoMepValue(0.5)).value), 2.5);
}

TEST(BinaryOperators, A_time_that_is_no_number_is_unequal_to_all_and_in_no_order) {
  const IxoMepValue nan(Type::Time, std::numeric_limits<double>::quiet_NaN());
  const IxoMepValue other(Type::Time, 1.0);
  for (const Kind kind :
       {Kind::Equal, Kind::Less, Kind::LessEqual, Kind::Greater, Kind::GreaterEqual}) {
    EXPECT_EQ(ShownValue(Apply(kind, nan, nan).value), "integer 0") << OpText(kind);
    EXPECT_EQ(ShownValue(Apply(kind, nan, other).value), "integer 0") << OpText(kind);
  }
  EXPECT_EQ(ShownValue(Apply(Kind::NotEqual, nan, nan).value), "integer 1");
}

TEST(BinaryOperators, Division_by_zero_fails_with_18_for_all_that_can_be_divided) {
  for (const IxoMepValue& zero : {IxoMepValue(0), IxoMepValue(0.0), IxoMepValue(-0.0)}) {
    EXPECT_EQ(Apply(Kind::Divide, IxoMepValue(1), zero).code, 18);
    EXPECT_EQ(Apply(Kind::Divide, IxoMepValue(1.5), zero).code, 18);
    EXPECT_EQ(Apply(Kind::Divide, IxoMepValue(Type::Measure, 1), zero).code, 18);
    EXPECT_EQ(Apply(Kind::Divide, IxoMepValue(Type::Time, 1), zero).code, 18);
  }
  const Result result = Apply(Kind::Mod, IxoMepValue(1), IxoMepValue(0));
  EXPECT_EQ(result.code, 18);
  EXPECT_EQ(result.text, std::string(IxoMepError::GetErrorText(IMEPERR_DIVISION_BY_ZERO).view()));
  EXPECT_EQ(Apply(Kind::Divide, IxoMepValue("a"), IxoMepValue(0)).code, 21)
      << "the types are looked at first";
}

TEST(BinaryOperators, Index_errors_of_sub_show_type_and_index) {
  const Result low = Apply(Kind::Sub, IxoMepValue("abc"), IxoMepValue(-1));
  EXPECT_EQ(low.code, 26);
  EXPECT_NE(low.text.find("string"), std::string::npos) << low.text;
  const Result high = Apply(Kind::Sub, ValueOf("{1}"), IxoMepValue(1));
  EXPECT_EQ(high.code, 27);
  EXPECT_NE(high.text.find("array"), std::string::npos) << high.text;
}

TEST(BinaryOperators, Sub_takes_a_reference_to_a_number_as_index_but_follows_none_on_the_left) {
  IxoMepValue index(1.9);
  EXPECT_EQ(ShownValue(Apply(Kind::Sub, IxoMepValue("abc"), IxoMepValue(&index)).value),
            "string \"b\"");
  IxoMepValue text("abc");
  EXPECT_EQ(Apply(Kind::Sub, IxoMepValue(&text), IxoMepValue(0)).code, 21);
}

TEST(BinaryOperators, Sub_reads_a_reference_to_what_is_no_number_as_index_zero) {
  IxoMepValue text("x");
  IxoMepValue list = ValueOf("{7}");
  IxoMepValue nothing;
  for (IxoMepValue* const target : {&text, &list, &nothing}) {
    EXPECT_EQ(ShownValue(Apply(Kind::Sub, IxoMepValue("abc"), IxoMepValue(target)).value),
              "string \"a\"");
    EXPECT_EQ(ShownValue(Apply(Kind::Sub, ValueOf("{5, 6}"), IxoMepValue(target)).value),
              "integer 5");
    EXPECT_EQ(Apply(Kind::Sub, ValueOf("{}"), IxoMepValue(target)).code, 27);
    EXPECT_EQ(Apply(Kind::Sub, IxoMepValue(5), IxoMepValue(target)).code, 21);
  }
}

TEST(BinaryOperators, Repeating_reads_a_reference_as_integer_and_saturates_a_real) {
  IxoMepValue three(3.7);
  EXPECT_EQ(ShownValue(Apply(Kind::Times, IxoMepValue("a"), IxoMepValue(&three)).value),
            "string \"aaa\"");
  EXPECT_EQ(Apply(Kind::Times, IxoMepValue("a"), IxoMepValue(1e10)).code, 37);
  EXPECT_EQ(ShownValue(Apply(Kind::Times, IxoMepValue("a"), IxoMepValue(-1e10)).value),
            "string \"\"");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ShownValue(Apply(Kind::Times, IxoMepValue("a"), IxoMepValue(nan)).value),
            "string \"\"");
}

TEST(BinaryOperators, Repeated_texts_keep_their_zero_bytes) {
  const IxoMepValue unit(String("a\0b", 3));
  const Result result = Apply(Kind::Times, unit, IxoMepValue(7));
  ASSERT_EQ(result.code, 0);
  std::string expected;
  for (int i = 0; i < 7; ++i) expected += std::string("a\0b", 3);
  EXPECT_EQ(ValueAccess::Text(result.value).view(), expected);
}

TEST(BinaryOperators, Memory_that_cannot_be_had_for_a_text_fails_with_37) {
  const IxoMepValue text(String::Filled(100000, 'x'));
  const ScopedMemoryLimit limit(50000);
  const Result joined = Apply(Kind::Plus, text, text);
  EXPECT_EQ(joined.code, 37);
  const Result repeated = Apply(Kind::Times, text, IxoMepValue(3));
  EXPECT_EQ(repeated.code, 37);
  const Result filled = Apply(Kind::Times, IxoMepValue("x"), IxoMepValue(1000000));
  EXPECT_EQ(filled.code, 37);
}

TEST(BinaryOperators, In_skips_empty_slots_and_never_follows_references) {
  IxoMepValue list(Type::Array, 2);
  const IxoMepValue element(7);
  list.SetValue(0, static_cast<const IxoMepValue*>(nullptr));
  list.SetValue(1, &element);
  EXPECT_EQ(ShownValue(Apply(Kind::In, IxoMepValue(7), list).value), "integer 1");
  IxoMepValue seven(7);
  EXPECT_EQ(ShownValue(Apply(Kind::In, IxoMepValue(&seven), list).value), "integer 0");
}

TEST(BinaryOperators, The_result_may_replace_the_operand_that_holds_it) {
  IxoMepValue list = ValueOf("{{1, 2}, 3}");
  String text;
  EXPECT_EQ(ApplyBinaryTo(Kind::Sub, list, IxoMepValue(0), list, text), 0);
  EXPECT_EQ(ShownValue(list), "array {1, 2}");
}

TEST(BinaryOperators, A_failure_leaves_the_operand_as_it_was) {
  IxoMepValue right("abc");
  String text;
  EXPECT_EQ(ApplyBinary(Kind::Minus, IxoMepValue(1), right, text), 21);
  EXPECT_EQ(ShownValue(right), "string \"abc\"");
}

}  // namespace
}  // namespace ixomep::test
