// Calls of lambdas: their scope, their parameters, what they capture, and that everything is held
// while it runs and given back afterwards.
#include <gtest/gtest.h>

#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

// The scope that the pool would hand out next.
IxoMepValueSet* NextScope() {
  IxoMepValueSet* const scope = IxoMepValueSetContainer::AllocateValueSet(nullptr);
  IxoMepValueSetContainer::FreeValueSet(scope);
  return scope;
}

TEST(LambdaCall, The_scope_goes_back_to_the_pool_on_every_path) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, (y := x, x / x))", &scope);
  IxoMepValueSet* const next = NextScope();
  for (const char* text : {"f(1)", "f(0)", "f(1 / 0)", "f(1, 2)", "f(unknown)", "f(f(f(0)))"}) {
    Eval(text, &scope);
    EXPECT_EQ(NextScope(), next) << text;
    EXPECT_EQ(next->Count(), 0u) << text;
  }
}

TEST(LambdaCall, The_body_sees_the_callers_variables) {
  EXPECT_EQ(Shown("f := lambda(x, x + y), y := 10, f(1)"), "integer 11");
  EXPECT_EQ(Shown("f := lambda(x, x + y), g := lambda(y, f(1)), g(20)"), "integer 21")
      << "the caller is g";
}

TEST(LambdaCall, Variables_visible_where_it_is_written_are_captured_by_value) {
  EXPECT_EQ(Shown("y := 1, f := lambda(x, x + y), y := 100, f(1)"), "integer 2");
  EXPECT_EQ(Shown("y := {1}, f := lambda(y[0]), y[0] := 2, f()"), "integer 1");
}

TEST(LambdaCall, A_captured_variable_is_constant_inside) {
  const Outcome outcome = Eval("y := 1, f := lambda((y := 2)), f()");
  EXPECT_EQ(outcome.code, 31);
  EXPECT_NE(std::string(outcome.text.view()).find("constant"), std::string::npos);
  EXPECT_EQ(Shown("y := {1}, f := lambda((y[0] := 2)), f()"), "error 31");
}

TEST(LambdaCall, Parameters_are_not_captured_and_hide_the_callers_variables) {
  EXPECT_EQ(Shown("x := 5, f := lambda(x, x + 1), f(1)"), "integer 2");
  EXPECT_EQ(Shown("x := 5, f := lambda(x, lambda(x, x * 10)), f(1)(2)"), "integer 20");
  EXPECT_EQ(Shown("x := 5, f := lambda(x, (x := x + 1, x)), f(1) + x"), "integer 7");
}

TEST(LambdaCall, A_lambda_that_sees_another_one_may_be_returned_and_still_calls_it) {
  EXPECT_EQ(Shown("twice := lambda(f, lambda(x, f(f(x)))), g := twice(lambda(x, x * 3)), g(2)"),
            "integer 18");
  EXPECT_EQ(Shown("h := lambda(x, x + 1), k := lambda(x, h(x)), h := 5, k(1)"), "integer 2");
}

TEST(LambdaCall, Arguments_are_evaluated_in_the_callers_scope_left_to_right) {
  EXPECT_EQ(Shown("f := lambda(a, b, {a, b}), n := 0, f((n := n + 1), (n := n * 10))"),
            "array {1, 10}");
  EXPECT_EQ(Shown("f := lambda(a, b, b), a := 7, f(1, a)"), "integer 7")
      << "the first argument is not visible to the second";
}

TEST(LambdaCall, A_parameter_named_twice_takes_the_later_argument) {
  EXPECT_EQ(Shown("f := lambda(x, x, x), f(1, 2)"), "integer 2");
}

TEST(LambdaCall, Too_many_arguments_are_refused_before_any_is_evaluated) {
  IxoMepValueSet scope;
  EXPECT_EQ(Shown("f := lambda(x, x), f((y := 1), 2)", &scope), "error 23");
  EXPECT_EQ(ShownVariable(scope, "y"), "null");
}

TEST(LambdaCall, Strictness_reaches_body_and_arguments) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, x + unknown), g := lambda(x, x), h := lambda((v := 1))", &scope);
  EXPECT_EQ(Shown("f(1)", &scope, Mode::Strict), "error 20");
  EXPECT_EQ(Shown("g(unknown)", &scope, Mode::Strict), "error 20");
  EXPECT_EQ(Shown("g(1)", &scope, Mode::Strict), "integer 1");
  EXPECT_EQ(Shown("h()", &scope, Mode::Strict), "error 20");
  EXPECT_EQ(Shown("g()", &scope, Mode::Strict), "error 20") << "a parameter left unbound";
}

TEST(LambdaCall, The_running_lambda_is_held_when_its_variable_is_replaced) {
  IxoMepValueSet scope;
  EXPECT_EQ(Shown("f := lambda(x, (eval(\"f := 0\"), x + 1)), f(1)", &scope), "integer 2");
  EXPECT_EQ(ShownVariable(scope, "f"), "integer 0");
  EXPECT_EQ(Shown("a := {lambda(x, (eval(\"a := 0\"), x))}, g := a[0], eval(\"g(4)\")", &scope),
            "integer 4");
}

TEST(LambdaCall, An_argument_may_replace_the_lambda_that_is_being_called) {
  EXPECT_EQ(Shown("f := lambda(x, x + 1), f((f := 5))"), "integer 6");
}

TEST(LambdaCall, EvaluateLambda_calls_with_the_nodes_parameters) {
  IxoMepValueSet scope;
  const Compiled call = Compile("ignored(20, 1)");
  const NodePtr lambda = LambdaOf("a,b", Binary(IxoMepExprNodeType::Plus, Name("a"), Name("b")));
  IxoMepValue* slot = nullptr;
  String error;
  EXPECT_EQ(call.tree->EvaluateLambda(lambda.get(), nullptr, &scope, slot, error, false), 0);
  EXPECT_EQ(ShownValue(slot), "integer 21");
  const NodePtr one = LambdaOf("a", Name("a"));
  EXPECT_EQ(call.tree->EvaluateLambda(one.get(), nullptr, &scope, slot, error, false), 23);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(call.tree->EvaluateLambda(nullptr, nullptr, &scope, slot, error, false), 40);
  EXPECT_EQ(call.tree->EvaluateLambda(call.tree.get(), nullptr, &scope, slot, error, false), 40)
      << "a node that is no lambda";
}

TEST(LambdaCall, EvaluateLambda_assigns_into_the_value_of_the_slot) {
  IxoMepValueSet scope;
  const Compiled call = Compile("ignored()");
  const NodePtr lambda = LambdaOf("", Number(3));
  IxoMepValue value("old");
  IxoMepValue* slot = &value;
  String error;
  EXPECT_EQ(call.tree->EvaluateLambda(lambda.get(), nullptr, &scope, slot, error, false), 0);
  EXPECT_EQ(slot, &value);
  EXPECT_EQ(ShownValue(value), "integer 3");
}

TEST(LambdaCall, Copies_of_a_lambda_share_one_node) {
  IxoMepValueSet scope;
  Eval("f := lambda(x, x), g := f", &scope);
  EXPECT_EQ(Variable(scope, "f")->GetLambda(), Variable(scope, "g")->GetLambda());
}

}  // namespace
}  // namespace ixomep::test
