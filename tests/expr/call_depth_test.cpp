// The count of evaluations that have begun since one ended: 251 nested ones at most.
#include <gtest/gtest.h>

#include <string>

#include "ixomep/expr/evaluator.h"
#include "ixomep/values/error.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

std::string Nested(const std::string& open, int count, const std::string& inner,
                   const std::string& close) {
  std::string text;
  for (int i = 0; i < count; ++i) text += open;
  text += inner;
  for (int i = 0; i < count; ++i) text += close;
  return text;
}

TEST(CallDepth, A_chain_of_251_nested_calls_fails_with_38_and_250_succeed) {
  EXPECT_EQ(Shown(Nested("abs(", 250, "-1", ")")), "error 38") << "minus is one more";
  EXPECT_EQ(Shown(Nested("abs(", 250, "1", ")")), "integer 1");
  const Outcome outcome = Eval(Nested("abs(", 251, "1", ")"));
  EXPECT_EQ(outcome.code, 38);
  EXPECT_EQ(outcome.text, IxoMepError::GetErrorText(IMEPERR_TOO_DEEP));
}

TEST(CallDepth, Counts_every_kind_of_node) {
  EXPECT_EQ(Shown(Nested("-", 250, "1", "")), "integer 1");
  EXPECT_EQ(Shown(Nested("-", 251, "1", "")), "error 38");
  EXPECT_EQ(Shown(Nested("{", 250, "1", "}")).substr(0, 5), "array");
  EXPECT_EQ(Shown(Nested("{", 251, "1", "}")), "error 38");
  EXPECT_EQ(Shown(Nested("", 250, "1", " + 1")), "integer 251") << "left operands nest";
  EXPECT_EQ(Shown(Nested("", 251, "1", " + 1")), "error 38");
  EXPECT_EQ(Shown("x := 1, " + Nested("-", 248, "x", "")).substr(0, 7), "integer");
  EXPECT_EQ(Shown(Nested("", 251, "1", ", 1")), "error 38");
  EXPECT_EQ(Shown(Nested("", 251, "{1}", "[0]")), "error 38");
  EXPECT_EQ(Shown(Nested("", 251, "\"a\"", ".trim()")), "error 38");
  EXPECT_EQ(Shown(Nested("", 251, "\"a\"", ".length")), "error 38");
}

TEST(CallDepth, The_end_of_any_evaluation_starts_the_count_anew) {
  // A right operand begins after the left one has ended.
  EXPECT_EQ(Shown(Nested("1 + (", 300, "1", ")")), "integer 301");
  EXPECT_EQ(Shown(Nested("abs(", 200, "0 + " + Nested("abs(", 200, "1", ")"), ")")), "integer 1");
  EXPECT_EQ(Shown(Nested("max(1, ", 400, "2", ")")), "integer 2");
}

TEST(CallDepth, The_receiver_of_a_method_is_an_evaluation_that_ends) {
  EXPECT_EQ(Shown("x := \"abc\", " + Nested("x.copy(LEN ", 300, "\"\"", ")")).substr(0, 6),
            "string");
}

TEST(CallDepth, A_lambda_may_call_itself_deeper_than_the_count) {
  EXPECT_EQ(Shown("f := lambda(n, cond(n = 0, 0, 1 + f(n - 1))), f(1500)"), "integer 1500");
}

TEST(CallDepth, Is_zero_after_success_and_failure) {
  Eval("abs(1)");
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 0);
  Eval("1 / 0");
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 0);
  Eval(Nested("abs(", 300, "1", ")"));
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 0) << "the evaluations around the refused one ended";
}

TEST(CallDepth, A_refused_evaluation_leaves_the_count_as_it_is) {
  const Compiled tree = Compile("1 + 1");
  IxoMepValue* slot = nullptr;
  String text;
  IxoMepExprNode::m_nCallDepth = 251;
  EXPECT_EQ(tree.tree->Evaluate(nullptr, nullptr, slot, text, false), 38);
  EXPECT_EQ(slot, nullptr);
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 252) << "it was counted on entry";
  IxoMepExprNode::m_nCallDepth = 250;
  EXPECT_EQ(tree.tree->Evaluate(nullptr, nullptr, slot, text, false), 38) << "its operand";
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 0);
  IxoMepExprNode::m_nCallDepth = 249;
  EXPECT_EQ(tree.tree->Evaluate(nullptr, nullptr, slot, text, false), 0);
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 0);
  delete slot;
}

TEST(CallDepth, An_expression_object_starts_at_zero) {
  IxoMepExprNode::m_nCallDepth = 1000;
  EXPECT_EQ(Shown("1 + 1"), "integer 2");
  EXPECT_EQ(IxoMepExprNode::m_nCallDepth, 0);
}

TEST(CallDepth, An_evaluated_text_starts_at_zero) {
  EXPECT_EQ(Shown(Nested("abs(", 200, "eval(\"" + Nested("abs(", 200, "1", ")") + "\")", ")")),
            "integer 1");
}

}  // namespace
}  // namespace ixomep::test
