// The order in which a call's name is looked for, and the host's hook: when it is asked, what it
// gets, what becomes of its answers.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ixomep/expr/calling_parser.h"
#include "ixomep/expr/evaluator.h"
#include "ixomep/values/error.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

// A hook of which each test writes the answer; it remembers whom it was asked for.
class HookParser : public IxoMepExpressionParser {
 public:
  struct Asked {
    const IxoMepExprNode* call;
    IxoMepValueSet* scope;
    std::string name;
    bool strict;
  };
  using Answer =
      std::function<IxoMepErrorEnum(const Asked& asked, IxoMepValue*& result, String& error_text)>;

  explicit HookParser(Answer answer) : answer_(std::move(answer)) {}

  IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* scope,
                                       const String& name, IxoMepValue*& result, String& error_text,
                                       bool strict) const override {
    EXPECT_EQ(result, nullptr) << "the hook gets an empty slot";
    asked.push_back({call, scope, std::string(name.view()), strict});
    return answer_(asked.back(), result, error_text);
  }

  mutable std::vector<Asked> asked;

 private:
  Answer answer_;
};

IxoMepErrorEnum NotMine(const HookParser::Asked&, IxoMepValue*&, String& text) {
  text = "no such function here";
  return IMEPERR_UNKNOWN_FUNCTION;
}

TEST(Hook, Is_asked_for_names_that_are_neither_mathematical_nor_built_in) {
  HookParser parser(NotMine);
  IxoMepValueSet scope;
  EvalWith(parser, "sqrt(4) + abs(-1) + tokcnt(\"a\", \",\")", &scope);
  EXPECT_TRUE(parser.asked.empty());
  EXPECT_EQ(EvalWith(parser, "mine(1)", &scope).Shown(), "error 22");
  ASSERT_EQ(parser.asked.size(), 1u);
  EXPECT_EQ(parser.asked[0].name, "mine");
}

TEST(Hook, Gets_the_call_node_the_scope_and_the_flag) {
  HookParser parser([](const HookParser::Asked& asked, IxoMepValue*& result, String&) {
    EXPECT_EQ(asked.call->GetParamCount(), 2);
    EXPECT_EQ(asked.call->GetParam(2)->GetName(), "x");
    EXPECT_EQ(asked.call->GetParam0()->GetName(), "mine");
    result = new IxoMepValue(7);
    return IMEPERR_NONE;
  });
  IxoMepValueSet scope;
  EXPECT_EQ(EvalWith(parser, "mine(1, x)", &scope).Shown(), "integer 7") << "nothing is evaluated";
  EXPECT_EQ(EvalWith(parser, "mine(1, x)", &scope, Mode::Strict).Shown(), "integer 7");
  ASSERT_EQ(parser.asked.size(), 2u);
  EXPECT_EQ(parser.asked[0].scope, &scope);
  EXPECT_FALSE(parser.asked[0].strict);
  EXPECT_TRUE(parser.asked[1].strict);
}

TEST(Hook, Any_answer_but_22_is_final) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, \"lambda\")", &scope);
  HookParser takes([](const HookParser::Asked&, IxoMepValue*& result, String&) {
    result = new IxoMepValue("host");
    return IMEPERR_NONE;
  });
  EXPECT_EQ(EvalWith(takes, "f(1)", &scope).Shown(), "string \"host\"");
  HookParser fails([](const HookParser::Asked&, IxoMepValue*& result, String& text) {
    result = new IxoMepValue("left behind");
    text = "the host's message";
    return IMEPERR_USER;
  });
  EXPECT_EQ(EvalWith(fails, "f(1)", &scope).ShownWithText(), "error 32: the host's message");
}

TEST(Hook, After_22_a_lambda_is_called_an_undefined_value_keeps_22_another_gives_40) {
  HookParser parser(NotMine);
  IxoMepValueSet scope;
  Set(scope, "undefined", IxoMepValue());
  Set(scope, "number", IxoMepValue(5));
  Eval("f := lambda(x, x + 1)", &scope);
  EXPECT_EQ(EvalWith(parser, "f(1)", &scope).Shown(), "integer 2");
  EXPECT_EQ(EvalWith(parser, "undefined(1)", &scope).ShownWithText(),
            "error 22: no such function here");
  EXPECT_EQ(EvalWith(parser, "unknown(1)", &scope).ShownWithText(),
            "error 22: no such function here");
  const Outcome number = EvalWith(parser, "number(1)", &scope);
  EXPECT_EQ(number.code, 40);
  EXPECT_EQ(number.text, IxoMepError::GetErrorText(IMEPERR_NOT_CALLABLE));
}

