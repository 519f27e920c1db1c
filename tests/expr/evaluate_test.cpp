// Evaluation as such: result slots, strictness, scopes that are not there, what is left behind by
// failures, and the members of a node that a host may call by themselves.
#include <gtest/gtest.h>

#include <limits>

#include "ixomep/expr/evaluator.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/values/error.h"
#include "ixomep/values/string_address_map.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

using Kind = IxoMepExprNodeType;

IxoMepErrorEnum EvaluateInto(const char* text, IxoMepValueSet* scope, IxoMepValue*& slot,
                             String& error, bool strict = false) {
  const Compiled compiled = Compile(text);
  EXPECT_EQ(compiled.code, 0) << text;
  return compiled.tree->Evaluate(nullptr, scope, slot, error, strict);
}

// --- Results ------------------------------------------------------------------------------------

TEST(Result, A_null_slot_receives_a_new_value) {
  IxoMepValueSet scope;
  IxoMepValue* slot = nullptr;
  String error;
  EXPECT_EQ(EvaluateInto("1 + 2", &scope, slot, error), 0);
  const ValuePtr owned(slot);
  EXPECT_EQ(ShownValue(slot), "integer 3");
}

TEST(Result, A_value_in_the_slot_is_assigned_into_and_keeps_its_identity) {
  IxoMepValueSet scope;
  for (const char* text : {"1 + 2", "\"a\"", "{1, {2}}", "lambda(x, x)", "1cm", "unknown"}) {
    auto* const before = new IxoMepValue("old");
    IxoMepValue* slot = before;
    String error;
    EXPECT_EQ(EvaluateInto(text, &scope, slot, error), 0) << text;
    EXPECT_EQ(slot, before) << text;
    EXPECT_NE(ShownValue(slot), "string \"old\"") << text;
    delete slot;
  }
}

TEST(Result, A_failure_destroys_the_value_in_the_slot_and_leaves_null) {
  IxoMepValueSet scope;
  for (const char* text : {"1 / 0", "x + \"a\"", "nosuch()", "{1}[1]", "f(1 / 0)"}) {
    IxoMepValue* slot = new IxoMepValue("old");
    String error;
    EXPECT_NE(EvaluateInto(text, &scope, slot, error), 0) << text;
    EXPECT_EQ(slot, nullptr) << text;
    EXPECT_FALSE(error.IsEmpty()) << text;
  }
}

TEST(Result, The_slot_may_be_the_variable_that_is_read) {
  IxoMepValueSet scope;
  Set(scope, "x", IxoMepValue(5));
  IxoMepValue* const variable = Variable(scope, "x");
  IxoMepValue* slot = variable;
  String error;
  EXPECT_EQ(EvaluateInto("x + x * x", &scope, slot, error), 0);
  EXPECT_EQ(slot, variable);
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 30");
  EXPECT_EQ(EvaluateInto("{x, x}", &scope, slot, error), 0);
  EXPECT_EQ(EvaluateInto("x[1]", &scope, slot, error), 0);
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 30");
}

TEST(Result, A_failure_with_a_variable_in_the_slot_leaves_the_variable_alive) {
  IxoMepValueSet scope;
  Set(scope, "x", IxoMepValue(5));
  IxoMepValue* slot = Variable(scope, "x");
  String error;
  EXPECT_EQ(EvaluateInto("x / 0", &scope, slot, error), 18);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 5");
}

TEST(Result, A_result_left_unset_leaves_the_slot_as_it_was) {
  IxoMepValueSet scope;
  IxoMepValue* slot = nullptr;
  String error;
  EXPECT_EQ(EvaluateInto("while(0, 1)", &scope, slot, error), 0);
  EXPECT_EQ(slot, nullptr);
  IxoMepValue old(7);
  slot = &old;
  EXPECT_EQ(EvaluateInto("while(0, 1)", &scope, slot, error), 0);
  EXPECT_EQ(slot, &old);
  EXPECT_EQ(ShownValue(old), "integer 7");
  EXPECT_EQ(EvaluateInto("{2, 1}.sort()", &scope, slot, error), 0);
  EXPECT_EQ(ShownValue(old), "integer 7");
}

