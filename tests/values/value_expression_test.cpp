// Values that hold expressions, lambdas and methods: copying, text, sorting by a lambda, calls of
// object methods.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"
#include "tests/values/samples.h"

namespace ixomep::test {
namespace {

// Counts its copies and its living instances.
class CountingParser : public IxoMepExpressionParser {
 public:
  CountingParser() { ++alive; }
  CountingParser(const CountingParser& other) : IxoMepExpressionParser(other) {
    ++alive;
    ++copies;
  }
  CountingParser& operator=(const CountingParser&) = delete;
  ~CountingParser() override { --alive; }
  CountingParser* CreateCopy() const override { return new CountingParser(*this); }

  static inline int alive = 0;
  static inline int copies = 0;
};

CountingParser Parsed(const char* text) {
  CountingParser parser;
  String error;
  EXPECT_EQ(parser.SetExpression(text, error), 0);
  return parser;
}

TEST(ExpressionValue, Holds_a_clone_made_by_the_virtual_copy) {
  {
    const CountingParser parser = Parsed("a+1");
    const int copies = CountingParser::copies;
    IxoMepValue value(static_cast<const IxoMepExpressionParser*>(&parser));
    EXPECT_EQ(CountingParser::copies, copies + 1);
    EXPECT_EQ(value.GetType(), Type::Expression);
    EXPECT_NE(value.GetExpr(), &parser);
    EXPECT_NE(dynamic_cast<CountingParser*>(value.GetExpr()), nullptr);
  }
  EXPECT_EQ(CountingParser::alive, 0);
}

TEST(ExpressionValue, Takes_the_parser_itself_when_told_so) {
  {
    CountingParser* const parser = new CountingParser(Parsed("a"));
    const IxoMepValue taken(parser, true);
    EXPECT_EQ(taken.GetExpr(), parser);
    const IxoMepValue cloned(parser, false);
    EXPECT_NE(cloned.GetExpr(), parser);
  }
  EXPECT_EQ(CountingParser::alive, 0);
}

TEST(ExpressionValue, Every_copy_is_a_clone_also_inside_containers) {
  {
    const CountingParser parser = Parsed("a");
    const IxoMepValue value(static_cast<const IxoMepExpressionParser*>(&parser));
    const IxoMepValue array = Array({1, Map({"k", value})});
    const int copies = CountingParser::copies;
    const IxoMepValue copy(array);
    EXPECT_EQ(CountingParser::copies, copies + 1);
    const IxoMepValue second(copy);
    EXPECT_EQ(CountingParser::copies, copies + 2);
  }
  EXPECT_EQ(CountingParser::alive, 0);
}

TEST(ExpressionValue, Setting_the_expression_that_it_holds_clones_before_it_destroys) {
  {
    IxoMepValue value(new CountingParser(Parsed("a+1")), true);
    value.SetExpr(value.GetExpr());
    EXPECT_EQ(TextOf(value), "((a)+(1))");
    IxoMepValue* slot = &value;
    IxoMepValue::Assign(slot, &value, false);
    EXPECT_EQ(TextOf(value), "((a)+(1))");
  }
  EXPECT_EQ(CountingParser::alive, 0);
}

TEST(ExpressionValue, Its_text_is_the_parsers) {
  const CountingParser parser = Parsed("a+1");
  const IxoMepValue value(static_cast<const IxoMepExpressionParser*>(&parser));
  EXPECT_EQ(TextOf(value), Str(parser.GetExpression(nullptr)));
  EXPECT_EQ(TextOf(Array({value})), "{" + Str(parser.GetExpression(nullptr)) + "}");
}

TEST(ExpressionValue, A_reference_to_it_gives_its_parser) {
  IxoMepValue value(new CountingParser(Parsed("a")), true);
  IxoMepValue reference(&value);
  EXPECT_EQ(IxoMepValue(&reference).GetExpr(), value.GetExpr());
}

TEST(ExpressionValue, CreateExprParser_clones_an_expression_and_wraps_anything_else) {
  const IxoMepValue value(new CountingParser(Parsed("a+1")), true);
  const std::unique_ptr<IxoMepExpressionParser> clone(value.CreateExprParser());
  EXPECT_NE(clone.get(), value.GetExpr());
  EXPECT_EQ(Str(clone->GetExpression(nullptr)), "((a)+(1))");
  const std::unique_ptr<IxoMepExpressionParser> constant(IxoMepValue(5).CreateExprParser());
  ASSERT_NE(constant->GetConstant(), nullptr);
  EXPECT_EQ(constant->GetConstant()->GetInt(), 5);
}

TEST(LambdaValue, Copies_share_the_node_by_counted_references) {
  IxoMepValue value = ValueOf("lambda(a, a + 1)");
  ASSERT_EQ(value.GetType(), Type::Lambda);
  const std::uint32_t before = value.GetLambda()->ExtraReferences();
  {
    IxoMepValue copy(value);
    EXPECT_EQ(copy.GetLambda(), value.GetLambda());
    EXPECT_EQ(value.GetLambda()->ExtraReferences(), before + 1);
    IxoMepValue reference(&copy);
    EXPECT_EQ(reference.GetLambda(), value.GetLambda());
  }
  EXPECT_EQ(value.GetLambda()->ExtraReferences(), before);
  EXPECT_EQ(TextOf(value), "(undefined)");
}

TEST(LambdaValue, Constants_nested_through_lambdas_a_hundred_thousand_deep_are_destroyed) {
  IxoMepValue value(1);
  for (int i = 0; i < 100000; ++i) {
    NodePtr lambda = NodePtr::Make(IxoMepExprNodeType::Lambda);
    NodePtr constant = NodePtr::Make(IxoMepExprNodeType::Constant);
    NodeAccess::SetValue(*constant, MakeValue(Array({value})));
    NodeAccess::SetRight(*lambda, std::move(constant));
    value = IxoMepValue(lambda.Release());
  }
  EXPECT_EQ(value.GetType(), Type::Lambda);
}

// --- Sorting by a lambda ------------------------------------------------------------------------

struct SortRow {
  const char* array;
  const char* lambda;
  const char* sorted;
};

TEST(ArraySortByLambda, The_lambda_tells_whether_its_first_argument_goes_first) {
  const SortRow rows[] = {
      {"{1, 2, 3}", "lambda(a, b, a > b)", "{3, 2, 1}"},
      {"{3, 1, 2}", "lambda(a, b, a < b)", "{1, 2, 3}"},
      {"{3, 1, 2}", "lambda(a, b, 0)", "{3, 1, 2}"},
      {"{3, 1, 2}", "lambda(a, b, -5)", "{3, 1, 2}"},
      {"{3, 1, 2}", "lambda(a, b, 0.9)", "{3, 1, 2}"},
      {"{3, 1}", "lambda(a, b, \"text\")", "{3, 1}"},
      {"{3, 1}", "lambda(a, b, 2147483648.0)", "{3, 1}"},
      {"{\"bb\", \"a\", \"ccc\", \"d\"}", "lambda(a, b, LEN a < LEN b)",
       "{\"a\", \"d\", \"bb\", \"ccc\"}"},
      {"{2.5, 1}", "lambda(a, b, 1.5 * (a < b))", "{1, 2.5}"},
  };
  for (const SortRow& row : rows) {
    IxoMepValueSet scope;
    Eval(std::string("list := ") + row.array, &scope);
    const Outcome outcome = Eval(std::string("list.sort(") + row.lambda + ")", &scope);
    EXPECT_EQ(outcome.code, 0) << row.lambda;
    EXPECT_EQ(TextOf(*Variable(scope, "list")), row.sorted) << row.lambda;
  }
}

TEST(ArraySortByLambda, One_that_always_says_yes_ends_after_as_many_passes_as_elements) {
  // Every pass carries the first element to the end: as many passes as elements restore them all.
  IxoMepValueSet scope;
  Eval("list := {1, 2, 3, 4}", &scope);
  EXPECT_EQ(Eval("list.sort(lambda(a, b, 1))", &scope).code, 0);
  EXPECT_EQ(TextOf(*Variable(scope, "list")), "{1, 2, 3, 4}");
}

TEST(ArraySortByLambda, An_error_inside_ends_it_and_leaves_the_array_as_far_as_it_got) {
  IxoMepValueSet scope;
  Eval("list := {3, 1, 2, 0}", &scope);
  const Outcome outcome =
      Eval("list.sort(lambda(a, b, cond(a = 0, error(\"stop\"), a < b)))", &scope);
  EXPECT_EQ(outcome.code, 32);
  EXPECT_EQ(TextOf(*Variable(scope, "list")), "{1, 2, 3, 0}");
}

TEST(ArraySortByLambda, Another_number_of_parameters_is_a_wrong_type) {
  for (const char* lambda : {"lambda(1)", "lambda(a, 1)", "lambda(a, b, c, 1)"}) {
    const Outcome outcome = Eval(std::string("{2, 1}.sort(") + lambda + ")");
    EXPECT_EQ(outcome.code, 21) << lambda;
    EXPECT_NE(Str(outcome.text).find("array.sort(lambda)"), std::string::npos) << lambda;
  }
}

TEST(ArraySortByLambda, The_arguments_are_copies) {
  IxoMepValueSet scope;
  Eval("list := {2, 1}", &scope);
  EXPECT_EQ(Eval("list.sort(lambda(a, b, (a := 7, 0)))", &scope).code, 0);
  EXPECT_EQ(TextOf(*Variable(scope, "list")), "{2, 1}");
}

// Answers touch(): does what the test wants to the variable, in the middle of its sort.
class TouchingParser : public IxoMepExpressionParser {
 public:
  explicit TouchingParser(std::function<void()> touch) : touch_(std::move(touch)) {}
  using IxoMepExpressionParser::EvaluateFunctionCall;
  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode*, IxoMepValueSet*, const String& name,
                                       IxoMepValue*& result, String&, bool) const override {
    if (!(name == "touch")) return IMEPERR_UNKNOWN_FUNCTION;
    touch_();
    IxoMepValue::Assign(result, 1);
    return IMEPERR_NONE;
  }

