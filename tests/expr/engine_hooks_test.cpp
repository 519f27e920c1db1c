// What values ask of the engine, and the texts of failed calls of nodes.
#include "ixomep/values/engine_hooks.h"

#include <gtest/gtest.h>

#include <memory>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node_ptr.h"
#include "ixomep/values/error.h"
#include "tests/support/eval.h"
#include "tests/support/trees.h"

namespace ixomep::test {
namespace {

// Counts its living objects and its copies.
class Counted : public IxoMepExpressionParser {
 public:
  Counted() { ++living; }
  Counted(const Counted& other) : IxoMepExpressionParser(other) { ++living; }
  ~Counted() override { --living; }
  IxoMepExpressionParser* CreateCopy() const override {
    ++copies;
    return new Counted(*this);
  }
  inline static int living = 0;
  inline static int copies = 0;
};

TEST(ExpressionValues, Are_cloned_and_destroyed_through_their_virtual_members) {
  Counted::copies = 0;
  {
    const Counted parser;
    const IxoMepValue value(&parser);
    const IxoMepValue copy(value);
    EXPECT_EQ(Counted::copies, 2);
    EXPECT_EQ(Counted::living, 3);
    EXPECT_NE(copy.GetExpr(), value.GetExpr());
  }
  EXPECT_EQ(Counted::living, 0);
}

TEST(ExpressionValues, Show_the_text_of_their_expression) {
  const IxoMepValue value = ValueOf("parse(\"x + 1\")");
  EXPECT_EQ(value.GetText(), "((x)+(1))");
  EXPECT_EQ(TextOfExpression(nullptr), "");
}

TEST(ExpressionValues, CreateExprParser_clones_an_expression_and_wraps_any_other_value) {
  const Counted parser;
  const IxoMepValue expression(&parser);
  const std::unique_ptr<IxoMepExpressionParser> clone(expression.CreateExprParser());
  EXPECT_NE(clone.get(), expression.GetExpr());
  EXPECT_NE(dynamic_cast<Counted*>(clone.get()), nullptr);
  const std::unique_ptr<IxoMepExpressionParser> constant(IxoMepValue(5).CreateExprParser());
  EXPECT_EQ(ShownValue(constant->GetConstant()), "integer 5");
  IxoMepValue target(&parser);
  const std::unique_ptr<IxoMepExpressionParser> reference(IxoMepValue(&target).CreateExprParser());
  ASSERT_NE(reference->GetConstant(), nullptr);
  EXPECT_EQ(reference->GetConstant()->GetType(), IxoMepValueType::Reference);
}

TEST(LambdaValues, Count_their_owners) {
  IxoMepValue value = ValueOf("lambda(x, y, x)");
  const std::uint32_t before = value.GetLambda()->ExtraReferences();
  {
    const IxoMepValue copy(value);
    EXPECT_EQ(value.GetLambda()->ExtraReferences(), before + 1);
  }
  EXPECT_EQ(value.GetLambda()->ExtraReferences(), before);
  EXPECT_EQ(LambdaParamCount(value.GetLambda()), 2);
  EXPECT_EQ(LambdaParamCount(nullptr), 0);
  EXPECT_EQ(KeepLambda(nullptr), nullptr);
}

TEST(FailedCalls, Are_shown_by_the_name_of_what_is_called) {
  const auto shown = [](const char* text) {
    String message;
    const Compiled compiled = Compile(text);
    EXPECT_EQ(
        IxoMepError::MakeFunctionError(message, IMEPERR_WRONG_ARGUMENT_COUNT, compiled.tree.get()),
        23);
    return message;
  };
  const auto expected = [](const char* call) {
    return TextOf(IMEPERR_WRONG_ARGUMENT_COUNT, {{"%func", call}});
  };
  EXPECT_EQ(shown("f(1, 2)"), expected("f()"));
  EXPECT_EQ(shown("x"), expected("x()"));
  EXPECT_EQ(shown("o.m(1)"), expected("m()"));
  EXPECT_EQ(shown("f(1)(2)"), expected("()"));
  EXPECT_EQ(shown("{1, 2}"), expected("{()"));
  String message;
  EXPECT_EQ(IxoMepError::MakeFunctionError(message, IMEPERR_WRONG_ARGUMENT_COUNT, nullptr), 23);
  EXPECT_EQ(message, expected("()"));
}

}  // namespace
}  // namespace ixomep::test