TEST(Result, A_result_is_a_copy_of_what_is_stored) {
  IxoMepValueSet scope;
  IxoMepValue* slot = nullptr;
  String error;
  EXPECT_EQ(EvaluateInto("a := {1, {2}}", &scope, slot, error), 0);
  slot->Append(new IxoMepValue(9));
  EXPECT_EQ(ShownVariable(scope, "a"), "array {1, {2}}");
  delete slot;
}

TEST(Result, A_constant_is_copied_out_of_the_tree) {
  const Compiled compiled = Compile("\"text\"");
  IxoMepValue* slot = nullptr;
  String error;
  EXPECT_EQ(compiled.tree->Evaluate(nullptr, nullptr, slot, error, false), 0);
  slot->SetStr("changed");
  delete slot;
  EXPECT_EQ(ShownValue(compiled.tree->GetValue()), "string \"text\"");
}

TEST(Result, Success_leaves_the_error_text_alone) {
  IxoMepValueSet scope;
  String error("before");
  IxoMepValue* slot = nullptr;
  EXPECT_EQ(EvaluateInto("f := lambda(x, x + 1), f(1)", &scope, slot, error), 0);
  EXPECT_EQ(error, "before");
  delete slot;
}

// --- Strictness and scopes ----------------------------------------------------------------------

TEST(Scopes, An_unknown_name_is_undefined_or_strictly_20_with_its_text) {
  EXPECT_EQ(Shown("x"), "undefined");
  const Outcome strict = Eval("x", Mode::Strict);
  EXPECT_EQ(strict.code, 20);
  EXPECT_EQ(strict.text, IxoMepError::GetErrorText(IMEPERR_UNKNOWN_VARIABLE));
}

TEST(Scopes, Reading_creates_no_variable) {
  IxoMepValueSet scope;
  Eval("x + y[0]", &scope);
  Eval("type(x)", &scope);
  Eval("x.trim()", &scope);
  EXPECT_EQ(scope.Count(), 0u);
}

TEST(Scopes, Without_a_scope_every_name_is_unknown_and_none_can_be_assigned) {
  IxoMepValueSet* const none = nullptr;
  EXPECT_EQ(Shown("1 + 2", none), "integer 3");
  EXPECT_EQ(Shown("x", none), "undefined");
  EXPECT_EQ(Shown("x", none, Mode::Strict), "error 20");
  EXPECT_EQ(Shown("x := 1", none), "error 20");
  EXPECT_EQ(Shown("x[0] := 1", none), "error 20");
  EXPECT_EQ(Shown("x.trim()", none), "error 20");
  EXPECT_EQ(Shown("x.length", none), "error 20");
  EXPECT_EQ(Shown("f(1)", none), "error 22");
  EXPECT_EQ(Shown("set(x, 1)", none), "error 20");
  EXPECT_EQ(Shown("for(i, 1, 3, i)", none), "error 20");
  EXPECT_EQ(Shown("lambda(x, x + 1)(2)", none), "integer 3");
  EXPECT_EQ(Shown("lambda(x, (y := x, y))(2)", none), "integer 2");
  EXPECT_EQ(Shown("{3, 1}.sort(lambda(x, y, x < y))", none), "no result");
  EXPECT_EQ(Shown("object().nosuch(x)", none), "error 42");
}

TEST(Scopes, An_assignment_goes_to_the_nearest_scope_that_has_the_name_or_to_the_innermost) {
  IxoMepValueSet outer;
  IxoMepValueSet inner(&outer);
  Set(outer, "x", IxoMepValue(1));
  Eval("x := 2, y := 3", &inner);
  EXPECT_EQ(ShownVariable(outer, "x"), "integer 2");
  EXPECT_EQ(ShownVariable(outer, "y"), "null");
  EXPECT_EQ(ShownVariable(inner, "y"), "integer 3");
}

