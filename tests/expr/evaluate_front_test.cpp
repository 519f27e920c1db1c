// Nodes that a host evaluates itself: into slots that hold a value already, and trees of its own
// making that no text gives.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace ixomep::test
