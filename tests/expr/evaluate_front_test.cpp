// Nodes that a host evaluates itself: into slots that hold a value already, and trees of its own
// making that no text gives.
#include <gtest/gtest.h>

#include "ixomep/expr/call_depth.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/values/slot.h"
#include "tests/support/eval.h"
#include "tests/support/limits.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

TEST(EvaluateFront, A_variable_is_assigned_into_the_value_of_the_slot) {
  IxoMepValueSet scope;
  Set(scope, "n", IxoMepValue(5));
  Set(scope, "r", IxoMepValue(1.5));
  Set(scope, "s", IxoMepValue("text"));
  for (const auto& [name, expected] :
       {std::pair{"n", "integer 5"}, {"r", "real 1.5"}, {"s", "string \"text\""}}) {
    const ValuePtr held = MakeValue("before");
    IxoMepValue* slot = held.get();
    String text;
    EXPECT_EQ(Name(name)->Evaluate(nullptr, &scope, slot, text, false), IMEPERR_NONE);
    EXPECT_EQ(slot, held.get());
    EXPECT_EQ(ShownValue(slot), expected);
  }
}

TEST(EvaluateFront, An_assignment_without_a_side_fails_with_23_however_often) {
  for (const bool has_left : {false, true}) {
    IxoMepValueSet scope;
    Set(scope, "f",
        LambdaValue("", Binary(IxoMepExprNodeType::Assign, has_left ? Name("x") : NodePtr(),
                               has_left ? NodePtr() : Number(1))));
    for (int time = 0; time < 3; ++time) EXPECT_EQ(Shown("f()", &scope), "error 23");
  }
}

TEST(EvaluateFront, A_sequence_or_sum_made_by_a_host_gives_the_same_however_often) {
  using Kind = IxoMepExprNodeType;
  IxoMepValueSet scope;
  Set(scope, "f", LambdaValue("", Binary(Kind::Comma, Number(1), Number(2))));
  Set(scope, "g", LambdaValue("", Binary(Kind::Minus, NodePtr(), Number(2))));
  Set(scope, "h", LambdaValue("", Binary(Kind::Minus, Number(2), NodePtr())));
  for (int time = 0; time < 3; ++time) {
    EXPECT_EQ(Shown("f()", &scope), "integer 2");
    EXPECT_EQ(Shown("g()", &scope), "integer -2");
    EXPECT_EQ(Shown("h()", &scope), "error 21");
  }
}

TEST(EvaluateFront, Beyond_the_call_depth_a_variable_fails_with_38_too) {
  IxoMepValueSet scope;
  Set(scope, "n", IxoMepValue(5));
  for (const std::int32_t depth : {CallDepth::kMax, CallDepth::kMax + 1}) {
    IxoMepValue* slot = new IxoMepValue(1);
    String text;
    IxoMepExprNode::m_nCallDepth = depth;
    const IxoMepErrorEnum code = Name("n")->Evaluate(nullptr, &scope, slot, text, false);
    IxoMepExprNode::m_nCallDepth = 0;
    const ValuePtr result(slot);
    EXPECT_EQ(code, depth == CallDepth::kMax ? IMEPERR_NONE : IMEPERR_TOO_DEEP);
    EXPECT_EQ(ShownValue(slot), depth == CallDepth::kMax ? "integer 5" : "null");
  }
}

TEST(EvaluateFront, A_member_for_another_kind_of_node_evaluates_it_all_the_same) {
  using Member = IxoMepErrorEnum (IxoMepExprNode::*)(const IxoMepExpressionParser*, IxoMepValueSet*,
                                                     IxoMepValue*&, String&, bool) const;
  const Member members[] = {&IxoMepExprNode::EvaluateOpCall, &IxoMepExprNode::EvaluateFunctionCall,
                            &IxoMepExprNode::EvaluateMethodCall,
                            &IxoMepExprNode::EvaluateObjectSubscriptionCall};
  for (const char* text :
       {"abs(-5)", "2 + 3", "n", "5", "\"12345\".length", "cond(1, 5, 0)", "{5}[0]"}) {
    for (const Member member : members) {
      IxoMepValueSet scope;
      Set(scope, "n", IxoMepValue(5));
      const NodePtr tree = Compile(text).tree;
      IxoMepValue* slot = nullptr;
      String error_text;
      const IxoMepExpressionParser parser;
      EXPECT_EQ((*tree.*member)(&parser, &scope, slot, error_text, false), IMEPERR_NONE) << text;
      const ValuePtr result(slot);
      EXPECT_EQ(ShownValue(slot), "integer 5") << text;
    }
  }
}

TEST(EvaluateFront, Scopes_made_for_what_is_walked_go_back_to_the_pool) {
  IxoMepValueSet scope;
  EXPECT_EQ(Shown("f := lambda(x, type({x, x})), 0", &scope), "integer 0");
  IxoMepValueSet* const next = IxoMepValueSetContainer::AllocateValueSet(nullptr);
  IxoMepValueSetContainer::FreeValueSet(next);
  for (int time = 0; time < 3; ++time) {
    EXPECT_EQ(Shown("for(i, 1, 5, f(i), f(1))", &scope), "string \"array\"");
    IxoMepValueSet* const again = IxoMepValueSetContainer::AllocateValueSet(nullptr);
    EXPECT_EQ(again, next);
    IxoMepValueSetContainer::FreeValueSet(again);
  }
}

}  // namespace
}  // namespace ixomep::test