TEST(Scopes, What_was_assigned_before_a_failure_stays_assigned) {
  IxoMepValueSet scope;
  EXPECT_EQ(Shown("x := 1, y := 2, z := 1 / 0", &scope), "error 18");
  EXPECT_EQ(ShownVariable(scope, "x"), "integer 1");
  EXPECT_EQ(ShownVariable(scope, "y"), "integer 2");
  EXPECT_EQ(ShownVariable(scope, "z"), "undefined");
}

TEST(Scopes, A_variable_that_holds_a_reference_gives_a_reference) {
  IxoMepValueSet scope;
  IxoMepValue target(5);
  Set(scope, "r", IxoMepValue(&target));
  const Outcome outcome = Eval("r", &scope);
  ASSERT_NE(outcome.value, nullptr);
  EXPECT_EQ(outcome.value->GetType(), IxoMepValueType::Reference);
  EXPECT_EQ(outcome.value->GetReferencedValue(), &target);
  EXPECT_EQ(Shown("type(r)", &scope), "string \"reference\"");
  EXPECT_EQ(Shown("r + 1", &scope), "real 6.0");
}

TEST(Scopes, A_subscript_and_a_property_follow_no_reference) {
  IxoMepValueSet scope;
  IxoMepValue list = ValueOf("{1, 2}");
  IxoMepValue zero(0);
  Set(scope, "r", IxoMepValue(&list));
  Set(scope, "zero", IxoMepValue(&zero));
  EXPECT_EQ(Eval("r[0]", &scope).ShownWithText().substr(0, 8), "error 21");
  EXPECT_EQ(Shown("r.length", &scope), "error 42");
  EXPECT_EQ(Shown("r.sort()", &scope), "error 42");
  EXPECT_EQ(Shown("LEN r", &scope), "error 21");
  EXPECT_EQ(Shown("{5}[zero]", &scope), "error 21") << "an index is an integer itself";
  EXPECT_EQ(Shown("{5} SUB zero", &scope), "integer 5") << "SUB reads through it";
}

TEST(Scopes, A_reference_finds_the_entry_of_the_key_that_it_refers_to) {
  IxoMepValueSet scope;
  IxoMepValue key("k");
  Set(scope, "r", IxoMepValue(&key));
  EXPECT_EQ(Shown("m := {\"k\": 5}, m[r]", &scope), "integer 5");
  EXPECT_EQ(Shown("m[r] := 6, m", &scope), "map {\"k\": 6}");
  EXPECT_EQ(Shown("n := map(), n[r] := 1, type(n.key(0))", &scope), "string \"string\"");
}

// --- Members of a node --------------------------------------------------------------------------

struct Frameless {
  IxoMepValueSet scope;
  IxoMepValue* slot = nullptr;
  String error;
  ~Frameless() { delete slot; }
};

TEST(NodeMembers, The_workers_evaluate_their_own_kind_of_node) {
  Frameless f;
  const Compiled op = Compile("1 + 2");
  EXPECT_EQ(op.tree->EvaluateOpCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "integer 3");
  const Compiled call = Compile("abs(-4)");
  EXPECT_EQ(call.tree->EvaluateFunctionCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "integer 4");
  const Compiled method = Compile("\" a\".trim()");
  EXPECT_EQ(method.tree->EvaluateMethodCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "string \"a\"");
  const Compiled property = Compile("\"abc\".length");
  EXPECT_EQ(
      property.tree->EvaluateObjectSubscriptionCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "integer 3");
}