TEST(Hook, A_result_left_behind_with_22_is_destroyed) {
  HookParser parser([](const HookParser::Asked&, IxoMepValue*& result, String&) {
    result = new IxoMepValue("left behind");
    return IMEPERR_UNKNOWN_FUNCTION;
  });
  IxoMepValueSet scope;
  Eval("f := lambda(x, x + 1)", &scope);
  EXPECT_EQ(EvalWith(parser, "f(1)", &scope).Shown(), "integer 2");
}

TEST(Hook, An_answer_without_a_value_leaves_the_result_unset) {
  HookParser parser([](const HookParser::Asked&, IxoMepValue*&, String&) { return IMEPERR_NONE; });
  IxoMepValueSet scope;
  EXPECT_EQ(EvalWith(parser, "f()", &scope).Shown(), "no result");
  EXPECT_EQ(EvalWith(parser, "type(f())", &scope).Shown(), "string \"undefined\"");
}

TEST(Hook, A_message_of_22_does_not_outlive_the_lambda_that_is_called_instead) {
  HookParser parser(NotMine);
  IxoMepValueSet scope;
  Eval("f := lambda(x, x)", &scope);
  const Outcome outcome = EvalWith(parser, "f(1)", &scope);
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(outcome.text.IsEmpty());
}

TEST(Hook, May_define_the_variable_that_is_then_called) {
  IxoMepValueSet scope;
  HookParser parser([&scope](const HookParser::Asked&, IxoMepValue*&, String&) {
    if (Variable(scope, "late") == nullptr) Eval("late := lambda(x, x * 3)", &scope);
    return IMEPERR_UNKNOWN_FUNCTION;
  });
  EXPECT_EQ(EvalWith(parser, "late(2)", &scope).Shown(), "integer 6");
}

TEST(Hook, Is_asked_in_lambdas_methods_predicates_and_evaluated_texts_too) {
  HookParser parser([](const HookParser::Asked& asked, IxoMepValue*& result, String& text) {
    if (asked.name != "seven") return NotMine(asked, result, text);
    result = new IxoMepValue(7);
    return IMEPERR_NONE;
  });
  IxoMepValueSet scope;
  IxoMepValue object(IxoMepValueType::Object);
  object.MoveValue("m", new IxoMepValue(ValueOf("lambda(x, x + seven())")));
  Set(scope, "o", object);
  EXPECT_EQ(EvalWith(parser, "f := lambda(seven()), f()", &scope).Shown(), "integer 7");
  EXPECT_EQ(EvalWith(parser, "o.m(1)", &scope).Shown(), "real 8.0")
      << "a parameter of a method is a reference, which makes a sum real";
  EXPECT_EQ(
      EvalWith(parser, "a := {1, 2}, a.sort(lambda(x, y, (x > y) * seven())), a", &scope).Shown(),
      "array {2, 1}");
  EXPECT_EQ(CallingParser::Current(), nullptr);
}

TEST(Hook, Without_an_expression_object_the_base_rules_hold) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, x + 1)", &scope);
  const auto run = [&](const char* text) {
    IxoMepValue* slot = nullptr;
    String error;
    const Compiled compiled = Compile(text);
    const int code = compiled.tree->Evaluate(nullptr, &scope, slot, error, false);
    const ValuePtr value(slot);
    return code != 0 ? "error " + std::to_string(code) : ShownValue(slot);
  };
  EXPECT_EQ(run("f(1)"), "integer 2");
  EXPECT_EQ(run("nosuch(1)"), "error 22");
  EXPECT_EQ(run("nosuch(1 / 0)"), "error 18");
  EXPECT_EQ(run("curlineno()"), "integer -1");
}

// --- The base hook ------------------------------------------------------------------------------

struct BaseCall {
  IxoMepErrorEnum code;
  std::string value;
  std::string text;
};

