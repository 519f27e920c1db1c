// array.sort with a lambda that compares one key of its elements: the outcome is that of the
// exchanges, which the same lambda gets when its comparison is hidden in a product.
#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <utility>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/values/value_rep.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

// The array sorted by the predicate over x and y, and by a lambda that must be called for it.
void ExpectSameAsExchanges(const std::string& array, const std::string& predicate) {
  const auto sorted = [&](const std::string& body) {
    return Shown("v := " + array + ", v.sort(lambda(x, y, " + body + ")), v");
  };
  EXPECT_EQ(sorted(predicate), sorted("(" + predicate + ") * 1")) << array << " by " << predicate;
}

std::string RandomNumbers(std::mt19937& random, std::size_t count) {
  static const char* const numbers[] = {"0",    "1",   "2",        "-3",           "2.5",
                                        "-0.5", "1.0", "100000.0", "99999999.125", "0.1 + 0.2",
                                        "0.3",  "-7",  "1e+20",    "-1e-7",        "INF"};
  std::string text = "{";
  for (std::size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ", ") + std::string(numbers[random() % std::size(numbers)]);
  }
  return text + "}";
}

class SortByKey : public ::testing::TestWithParam<const char*> {};

TEST_P(SortByKey, Numbers_end_as_by_exchanges) {
  std::mt19937 random(7);
  for (std::size_t round = 0; round < 60; ++round) {
    ExpectSameAsExchanges(RandomNumbers(random, 2 + round % 12), GetParam());
  }
}

INSTANTIATE_TEST_SUITE_P(Predicates, SortByKey,
                         ::testing::Values("x < y", "x > y", "y < x", "y > x", "x * 2 < y * 2",
                                           "-x < -y", "FLOOR x < FLOOR y", "x * x > y * y",
                                           // Not by one key: all of these are exchanged.
                                           "x <= y", "x < y + 1", "x - y < 0", "1 < 2", "x < x",
                                           "y > 1", "(x < y) > (y < x)"));

TEST(SortByKey, Texts_elements_and_entries_may_be_keys) {
  ExpectSameAsExchanges("{\"b\", \"a\", \"B\", \"ab\", \"\", \"a\"}", "x < y");
  ExpectSameAsExchanges("{\"bb\", \"a\", \"ccc\", \"dd\"}", "LEN x > LEN y");
  ExpectSameAsExchanges("{{3, 1}, {1, 2}, {2, 3}, {1, 4}}", "x[0] < y[0]");
  ExpectSameAsExchanges("{map(\"k\", 3), map(\"k\", 1), map(\"k\", 2)}", "x[\"k\"] > y[\"k\"]");
}

TEST(SortByKey, Parameters_of_one_name_are_one_parameter) {
  EXPECT_EQ(Shown("v := {3, 1, 2}, v.sort(lambda(a, a, a < a)), v"), "array {3, 1, 2}");
}

TEST(SortByKey, Members_named_like_parameters_are_members) {
  IxoMepValueSet scope;
  const auto object = [](int a, int b) {
    IxoMepValue value(IxoMepValueType::Object);
    value.MoveValue("a", new IxoMepValue(a));
    value.MoveValue("b", new IxoMepValue(b));
    return value;
  };
  scope.OldSetValue("v0", object(1, 9), true);
  scope.OldSetValue("v1", object(2, 0), true);
  scope.OldSetValue("v2", object(3, 5), true);
  const auto order = [&](const std::string& predicate) {
    return Shown("v := {v0, v1, v2}, v.sort(lambda(a, b, " + predicate +
                     ")), v[0].a * 100 + v[1].a * 10 + v[2].a",
                 &scope);
  };
  for (const char* const predicate : {"a.a < b.b", "a.a < b.a", "a.b < b.b", "a.a > b.a"}) {
    EXPECT_EQ(order(predicate), order("(" + std::string(predicate) + ") * 1")) << predicate;
  }
  EXPECT_EQ(order("a.b < b.b"), "integer 231");
}

TEST(SortByKey, Equal_keys_keep_their_order) {
  EXPECT_EQ(Shown("v := {{1, \"a\"}, {0, \"b\"}, {1, \"c\"}, {0, \"d\"}}, "
                  "v.sort(lambda(x, y, x[0] < y[0])), v"),
            "array {{0, \"b\"}, {0, \"d\"}, {1, \"a\"}, {1, \"c\"}}");
}