TEST(NodeMembers, A_worker_given_another_kind_of_node_evaluates_it_as_what_it_is) {
  Frameless f;
  const Compiled constant = Compile("7");
  EXPECT_EQ(constant.tree->EvaluateOpCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(constant.tree->EvaluateFunctionCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(constant.tree->EvaluateMethodCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(
      constant.tree->EvaluateObjectSubscriptionCall(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "integer 7");
}

TEST(NodeMembers, Parameter_results_come_in_order_and_stop_at_the_first_failure) {
  Frameless f;
  IxoMepValue* second = nullptr;
  IxoMepValue* third = nullptr;
  const Compiled call = Compile("f(1, 2, 3)");
  EXPECT_EQ(call.tree->GetParamResult(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "integer 1");
  EXPECT_EQ(call.tree->GetParamResults(nullptr, &f.scope, f.slot, second, f.error, false), 0);
  EXPECT_EQ(call.tree->GetParamResults(nullptr, &f.scope, f.slot, second, third, f.error, false),
            0);
  EXPECT_EQ(ShownValue(second), "integer 2");
  EXPECT_EQ(ShownValue(third), "integer 3");
  const Compiled failing = Compile("f(x := 4, 1 / 0, (z := 5))");
  EXPECT_EQ(failing.code, 14) << "an assignment as a parameter stands in parentheses";
  const Compiled stopping = Compile("f((x := 4), 1 / 0, (z := 5))");
  EXPECT_EQ(
      stopping.tree->GetParamResults(nullptr, &f.scope, f.slot, second, third, f.error, false), 18);
  EXPECT_EQ(ShownValue(f.slot), "integer 4");
  EXPECT_EQ(second, nullptr);
  EXPECT_EQ(ShownVariable(f.scope, "z"), "null");
  delete third;
}

TEST(NodeMembers, Parameter_results_of_too_few_parameters_fail_with_23) {
  Frameless f;
  IxoMepValue* second = nullptr;
  const Compiled call = Compile("f()");
  EXPECT_EQ(call.tree->GetParamResult(nullptr, &f.scope, f.slot, f.error, false), 23);
  const Compiled one = Compile("f(1)");
  EXPECT_EQ(one.tree->GetParamResults(nullptr, &f.scope, f.slot, second, f.error, false), 23);
  EXPECT_EQ(second, nullptr);
}

TEST(NodeMembers, A_lambda_node_is_never_evaluated) {
  TestHost host;
  const NodePtr lambda = LambdaOf("x", Number(1));
  Frameless f;
  EXPECT_EQ(lambda->Evaluate(nullptr, &f.scope, f.slot, f.error, false), 0);
  EXPECT_EQ(ShownValue(f.slot), "undefined");
  EXPECT_EQ(host.assertions.size(), 1u);
}

TEST(NodeMembers, An_operator_node_without_operands_fails_with_21) {
  const NodePtr plus = NodePtr::Make(Kind::Plus);
  Frameless f;
  EXPECT_EQ(plus->Evaluate(nullptr, &f.scope, f.slot, f.error, false), 21);
}

TEST(NodeMembers, An_assignment_without_a_left_side_fails_with_23_strictly_with_20) {
  NodePtr assign = NodePtr::Make(Kind::Assign);
  NodeAccess::SetRight(*assign, Number(1));
  Frameless f;
  EXPECT_EQ(assign->Evaluate(nullptr, &f.scope, f.slot, f.error, false), 23);
  EXPECT_NE(std::string(f.error.view()).find(":="), std::string::npos) << f.error.view();
  EXPECT_EQ(assign->Evaluate(nullptr, &f.scope, f.slot, f.error, true), 20);
}

TEST(Conditions, Numbers_tell_the_truth_and_nothing_else_is_a_condition) {
  bool truth = false;
  IxoMepValue number(2.5);
  IxoMepValue text("a");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(ReadCondition(IxoMepValue(1), truth) && truth);
  EXPECT_TRUE(ReadCondition(IxoMepValue(0), truth) && !truth);
  EXPECT_TRUE(ReadCondition(IxoMepValue(-0.0), truth) && !truth);
  EXPECT_TRUE(ReadCondition(IxoMepValue(nan), truth) && truth);
  EXPECT_TRUE(ReadCondition(IxoMepValue(&number), truth) && truth);
  EXPECT_FALSE(ReadCondition(text, truth));
  EXPECT_FALSE(ReadCondition(IxoMepValue(&text), truth));
  EXPECT_FALSE(ReadCondition(IxoMepValue(), truth));
  EXPECT_FALSE(ReadCondition(IxoMepValue(IxoMepValueType::Measure, 1), truth));
}

}  // namespace
}  // namespace ixomep::test