BaseCall CallBase(const char* text, IxoMepValueSet* scope) {
  IxoMepExpressionParser parser;
  String error;
  EXPECT_EQ(parser.SetExpression(text, error), 0);
  const IxoMepExprNode* const call = parser.GetTree();
  IxoMepValue* slot = nullptr;
  const IxoMepErrorEnum code =
      parser.EvaluateFunctionCall(call, scope, call->GetParam0()->GetName(), slot, error, false);
  const ValuePtr value(slot);
  return {code, ShownValue(slot), std::string(error.view())};
}

TEST(BaseHook, Evaluates_the_arguments_in_order_before_it_gives_22) {
  IxoMepValueSet scope;
  const BaseCall unknown = CallBase("mine((x := 1), (y := x + 1))", &scope);
  EXPECT_EQ(unknown.code, 22);
  EXPECT_NE(unknown.text.find("mine"), std::string::npos);
  EXPECT_EQ(ShownVariable(scope, "y"), "integer 2");
  EXPECT_EQ(CallBase("mine((a := 1), 1 / 0, (b := 1))", &scope).code, 18);
  EXPECT_EQ(ShownVariable(scope, "a"), "integer 1");
  EXPECT_EQ(ShownVariable(scope, "b"), "null");
}

TEST(BaseHook, Evaluates_nothing_where_a_lambda_of_the_name_is_visible) {
  IxoMepValueSet outer;
  IxoMepValueSet scope(&outer);
  Eval("f := lambda(x, x)", &outer);
  const BaseCall call = CallBase("f((x := 1))", &scope);
  EXPECT_EQ(call.code, 22);
  EXPECT_NE(call.text.find("f"), std::string::npos);
  EXPECT_EQ(ShownVariable(scope, "x"), "null");
}

TEST(BaseHook, Arguments_of_a_called_lambda_variable_are_evaluated_once) {
  IxoMepValueSet scope;
  EXPECT_EQ(Shown("n := 0, f := lambda(x, x), f((n := n + 1)), n", &scope), "integer 1");
  // ... also when the host derives from the base and leaves the answer to it.
  class Derived : public IxoMepExpressionParser {
   public:
    IxoMepErrorEnum EvaluateFunctionCall(const IxoMepExprNode* call, IxoMepValueSet* s,
                                         const String& name, IxoMepValue*& result, String& text,
                                         bool strict) const override {
      return IxoMepExpressionParser::EvaluateFunctionCall(call, s, name, result, text, strict);
    }
  };
  Derived derived;
  EXPECT_EQ(EvalWith(derived, "n := 0, f((n := n + 1)), n", &scope).Shown(), "integer 1");
}

TEST(BaseHook, Knows_the_line_number_and_nothing_else) {
  IxoMepValueSet scope;
  EXPECT_EQ(CallBase("curlineno()", &scope).value, "integer -1");
  const BaseCall wrong = CallBase("curlineno(1, \"a\")", &scope);
  EXPECT_EQ(wrong.code, 23);
  EXPECT_NE(wrong.text.find("curlineno(integer, string)"), std::string::npos) << wrong.text;
  EXPECT_EQ(CallBase("curlineno(1 / 0)", &scope).code, 18);
}

TEST(BaseHook, The_line_number_comes_before_a_variable_of_that_name) {
  IxoMepExpressionParser parser;
  parser.SetLineNo(12);
  IxoMepValueSet scope;
  Eval("curlineno := lambda(\"mine\")", &scope);
  EXPECT_EQ(EvalWith(parser, "curlineno()", &scope).Shown(), "integer 12");
}

// --- Lambdas through references -----------------------------------------------------------------

TEST(Calls, A_variable_that_refers_to_a_lambda_is_called_through) {
  IxoMepValueSet scope;
  IxoMepValue lambda = ValueOf("lambda(x, x + 1)");
  Set(scope, "r", IxoMepValue(&lambda));
  EXPECT_EQ(Shown("r(1)", &scope), "integer 2");
}

TEST(Calls, What_a_failed_call_shows_is_the_name_and_empty_parentheses) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, x)", &scope);
  const Outcome outcome = Eval("f(1, 2)", &scope);
  EXPECT_EQ(outcome.code, 23);
  String expected = IxoMepError::GetErrorText(IMEPERR_WRONG_ARGUMENT_COUNT);
  expected.ReplaceFirst("%func", "f()");
  EXPECT_EQ(outcome.text, expected);
}

}  // namespace
}  // namespace ixomep::test