 private:
  std::function<void()> touch_;
};

TEST(ArraySortByLambda, A_host_function_may_change_the_array_in_the_middle_of_its_sort) {
  using Change = void (*)(IxoMepValueSet & scope, IxoMepValue & list);
  IxoMepValue kept;
  static IxoMepValue* keep = &kept;
  const Change changes[] = {
      [](IxoMepValueSet&, IxoMepValue& list) { list.Append(new IxoMepValue(9)); },
      [](IxoMepValueSet&, IxoMepValue& list) { list.Erase(0); },
      [](IxoMepValueSet&, IxoMepValue& list) { list.Insert(0L, new IxoMepValue(9)); },
      [](IxoMepValueSet&, IxoMepValue& list) { list.SetInt(1); },
      [](IxoMepValueSet&, IxoMepValue& list) { list = Array({"new"}); },
      [](IxoMepValueSet& scope, IxoMepValue&) { Eval("list := list[0]", &scope); },
      [](IxoMepValueSet& scope, IxoMepValue&) { Eval("list.sort()", &scope); },
      [](IxoMepValueSet&, IxoMepValue& list) { *keep = list; },
      [](IxoMepValueSet&, IxoMepValue& list) { list.SetValue(1, nullptr); },
  };
  for (const Change change : changes) {
    IxoMepValueSet scope;
    Eval("list := {5, 3, {4}, 1, 2}", &scope);
    int calls = 0;
    TouchingParser parser([&] {
      IxoMepValue* const list = Variable(scope, "list");
      if (++calls < 50 && list->GetType() == Type::Array && list->GetSize() > 1) {
        change(scope, *list);
      }
    });
    EXPECT_EQ(EvalWith(parser, "list.sort(lambda(a, b, touch()))", &scope).code, 0);
    EXPECT_GT(calls, 0);
  }
  EXPECT_EQ(kept.GetSize(), 5);
}

// --- Methods of objects -------------------------------------------------------------------------

long CallMethod(IxoMepValue& object, const char* name, const IxoMepValueList& args,
                std::string& result_text, std::string& error_text) {
  IxoMepValue* result = nullptr;
  String error = "kept";
  const long code = object.EvaluateMethodCall(Intern(name), args, result, error, false);
  const ValuePtr owned(result);
  result_text = result != nullptr ? TextOf(*result) : "none";
  error_text = Str(error);
  return code;
}

std::string UnknownMember(const char* name) {
  std::string text = Str(IxoMepError::GetErrorText(IMEPERR_UNKNOWN_MEMBER));
  text.replace(text.find("%type"), 5, "object");
  return text.replace(text.find("%property"), 9, name);
}

TEST(ObjectMethodCall, A_name_that_reaches_nothing_is_42_with_type_and_name_in_the_text) {
  IxoMepValue object = ObjectWith("count", 3);
  std::string result, error;
  EXPECT_EQ(CallMethod(object, "absent", {}, result, error), 42);
  EXPECT_EQ(error, UnknownMember("absent"));
  EXPECT_EQ(CallMethod(object, "count", {}, result, error), 42);
  EXPECT_EQ(error, UnknownMember("count"));
}

TEST(ObjectMethodCall, An_error_42_inside_a_method_keeps_its_own_text) {
  IxoMepValue object(Type::Object);
  object.MoveValue("f", new IxoMepValue(ValueOf("lambda(x, x.nonsense)")));
  IxoMepValue number(1);
  std::string result, error;
  EXPECT_EQ(CallMethod(object, "f", {&number}, result, error), 42);
  EXPECT_NE(error.find("nonsense"), std::string::npos);
  EXPECT_EQ(error.find("object"), std::string::npos);
}

TEST(ObjectMethodCall, A_native_method_is_called_when_there_is_no_such_property) {
  IxoMepValue object(Type::Object);
  object.GetObject()->SetNativeMethod(
      "twice", [](IxoMepObject*, const IxoMepValueList& args, IxoMepValue*& result, String&) {
        IxoMepValue::Assign(result, 2 * args[0]->GetInt());
        return 0L;
      });
  object.GetObject()->SetNativeMethod(
      "fail", [](IxoMepObject*, const IxoMepValueList&, IxoMepValue*&, String& text) {
        text = "its own";
        return 42L;
      });
  IxoMepValue number(21);
  std::string result, error;
  EXPECT_EQ(CallMethod(object, "twice", {&number}, result, error), 0);
  EXPECT_EQ(result, "42");
  EXPECT_EQ(CallMethod(object, "fail", {&number}, result, error), 42);
  EXPECT_EQ(error, "its own");
}

TEST(ObjectMethodCall, The_parameters_refer_to_the_arguments) {
  IxoMepValue object(Type::Object);
  object.MoveValue("set", new IxoMepValue(ValueOf("lambda(x, y, (x := 9))")));
  IxoMepValue first(1), second(2), third(3);
  std::string result, error;
  EXPECT_EQ(CallMethod(object, "set", {&first, &second, &third}, result, error), 0);
  EXPECT_EQ(first.GetInt(), 9);
  first.SetInt(1);
  EXPECT_EQ(CallMethod(object, "set", {&first}, result, error), 0);
  EXPECT_EQ(first.GetInt(), 9);
}

}  // namespace
}  // namespace ixomep::test