TEST(SortByKey, Keys_of_several_types_or_failing_ones_end_as_by_exchanges) {
  ExpectSameAsExchanges("{3, \"a\", 1}", "x < y");
  ExpectSameAsExchanges("{{2}, 1, {0}}", "x[0] < y[0]");
  ExpectSameAsExchanges("{4, 0, 2}", "1 / x < 1 / y");
  ExpectSameAsExchanges("{3cm, 1cm, 2cm}", "x < y");
  ExpectSameAsExchanges("{3, 1, 2}", "x < z");
  ExpectSameAsExchanges("{3, 1, 2}", "x + z < y + z");
}

// No text gives such a tree; a host can make one.
TEST(SortByKey, A_constant_without_a_value_is_like_no_other) {
  using Kind = IxoMepExprNodeType;
  for (const bool is_first : {false, true}) {
    const auto one_more = [](const char* name, bool has_value) {
      return Binary(Kind::Plus, Name(name), has_value ? Number(1) : NodePtr::Make(Kind::Constant));
    };
    IxoMepValueSet scope;
    Set(scope, "f",
        LambdaValue("x,y", Binary(Kind::Less, one_more("x", is_first), one_more("y", !is_first))));
    EXPECT_EQ(Shown("v := {2, 1}, v.sort(f)", &scope), "error 21");
  }
}

// Knows one function, less(a, b), and counts its calls.
class CountingLess : public IxoMepExpressionParser {
 public:
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& text,
                                       bool strict) const override {
    if (name != "less") return IMEPERR_UNKNOWN_FUNCTION;
    ++calls;
    IxoMepValue* a = nullptr;
    IxoMepValue* b = nullptr;
    const IxoMepErrorEnum code = call->GetParamResults(this, scope, a, b, text, strict);
    const ValuePtr first(a), second(b);
    if (code == IMEPERR_NONE) IxoMepValue::Assign(result, *a < *b);
    return code;
  }
  mutable int calls = 0;
};

TEST(SortByKey, Exchanges_end_with_the_first_pass_that_makes_none) {
  struct {
    const char* array;
    int calls;
  } const rows[] = {{"{1, 2, 3, 4, 5}", 4}, {"{2, 1, 3, 4, 5}", 8}, {"{2, 3, 4, 5, 1}", 20}};
  for (const auto& row : rows) {
    CountingLess parser;
    IxoMepValueSet scope;
    const std::string text = std::string("v := ") + row.array +
                             ", v.sort(lambda(x, y, less(x, y))), STR v[0] + STR v[4]";
    EXPECT_EQ(EvalWith(parser, text, &scope).Shown(), "string \"15\"");
    EXPECT_EQ(parser.calls, row.calls) << row.array;
  }
}

TEST(SortByKey, Takes_n_log_n_time) {
  const std::string fill = "v := {}, for(i, 1, 50000){aappend(v, i * 7919 MOD 50021)}, ";
  const std::clock_t start = std::clock();
  EXPECT_EQ(Shown(fill + "v.sort(lambda(x, y, x < y)), v[0] < v[1] AND v[1] < v[49999]"),
            "integer 1");
  // Exchanges would take half an hour.
  EXPECT_LT(std::clock() - start, 20 * CLOCKS_PER_SEC);
}

// Does what the test wants when it is copied, once.
class TouchingCopies : public IxoMepExpressionParser {
 public:
  explicit TouchingCopies(std::function<void()>& touch) : touch_(touch) {}
  IxoMepExpressionParser* CreateCopy() const override {
    if (const std::function<void()> touch = std::exchange(touch_, nullptr)) touch();
    return new TouchingCopies(*this);
  }

 private:
  std::function<void()>& touch_;
};

TEST(SortByKey, The_copy_of_an_element_may_take_another_one_out_of_the_array) {
  std::function<void()> touch;
  IxoMepValueSet scope;
  Eval("list := {{0, 1, 1, 1}, {1, 2}, {7}}", &scope);
  IxoMepValue& list = *scope.OldGetLValue("list");
  const TouchingCopies expression(touch);
  ValueAccess::OwnItems(*ValueAccess::OwnElement(list, 0))[0]->SetExpr(&expression);
  ValuePtr taken;
  touch = [&] { taken = ValueAccess::TakeAt(list, 2); };
  EXPECT_EQ(Eval("list.sort(lambda(a, b, LEN a < LEN b))", &scope).code, IMEPERR_NONE);
  ASSERT_NE(taken, nullptr);
  EXPECT_EQ(ShownValue(*taken), "array {7}");
  EXPECT_EQ(Eval("tokstr({LEN list, LEN list[0], LEN list[1]})", &scope).Shown(),
            "string \"2 2 4\"");
}

}  // namespace
}  // namespace ixomep::test
